// Matrix products in the four element types, vector and vertex transforms, and the dumps.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "3DSpriteLib.h"

namespace {

template <typename T>
T elementAt(const std::unique_ptr<std::uint8_t[]>& m, int index) {
    T value;
    std::memcpy(&value, m.get() + index * sizeof(T), sizeof(T));
    return value;
}

// A translation as OpenGL hands it back: column-major, so the offset sits in elements 12..14.
void glTranslationArray(float m[16], float tx, float ty, float tz) {
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::memcpy(m, identity, sizeof identity);
    m[12] = tx;
    m[13] = ty;
    m[14] = tz;
}

}  // namespace

TEST(MatrixProduct, RefusesMismatchedSizesAndUnknownTypes) {
    const float a[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 2, 3, kElementFloat), nullptr);
    EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 3, 2, 0), nullptr);
    EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 3, 2, 5), nullptr);
    EXPECT_EQ(CreateMatrixMultResult(a, a, -2, 3, 3, 2, kElementFloat), nullptr);
    EXPECT_NE(CreateMatrixMultResult(a, a, 2, 3, 3, 2, kElementFloat), nullptr);
}

TEST(MatrixProduct, IntegerTypesWrapInTheirOwnWidth) {
    // (100, 100) . (2, 2): 400 wraps to -112 in 8 bits, stays 400 in 16.
    const std::int8_t a8[2] = {100, 100}, b8[2] = {2, 2};
    auto p8 = CreateMatrixMultResult(a8, b8, 1, 2, 2, 1, kElementInt8);
    ASSERT_NE(p8, nullptr);
    EXPECT_EQ(elementAt<std::int8_t>(p8, 0), -112);

    const std::int16_t a16[2] = {100, 100}, b16[2] = {2, 2};
    auto p16 = CreateMatrixMultResult(a16, b16, 1, 2, 2, 1, kElementInt16);
    ASSERT_NE(p16, nullptr);
    EXPECT_EQ(elementAt<std::int16_t>(p16, 0), 400);

    const std::int16_t big16[2] = {300, 300}, by16[2] = {200, 1};
    auto w16 = CreateMatrixMultResult(big16, by16, 1, 2, 2, 1, kElementInt16);
    ASSERT_NE(w16, nullptr);
    EXPECT_EQ(elementAt<std::int16_t>(w16, 0), static_cast<std::int16_t>(60300 - 65536));

    const std::int32_t a32[2] = {0x40000000, 1}, b32[2] = {4, 7};
    auto p32 = CreateMatrixMultResult(a32, b32, 1, 2, 2, 1, kElementInt32);
    ASSERT_NE(p32, nullptr);
    EXPECT_EQ(elementAt<std::int32_t>(p32, 0), 7);
}

TEST(MatrixProduct, RowMajorShapesAndValues) {
    // (2 x 3) x (3 x 2) = 2 x 2, element (r, c) at r * 2 + c.
    const float a[6] = {1, 2, 3, 4, 5, 6};
    const float b[6] = {7, 8, 9, 10, 11, 12};
    auto p = CreateMatrixMultResult(a, b, 2, 3, 3, 2, kElementFloat);
    ASSERT_NE(p, nullptr);
    EXPECT_FLOAT_EQ(elementAt<float>(p, 0), 58.0f);
    EXPECT_FLOAT_EQ(elementAt<float>(p, 1), 64.0f);
    EXPECT_FLOAT_EQ(elementAt<float>(p, 2), 139.0f);
    EXPECT_FLOAT_EQ(elementAt<float>(p, 3), 154.0f);

    const std::int8_t c[3] = {1, -2, 3}, d[3] = {4, 5, -6};
    auto q = CreateMatrixMultResult(c, d, 3, 1, 1, 3, kElementInt8);  // outer product
    ASSERT_NE(q, nullptr);
    EXPECT_EQ(elementAt<std::int8_t>(q, 1), 5);
    EXPECT_EQ(elementAt<std::int8_t>(q, 3), -8);
    EXPECT_EQ(elementAt<std::int8_t>(q, 8), -18);
}

