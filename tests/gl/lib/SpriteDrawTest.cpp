// Sprite drawing, camera moves and vertex collisions on a real legacy OpenGL context (under Xvfb):
// the shared 1024 x 768 window, one unit a pixel from the lower left, colour material, grey ground.
#include <GL/gl.h>
#include <SDL.h>
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "3DSpriteLib.h"
#include "GlWindow.h"

namespace {

class SpriteDrawing : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(tolvar::test::glWindowFailure(), "");
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, 1024, 0, 768, 500.0, -500.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glEnable(GL_COLOR_MATERIAL);
        glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    // The red, green or blue (channel 0, 1, 2) of window pixel (x, y), y from the bottom.
    static int pixel(int x, int y, int channel) {
        GLubyte rgba[4] = {0, 0, 0, 0};
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return rgba[channel];
    }
    static bool background(int x, int y) {
        for (int c = 0; c < 3; ++c)
            if (pixel(x, y, c) < 126 || pixel(x, y, c) > 129) return false;
        return true;
    }
};

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
using V = std::vector<float>;
GLint glInt(GLenum name) { GLint value = 0; glGetIntegerv(name, &value); return value; }

}  // namespace

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
    EXPECT_EQ(std::pair(parent->step, parent->children->step), std::pair(2, 1));
    EXPECT_EQ(glInt(GL_MODELVIEW_STACK_DEPTH), 1);
}

TEST_F(SpriteDrawing, ReverseCountsDownAndPositionAndBoxFollowTheAnimation) {
    SpritePtr s = square(500, 400, 20);
    s->moving = s->reverse = 1;
    s->velocity = {10, 5, 0, 0};
    for (int draw = 0; draw < 3; ++draw) {
        SCOPED_TRACE(draw);
        EXPECT_EQ(s->step, -draw);
        drawSprites(s.get());
        const float dx = -10.0f * draw, dy = -5.0f * draw;  // read back from where it was drawn
        EXPECT_EQ((V{s->position.x, s->position.y, s->boxMin.x, s->boxMax.y}), (V{500 + dx, 400 + dy, 480 + dx, 420 + dy}));
    }
    EXPECT_FALSE(background(465, 375));  // drawn last at step -2: 20 left of and 10 below home

    // Drift goes first, then the spin: (100, 0) moved by (0, 1000) and turned 90 about z.
    SpritePtr spun = square(100, 0, 10);
    spun->spinning = spun->drifting = spun->step = 1;
    spun->spinAxis[2] = 1.0f;
    spun->spinStep = 90.0f;
    spun->drift = {0, 1000, 0, 0};
    drawSprites(spun.get());
    EXPECT_NEAR(spun->position.x, 0.0f, 1e-3);
    EXPECT_NEAR(spun->position.y, 1100.0f, 1e-3);
    SpritePtr empty = newSprite();  // a sequence without a frame to show is passed over
    empty->isSequence = 1;
    drawSprites(empty.get());
    EXPECT_EQ(empty->step, 0);
}

// A shift goes through the projection and lands in the model-view: with the projection turned 90
// about z, a shift right is undone as +10 in y.
TEST_F(SpriteDrawing, CameraShiftsGoThroughTheProjection) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glRotatef(90, 0, 0, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    jogRight(10);
    EXPECT_NEAR(modelView(12), 0.0f, 1e-5);
    EXPECT_NEAR(modelView(13), 10.0f, 1e-5);
}

TEST_F(SpriteDrawing, VertexCollisionFindsTheFirstVertexInsideAfterTheAnimation) {
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
    a->step = -2;  // x 4, 7, 6: (4, 0, 0) stays out, (7, 3, 3) is the first inside
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), hit), 1);
    EXPECT_EQ(V(hit, hit + 3), (V{7, 3, 3}));
    EXPECT_EQ(glInt(GL_MODELVIEW_STACK_DEPTH), 1);

    // Boxes apart: no vertex looked at, the hit point and the matrix mode left alone.
    b->boxMin = {50, 50, 50, 1};
    b->boxMax = {60, 60, 60, 1};
    glMatrixMode(GL_PROJECTION);
    EXPECT_EQ(vertexInBoxCollision(a.get(), b.get(), untouched), 0);
    EXPECT_EQ(glInt(GL_MATRIX_MODE), GL_PROJECTION);
    EXPECT_FLOAT_EQ(untouched[0], -1.0f);
}
