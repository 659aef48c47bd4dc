// Sprite records without a display: boxes, scaling, placing and the stale-box check, turning,
// box collisions, texture coordinates, lists and the release of sequences and children.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <vector>

#include "3DSpriteLib.h"

namespace {

SpritePtr spriteWith(std::initializer_list<float> coordinates) {
    SpritePtr s = newSprite();
    s->vertices.assign(coordinates);
    s->homeVertices = s->vertices;
    s->normals.assign(s->vertices.size(), 0.0f);
    s->vertexCount = static_cast<std::uint32_t>(s->vertices.size() / 3);
    s->drawMode = 7;
    return s;
}

void setBox(Sprite* s, float x0, float y0, float z0, float x1, float y1, float z1) {
    s->boxMin = {x0, y0, z0, 1.0f};
    s->boxMax = {x1, y1, z1, 1.0f};
}

// A sprite owned by a list or sequence, made the way the library releases it.
Sprite* loose() { return newSprite().release(); }

}  // namespace

TEST(BoundingBox, EmptySpriteGetsTheSentinelBox) {
    SpritePtr s = newSprite();
    s->position = {5, 6, 7, 9};
    calcBoundingBox(s.get(), 1);
    EXPECT_FLOAT_EQ(s->boxMin.x, 10000000.0f);
    EXPECT_FLOAT_EQ(s->boxMin.z, 10000000.0f);
    EXPECT_FLOAT_EQ(s->boxMin.w, 1.0f);
    EXPECT_FLOAT_EQ(s->boxMax.y, -10000000.0f);
    EXPECT_FLOAT_EQ(s->boxMax.w, 1.0f);
    EXPECT_FLOAT_EQ(s->position.x, 0.0f);
    EXPECT_FLOAT_EQ(s->position.y, 0.0f);
    EXPECT_FLOAT_EQ(s->position.z, 0.0f);
    EXPECT_FLOAT_EQ(s->position.w, 9.0f);  // w is not the box's business
}

TEST(BoundingBox, HomeIsTakenOnlyWhenAsked) {
    SpritePtr s = spriteWith({-1, 2, 3, 5, -4, 9, 0, 0, 0});
    calcBoundingBox(s.get(), 0);
    EXPECT_FLOAT_EQ(s->boxMin.x, -1.0f);
    EXPECT_FLOAT_EQ(s->boxMin.y, -4.0f);
    EXPECT_FLOAT_EQ(s->boxMin.z, 0.0f);
    EXPECT_FLOAT_EQ(s->boxMax.x, 5.0f);
    EXPECT_FLOAT_EQ(s->boxMax.y, 2.0f);
    EXPECT_FLOAT_EQ(s->boxMax.z, 9.0f);
    EXPECT_FLOAT_EQ(s->homeBoxMax.x, 0.0f);
    EXPECT_FLOAT_EQ(s->position.x, 0.0f);
    calcBoundingBox(s.get(), 1);
    EXPECT_FLOAT_EQ(s->homeBoxMax.z, 9.0f);
    EXPECT_FLOAT_EQ(s->position.x, 2.0f);
    EXPECT_FLOAT_EQ(s->position.y, -1.0f);
    EXPECT_FLOAT_EQ(s->position.z, 4.5f);
}

TEST(Scaling, ZeroFactorKeepsThatAxisAndHomeFollows) {
    SpritePtr s = spriteWith({1, 2, 3, -1, -2, -3});
    scaleSprite(s.get(), 2.0f, 0.0f, 2.0f);
    const std::vector<float> expected = {2, 2, 6, -2, -2, -6};
    EXPECT_EQ(s->vertices, expected);
    EXPECT_EQ(s->homeVertices, expected);
    EXPECT_FLOAT_EQ(s->homeBoxMax.z, 6.0f);
    EXPECT_FLOAT_EQ(s->boxMin.x, -2.0f);
}

TEST(Placing, SetPositionCentresTheBoxAndHomeIsExact) {
    SpritePtr s = spriteWith({0, 0, 0, 3, 1, 1, 1, 7, -1});
    scaleSprite(s.get(), 1.7f, 1.3f, 1.1f);
    setSpritePosition(s.get(), 1, 100.0f, 50.0f, 0.0f);
    EXPECT_NEAR(s->boxMin.x + (s->boxMax.x - s->boxMin.x) / 2, 100.0f, 1e-4);
    EXPECT_NEAR(s->boxMin.y + (s->boxMax.y - s->boxMin.y) / 2, 50.0f, 1e-4);
    EXPECT_NEAR(s->boxMin.z + (s->boxMax.z - s->boxMin.z) / 2, 0.0f, 1e-4);
    EXPECT_EQ(s->homePosition.x, 100.0f);
    EXPECT_EQ(s->homePosition.y, 50.0f);
    EXPECT_EQ(s->homePosition.z, 0.0f);
    EXPECT_EQ(s->homePosition.w, 1.0f);
    EXPECT_NEAR(s->position.x, 100.0f, 1e-4);  // the new box's centre
    // Placing moves what is drawn, not the shape kept at home.
    EXPECT_FLOAT_EQ(s->homeVertices[3], 3.0f * 1.7f);
}

