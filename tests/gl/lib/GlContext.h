// A real legacy OpenGL context for tests: a hidden 1024 x 768 SDL window with a
// compatibility-profile context, the game's orthographic projection, and pixel read-back.
// Run under Xvfb (xvfb-run -a -s "-screen 0 1280x1024x24").
#pragma once

#include <SDL.h>
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>

class GlContext {
public:
    static constexpr int kWidth = 1024;
    static constexpr int kHeight = 768;

    GlContext() {
        if (SDL_WasInit(SDL_INIT_VIDEO) == 0 && SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
            fprintf(stderr, "no video: %s\n", SDL_GetError());
            return;
        }
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
        SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
        SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 16);
        window_ = SDL_CreateWindow("tolvar test", 0, 0, kWidth, kHeight, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        if (window_ == nullptr) {
            fprintf(stderr, "no window: %s\n", SDL_GetError());
            return;
        }
        context_ = SDL_GL_CreateContext(window_);
        if (context_ == nullptr) {
            fprintf(stderr, "no context: %s\n", SDL_GetError());
            return;
        }
        SDL_GL_MakeCurrent(window_, context_);
        glViewport(0, 0, kWidth, kHeight);
        glReadBuffer(GL_BACK);
        glDrawBuffer(GL_BACK);
        resetProjection();
        clear();
    }
    ~GlContext() {
        if (context_ != nullptr) SDL_GL_DeleteContext(context_);
        if (window_ != nullptr) SDL_DestroyWindow(window_);
        // The video subsystem stays up for the whole test program: closing the display would
        // unload the OpenGL driver, and what the driver keeps would then show up as leaks that
        // no longer name their library.
    }
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    bool ok() const { return context_ != nullptr; }

    // One unit a pixel, origin at the lower left, near plane at z = -500 and far at z = 500.
    static void resetProjection() {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, kWidth, 0, kHeight, 500.0, -500.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }

    // The game window's lights and material: two directional lights, colour material,
    // normalised normals, back faces culled, depth tested.
    static void gameLights() {
        const GLfloat ambient[4] = {0.15f, 0.15f, 0.15f, 1.0f};
        const GLfloat diffuse[4] = {0.75f, 0.75f, 0.75f, 1.0f};
        const GLfloat light0[4] = {kWidth / 4.0f, kHeight / 4.0f, 100.0f, 0.0f};
        const GLfloat light1[4] = {kWidth / 2.0f, kHeight / 2.0f, 70.0f, 0.0f};
        const GLfloat white[4] = {1.0f, 1.0f, 1.0f, 1.0f};
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
        glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
        glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
        glLightfv(GL_LIGHT0, GL_POSITION, light0);
        glLightfv(GL_LIGHT1, GL_AMBIENT, ambient);
        glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse);
        glLightfv(GL_LIGHT1, GL_POSITION, light1);
        glPopMatrix();
        glMaterialfv(GL_FRONT, GL_DIFFUSE, white);
        glMaterialf(GL_FRONT, GL_SHININESS, 128.0f);
        glEnable(GL_LIGHT0);
        glEnable(GL_LIGHT1);
        glEnable(GL_LIGHTING);
        glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
        glEnable(GL_COLOR_MATERIAL);
        glColorMaterial(GL_FRONT, GL_AMBIENT_AND_DIFFUSE);
        glEnable(GL_NORMALIZE);
        glEnable(GL_CULL_FACE);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    }

    static void clear() {
        glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
        glClearDepth(1.0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    // The colour at window pixel (x, y), y from the bottom.
    static std::array<std::uint8_t, 3> pixel(int x, int y) {
        glFinish();
        std::array<std::uint8_t, 4> rgba{};
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        return {rgba[0], rgba[1], rgba[2]};
    }

    static bool isBackground(const std::array<std::uint8_t, 3>& c) {
        return c[0] >= 126 && c[0] <= 129 && c[1] >= 126 && c[1] <= 129 && c[2] >= 126 && c[2] <= 129;
    }

    SDL_Window* window() const { return window_; }

private:
    SDL_Window* window_ = nullptr;
    SDL_GLContext context_ = nullptr;
};

// Each test gets a fresh context; without one (no display) the test fails.
class GlTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(gl_.ok()) << "no OpenGL context (run under xvfb-run)"; }
    GlContext gl_;
};
