// The rule engine as the shell and the headless runner see it: the game lifecycle (start,
// return to the main window, menu commands), the event tick and the input poll.
//
// The engine works on the global gameInfo. It reaches the desktop only through View and Host.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/Host.h"
#include "engine/View.h"
#include "platform/PropertyList.h"
#include "rules/ActionsMenu.h"
#include "rules/GameInfo.h"

namespace tolvar {

class Engine {
public:
    Engine(View& view, Host& host);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // startGame: discards the running game; with rules (currentRules) builds the records (binding
    // the "Actions" menu), shows the game window, sets up and draws the board, hides the main
    // window, and schedules the engine timers at the first start. Rules that cannot be played
    // (a board of 0 columns, ...) get an alert naming the rule and its value, and no game starts.
    void startGame(const Value* currentRules, ActionsMenu& menu);
    // returnToMain:
    void returnToMain();
    // checkMenuAction: with the chosen "Actions" item (0-based index into menu.items()).
    void checkMenuAction(const ActionsMenu& menu, int itemIndex);

    // processEvents: one tick of the event timer.
    void processEvents();
    // checkUserEvents: one poll of the game window's current event.
    void checkUserEvents();

    // performKeyEquivalent: of the game window: true when a running game binds the key-down
    // event's first character to a user event, so no menu shortcut fires for it.
    bool performKeyEquivalent(const CurrentEvent& event) const;

    int gameStarted() const;
    int gamePaused() const;

    // For the headless runner and the tests: the colour numbers of the running board
    // (nothing without one), and the cells of the last mouse gesture (nullptr for none).
    void printBoardColors() const;
    const BoardPiece* downPiece() const;
    const BoardPiece* upPiece() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace tolvar
