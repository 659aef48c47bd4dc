// The sprite library without a display: matrix products and transforms; sprite boxes, placing,
// turning, box collisions, lists and releasing sequences.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "3DSpriteLib.h"

namespace {

using V = std::vector<float>;
V xyz(const Vector4& v) { return {v.x, v.y, v.z}; }

// The product of a (rows x n) and b (n x cols), flat and row-major; empty when refused.
template <typename T>
std::vector<T> product(const std::vector<T>& a, const std::vector<T>& b, int rows, int cols, int type) {
    const auto p = CreateMatrixMultResult(a.data(), b.data(), rows, a.size() / rows, b.size() / cols, cols, type);
    std::vector<T> out(p ? std::size_t(rows) * cols : 0);
    if (p) std::memcpy(out.data(), p.get(), out.size() * sizeof(T));
    return out;
}

// The translation (10, 20, 30) as OpenGL hands it back: column-major, the offset in 12..14.
const float kGlTranslation[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};

SpritePtr spriteWith(std::vector<float> coordinates) {
    SpritePtr s = newSprite();
    s->vertices = s->homeVertices = std::move(coordinates);
    s->vertexCount = static_cast<std::uint32_t>(s->vertices.size() / 3);
    return s;
}


// A sprite owned by a list or sequence, made the way the library releases it.
Sprite* loose() { return newSprite().release(); }

}  // namespace

TEST(MatrixProduct, RowMajorIntegersWrapInTheirOwnWidthAndMismatchesAreRefused) {
    using V8 = std::vector<std::int8_t>;
    using V16 = std::vector<std::int16_t>;
    EXPECT_EQ(product<float>({1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}, 2, 2, kElementFloat), (V{58, 64, 139, 154}));
    EXPECT_EQ(product<std::int8_t>({1, -2, 3}, {4, 5, -6}, 3, 3, kElementInt8), (V8{4, 5, -6, -8, -10, 12, 12, 15, -18}));
    EXPECT_EQ(product<std::int8_t>({100, 100}, {2, 2}, 1, 1, kElementInt8), V8{-112});  // 400 in 8 bits
    EXPECT_EQ(product<std::int16_t>({100, 100}, {2, 2}, 1, 1, kElementInt16), V16{400});
    EXPECT_EQ(product<std::int16_t>({300, 300}, {200, 1}, 1, 1, kElementInt16), V16{60300 - 65536});
    EXPECT_EQ(product<std::int32_t>({0x40000000, 1}, {4, 7}, 1, 1, kElementInt32), std::vector<std::int32_t>{7});
    const float a[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 2, 3, kElementFloat), nullptr);
    EXPECT_EQ(CreateMatrixMultResult(a, a, -2, 3, 3, 2, kElementFloat), nullptr);
    for (int type : {0, 5}) EXPECT_EQ(CreateMatrixMultResult(a, a, 2, 3, 3, 2, type), nullptr) << type;
}

TEST(Transforms, TransposeSelectsTheOpenGLMatrixAndNothingIsDivided) {
    float moved[4] = {1, 2, 3, 1}, kept[4] = {1, 2, 3, 1}, vertex[3] = {1, 1, 1}, p[3] = {1, 2, 3};
    const float projective[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 2, 4};  // w' = 2 z + 4
    vectorTransform(kGlTranslation, moved, 1);
    vectorTransform(kGlTranslation, kept, 0);  // untransposed, the offset goes into w
    vertexTransform(kGlTranslation, vertex, 1);  // w taken as 1
    vertexTransform(projective, p, 0);
    EXPECT_EQ(V(moved, moved + 4), (V{11, 22, 33, 1}));
    EXPECT_EQ(V(kept, kept + 4), (V{1, 2, 3, 1 + 10 + 40 + 90}));
    EXPECT_EQ(V(vertex, vertex + 3), (V{11, 21, 31}));
    EXPECT_EQ(V(p, p + 3), (V{2, 4, 6}));
    EXPECT_FLOAT_EQ(calcDistance(-1, -2, -2, 1, 2, 2), 6.0f);
}

TEST(BoundingBox, SentinelWhenEmptyAndHomeOnlyWhenAsked) {
    SpritePtr empty = newSprite();
    calcBoundingBox(empty.get(), 1);
    EXPECT_EQ(xyz(empty->boxMin), (V{1e7f, 1e7f, 1e7f}));
    EXPECT_EQ(xyz(empty->boxMax), (V{-1e7f, -1e7f, -1e7f}));

    SpritePtr s = spriteWith({-1, 2, 3, 5, -4, 9, 0, 0, 0});
    calcBoundingBox(s.get(), 0);
    EXPECT_EQ(xyz(s->boxMin), (V{-1, -4, 0}));
    EXPECT_EQ(xyz(s->boxMax), (V{5, 2, 9}));
    EXPECT_EQ(xyz(s->homeBoxMax), (V{0, 0, 0}));
    calcBoundingBox(s.get(), 1);
    EXPECT_EQ(xyz(s->homeBoxMax), (V{5, 2, 9}));
    EXPECT_EQ(xyz(s->position), (V{2, -1, 4.5f}));
}

