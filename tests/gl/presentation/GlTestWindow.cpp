#include "GlTestWindow.h"
#include "GlWindow.h"

#include <GL/gl.h>
#include <SDL.h>
#include <SDL_image.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace tolvar::test {
namespace {

// The shared window, drawn into and read back from its back buffer (no other window can cover
// it), in the game window's OpenGL state.
std::string openedWindow() {
    std::string failure = glWindowFailure();
    if (!failure.empty()) return failure;
    glDrawBuffer(GL_BACK);
    glReadBuffer(GL_BACK);
    for (int i = 0; i < 10; ++i) {  // let the window be mapped
        for (SDL_Event event; SDL_PollEvent(&event);) {
        }
        SDL_Delay(10);
    }
    StandInHost host;
    GameView(host, GameView::Window{}).initWindowState();
    return failure;
}

void readPixels(int x, int y, int w, int h, void* into) {
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, w, h, GL_RGBA, GL_UNSIGNED_BYTE, into);
}

}  // namespace

bool openTestWindow(std::string& why) {
    static const std::string failure = openedWindow();
    why = failure;
    return why.empty();
}

Rgb pixelAt(int x, int y) {
    unsigned char p[4] = {};
    readPixels(x, y, 1, 1, p);
    return Rgb{p[0], p[1], p[2]};
}

int countPixels(int x0, int y0, int x1, int y1, const std::function<bool(const Rgb&)>& test) {
    if (x1 < x0 || y1 < y0) return 0;
    std::vector<unsigned char> data(static_cast<std::size_t>(x1 - x0 + 1) * (y1 - y0 + 1) * 4);
    readPixels(x0, y0, x1 - x0 + 1, y1 - y0 + 1, data.data());
    int count = 0;
    for (std::size_t i = 0; i < data.size(); i += 4) count += test(Rgb{data[i], data[i + 1], data[i + 2]}) ? 1 : 0;
    return count;
}

bool near(const Rgb& p, int r, int g, int b, int tolerance) {
    return std::abs(p.r - r) <= tolerance && std::abs(p.g - g) <= tolerance && std::abs(p.b - b) <= tolerance;
}

bool saveWindowPicture(const std::string& path) {
    std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> picture(
        SDL_CreateRGBSurfaceWithFormat(0, 1024, 768, 32, SDL_PIXELFORMAT_RGBA32), SDL_FreeSurface);
    if (!picture) return false;
    for (int y = 0; y < 768; ++y)  // OpenGL's rows run bottom up
        readPixels(0, 767 - y, 1024, 1, static_cast<unsigned char*>(picture->pixels) + y * picture->pitch);
    return IMG_SavePNG(picture.get(), path.c_str()) == 0;
}

GameView::Window CountingWindow::callbacks() {
    GameView::Window window;
    window.flushBuffer = [this] { ++flushes; };
    window.mouseLocation = [this](double& x, double& y) { x = mouseX, y = mouseY; };
    window.display = [this] { ++displays; };
    return window;
}

}  // namespace tolvar::test
