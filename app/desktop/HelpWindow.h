// The help window (F1, Help menu): the chosen game's name, description and inputs read from its
// rules, and the program's own keys; or, from the Help menu, what Tolvar is and its version, or
// where the rules author's page is when it could not be opened.
#pragma once

#include <string>

#include "desktop/ImGuiSurface.h"
#include "desktop/TextPage.h"
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
    // Shows why the rules author's page did not open (problem) and where it is (path; where it
    // would be installed when it is nowhere).
    void showWritingGames(std::string problem, std::string path);
    void close() { surface_.hide(); }

    // One frame; false when the player closed the window with its button.
    bool draw();

private:
    void drawGame();
    void drawAbout();
    void drawWritingGames();
    void showPage(const char* title);

    enum class Page { Game, About, WritingGames };
    ImGuiSurface surface_;
    GameHelp help_;
    std::string problem_, pagePath_;
    Page page_ = Page::Game;
    TextPage description_;
};

}  // namespace tolvar
