// A game-window-sized OpenGL context for drawing tests: one shown SDL window of 1024 x 768 with a
// legacy context whose back buffer is drawn and read, the game window's fixed state, and pixel
// probes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "engine/Host.h"
#include "presentation/GameView.h"

namespace tolvar::test {

// Makes the window and context on first use (and glutInit); false with a message when there is
// no display.
bool openTestWindow(std::string& why);

struct Rgb {
    int r = 0, g = 0, b = 0;
};
Rgb pixelAt(int x, int y);
// Counts the pixels of the rectangle [x0, x1] x [y0, y1] (window coordinates, origin lower left)
// for which test holds.
int countPixels(int x0, int y0, int x1, int y1, const std::function<bool(const Rgb&)>& test);
bool near(const Rgb& p, int r, int g, int b, int tolerance);
// Writes the window's content to a PNG file (top row first).
bool saveWindowPicture(const std::string& path);

// A host that only keeps count of what the drawing asked of it.
class RecordingHost : public Host {
public:
    CurrentEvent currentEvent() override { return {}; }
    void runAlert(const std::string&, const std::string&, const std::string&) override { ++alerts; }
    bool scoresTimerRunning() const override { return timerRunning; }
    void startScoresTimer(const Value&) override {
        timerRunning = true;
        ++timerStarts;
    }
    void stopScoresTimer() override { timerRunning = false; }
    void resetProjection() override {}
    void showGameWindow() override {}
    void hideGameWindow() override {}
    void showMainWindow() override {}
    void hideMainWindow() override {}
    void scheduleEngineTimers() override {}
    std::string dataFolder() override { return "."; }

    bool timerRunning = false;
    int timerStarts = 0;
    int alerts = 0;
};

// The window callbacks of a GameView, counting the flushes.
struct CountingWindow {
    int flushes = 0;
    int displays = 0;
    double mouseX = 0.0, mouseY = 0.0;
    GameView::Window callbacks();
};

}  // namespace tolvar::test
