// Drawing sprites, the camera moves and the vertex collision on a real legacy OpenGL context.
#include <tuple>
#include <vector>

#include "3DSpriteLib.h"
#include "GlContext.h"

namespace {

// A flat red square centred on (cx, cy), its normals facing the default light (+z) or away.
SpritePtr square(float cx, float cy, float half, float normalZ = 1.0f) {
    SpritePtr s = newSprite();
    s->drawMode = GL_QUADS;
    s->vertices = {-half, -half, 0, half, -half, 0, half, half, 0, -half, half, 0};
    s->normals = {0, 0, normalZ, 0, 0, normalZ, 0, 0, normalZ, 0, 0, normalZ};
    s->vertexCount = 4;
    s->colored = 1;
    s->color[0] = s->color[3] = 1.0f;
    setSpritePosition(s.get(), 1, cx, cy, 0);
    return s;
}

float modelView(int index) { float m[16]; glGetFloatv(GL_MODELVIEW_MATRIX, m); return m[index]; }
GLint glInt(GLenum name) { GLint value = 0; glGetIntegerv(name, &value); return value; }

}  // namespace

using SpriteDrawing = GlTest;

// A hidden, moving parent: nothing of its own is drawn, but it is counted and its children are
// drawn lit, moved with it, each along the children's list.
TEST_F(SpriteDrawing, HiddenParentStillDrawsItsMovedChildren) {
    SpritePtr parent = square(100, 100, 10);
    parent->hidden = parent->moving = parent->step = 1;
    parent->velocity = {300, 0, 0, 0};
    parent->children = square(100, 400, 20).release();
    addSpriteToList(parent->children, square(100, 600, 20, -1.0f).release());
    drawSprites(parent.get());
    EXPECT_TRUE(background(400, 100));
    EXPECT_TRUE(background(100, 400));
    EXPECT_GT(pixel(400, 400, 0), 200);  // facing the light
    EXPECT_LT(pixel(400, 400, 1), 60);
    EXPECT_LT(pixel(400, 600, 0), 100);  // turned away: ambient light only
    EXPECT_FALSE(background(400, 600));
    EXPECT_EQ(parent->step, 2);
    EXPECT_EQ(parent->children->step, 1);
    EXPECT_EQ(glInt(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
}

TEST_F(SpriteDrawing, ReverseCountsDownAndPositionAndBoxFollowTheAnimation) {
    SpritePtr s = square(500, 400, 20);
    s->moving = s->reverse = 1;
    s->velocity = {10, 5, 0, 0};
    for (int draw = 0; draw < 3; ++draw) {
        SCOPED_TRACE(draw);
        EXPECT_EQ(s->step, -draw);
        drawSprites(s.get());
        EXPECT_FLOAT_EQ(s->position.x, 500.0f - 10.0f * draw);
        EXPECT_FLOAT_EQ(s->position.y, 400.0f - 5.0f * draw);
        EXPECT_FLOAT_EQ(s->boxMin.x, 480.0f - 10.0f * draw);
        EXPECT_FLOAT_EQ(s->boxMax.y, 420.0f - 5.0f * draw);
    }
    EXPECT_FALSE(background(465, 375));  // drawn last at step -2: 20 left of and 10 below home
    EXPECT_FLOAT_EQ(s->homePosition.x, 500.0f);

    // Drift goes first, then the spin: (100, 0) moved by (0, 1000) and turned 90 about z.
    SpritePtr spun = square(100, 0, 10);
    spun->spinning = spun->drifting = spun->step = 1;
    spun->spinAxis[2] = 1.0f;
    spun->spinStep = 90.0f;
    spun->drift = {0, 1000, 0, 0};
    drawSprites(spun.get());
    EXPECT_NEAR(spun->position.x, 0.0f, 1e-3);
    EXPECT_NEAR(spun->position.y, 1100.0f, 1e-3);
    SpritePtr still = square(100, 0, 10);
    still->position.x = 7;
    drawSprites(still.get());  // no animation: nothing read back
    EXPECT_FLOAT_EQ(still->position.x, 7.0f);
}

TEST_F(SpriteDrawing, SequenceShowsItsFramesInTurnAndTheyShareTheStep) {
    SpritePtr empty = newSprite(), sequence = newSprite();
    empty->isSequence = sequence->isSequence = 1;  // a sequence without a frame is passed over
    empty->next = sequence.get();
    std::vector<Sprite*> frames;
    for (int i = 0; i < 3; ++i) frames.push_back(square(150.0f + 300 * i, 300, 30).release());
    for (int i = 0; i < 3; ++i) {
        frames[i]->isSequence = 1;
        frames[i]->frames = frames[0];
        frames[i]->nextFrame = i < 2 ? frames[i + 1] : nullptr;
    }
    sequence->frames = sequence->currentFrame = frames[0];
    for (int draw = 0; draw < 4; ++draw) {
        SCOPED_TRACE(draw);
        glClear(GL_COLOR_BUFFER_BIT);
        drawSprites(empty.get());
        for (int f = 0; f < 3; ++f) EXPECT_EQ(background(150 + 300 * f, 300), f != draw % 3) << "frame " << f;
        for (Sprite* frame : frames) EXPECT_EQ(frame->step, draw + 1);
    }
    EXPECT_EQ(sequence->currentFrame, frames[1]);
    EXPECT_EQ(sequence->step + empty->step, 0);
    empty->next = nullptr;
}

using CameraMoves = GlTest;

// Turns multiply into the projection; shifts go through it and land in the model-view.
TEST_F(CameraMoves, EachMoveAlongItsOwnAxis) {
    const std::tuple<void (*)(float), GLenum, int, float> moves[] = {
        {pitchDown, GL_PROJECTION, 6, 1}, {pitchUp, GL_PROJECTION, 6, -1}, {rollLeft, GL_PROJECTION, 1, 1},
        {rollRight, GL_PROJECTION, 1, -1}, {jogRight, GL_MODELVIEW, 12, -90}, {jogLeft, GL_MODELVIEW, 12, 90},
        {jogUp, GL_MODELVIEW, 13, -90}, {jogDown, GL_MODELVIEW, 13, 90}, {forward, GL_MODELVIEW, 14, -90},
        {backward, GL_MODELVIEW, 14, 90}};
    for (const auto& [move, mode, index, value] : moves) {
        SCOPED_TRACE(index);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        move(90);  // degrees or units
        EXPECT_EQ(glInt(GL_MATRIX_MODE), GLint(mode));
        float m[16];
        glGetFloatv(mode == GL_PROJECTION ? GL_PROJECTION_MATRIX : GL_MODELVIEW_MATRIX, m);
        EXPECT_NEAR(m[index], value, 1e-5);
    }
    // With the projection turned 90 about z, a shift right is undone as +10 in y.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glRotatef(90, 0, 0, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    jogRight(10);
    EXPECT_NEAR(modelView(12), 0.0f, 1e-5);
    EXPECT_NEAR(modelView(13), 10.0f, 1e-5);
}

using VertexCollision = GlTest;

TEST_F(VertexCollision, FirstVertexInsideAfterTheAnimation) {
    SpritePtr a = newSprite(), b = newSprite();
    a->vertices = {0, 0, 0, 3, 3, 3, 2, 2, 2};
    a->vertexCount = 3;
    calcBoundingBox(a.get(), 1);
    b->boxMin = {1.5f, 1.5f, 1.5f, 1};
    b->boxMax = {10, 10, 10, 1};
    float hit[3] = {0, 0, 0}, untouched[3] = {-1, -1, -1};
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[0], 3.0f);  // (3, 3, 3) comes before (2, 2, 2)
    a->moving = 1;
    a->velocity = {-2, 0, 0, 0};
    a->step = 3;  // x -6, -3, -4: none inside
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 0);
    a->step = -2;  // x 4, 7, 6: (4, 0, 0) stays out, (7, 3, 3) is the first inside
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_FLOAT_EQ(hit[0], 7.0f);
    EXPECT_FLOAT_EQ(hit[1], 3.0f);
    EXPECT_EQ(glInt(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_FLOAT_EQ(modelView(12), 0.0f);

    // Boxes apart: no vertex looked at, the hit point and the matrix mode left alone.
    b->boxMin = {50, 50, 50, 1};
    b->boxMax = {60, 60, 60, 1};
    glMatrixMode(GL_PROJECTION);
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), untouched), 0);
    EXPECT_EQ(glInt(GL_MATRIX_MODE), GL_PROJECTION);
    EXPECT_FLOAT_EQ(untouched[0], -1.0f);
}
