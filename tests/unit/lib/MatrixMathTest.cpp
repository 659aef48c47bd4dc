// Matrix products in the four element types, the vector and vertex transforms, and the dumps.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "3DSpriteLib.h"

namespace {

// The product of a (rows x n) and b (n x cols) as a flat row-major list; empty when refused.
template <typename T>
std::vector<T> product(const std::vector<T>& a, const std::vector<T>& b, int rows, int cols, int type) {
    const auto p = CreateMatrixMultResult(a.data(), b.data(), rows, a.size() / rows, b.size() / cols, cols, type);
    std::vector<T> out(p ? std::size_t(rows) * cols : 0);
    if (p) std::memcpy(out.data(), p.get(), out.size() * sizeof(T));
    return out;
}

// The translation (10, 20, 30) as OpenGL hands it back: column-major, the offset in 12..14.
const float kGlTranslation[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};

std::vector<float> first(const float* v, int n) { return std::vector<float>(v, v + n); }

}  // namespace

TEST(MatrixProduct, RefusesMismatchedSizesAndUnknownTypes) {
    const float a[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 2, 3, kElementFloat), nullptr);
    EXPECT_EQ(CreateMatrixMultResult(a, a, -2, 3, 3, 2, kElementFloat), nullptr);
    for (int type : {0, 5}) EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 3, 2, type), nullptr) << type;
}

TEST(MatrixProduct, RowMajorAndIntegersWrapInTheirOwnWidth) {
    using V8 = std::vector<std::int8_t>;
    using V16 = std::vector<std::int16_t>;
    EXPECT_EQ(product<float>({1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}, 2, 2, kElementFloat),
              (std::vector<float>{58, 64, 139, 154}));
    EXPECT_EQ(product<std::int8_t>({1, -2, 3}, {4, 5, -6}, 3, 3, kElementInt8), (V8{4, 5, -6, -8, -10, 12, 12, 15, -18}));
    EXPECT_EQ(product<std::int8_t>({100, 100}, {2, 2}, 1, 1, kElementInt8), V8{-112});  // 400 in 8 bits
    EXPECT_EQ(product<std::int16_t>({100, 100}, {2, 2}, 1, 1, kElementInt16), V16{400});
    EXPECT_EQ(product<std::int16_t>({300, 300}, {200, 1}, 1, 1, kElementInt16), V16{60300 - 65536});
    EXPECT_EQ(product<std::int32_t>({0x40000000, 1}, {4, 7}, 1, 1, kElementInt32), std::vector<std::int32_t>{7});
}

TEST(Transforms, TransposeSelectsTheOpenGLMatrixAndNothingIsDivided) {
    float moved[4] = {1, 2, 3, 1}, kept[4] = {1, 2, 3, 1}, vertex[3] = {1, 1, 1};
    vectorTransform(kGlTranslation, moved, 1);
    EXPECT_EQ(first(moved, 4), (std::vector<float>{11, 22, 33, 1}));
    vectorTransform(kGlTranslation, kept, 0);  // untransposed, the offset goes into w
    EXPECT_EQ(first(kept, 4), (std::vector<float>{1, 2, 3, 1 + 10 + 40 + 90}));
    vertexTransform(kGlTranslation, vertex, 1);  // w taken as 1
    EXPECT_EQ(first(vertex, 3), (std::vector<float>{11, 21, 31}));
    const float projective[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 2, 4};  // w' = 2 z + 4
    float p[3] = {1, 2, 3};
    vertexTransform(projective, p, 0);
    EXPECT_EQ(first(p, 3), (std::vector<float>{2, 4, 6}));
    vectorTransform(nullptr, moved, 1);
    EXPECT_EQ(moved[0], 11.0f);
    EXPECT_FLOAT_EQ(calcDistance(-1, -2, -2, 1, 2, 2), 6.0f);
    EXPECT_FLOAT_EQ(calcDistance(1, 1, 1, 1, 1, 1), 0.0f);
}

TEST(Dumps, MatrixAndVectorPrintExactly) {
    const float v[4] = {0.5f, -1.0f, 2.0f, 1.0f};
    testing::internal::CaptureStdout();
    printMatrix(kGlTranslation);
    printVector(v);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "1.000000 0.000000 0.000000 0.000000 \n0.000000 1.000000 0.000000 0.000000 \n"
              "0.000000 0.000000 1.000000 0.000000 \n10.000000 20.000000 30.000000 1.000000 \n"
              "0.500000 -1.000000 2.000000 1.000000 \n");
}
