// The end of a game: the test for a move left, and the table of best scores.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/Board.h"
#include "engine/EngineContext.h"
#include "core/PropertyList.h"

namespace tolvar {

// The moves the end test looks for, found in its order (column by column, bottom to top).
// The first piece whose colour region holds at least minimumPieces pieces, or nullptr.
BoardPiece* findRegionMove(const Board& board, std::uint32_t minimumPieces);
// A piece already on a straight run longer than limit (partner nullptr), or the first piece
// and neighbour of another colour whose swap makes one.
struct LineMove {
    BoardPiece* piece = nullptr;
    BoardPiece* partner = nullptr;
};
std::optional<LineMove> findLineMove(const Board& board, std::uint32_t limit);
// A move for the player.
struct Hint {
    // The cells of the region the end test finds, or two neighbours to swap; empty when there is
    // no move left.
    std::vector<BoardCell> cells;
    // False for a swap that makes no group: in a game without a line limit no swap joins a group
    // the swap's trigger removes, and these two only move the pieces on.
    bool makesGroup = true;
    bool operator==(const Hint&) const = default;
};
// The hint for game as it stands: in a swap game without a line limit, the first swap that
// joins a group, else the first swap of two colours, marked as making none. Changes nothing.
Hint findHint(GameInfo& game, const GameOutput& out);

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
int bestScoreInsertionIndex(const Array& scores, std::uint64_t score, bool lowerIsBetter, const GameOutput& out);
// Puts a table in order, best first (entries of equal score keep their order).
void sortBestScores(Array& scores, bool lowerIsBetter);

class BestScores {
public:
    explicit BestScores(EngineContext& ctx) : ctx_(ctx) {}

    // Enters the final score in the host's best-score store, shows the table, congratulates a
    // new best score (or says why it could not be saved), and pauses the game.
    void performActionCheckBestScores(const GameAction& action);

private:
    EngineContext& ctx_;
};

}  // namespace tolvar
