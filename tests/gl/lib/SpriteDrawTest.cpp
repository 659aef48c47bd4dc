// Drawing sprites, the camera moves and the vertex collision on a real legacy OpenGL context.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "3DSpriteLib.h"
#include "GlContext.h"

namespace {

// A flat square facing the lights (+z), counter-clockwise on screen, centred on (cx, cy).
SpritePtr square(float cx, float cy, float half, float r, float g, float b) {
    SpritePtr s = newSprite();
    s->drawMode = GL_QUADS;
    s->vertices = {cx - half, cy - half, 0, cx + half, cy - half, 0,
                   cx + half, cy + half, 0, cx - half, cy + half, 0};
    s->homeVertices = s->vertices;
    s->normals.clear();
    for (int i = 0; i < 4; ++i) s->normals.insert(s->normals.end(), {0.0f, 0.0f, 1.0f});
    s->vertexCount = 4;
    s->colored = 1;
    s->color[0] = r;
    s->color[1] = g;
    s->color[2] = b;
    s->color[3] = 1.0f;
    calcBoundingBox(s.get(), 1);
    s->homePosition = s->position;
    s->homePosition.w = 1.0f;
    return s;
}

float modelView(int index) {
    float m[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    return m[index];
}

GLint matrixMode() {
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    return mode;
}

GLint modelViewDepth() {
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    return depth;
}

}  // namespace

using SpriteDrawing = GlTest;

TEST_F(SpriteDrawing, LitColouredQuadLandsOnItsPixels) {
    GlContext::gameLights();
    SpritePtr red = square(200, 300, 40, 1, 0, 0);
    drawSprites(red.get());
    const auto inside = GlContext::pixel(200, 300);
    EXPECT_GT(inside[0], 100) << int(inside[0]);
    EXPECT_LT(inside[1], 60);
    EXPECT_TRUE(GlContext::isBackground(GlContext::pixel(260, 300)));
    EXPECT_TRUE(GlContext::isBackground(GlContext::pixel(200, 350)));
    EXPECT_EQ(red->step, 1);
    EXPECT_EQ(modelViewDepth(), 1);
    EXPECT_EQ(matrixMode(), GL_MODELVIEW);
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
}

TEST_F(SpriteDrawing, HiddenSpriteStillCountsAndDrawsItsChildren) {
    GlContext::gameLights();
    SpritePtr parent = square(200, 300, 40, 1, 0, 0);
    parent->hidden = 1;
    parent->children = square(600, 300, 40, 0, 1, 0).release();
    drawSprites(parent.get());
    EXPECT_TRUE(GlContext::isBackground(GlContext::pixel(200, 300)));
    const auto child = GlContext::pixel(600, 300);
    EXPECT_GT(child[1], 100);
    EXPECT_LT(child[0], 60);
    EXPECT_EQ(parent->step, 1);
    EXPECT_EQ(parent->children->step, 1);
}

TEST_F(SpriteDrawing, ChildrenInheritTheParentsMovement) {
    GlContext::gameLights();
    SpritePtr parent = square(100, 100, 10, 1, 0, 0);
    parent->moving = 1;
    parent->velocity = {300, 0, 0, 0};
    parent->step = 1;
    parent->children = square(100, 400, 20, 0, 0, 1).release();
    drawSprites(parent.get());
    EXPECT_TRUE(GlContext::isBackground(GlContext::pixel(100, 400)));
    EXPECT_GT(GlContext::pixel(400, 400)[2], 100);
}

TEST_F(SpriteDrawing, ReverseCountsDownAndPositionFollowsTheAnimation) {
    GlContext::gameLights();
    SpritePtr s = square(500, 400, 20, 1, 1, 1);
    s->moving = 1;
    s->reverse = 1;
    s->velocity = {10, 5, 0, 0};
    const float expectedX[3] = {500, 490, 480};
    for (int draw = 0; draw < 3; ++draw) {
        EXPECT_EQ(s->step, -draw);
        drawSprites(s.get());
        EXPECT_FLOAT_EQ(s->position.x, expectedX[draw]);
        EXPECT_FLOAT_EQ(s->position.y, 400.0f - 5.0f * draw);
        EXPECT_FLOAT_EQ(s->boxMin.x, 480.0f - 10.0f * draw);
        EXPECT_FLOAT_EQ(s->boxMax.y, 420.0f - 5.0f * draw);
        EXPECT_FLOAT_EQ(s->boxMax.w, 1.0f);
    }
    EXPECT_EQ(s->step, -3);
    // Drawn at step -2: the square sits 20 pixels left of and 10 below home.
    EXPECT_FALSE(GlContext::isBackground(GlContext::pixel(465, 375)));
    // Home values themselves stay.
    EXPECT_FLOAT_EQ(s->homePosition.x, 500.0f);
}

TEST_F(SpriteDrawing, SpinAndDriftAreReadBackIntoPositionAndBox) {
    SpritePtr s = square(100, 0, 10, 1, 1, 1);
    s->spinning = 1;
    s->spinAxis[2] = 1.0f;
    s->spinStep = 90.0f;
    s->drifting = 1;
    s->drift = {0, 1000, 0, 0};  // applied before the spin, in the turned frame's parent
    s->step = 1;
    drawSprites(s.get());
    // Translate (0, 1000) then turn 90 about z: home (100, 0) lands at (0, 1100).
    EXPECT_NEAR(s->position.x, 0.0f, 1e-3);
    EXPECT_NEAR(s->position.y, 1100.0f, 1e-3);
    EXPECT_EQ(s->step, 2);

    SpritePtr still = square(100, 0, 10, 1, 1, 1);
    still->position = {7, 7, 7, 1};
    drawSprites(still.get());  // no animation flag: nothing read back
    EXPECT_FLOAT_EQ(still->position.x, 7.0f);
}

TEST_F(SpriteDrawing, SequenceShowsItsFramesInTurnAndShareTheStep) {
    GlContext::gameLights();
    SpritePtr sequence = newSprite();
    std::vector<Sprite*> frames;
    const float xs[3] = {150, 450, 750};
    for (float x : xs) frames.push_back(square(x, 300, 30, 1, 0, 0).release());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        frames[i]->isSequence = 1;
        frames[i]->frames = frames[0];
        frames[i]->nextFrame = i + 1 < frames.size() ? frames[i + 1] : nullptr;
    }
    sequence->isSequence = 1;
    sequence->frames = frames[0];
    sequence->currentFrame = frames[0];

