// The end of a game: the test for a move left, and the table of best scores.
#pragma once

#include <string>

#include "engine/EngineContext.h"
#include "platform/PropertyList.h"

namespace tolvar {

class Completion {
public:
    explicit Completion(EngineContext& ctx) : ctx_(ctx) {}

    // Queues the no-moves-left event when the player has no move left.
    void performActionCheckForGameCompletion();

private:
    EngineContext& ctx_;
};

// Where a new score goes in a game's table (best first): the index it is inserted at, or -1
// when the table's first 20 entries are all at least as good. Prints the "got on list" line
// when higher scores are better and the score beats an entry.
int bestScoreInsertionIndex(const Array& scores, std::uint64_t score, bool lowerIsBetter);

class BestScores {
public:
    explicit BestScores(EngineContext& ctx) : ctx_(ctx) {}

    // Enters the final score in "BestScores.dict" of the data folder, shows the table,
    // congratulates a new best score, and pauses the game.
    void performActionCheckBestScores(const GameAction& action);

private:
    EngineContext& ctx_;
};

}  // namespace tolvar
