// A hidden 1024 x 768 window with a legacy OpenGL context for each test, one unit a pixel with
// the origin at the lower left, colour material on, a grey background. Run under Xvfb.
#pragma once

#include <GL/gl.h>
#include <SDL.h>
#include <gtest/gtest.h>

#include <memory>

class GlTest : public testing::Test {
protected:
    void SetUp() override {
        // The video subsystem stays up for the whole program: closing the display would unload
        // the driver, and what it keeps would then show up as leaks without a library name.
        if (SDL_WasInit(SDL_INIT_VIDEO) == 0) {
            ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0) << SDL_GetError();
        }
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
        window_.reset(SDL_CreateWindow("tolvar test", 0, 0, 1024, 768, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN));
        if (window_) context_.reset(SDL_GL_CreateContext(window_.get()));
        ASSERT_TRUE(context_) << "no OpenGL context (run under xvfb-run): " << SDL_GetError();
        glViewport(0, 0, 1024, 768);
        glMatrixMode(GL_PROJECTION);
        glOrtho(0, 1024, 0, 768, 500.0, -500.0);
        glMatrixMode(GL_MODELVIEW);
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

    std::unique_ptr<SDL_Window, decltype(&SDL_DestroyWindow)> window_{nullptr, &SDL_DestroyWindow};
    std::unique_ptr<void, decltype(&SDL_GL_DeleteContext)> context_{nullptr, &SDL_GL_DeleteContext};
};