TEST(Placing, ScaleThenSetPosition) {
    SpritePtr s = spriteWith({1, 2, 3, -1, -2, -3});
    scaleSprite(s.get(), 2.0f, 0.0f, 2.0f);  // a zero factor keeps that axis
    EXPECT_EQ(s->vertices, (V{2, 2, 6, -2, -2, -6}));
    EXPECT_EQ(s->homeVertices, s->vertices);

    scaleSprite(s.get(), 1.7f, 1.3f, 1.1f);
    setSpritePosition(s.get(), 1, 100.0f, 50.0f, 0.0f);
    EXPECT_NEAR(s->boxMin.x + (s->boxMax.x - s->boxMin.x) / 2, 100.0f, 1e-4);
    EXPECT_NEAR(s->boxMin.y + (s->boxMax.y - s->boxMin.y) / 2, 50.0f, 1e-4);
    EXPECT_EQ(xyz(s->homePosition), (V{100, 50, 0}));
    EXPECT_EQ(s->homeVertices[0], 2.0f * 1.7f);  // placing moves what is drawn, not the home shape
}

TEST(Orientation, QuarterTurnsAddUpAndKeepTheHomeShape) {
    SpritePtr s = spriteWith({1, 0, 0, 0, 1, 0, 0, 0, 1});
    setSpriteOrientation(s.get(), 0, 0, 0, 90);  // about z: (1, 0, 0) to (0, -1, 0), (0, 1, 0) to (1, 0, 0)
    const V turned = {0, -1, 0, 1, 0, 0, 0, 0, 1};
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(s->vertices[i], turned[i], 1e-5) << i;
    setSpriteOrientation(s.get(), 1, 90, 90, 0);  // about x, then y
    const V again = {-1, 0, 0, 0, 0, 1, 0, 1, 0};
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(s->vertices[i], again[i], 1e-5) << i;
    EXPECT_EQ(s->homeVertices[0], 1.0f);
    EXPECT_NEAR(s->homeBoxMin.x, -1.0f, 1e-5);  // the home box follows when asked
}

TEST(Collision, BoxCases) {
    SpritePtr a = newSprite(), b = newSprite();
    float hit[3] = {-7, -7, -7}, reverse[3] = {-7, -7, -7}, partial[3] = {-7, -7, -7};
    a->boxMax = b->boxMax = {2, 2, 2, 1};
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), hit), 1);  // identical boxes
    EXPECT_EQ(hit[0], 2.0f);  // the maximum face wins when both lie inside
    a->boxMin = {1, 1, 1, 1};
    a->boxMax = {1.5f, 1.5f, 1.5f, 1};
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), hit), 1);  // a inside b
    EXPECT_EQ(boundingBoxCollision(b.get(), a.get(), reverse), 0);  // b's faces outside a's range
    EXPECT_EQ(reverse[0], -7.0f);
    a->boxMin = {1, 1, 5, 1};
    a->boxMax = {3, 3, 6, 1};
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), partial), 0);  // overlap on x and y only
    EXPECT_EQ(xyz({partial[0], partial[1], partial[2]}), (V{1, 1, -7}));
}

TEST(Lists, AddAfterTheFirstAndRemovingTheFirstHandsBackItsSuccessor) {
    SpritePtr first = newSprite(), stranger = newSprite();
    Sprite *b = loose(), *c = loose();
    addSpriteToList(first.get(), b);
    addSpriteToList(first.get(), c);  // first, c, b
    EXPECT_EQ(first->next, c);
    EXPECT_EQ(c->next, b);
    EXPECT_EQ(removeSpriteFromList(first.get(), stranger.get()), first.get());
    EXPECT_EQ(removeSpriteFromList(first.get(), b), first.get());
    EXPECT_EQ(c->next, nullptr);
    EXPECT_EQ(removeSpriteFromList(first.get(), first.get()), c);
    deleteSpriteList(first.release(), 1);  // first, c
    deleteSprite(b, 1);
}

// Frames carry the sequence flag and the first frame, as drawing expects; releasing must not
// follow them back into the sequence (the sanitizer build sees a second release or a leak).
TEST(Release, SequencesFramesAndChildrenGoOnce) {
    SpritePtr sequence = newSprite();
    Sprite* frames[3] = {loose(), loose(), loose()};
    for (int i = 0; i < 3; ++i) {
        frames[i]->isSequence = 1;
        frames[i]->frames = frames[0];
        frames[i]->nextFrame = i < 2 ? frames[i + 1] : nullptr;
        frames[i]->vertices.assign(3, 1.0f);
        frames[i]->children = loose();
    }
    sequence->isSequence = 1;
    sequence->frames = sequence->currentFrame = frames[0];
    deleteSprite(frames[2], 0);  // emptying one frame leaves the sequence and the others whole
    EXPECT_EQ(frames[2]->children, nullptr);
    EXPECT_EQ(frames[0]->vertices.size(), 3u);
    EXPECT_EQ(sequence->frames, frames[0]);
}
