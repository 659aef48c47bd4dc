// The game window and its OpenGL context, made for real (run under Xvfb): a title bar, the pixel format the
// drawing relies on, a flushed frame seen from the lower left and shown again as it was, and the mouse.
#include <gtest/gtest.h>

#include <SDL.h>
#include <SDL_opengl.h>

#include <array>

#include "desktop/MyWindow.h"

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
    // SDL stays initialised: quitting would unload the OpenGL driver before the leak checker runs.
    static void SetUpTestSuite() { ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError(); }
    void SetUp() override {
        ASSERT_TRUE(window.valid()) << SDL_GetError();
        window.orderFront();
        window.makeCurrentContext();
    }
    MyWindow window{"Tolvar", 1024, 768};
};

TEST_F(GameWindow, IsTitledResizableAndSingleBufferedWithALegacyContext) {
    EXPECT_EQ(SDL_GetWindowFlags(window.sdlWindow()) & (SDL_WINDOW_RESIZABLE | SDL_WINDOW_BORDERLESS),
              static_cast<Uint32>(SDL_WINDOW_RESIZABLE))
        << "resizable, with a title bar";
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
    GLint samples = -1;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 0) << "no multisample buffers";

    // A pixel painted at (100, 50) shows 100 pixels from the left and 50 from the bottom once flushed.
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(100, 50, 1, 1);
    glClearColor(1.0f, 1.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    window.flushBuffer();
    const auto hit = frontPixel(100, 50);
    EXPECT_GT(hit[0], 200);
    EXPECT_GT(hit[1], 200);
    EXPECT_LT(hit[2], 50);
    EXPECT_LT(frontPixel(100, 60)[0], 50);

    // Showing the last frame again keeps it, and leaves the state as it found it.
    glMatrixMode(GL_MODELVIEW);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_SCISSOR_TEST);
    window.redisplay();
    EXPECT_EQ(frontPixel(100, 50), hit);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
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