TEST(Transforms, IdentityLeavesVectorForEitherTranspose) {
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (int transpose : {0, 1}) {
        float v[4] = {1.5f, -2.0f, 3.25f, 1.0f};
        vectorTransform(identity, v, transpose);
        EXPECT_FLOAT_EQ(v[0], 1.5f);
        EXPECT_FLOAT_EQ(v[1], -2.0f);
        EXPECT_FLOAT_EQ(v[2], 3.25f);
        EXPECT_FLOAT_EQ(v[3], 1.0f);
    }
}

TEST(Transforms, TransposeSelectsTheOpenGLMatrix) {
    float m[16];
    glTranslationArray(m, 10.0f, 20.0f, 30.0f);
    float moved[4] = {1.0f, 2.0f, 3.0f, 1.0f};
    vectorTransform(m, moved, 1);
    EXPECT_FLOAT_EQ(moved[0], 11.0f);
    EXPECT_FLOAT_EQ(moved[1], 22.0f);
    EXPECT_FLOAT_EQ(moved[2], 33.0f);
    EXPECT_FLOAT_EQ(moved[3], 1.0f);

    // Untransposed, the same array keeps x, y and z and puts the offset into w.
    float kept[4] = {1.0f, 2.0f, 3.0f, 1.0f};
    vectorTransform(m, kept, 0);
    EXPECT_FLOAT_EQ(kept[0], 1.0f);
    EXPECT_FLOAT_EQ(kept[1], 2.0f);
    EXPECT_FLOAT_EQ(kept[2], 3.0f);
    EXPECT_FLOAT_EQ(kept[3], 1.0f + 10.0f + 40.0f + 90.0f);
}

TEST(Transforms, VertexTakesWAsOneAndIsNotDivided) {
    float m[16];
    glTranslationArray(m, 5.0f, 0.0f, -5.0f);
    float v[3] = {1.0f, 1.0f, 1.0f};
    vertexTransform(m, v, 1);
    EXPECT_FLOAT_EQ(v[0], 6.0f);
    EXPECT_FLOAT_EQ(v[1], 1.0f);
    EXPECT_FLOAT_EQ(v[2], -4.0f);

    // A projective matrix (w' = 2 z + 4): no perspective division.
    const float projective[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 2, 4};
    float p[3] = {1.0f, 2.0f, 3.0f};
    vertexTransform(projective, p, 0);
    EXPECT_FLOAT_EQ(p[0], 2.0f);
    EXPECT_FLOAT_EQ(p[1], 4.0f);
    EXPECT_FLOAT_EQ(p[2], 6.0f);
}

TEST(Transforms, DistanceAndNullArgumentsAreSafe) {
    EXPECT_FLOAT_EQ(calcDistance(0, 0, 0, 3, 4, 0), 5.0f);
    EXPECT_FLOAT_EQ(calcDistance(1, 1, 1, 1, 1, 1), 0.0f);
    EXPECT_FLOAT_EQ(calcDistance(-1, -2, -2, 1, 2, 2), 6.0f);
    float v[4] = {1, 2, 3, 4};
    vectorTransform(nullptr, v, 1);
    EXPECT_FLOAT_EQ(v[3], 4.0f);
}

TEST(Dumps, MatrixAndVectorPrintExactly) {
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    testing::internal::CaptureStdout();
    printMatrix(identity);
    fflush(stdout);
    const std::string matrix = testing::internal::GetCapturedStdout();
    EXPECT_EQ(matrix,
              "1.000000 0.000000 0.000000 0.000000 \n"
              "0.000000 1.000000 0.000000 0.000000 \n"
              "0.000000 0.000000 1.000000 0.000000 \n"
              "0.000000 0.000000 0.000000 1.000000 \n");

    const float v[4] = {0.5f, -1.0f, 2.0f, 1.0f};
    testing::internal::CaptureStdout();
    printVector(v);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "0.500000 -1.000000 2.000000 1.000000 \n");
}
