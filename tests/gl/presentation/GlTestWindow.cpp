#include "GlTestWindow.h"

#include <GL/freeglut.h>
#include <GL/gl.h>
#include <SDL.h>
#include <SDL_image.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace tolvar::test {
namespace {

struct TestWindow {
    SDL_Window* window = nullptr;
    SDL_GLContext context = nullptr;
    std::string failure;

    TestWindow() {
        if (SDL_Init(SDL_INIT_VIDEO) != 0) {
            failure = std::string("SDL_Init: ") + SDL_GetError();
            return;
        }
        static char name[] = "presentation_gl_tests";
        static char* argv[] = {name, nullptr};
        int argc = 1;
        glutInit(&argc, argv);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
        // A back buffer, unlike the game window: no other window can cover it while tests run.
        SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
        SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 16);
        for (SDL_GLattr a : {SDL_GL_RED_SIZE, SDL_GL_GREEN_SIZE, SDL_GL_BLUE_SIZE, SDL_GL_ALPHA_SIZE})
            SDL_GL_SetAttribute(a, 8);
        window = SDL_CreateWindow("Tolvar drawing test", 0, 0, 1024, 768, SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN);
        if (window) context = SDL_GL_CreateContext(window);
        if (!context) {
            failure = std::string("no window or context: ") + SDL_GetError();
            return;
        }
        SDL_GL_MakeCurrent(window, context);
        glDrawBuffer(GL_BACK);
        glReadBuffer(GL_BACK);
        for (int i = 0; i < 10; ++i) {  // let the window be mapped
            SDL_Event event;
            while (SDL_PollEvent(&event)) {
            }
            SDL_Delay(10);
        }
        RecordingHost host;
        GameView(host, GameView::Window{}).initWindowState();
    }
    // SDL is not shut down: that would unload the OpenGL library and leave its own allocations
    // reported as leaks from an unknown place.
    ~TestWindow() {
        if (context) SDL_GL_DeleteContext(context);
        if (window) SDL_DestroyWindow(window);
    }
};

std::vector<unsigned char> readPixels(int x, int y, int w, int h) {
    std::vector<unsigned char> data(static_cast<std::size_t>(w) * h * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, w, h, GL_RGBA, GL_UNSIGNED_BYTE, data.data());
    return data;
}

}  // namespace

bool openTestWindow(std::string& why) {
    static TestWindow instance;
    why = instance.failure;
    return why.empty();
}

Rgb pixelAt(int x, int y) {
    const auto p = readPixels(x, y, 1, 1);
    return Rgb{p[0], p[1], p[2]};
}

int countPixels(int x0, int y0, int x1, int y1, const std::function<bool(const Rgb&)>& test) {
    if (x1 < x0 || y1 < y0) return 0;
    const auto data = readPixels(x0, y0, x1 - x0 + 1, y1 - y0 + 1);
    int count = 0;
    for (std::size_t i = 0; i < data.size(); i += 4) count += test(Rgb{data[i], data[i + 1], data[i + 2]}) ? 1 : 0;
    return count;
}

bool near(const Rgb& p, int r, int g, int b, int tolerance) {
    return std::abs(p.r - r) <= tolerance && std::abs(p.g - g) <= tolerance && std::abs(p.b - b) <= tolerance;
}

bool saveWindowPicture(const std::string& path) {
    constexpr int w = 1024, h = 768;
    const auto data = readPixels(0, 0, w, h);
    std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> surface(
        SDL_CreateRGBSurfaceWithFormat(0, w, h, 32, SDL_PIXELFORMAT_RGBA32), SDL_FreeSurface);
    if (!surface) return false;
    for (int y = 0; y < h; ++y)  // OpenGL's rows run bottom up
        std::memcpy(static_cast<unsigned char*>(surface->pixels) + static_cast<std::size_t>(y) * surface->pitch,
                    data.data() + static_cast<std::size_t>(h - 1 - y) * w * 4, static_cast<std::size_t>(w) * 4);
    return IMG_SavePNG(surface.get(), path.c_str()) == 0;
}

GameView::Window CountingWindow::callbacks() {
    GameView::Window window;
    window.flushBuffer = [this] { ++flushes; };
    window.mouseLocation = [this](double& x, double& y) { x = mouseX, y = mouseY; };
    window.display = [this] { ++displays; };
    return window;
}

}  // namespace tolvar::test
