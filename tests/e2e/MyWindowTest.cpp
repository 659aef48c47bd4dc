// The game window and its OpenGL context, made for real (run under Xvfb): a title bar, resizing with the
// picture scaled between bars, the pixel format the drawing relies on, a flushed frame seen from the lower left and shown again as it was.
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

// Waits for the X server to report the window's new size, as the program does before drawing.
void waitForSize(int width, int height) {
    for (int i = 0; i < 400; ++i) {
        SDL_Event e;
        while (SDL_PollEvent(&e))
            if (e.type == SDL_WINDOWEVENT && e.window.event == SDL_WINDOWEVENT_SIZE_CHANGED &&
                e.window.data1 == width && e.window.data2 == height)
                return;
        SDL_Delay(5);
    }
    FAIL() << "the window never became " << width << "x" << height;
}

TEST_F(GameWindow, DrawsThePictureScaledBetweenBars) {
    // window size -> where the picture lies (from the lower left)
    struct Case { int w, h, x, y, pw, ph; };
    for (const Case c : {Case{1024, 768, 0, 0, 1024, 768}, Case{700, 700, 0, 87, 700, 525}, Case{1200, 600, 200, 0, 800, 600},
                         Case{1000, 768, 0, 9, 1000, 750}}) {
        SCOPED_TRACE(c.w);
        if (c.w != 1024) {
            SDL_SetWindowSize(window.sdlWindow(), c.w, c.h);
            ASSERT_NO_FATAL_FAILURE(waitForSize(c.w, c.h));
        }
        window.takeNewSize();
        // The whole picture in yellow: glClear and drawing stop at the picture's edges.
        glClearColor(1.0f, 1.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        window.flushBuffer();
        EXPECT_GT(frontPixel(c.x, c.y)[0], 200) << "the picture's lower left";
        EXPECT_GT(frontPixel(c.x + c.pw - 1, c.y + c.ph - 1)[1], 200) << "its upper right";
        if (c.x > 0) {
            EXPECT_LT(frontPixel(c.x - 1, c.h / 2)[0], 50) << "the left bar";
        }
        if (c.y > 0) {
            EXPECT_LT(frontPixel(c.w / 2, c.y + c.ph)[0], 50) << "the top bar";
        }
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ((std::array<GLint, 4>{viewport[0], viewport[1], viewport[2], viewport[3]}),
                  (std::array<GLint, 4>{c.x, c.y, c.pw, c.ph}));
        const PictureFit fit = window.pictureFit();
        EXPECT_EQ(fit.width, c.pw);
    }
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
