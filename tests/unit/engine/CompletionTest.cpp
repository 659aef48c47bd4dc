// The test for a move left, per kind of game.
#include <gtest/gtest.h>

#include "EngineFakes.h"
#include "engine/Completion.h"

namespace tolvar {
namespace {

using testing::addEvent;
using testing::addUserEvent;
using testing::installGame;

class CompletionTest : public ::testing::Test {
protected:
    void TearDown() override { gameInfo.reset(); }
    // A game over the given board with a no-moves event and one criterion of type 7.
    GameInfo& game(int w, int h, const std::vector<int>& colours, std::uint32_t userEventType,
                   int maxLinear = 0) {
        GameInfo& g = installGame(w, h, colours);
        g.setupMaxLinearColors = static_cast<std::uint8_t>(maxLinear);
        g.numColors = 8;
        addEvent(g, 3, kEventNoMovesLeft);
        auto criterion = std::make_unique<CompletionCriterion>();
        criterion->completionType = kCompletionNoMovesLeft;
        g.completionCriteria = std::move(criterion);
        addUserEvent(g, 1, userEventType).minimumPieces = 2;
        return g;
    }
    bool over() {
        gameInfo->eventQueue.reset();
        completion.performActionCheckForGameCompletion();
        return gameInfo->eventQueue != nullptr;
    }
    testing::RecordingView view;
    testing::RecordingHost host;
    EngineContext ctx{view, host};
    Completion completion{ctx};
};

TEST_F(CompletionTest, RegionGameEndsWhenNoPieceHasANeighbourOfItsColour) {
    GameInfo& g = game(3, 3, {1, 2, 1, 2, 1, 2, 1, 2, 1}, kUserEventSelectColorRegion);
    EXPECT_TRUE(over());
    g.board[4].colorIndex = 2;  // (1,1) joins (1,0)
    EXPECT_FALSE(over());
    g.board[4].pieceID = 0;  // an empty cell joins nothing
    EXPECT_TRUE(over());
}

TEST_F(CompletionTest, GroupSwapGameCountsColours) {
    GameInfo& g = game(3, 1, {1, 1, 1}, kUserEventSwapAdjacent);
    EXPECT_TRUE(over());  // all of one colour
    g.board[2].colorIndex = 2;
    EXPECT_FALSE(over());  // two of colour 1 and one of colour 2
    g.board[1].colorIndex = 3;
    EXPECT_TRUE(over());  // one of each of three colours
    // Colours above 9 count too.
    g.board[1].colorIndex = 12;
    g.board[2].colorIndex = 12;
    EXPECT_FALSE(over());
}

TEST_F(CompletionTest, LineSwapGameLooksForALineASwapWouldMake) {
    // 3 x 3, no line: columns (bottom to top) 1 2 3 | 2 3 1 | 4 5 6.
    GameInfo& g = game(3, 3, {1, 2, 3, 2, 3, 1, 4, 5, 6}, kUserEventSwapAdjacent, 2);
    EXPECT_TRUE(over());
    EXPECT_EQ(view.draws, 1);  // redrawn when no swap helps
    // A line of three already on the board.
    g.board[6].colorIndex = 3;
    g.board[7].colorIndex = 3;
    g.board[8].colorIndex = 3;
    EXPECT_FALSE(over());
    std::vector<int> colours{1, 2, 3, 1, 3, 2, 4, 1, 6};  // row 0: 1 1 4, (2,1) = 1
    for (int n = 0; n < 9; ++n) g.board[n].colorIndex = static_cast<std::uint8_t>(colours[n]);
    EXPECT_FALSE(over());  // swapping (2,0) and (2,1) makes row 0 read 1 1 1
    const std::vector<BoardPiece> before = g.board;
    over();
    for (int n = 0; n < 9; ++n) EXPECT_EQ(g.board[n].colorIndex, before[n].colorIndex);
}

TEST_F(CompletionTest, GameWithoutCriteriaIsAlwaysOver) {
    GameInfo& g = game(2, 2, {1, 1, 1, 1}, kUserEventSelectColorRegion);
    EXPECT_FALSE(over());
    g.completionCriteria.reset();
    EXPECT_TRUE(over());
}

}  // namespace
}  // namespace tolvar