TEST(Placing, MoveAddsToVerticesAndPosition) {
    SpritePtr s = spriteWith({0, 0, 0, 2, 2, 2});
    s->position = {1, 1, 1, 0};
    moveSpritePosition(s.get(), 0, 10, -5, 1);
    EXPECT_FLOAT_EQ(s->vertices[0], 10.0f);
    EXPECT_FLOAT_EQ(s->vertices[4], -3.0f);
    EXPECT_FLOAT_EQ(s->position.x, 11.0f);
    EXPECT_FLOAT_EQ(s->position.w, 1.0f);
    EXPECT_FLOAT_EQ(s->homePosition.x, 0.0f);
    EXPECT_FLOAT_EQ(s->boxMax.x, 12.0f);
    moveSpritePosition(s.get(), 1, 1, 1, 1);
    EXPECT_FLOAT_EQ(s->homePosition.x, 12.0f);
    EXPECT_FLOAT_EQ(s->homeBoxMin.y, -4.0f);
}

// The vertices sit around (11, 21, 31); a stale box centred on the origin is either used as it
// is (the sprite does not move when placed at the origin) or refreshed (the sprite comes to it).
TEST(Placing, StaleBoxChainDecidesTheRefresh) {
    SpritePtr kept = spriteWith({10, 20, 30, 12, 22, 32});
    setBox(kept.get(), -1, -2, 0, 1, 2, 0);  // chain 0, 1, 1, 0, 1: not refreshed
    setSpritePosition(kept.get(), 0, 0, 0, 0);
    EXPECT_FLOAT_EQ(kept->vertices[0], 10.0f);
    EXPECT_FLOAT_EQ(kept->vertices[5], 32.0f);

    SpritePtr refreshed = spriteWith({10, 20, 30, 12, 22, 32});
    setBox(refreshed.get(), -1, -2, -3, 1, 2, 3);  // chain 0 all along: refreshed
    setSpritePosition(refreshed.get(), 0, 0, 0, 0);
    EXPECT_FLOAT_EQ(refreshed->vertices[0], -1.0f);
    EXPECT_FLOAT_EQ(refreshed->vertices[5], 1.0f);

    SpritePtr fresh = spriteWith({10, 20, 30, 12, 22, 32});  // all-zero box: chain ends at 1
    setSpritePosition(fresh.get(), 0, 1, 1, 1);
    EXPECT_FLOAT_EQ(fresh->vertices[0], 11.0f);
}

TEST(Orientation, QuarterTurnAboutZAndAccumulation) {
    SpritePtr s = spriteWith({1, 0, 0, 0, 1, 0, 0, 0, 1});
    setSpriteOrientation(s.get(), 0, 0, 0, 90);
    EXPECT_NEAR(s->vertices[0], 0.0f, 1e-5);
    EXPECT_NEAR(s->vertices[1], -1.0f, 1e-5);
    EXPECT_NEAR(s->vertices[3], 1.0f, 1e-5);
    EXPECT_NEAR(s->vertices[4], 0.0f, 1e-5);
    EXPECT_FLOAT_EQ(s->vertices[8], 1.0f);
    // The game's degree constant, not pi / 180: cos of 90 "degrees" is not exactly cos(pi/2).
    EXPECT_FLOAT_EQ(s->vertices[0], cosf(90.0f * 0.017453315f));
    // Turns act on the current vertices and add up; the home shape stays.
    setSpriteOrientation(s.get(), 0, 0, 0, 90);
    EXPECT_NEAR(s->vertices[0], -1.0f, 1e-5);
    EXPECT_FLOAT_EQ(s->homeVertices[0], 1.0f);
}

TEST(Orientation, AxesXAndYFollowTheirMatrices) {
    SpritePtr s = spriteWith({0, 1, 0, 1, 0, 0});
    setSpriteOrientation(s.get(), 1, 90, 0, 0);  // y' = y c + z s, z' = -y s + z c
    EXPECT_NEAR(s->vertices[1], 0.0f, 1e-5);
    EXPECT_NEAR(s->vertices[2], -1.0f, 1e-5);
    setSpriteOrientation(s.get(), 1, 0, 90, 0);  // x' = x c - z s, z' = x s + z c
    EXPECT_NEAR(s->vertices[3], 0.0f, 1e-5);
    EXPECT_NEAR(s->vertices[5], 1.0f, 1e-5);
    EXPECT_NEAR(s->vertices[0], 1.0f, 1e-5);  // (0, 0, -1) about y
    EXPECT_NEAR(s->homeBoxMax.x, 1.0f, 1e-5);  // setHome took the turned box
}

