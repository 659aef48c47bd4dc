// One 1024 x 768 window with a legacy (compatibility) OpenGL context, double-buffered with 8 bits a
// channel and a depth buffer, made current once for the whole test program (run under Xvfb).
// The window and SDL stay up to the end: shutting SDL down would unload the driver and leave its
// own allocations reported as leaks without a library name.
#pragma once

#include <SDL.h>

#include <memory>
#include <string>

namespace tolvar::test {

inline constexpr int kGlWindowWidth = 1024, kGlWindowHeight = 768;

// "" once the window is open and its context current; otherwise why there is none.
inline const std::string& glWindowFailure() {
    static std::unique_ptr<SDL_Window, void (*)(SDL_Window*)> window{nullptr, SDL_DestroyWindow};
    static std::unique_ptr<void, void (*)(SDL_GLContext)> context{nullptr, SDL_GL_DeleteContext};
    static const std::string failure = [] {
        if (SDL_Init(SDL_INIT_VIDEO) != 0) return std::string("no video: ") + SDL_GetError();
        for (auto [attribute, value] : {std::pair{SDL_GL_CONTEXT_PROFILE_MASK, int(SDL_GL_CONTEXT_PROFILE_COMPATIBILITY)},
                                        {SDL_GL_DOUBLEBUFFER, 1}, {SDL_GL_DEPTH_SIZE, 16}, {SDL_GL_RED_SIZE, 8},
                                        {SDL_GL_GREEN_SIZE, 8}, {SDL_GL_BLUE_SIZE, 8}, {SDL_GL_ALPHA_SIZE, 8}})
            SDL_GL_SetAttribute(attribute, value);
        window.reset(SDL_CreateWindow("Tolvar test", 0, 0, kGlWindowWidth, kGlWindowHeight,
                                      SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN));
        if (window) context.reset(SDL_GL_CreateContext(window.get()));
        return context ? std::string() : std::string("no OpenGL window (run under xvfb-run): ") + SDL_GetError();
    }();
    return failure;
}

}  // namespace tolvar::test
