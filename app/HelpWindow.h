// The help window (F1, Help menu): the chosen game's name, description and inputs read from its
// rules, and the program's own keys; or, from the Help menu, what Tolvar is and its version.
#pragma once

#include <string>

#include "ImGuiSurface.h"
#include "rules/GameHelp.h"

namespace tolvar {

class HelpWindow {
public:
    static constexpr int kWidth = 560;
    static constexpr int kHeight = 620;

    HelpWindow(const std::string& fontFile, float fontPixels);

    bool valid() const { return surface_.valid(); }
    ImGuiSurface& surface() { return surface_; }
    bool isOpen() const { return surface_.isVisible(); }

    // Shows the help of a game (an empty page: no game chosen), or the About page.
    void showGame(GameHelp help);
    void showAbout();
    void close() { surface_.hide(); }

    // One frame; false when the player closed the window with its button.
    bool draw();

private:
    void drawGame();
    void drawAbout();

    ImGuiSurface surface_;
    GameHelp help_;
    bool about_ = false;
};

}  // namespace tolvar
