// Owning handles for an SDL window, its OpenGL context or its renderer.
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
struct SdlRendererDeleter {
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
};
using SdlWindowPtr = std::unique_ptr<SDL_Window, SdlWindowDeleter>;
using SdlGlContextPtr = std::unique_ptr<void, SdlGlContextDeleter>;
using SdlRendererPtr = std::unique_ptr<SDL_Renderer, SdlRendererDeleter>;

}  // namespace tolvar