    for (int draw = 0; draw < 4; ++draw) {
        GlContext::clear();
        Sprite* shown = sequence->currentFrame;
        ASSERT_EQ(shown, frames[draw % 3]);
        drawSprites(sequence.get());
        for (int f = 0; f < 3; ++f)
            EXPECT_EQ(GlContext::isBackground(GlContext::pixel(int(xs[f]), 300)), f != draw % 3)
                << "draw " << draw << " frame " << f;
        for (Sprite* frame : frames) EXPECT_EQ(frame->step, draw + 1);
    }
    EXPECT_EQ(sequence->currentFrame, frames[1]);
    EXPECT_EQ(sequence->step, 0);  // the sequence sprite itself is not counted
}

TEST_F(SpriteDrawing, SequenceWithoutAFrameIsSkipped) {
    SpritePtr sequence = newSprite();
    sequence->isSequence = 1;
    Sprite* after = square(300, 300, 20, 1, 1, 1).release();
    sequence->next = after;
    drawSprites(sequence.get());
    EXPECT_EQ(sequence->step, 0);
    EXPECT_EQ(after->step, 1);
    sequence->next = nullptr;
    deleteSprite(after, 1);
}

using CameraMoves = GlTest;

TEST_F(CameraMoves, ShiftsGoThroughTheProjectionIntoTheModelView) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    jogRight(10);
    EXPECT_EQ(matrixMode(), GL_MODELVIEW);
    EXPECT_FLOAT_EQ(modelView(12), -10.0f);
    jogUp(3);
    EXPECT_FLOAT_EQ(modelView(13), -3.0f);
    forward(5);
    EXPECT_FLOAT_EQ(modelView(14), -5.0f);
    backward(2);
    jogLeft(4);
    jogDown(1);
    EXPECT_FLOAT_EQ(modelView(12), -6.0f);
    EXPECT_FLOAT_EQ(modelView(13), -2.0f);
    EXPECT_FLOAT_EQ(modelView(14), -3.0f);

    // With the projection turned 90 degrees about z, the read-back array acts as its
    // transpose: a shift right comes out as (0, -10, 0) and is undone as +10 in y.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glRotatef(90, 0, 0, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    jogRight(10);
    EXPECT_NEAR(modelView(12), 0.0f, 1e-5);
    EXPECT_NEAR(modelView(13), 10.0f, 1e-5);
}

TEST_F(CameraMoves, TurnsMultiplyIntoTheProjection) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    pitchDown(90);
    EXPECT_EQ(matrixMode(), GL_PROJECTION);
    float p[16];
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    // A quarter turn about +x: y goes to z.
    EXPECT_NEAR(p[5], 0.0f, 1e-6);
    EXPECT_NEAR(p[6], 1.0f, 1e-6);
    pitchUp(90);
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    EXPECT_NEAR(p[5], 1.0f, 1e-6);
    rollLeft(90);
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    EXPECT_NEAR(p[1], 1.0f, 1e-6);  // x goes to y
    rollRight(90);
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    EXPECT_NEAR(p[0], 1.0f, 1e-6);
    EXPECT_NEAR(p[1], 0.0f, 1e-6);
}

using VertexCollision = GlTest;

TEST_F(VertexCollision, FirstVertexInsideAfterTheAnimation) {
    SpritePtr a = newSprite();
    a->vertices = {0, 0, 0, 3, 3, 3, 2, 2, 2};
    a->vertexCount = 3;
    calcBoundingBox(a.get(), 1);
    SpritePtr b = newSprite();
    b->boxMin = {1.5f, 1.5f, 1.5f, 1};
    b->boxMax = {10, 10, 10, 1};
    float hit[3] = {0, 0, 0};
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[0], 3.0f);  // (3, 3, 3) comes before (2, 2, 2)
    EXPECT_EQ(modelViewDepth(), 1);

    // Moved by its velocity at its step, no vertex of a reaches b's box.
    a->moving = 1;
    a->velocity = {-2, 0, 0, 0};
    a->step = 3;
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 0);
    a->step = -2;  // moved to x 4, 7, 6: (4, 0, 0) stays out, (7, 3, 3) is the first inside
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[0], 7.0f);
    EXPECT_FLOAT_EQ(hit[1], 3.0f);
    EXPECT_EQ(modelViewDepth(), 1);
    EXPECT_FLOAT_EQ(modelView(12), 0.0f);
}

TEST_F(VertexCollision, SeparateBoxesLeaveTheMatrixStackAlone) {
    SpritePtr a = newSprite(), b = newSprite();
    a->vertices = {0, 0, 0, 1, 1, 1};
    a->vertexCount = 2;
    calcBoundingBox(a.get(), 1);
    b->boxMin = {5, 5, 5, 1};
    b->boxMax = {6, 6, 6, 1};
    glMatrixMode(GL_PROJECTION);
    float hit[3] = {-1, -1, -1};
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 0);
    EXPECT_EQ(matrixMode(), GL_PROJECTION);
    EXPECT_FLOAT_EQ(hit[0], -1.0f);
}
