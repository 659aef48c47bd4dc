// A hidden 1024 x 768 window with a legacy OpenGL context for each test, one unit a pixel with
// the origin at the lower left, colour material on, a grey background. Run under Xvfb.
#pragma once

#include <GL/gl.h>
#include <SDL.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
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
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
        window_.reset(SDL_CreateWindow("tolvar test", 0, 0, 1024, 768, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN));
        if (window_) context_.reset(SDL_GL_CreateContext(window_.get()));
        ASSERT_TRUE(context_) << "no OpenGL context (run under xvfb-run): " << SDL_GetError();
        glViewport(0, 0, 1024, 768);
        glMatrixMode(GL_PROJECTION);
        glOrtho(0, 1024, 0, 768, 500.0, -500.0);
        glMatrixMode(GL_MODELVIEW);
        glEnable(GL_COLOR_MATERIAL);
        clear();
    }
    static void clear() {
        glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    static std::array<std::uint8_t, 4> pixel(int x, int y) {
        std::array<std::uint8_t, 4> rgba{};
        glFinish();
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        return rgba;
    }
    static bool background(int x, int y) {
        const auto c = pixel(x, y);
        return c[0] >= 126 && c[0] <= 129 && c[1] >= 126 && c[1] <= 129 && c[2] >= 126 && c[2] <= 129;
    }

    std::unique_ptr<SDL_Window, decltype(&SDL_DestroyWindow)> window_{nullptr, &SDL_DestroyWindow};
    std::unique_ptr<void, decltype(&SDL_GL_DeleteContext)> context_{nullptr, &SDL_GL_DeleteContext};
};
