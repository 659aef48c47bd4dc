// Everything a running game is between two inputs: the board with its selection, the score and
// multiplier, the score variables, the pending events, the random sequence, the cells of the
// last mouse gesture and the lifecycle flags. Undo puts a snapshot back; a saved game is one.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/EngineContext.h"
#include "engine/RandomSequence.h"
#include "rules/GameInfo.h"

namespace tolvar {

// A pending event: the event's number and type, and the rules' action list it runs.
struct PendingEvent {
    std::uint32_t eventID = 0;
    std::uint32_t eventType = 0;
    std::shared_ptr<GameAction> actions;
    bool operator==(const PendingEvent&) const = default;
};

struct GameSnapshot {
    static constexpr std::int64_t kNoCell = -1;

    std::vector<BoardPiece> board;
    std::uint64_t score = 0;
    std::uint64_t scoreMultiplier = 0;
    std::vector<std::uint64_t> variables;  // in the order of the game's variable list
    std::vector<PendingEvent> pending;     // first to run first
    RandomSequence::State random;
    std::int64_t downCell = kNoCell;  // board index of the last mouse-down's cell
    std::int64_t upCell = kNoCell;
    int gameStarted = 0;
    int gamePaused = 0;

    bool operator==(const GameSnapshot&) const = default;
    // Whether the player would see the same game: board, selection, score, multiplier,
    // variables and pending events agree.
    bool sameGameAs(const GameSnapshot& other) const;
    // The same for the game running in ctx as it stands, without copying it.
    bool sameGameAs(const EngineContext& ctx) const;
};

// The running game's snapshot (ctx must have a game).
GameSnapshot takeSnapshot(const EngineContext& ctx);
// Puts a snapshot of this same game back; the rules' records stay.
void restoreSnapshot(EngineContext& ctx, const GameSnapshot& snapshot);

}  // namespace tolvar
