// render-spikes OUT.png: draws the piece model lit as in the game window, large and in a row
// of piece colours, and saves the window's pixels as a PNG.
#include <GL/gl.h>
#include <SDL_image.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "SpikesScene.h"
#include "core/CommandLine.h"

namespace {

constexpr const char* kUsage = "usage: render-spikes OUT.png\n";
constexpr const char* kHelp =
    "usage: render-spikes OUT.png\n"
    "Draws the piece model lit as in the game window, large and in a row of piece colours, and\n"
    "saves the picture as the PNG file OUT.png (needs a display: run it under Xvfb).\n"
    "\n"
    "  --help     show this help and exit\n"
    "  --version  show the version and exit\n";

}  // namespace

int main(int argc, char** argv) {
    if (tolvar::answerHelpOrVersion(argc, argv, "render-spikes", kHelp)) return 0;
    if (argc != 2) {
        fprintf(stderr, "%s", kUsage);
        return 2;
    }
    SpikesView view;
    if (!view.ok()) return 1;
    SpritePtr model = loadSpikes();
    if (!model) return 1;

    drawSpikesPiece(model.get(), {300, 430, 420, {0.85f, 0.85f, 0.9f}});
    drawSpikesPiece(model.get(), {760, 560, 260, {0.9f, 0.25f, 0.2f}, 25.0f, 35.0f});
    const float colours[6][3] = {{0.9f, 0.2f, 0.2f}, {0.2f, 0.8f, 0.2f}, {0.25f, 0.35f, 0.95f},
                                 {0.95f, 0.85f, 0.2f}, {0.85f, 0.3f, 0.85f}, {0.2f, 0.85f, 0.85f}};
    for (int i = 0; i < 6; ++i) {
        const float* c = colours[i];
        drawSpikesPiece(model.get(), {140.0f + i * 150.0f, 110, 92, {c[0], c[1], c[2]}});
    }
    glFinish();

    const int w = SpikesView::kWidth, h = SpikesView::kHeight;
    std::vector<unsigned char> pixels(std::size_t(w) * h * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    std::vector<unsigned char> flipped(pixels.size());
    for (int y = 0; y < h; ++y)
        std::copy_n(&pixels[std::size_t(h - 1 - y) * w * 3], w * 3, &flipped[std::size_t(y) * w * 3]);
    const std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)> surface(
        SDL_CreateRGBSurfaceWithFormatFrom(flipped.data(), w, h, 24, w * 3, SDL_PIXELFORMAT_RGB24),
        &SDL_FreeSurface);
    if (!surface) return 1;
    const int saved = IMG_SavePNG(surface.get(), argv[1]);
    if (saved != 0) {
        fprintf(stderr, "%s: %s\n", argv[1], IMG_GetError());
        return 1;
    }
    printf("wrote %s\n", argv[1]);
    return 0;
}
