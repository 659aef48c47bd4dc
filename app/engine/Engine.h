// The rule engine as the shell and the headless runner see it: the game lifecycle (start,
// return to the main window, menu commands), the event tick and the input poll.
//
// Each engine owns its game (gameInfo), random sequence and diagnostic output, so engines side by
// side never meet. It reaches the desktop only through View and Host.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/Board.h"
#include "engine/Completion.h"
#include "engine/GameSnapshot.h"
#include "engine/Host.h"
#include "engine/MovePreview.h"
#include "engine/RandomSequence.h"
#include "engine/View.h"
#include "core/PropertyList.h"
#include "rules/ActionsMenu.h"
#include "rules/GameInfo.h"
#include "rules/GameOptions.h"
#include "rules/GameOutput.h"

namespace tolvar {

// Why the rules of game cannot be played (a board of 0 columns, ...), naming the rule and its
// value, or an empty text when they can. A start refuses such rules with this reason.
std::string unplayableReason(const GameInfo& game);

class Engine {
public:
    // The diagnostic lines go to out (standard output unless told otherwise).
    Engine(View& view, Host& host, const GameOutput& out = GameOutput());
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // startGame: discards the running game; with rules (currentRules) builds the records (binding
    // the "Actions" menu), shows the game window, sets up and draws the board, hides the main
    // window, and schedules the engine timers at the first start. Rules that cannot be played
    // (a board of 0 columns, ...) get an alert naming the rule and its value, and no game starts.
    // options replace the rules' board size and colours for this game (the rules are not
    // changed); its saved game keeps them, and its best scores go to the table they name. The
    // board dealt is board number board, or one picked (see BoardNumbers.h) when not given.
    void startGame(const Value* currentRules, ActionsMenu& menu, const GameOptions& options = {},
                   std::optional<std::uint32_t> board = std::nullopt);
    // returnToMain:
    void returnToMain();
    // checkMenuAction: with the chosen "Actions" item (0-based index into menu.items()).
    void checkMenuAction(const ActionsMenu& menu, int itemIndex);

    // processEvents: one tick of the event timer. It runs to its end at once; what it shows on
    // the way (flashes, falls, alerts) is the View's and the Host's to play afterwards.
    void processEvents();
    // checkUserEvents: one poll of the game window's current event (after every tick).
    void checkUserEvents();
    // takeInput: the one door for the player's input. A key-down goes to the keyboard cursor
    // first (see cursorKey), which keeps a cursor key; any other event becomes the current event
    // and the poll runs, which acts on it unless it repeats the event seen last (a held key is
    // one key-down).
    void takeInput(const CurrentEvent& event);

    // performKeyEquivalent: of the game window: true when a running game binds the key-down
    // event's first character to a user event, so no menu shortcut fires for it.
    bool performKeyEquivalent(const CurrentEvent& event) const;

    // newGame: a new board of the running game (score 0, multiplier 1), as Escape deals it;
    // also from the score screen. Forgets the moves and hides the cursor.
    void newGame();

    // Board numbers (see BoardNumbers.h). boardNumber: the running board's, 0 for none (or a
    // board saved before boards had numbers). seedBoardPicks: the numbers of boards dealt
    // without one follow from seed, so a run seeded alike deals alike.
    std::uint32_t boardNumber() const;
    void seedBoardPicks(std::uint32_t seed);

    // Undo and redo of the player's moves on the running board. A move is what the player's
    // inputs changed: a click or a drag counts once (mouse-down and mouse-up), a key or an
    // "Actions" item once; inputs that change nothing are no move. undo puts the whole game back
    // as it was before the last move (board, selection, score, variables, pending events, random
    // sequence); redo plays the undone move's inputs again, so the board, refills and
    // diagnostics are the same as the first time. A new move forgets what was undone; a new
    // board, and the best-score check that ends a game, forget every move. Each returns whether
    // it did something; the can... queries say whether it would (for menu items).
    bool undo();
    bool redo();
    bool canUndo() const;
    bool canRedo() const;

    // hint: a move the game's own end test finds: the cells of a colour region, or the two
    // neighbours to swap (see findHint). No cells when there is none (or no game is being
    // played). Changes nothing.
    Hint hint() const;

    // What a move would bring, found by playing it and every event it causes on a copy of the
    // game (see MovePreview): previewClick, a click at window point (x, y) followed by the game's
    // remove key when it has one; previewDrag, a press at (x1, y1) and a release at (x2, y2).
    // Nothing when the game takes no move there, or while no board is being played. The game,
    // the view, the host and the diagnostic output are not touched. cellAt: the cell under a
    // window point, or nothing; a preview changes only when it does.
    std::optional<MovePreview> previewClick(float x, float y) const;
    std::optional<MovePreview> previewDrag(float x1, float y1, float x2, float y2) const;
    std::optional<BoardCell> cellAt(float x, float y) const;

    // The keyboard cursor. takeInput gives it every key-down before the poll reads it;
    // cursorKey returns true when it was a cursor key: an arrow shows the cursor (first
    // in the middle of the board) or moves it one cell, never off the board; Return or Enter,
    // while the cursor shows, is a mouse-down and mouse-up at the centre of its cell, so it
    // selects and swaps exactly as the mouse does. A key that the rules bind is never a cursor
    // key, nor is any key while the board is not shown. A mouse-down, a new board or returning to the main window hide the cursor.
    bool cursorKey(const CurrentEvent& keyDown);
    std::optional<BoardCell> cursor() const;

    // Keeping a game. hasUnfinishedGame: a game has a board and its best-score check has not
    // run. resumeGame: shows that game again as it was left (after returnToMain); false when
    // there is none. savedGame: that game as a property list with everything needed to go on
    // exactly, for the shell to keep in the data folder (nothing without one). savedGameBeforeTick:
    // the same, but when the last thing the engine did was a tick that changed the game, the game
    // as it was before that tick: a quit while the window still plays what the tick showed keeps
    // that one, and the tick runs again in full when the game is continued. continueGame: shows a
    // saved game as startGame shows a new one, with rules, the current rules dictionary of its
    // title (savedGameTitle; nullptr when the rules file has no such game); returns an empty
    // text, or, when it cannot be continued (its rules changed, the file is damaged), why, as a
    // sentence for the player; the running game is then left as it was.
    bool hasUnfinishedGame() const;
    bool resumeGame();
    std::optional<Value> savedGame() const;
    std::optional<Value> savedGameBeforeTick() const;
    std::string continueGame(const Value& saved, const Value* rules, ActionsMenu& menu);
    // Why continueGame would refuse the saved game with these rules, or an empty text; changes
    // nothing (the main window asks before it offers Continue).
    static std::string savedGameProblem(const Value& saved, const Value* rules);
    static std::string savedGameTitle(const Value& saved);
    static std::uint32_t savedGameBoardNumber(const Value& saved);

    // The running game (its rules and state), or nullptr before the first start and after a
    // start that failed; what the window draws and the menus ask about.
    const GameInfo* game() const;
    GameInfo* game();
    // The game's random sequence: what deals the boards, and what the score screen draws from.
    RandomSequence& random();
    const GameOutput& output() const;
    // The running game as it stands (board, selection, score, variables, pending events, random
    // sequence, last gesture, flags), and putting such a state back: for a player that tries a
    // move and takes it back. Only with a game (game() is not nullptr).
    GameSnapshot snapshot() const;
    void restore(const GameSnapshot& state);

    int gameStarted() const;
    int gamePaused() const;
    // True while a tick has something to do: events queued, or a start not yet announced.
    bool hasPendingEvents() const;

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
