// A 1024 x 768 window in the game window's OpenGL state, drawn into and read back from its back
// buffer; pixel probes; stand-ins for the host and the window. Shared with the drawing benchmark.
#pragma once

#include <functional>
#include <string>

#include "engine/StandInShell.h"
#include "presentation/GameView.h"

namespace tolvar::test {

bool openTestWindow(std::string& why);  // false, with the reason, when there is no display

struct Rgb {
    int r = 0, g = 0, b = 0;
};
Rgb pixelAt(int x, int y);  // origin lower left
int countPixels(int x0, int y0, int x1, int y1, const std::function<bool(const Rgb&)>& test);
bool near(const Rgb& p, int r, int g, int b, int tolerance);
bool saveWindowPicture(const std::string& path);  // PNG, top row first

struct CountingWindow {
    int flushes = 0, displays = 0;
    double mouseX = 0.0, mouseY = 0.0;
    GameView::Window callbacks();
};

}  // namespace tolvar::test
