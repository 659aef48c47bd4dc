// The player's moves of the running game, for undo and redo.
//
// A move is what the player's inputs changed, with the game as it was before them: a click or
// a drag is one move (its mouse-down and mouse-up), a key or a menu item another. Inputs that
// change nothing leave no move. Undoing puts the game back as it was before the move, random
// sequence and pending events included; redoing plays the move's inputs again from there, so it
// changes the board, refills and prints exactly what it did the first time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "engine/GameSnapshot.h"
#include "engine/Host.h"

namespace tolvar {

// One input the engine acts on: a mouse-down, mouse-up or key-down of the game window, or an
// item of the "Actions" menu chosen with the mouse (then the character of its key).
struct PlayerInput {
    CurrentEvent event;
    bool fromMenu = false;
    std::int8_t menuCharacter = 0;
};

struct Move {
    GameSnapshot before;
    std::vector<PlayerInput> inputs;
};

// The moves of a history as a saved game keeps them: those done, oldest first, and those
// undone, the next to redo last.
struct SavedMoves {
    std::vector<Move> done;
    std::vector<Move> undone;
};

class MoveHistory {
public:
    // Every kept move holds a copy of the board; past this many cells in all, the oldest moves
    // go (on an 8 x 8 board that is over 30,000 moves, on 255 x 255 about 30).
    static constexpr std::size_t kCellsKept = 2'000'000;

    // Before an input is acted on: opens a move with the game as it is now, unless the move
    // of a gesture is still open.
    void beforeInput(const EngineContext& ctx);
    // After it: a mouse-down leaves its move open for the mouse-up; any other input closes it,
    // and the move is kept when the game changed. A new move (not a redo) forgets what was
    // undone.
    void afterInput(const EngineContext& ctx, const PlayerInput& input, bool redoing);

    bool canUndo() const { return !done_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    // The last move, now first in line to be redone; nullptr when there is none.
    const Move* undo();
    // The move to play again (it leaves the history; playing it records it anew).
    std::optional<Move> takeRedo();
    // Forgets every move: a new board, a finished game.
    void forget();

    // The moves kept, for a saved game (see SavedMoves), and putting such moves back in place of
    // every move: the oldest done go while they hold more than kCellsKept cells.
    const std::deque<Move>& done() const { return done_; }
    const std::vector<Move>& undone() const { return undone_; }
    void restore(SavedMoves moves);

private:
    std::optional<Move> open_;
    std::deque<Move> done_;
    std::vector<Move> undone_;
    std::size_t cellsKept_ = 0;  // board cells held by done_ and undone_

    // Drops the oldest moves done while the moves hold more than kCellsKept cells (the last
    // one stays).
    void keepWithinCap();
};

}  // namespace tolvar