TEST(Collision, BoxCases) {
    SpritePtr a = newSprite(), b = newSprite();
    float hit[3] = {-7, -7, -7};
    setBox(a.get(), 0, 0, 0, 2, 2, 2);
    setBox(b.get(), 0, 0, 0, 2, 2, 2);
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[0], 2.0f);  // the maximum face wins when both lie inside

    setBox(a.get(), 1, 1, 1, 1.5f, 1.5f, 1.5f);  // a inside b
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[1], 1.5f);
    float reverse[3] = {-7, -7, -7};
    EXPECT_EQ(boundingBoxCollision(b.get(), a.get(), reverse), 0);  // b encloses a on every axis
    EXPECT_FLOAT_EQ(reverse[0], -7.0f);

    setBox(a.get(), 1, 1, 5, 3, 3, 6);  // overlaps on x and y only
    float partial[3] = {-7, -7, -7};
    EXPECT_EQ(boundingBoxCollision(a.get(), b.get(), partial), 0);
    EXPECT_FLOAT_EQ(partial[0], 1.0f);
    EXPECT_FLOAT_EQ(partial[2], -7.0f);
}

TEST(TextureCoords, SpanTheHomeBox) {
    SpritePtr s = spriteWith({0, 0, 5, 4, 2, 5, 2, 1, 5});
    calcBoundingBox(s.get(), 1);
    calcTextureCoords(s.get());
    ASSERT_EQ(s->texCoords.size(), 9u);
    EXPECT_FLOAT_EQ(s->texCoords[3], 1.0f);
    EXPECT_FLOAT_EQ(s->texCoords[4], 1.0f);
    EXPECT_FLOAT_EQ(s->texCoords[6], 0.5f);
    EXPECT_FLOAT_EQ(s->texCoords[7], 0.5f);
    EXPECT_FLOAT_EQ(s->texCoords[8], 0.0f);  // flat axis: |d| with d = 0
    EXPECT_EQ(s->textured, 0);
}

TEST(Lists, AddKeepsTheFirstAndRemoveHandsBackTheNewFirst) {
    SpritePtr first = newSprite();
    Sprite* b = loose();
    Sprite* c = loose();
    addSpriteToList(first.get(), b);
    addSpriteToList(first.get(), c);  // first, c, b
    EXPECT_EQ(first->next, c);
    EXPECT_EQ(c->next, b);
    addSpriteToList(nullptr, b);
    EXPECT_EQ(b->next, nullptr);

    SpritePtr stranger = newSprite();
    EXPECT_EQ(removeSpriteFromList(first.get(), stranger.get()), first.get());
    EXPECT_EQ(first->next, c);

    EXPECT_EQ(removeSpriteFromList(first.get(), b), first.get());
    EXPECT_EQ(c->next, nullptr);
    Sprite* newFirst = removeSpriteFromList(first.get(), first.get());
    EXPECT_EQ(newFirst, c);
    EXPECT_EQ(first->next, c);  // the removed sprite keeps its own link
    first->next = nullptr;
    deleteSprite(b, 1);
    deleteSprite(c, 1);
}

TEST(Release, SequencesFramesAndChildrenGoOnce) {
    // Frames each carry the sequence flag and a pointer to the first frame, as drawing expects;
    // releasing must not follow them back into the sequence (the sanitizer build sees a second
    // release or a leak).
    Sprite* sequence = loose();
    Sprite* frames[3] = {loose(), loose(), loose()};
    for (int i = 0; i < 3; ++i) {
        frames[i]->isSequence = 1;
        frames[i]->frames = frames[0];
        frames[i]->nextFrame = i < 2 ? frames[i + 1] : nullptr;
        frames[i]->vertices.assign(12, 1.0f);
        frames[i]->vertexCount = 4;
    }
    frames[1]->children = loose();
    sequence->isSequence = 1;
    sequence->frames = frames[0];
    sequence->currentFrame = frames[2];
    Sprite* child = loose();
    addSpriteToList(child, loose());
    sequence->children = child;
    deleteSprite(sequence, 1);

    SpritePtr kept = spriteWith({1, 2, 3});
    kept->children = loose();
    kept->texCoords.assign(3, 0.0f);
    deleteSprite(kept.get(), 0);
    EXPECT_EQ(kept->children, nullptr);
    EXPECT_TRUE(kept->vertices.empty());
    EXPECT_TRUE(kept->homeVertices.empty());
    EXPECT_TRUE(kept->normals.empty());
    EXPECT_TRUE(kept->texCoords.empty());

    // Emptying one frame on its own leaves its sequence and the other frames whole.
    Sprite* again = loose();
    Sprite* f0 = loose();
    Sprite* f1 = loose();
    for (Sprite* f : {f0, f1}) {
        f->isSequence = 1;
        f->frames = f0;
        f->vertices.assign(3, 2.0f);
    }
    f0->nextFrame = f1;
    again->isSequence = 1;
    again->frames = f0;
    again->currentFrame = f0;
    deleteSprite(f1, 0);
    EXPECT_TRUE(f1->vertices.empty());
    EXPECT_EQ(f0->vertices.size(), 3u);
    EXPECT_EQ(f1->frames, f0);
    EXPECT_EQ(again->frames, f0);
    deleteSprite(again, 1);

    Sprite* list = loose();
    addSpriteToList(list, loose());
    addSpriteToList(list, loose());
    deleteSpriteList(list, 1);
}
