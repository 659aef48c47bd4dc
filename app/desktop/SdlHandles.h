// Owning handles for an SDL window and its OpenGL context.
#pragma once

#include <SDL.h>

#include <memory>

namespace tolvar {

struct SdlWindowDeleter {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct SdlGlContextDeleter {
    void operator()(void* context) const { SDL_GL_DeleteContext(context); }
};
using SdlWindowPtr = std::unique_ptr<SDL_Window, SdlWindowDeleter>;
using SdlGlContextPtr = std::unique_ptr<void, SdlGlContextDeleter>;

}  // namespace tolvar
