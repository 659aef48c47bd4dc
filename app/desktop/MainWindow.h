// The main window: the game pop-up, the chosen game's description, Start and Return, and the
// menu bar with the game's "Actions". Drawn with Dear ImGui in a window of its own; what the
// player chooses comes back as commands, carried out once the game window's context is current
// again.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "desktop/BoardNumberDialog.h"
#include "desktop/GameOptions.h"
#include "desktop/ImGuiSurface.h"
#include "desktop/RulesWatch.h"
#include "desktop/TextPage.h"
#include "desktop/ProgramKeys.h"
#include "rules/ActionsMenu.h"
#include "rules/GameLibrary.h"

namespace tolvar {

struct ShellCommand {
    enum class Kind { SelectGame, StartGame, ReturnToMain, MenuAction, Quit, Program, ContinueGame,
                      PlayBoardNumber, CopyBoardNumber };
    Kind kind;
    std::string title;   // SelectGame
    int itemIndex = -1;  // MenuAction
    ProgramCommand command = ProgramCommand::None;  // Program: a "Game" or "Help" item
    std::uint32_t board = 0;                        // PlayBoardNumber: the chosen game on this board
};

class MainWindow {
public:
    static constexpr int kWidth = 640;
    static constexpr int kHeight = 540;

    MainWindow(const std::string& fontFile, float fontPixels);

    bool valid() const { return surface_.valid(); }
    ImGuiSurface& surface() { return surface_; }

    // One frame; returns what the player chose in it. Under the description stand what the
    // checker found in the chosen game, or why the rules file cannot be read; a game with errors
    // cannot be started.
    // Continue stands beside Start while a kept or saved game can go on (canContinue);
    // continueText says which game it goes on with, note why a saved game cannot be continued.
    // boardNumber: the number of the chosen game's board being played (0 for none), shown
    // beside its name ("Board 123456") and what Game > Copy Board Number copies. Under the
    // description stand the game's board choices (options).
    std::vector<ShellCommand> draw(const GameLibrary& library, const ActionsMenu& menu, const GameMenuState& game,
                                   bool gameRunning, const RulesWatch& rules, bool canContinue,
                                   const std::string& continueText, const std::string& note,
                                   std::uint32_t boardNumber, GameOptionsPanel& options);

    // An alert over the window, a modal panel with the message and one button labelled button;
    // Return, Space or Escape answer it too. Alerts that come while one is up wait their turn.
    void alert(const std::string& message, const std::string& button) { alerts_.emplace_back(message, button); }
    bool alertShown() const { return !alerts_.empty(); }

private:
    void drawAlert();
    // What the checker found in the file and in the chosen game, as lines of the description's page.
    static void addFindings(std::vector<Paragraph>& page, const GameLibrary& library, const RulesWatch& rules);

    ImGuiSurface surface_;
    BoardNumberDialog boardNumberDialog_;
    TextPage description_;  // the description, the checker's findings and the note
    std::deque<std::pair<std::string, std::string>> alerts_;  // message and button, the first one up
};

// The "Actions" menu as a pop-up at the mouse, opened with the right button in the game window.
class ActionsPopup {
public:
    static constexpr int kWidth = 260;
    static constexpr int kPadding = 6;
    static constexpr int kRowHeight = 30;
    static constexpr int kSeparatorHeight = 9;
    static constexpr int kGameItemCount = static_cast<int>(std::tuple_size_v<std::remove_cvref_t<decltype(gameMenuItems())>>);

    // The "Actions" items a rule binds (their indexes): the only ones listed, in both menus.
    static std::vector<int> boundItems(const ActionsMenu& menu);
    // The bound "Actions" items and a separator (none when no item is bound), the "Game" items, a
    // separator, then "Return to Main Window".
    static int heightFor(const ActionsMenu& menu);

    struct Choice {
        enum class Kind { None, Action, Game, ReturnToMain };
        Kind kind = Kind::None;
        int actionIndex = -1;                           // Action
        ProgramCommand command = ProgramCommand::None;  // Game
    };

    ActionsPopup(const std::string& fontFile, float fontPixels);

    bool valid() const { return surface_.valid(); }
    ImGuiSurface& surface() { return surface_; }
    // Shows the menu of menu's bound items with its top left corner at the screen point (x, y).
    void openAt(int x, int y, const ActionsMenu& menu);
    // A point of the menu's window (its pixels from the top left) inside it.
    bool contains(int x, int y) const;
    void close();
    bool isOpen() const { return surface_.isVisible(); }

    // One frame; returns what was chosen in it.
    Choice draw(const ActionsMenu& menu, const GameMenuState& game);

private:
    ImGuiSurface surface_;
};

}  // namespace tolvar
