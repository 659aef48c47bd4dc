// The game window and its OpenGL context, made for real (run under Xvfb): the content size, no
// resizing, the pixel format the drawing relies on, and a point drawn where the projection says.
#include <gtest/gtest.h>

#include <SDL.h>
#include <SDL_opengl.h>

#include <array>

#include "MyWindow.h"

namespace tolvar {
namespace {

std::array<GLubyte, 4> frontPixel(int x, int y) {
    std::array<GLubyte, 4> p{9, 9, 9, 9};
    glReadBuffer(GL_FRONT);
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, p.data());
    return p;
}

class GameWindow : public ::testing::Test {
protected:
    // SDL stays initialised: shutting it down would unload the OpenGL driver before the leak
    // checker runs.
    static void SetUpTestSuite() { ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError(); }
    void SetUp() override {
        ASSERT_TRUE(window.valid()) << SDL_GetError();
        window.orderFront();
        window.makeCurrentContext();
    }
    MyWindow window{"Tolvar", 1024, 768};
};

TEST_F(GameWindow, HasATitledFixedContentAreaAndASingleBufferedLegacyContext) {
    int w = 0, h = 0;
    SDL_GetWindowSize(window.sdlWindow(), &w, &h);
    EXPECT_EQ(w, 1024);
    EXPECT_EQ(h, 768);
    const Uint32 flags = SDL_GetWindowFlags(window.sdlWindow());
    EXPECT_EQ(flags & SDL_WINDOW_RESIZABLE, 0u);
    EXPECT_EQ(flags & SDL_WINDOW_BORDERLESS, 0u) << "the window has a title bar";
    EXPECT_STREQ(SDL_GetWindowTitle(window.sdlWindow()), "Tolvar");

    const auto attr = [](SDL_GLattr a) {
        int v = -1;
        SDL_GL_GetAttribute(a, &v);
        return v;
    };
    EXPECT_EQ(attr(SDL_GL_DOUBLEBUFFER), 0) << "single-buffered: a frame is shown by glFlush";
    EXPECT_GT(attr(SDL_GL_DEPTH_SIZE), 0);
    EXPECT_EQ(attr(SDL_GL_RED_SIZE) + attr(SDL_GL_GREEN_SIZE) + attr(SDL_GL_BLUE_SIZE), 24);
    EXPECT_EQ(attr(SDL_GL_ALPHA_SIZE), 8);
    EXPECT_NE(attr(SDL_GL_CONTEXT_PROFILE_MASK), SDL_GL_CONTEXT_PROFILE_CORE);
    EXPECT_TRUE(window.samples() == 4 || window.samples() == 0);
    RecordProperty("samples", window.samples());
    GLint samples = -1;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, window.samples()) << "the context has the samples that were asked for";

    // Legacy fixed-function state is there: matrix stacks, rectangle textures.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, 1024.0, 0.0, 768.0, 500.0, -500.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_TEXTURE_RECTANGLE_ARB);

    // A point drawn at (100, 50) lands 100 pixels from the left and 50 from the bottom.
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glColor3f(1.0f, 1.0f, 0.0f);
    glPointSize(3.0f);
    glBegin(GL_POINTS);
    glVertex3f(100.5f, 50.5f, -400.0f);
    glEnd();
    glFlush();
    window.flushBuffer();
    const auto hit = frontPixel(100, 50);
    EXPECT_GT(hit[0], 200);
    EXPECT_GT(hit[1], 200);
    EXPECT_LT(hit[2], 50);
    EXPECT_LT(frontPixel(100, 60)[0], 50);

    // Showing the last frame again keeps it, and leaves the state as it found it.
    window.redisplay();
    EXPECT_EQ(frontPixel(100, 50), hit);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));

    window.orderOut();
    EXPECT_FALSE(window.isVisible());
    window.orderFront();
    EXPECT_TRUE(window.isVisible());
}

TEST_F(GameWindow, MouseLocationIsInScreenCoordinatesFromTheLowerLeft) {
    SDL_Rect bounds{};
    ASSERT_EQ(SDL_GetDisplayBounds(0, &bounds), 0);
    SDL_WarpMouseGlobal(40, 30);
    SDL_PumpEvents();
    double x = -1, y = -1;
    window.mouseLocation(x, y);
    EXPECT_DOUBLE_EQ(x, 40.0);
    EXPECT_DOUBLE_EQ(y, static_cast<double>(bounds.h - 30));
}

}  // namespace
}  // namespace tolvar
