// Board actions: falling pieces, closing up lines, select-and-remove, refills, line resolution.
#include <gtest/gtest.h>

#include <cstdlib>

#include "EngineFakes.h"
#include "engine/BoardActions.h"
#include "engine/SelectColor.h"

namespace tolvar {
namespace {

using testing::boardPicture;
using testing::installGame;
using testing::addEvent;
using testing::addUserEvent;

class BoardActionsTest : public ::testing::Test {
protected:
    void TearDown() override { gameInfo.reset(); }
    testing::RecordingView view;
    testing::RecordingHost host;
    EngineContext ctx{view, host};
    BoardActions actions{ctx};
};

TEST_F(BoardActionsTest, PiecesFallInPassesLowestHoleFirst) {
    // One column 4 high, bottom to top: empty, A (colour 2), empty, B (colour 3).
    GameInfo& game = installGame(1, 4, {0, 2, 0, 3});
    actions.performActionCollapseInDirection(kDirectionDown);
    EXPECT_EQ(boardPicture(game), "23..");
    ASSERT_EQ(view.moves.size(), 2u);
    EXPECT_EQ(view.moves[0], (testing::AnimatedMove{2, 0, 1, 0, 0}));
    EXPECT_EQ(view.moves[1], (testing::AnimatedMove{4, 0, 3, 0, 1}));
    EXPECT_EQ(game.board[0].pieceID, 2u);
    EXPECT_EQ(game.board[1].pieceID, 4u);
    EXPECT_EQ(game.board[1].y, 1u);
}

TEST_F(BoardActionsTest, FallingLeftChangesNothing) {
    GameInfo& game = installGame(2, 3, {0, 2, 0, 3, 0, 1});
    const std::string before = boardPicture(game);
    actions.performActionCollapseInDirection(kDirectionLeft);
    EXPECT_EQ(boardPicture(game), before);
    EXPECT_TRUE(view.moves.empty());
}

TEST_F(BoardActionsTest, EmptyColumnsCloseUpToTheLeft) {
    // Five columns of two rows; columns 1 and 2 empty, the last column full.
    GameInfo& game = installGame(5, 2, {1, 2, 0, 0, 0, 0, 3, 4, 2, 1});
    actions.performActionCollapseEmptyRows(kDirectionLeft);
    EXPECT_EQ(boardPicture(game), "12|34|21|..|..");
    for (int x = 0; x < 5; ++x)
        for (int y = 0; y < 2; ++y) {
            EXPECT_EQ(game.board[x * 2 + y].x, static_cast<std::uint32_t>(x));
            EXPECT_EQ(game.board[x * 2 + y].y, static_cast<std::uint32_t>(y));
        }
    EXPECT_EQ(game.board[2].pieceID, 7u);  // piece 7 moved from column 3 to column 1
}

TEST_F(BoardActionsTest, EmptyRowsCloseUpDownward) {
    // Two columns of three rows; row 0 is empty.
    GameInfo& game = installGame(2, 3, {0, 2, 3, 0, 4, 1});
    actions.performActionCollapseEmptyRows(kDirectionDown);
    EXPECT_EQ(boardPicture(game), "23.|41.");
    EXPECT_EQ(game.board[0].pieceID, 2u);
    EXPECT_EQ(game.board[2].y, 2u);
}

TEST_F(BoardActionsTest, FullRowsAreRemovedAndTheRestComesDown) {
    // Three columns of four rows: rows 0 and 1 full; rows 2 and 3 partly filled.
    GameInfo& game = installGame(3, 4, {1, 1, 2, 0, 1, 1, 0, 3, 1, 1, 0, 0});
    actions.performActionCollapseFullRows(kDirectionDown);
    EXPECT_EQ(boardPicture(game), "2...|.3..|....");
    EXPECT_EQ(game.board[0].pieceID, 3u);  // with its piece number
    EXPECT_EQ(game.board[5].pieceID, 8u);
    actions.performActionCollapseFullRows(kDirectionLeft);  // not honoured
    EXPECT_EQ(boardPicture(game), "2...|.3..|....");
}

TEST_F(BoardActionsTest, StraightRunSwapThatMakesNoLineIsUndone) {
    // 3 x 3; swapping (0,0) and (1,0) made no line of three.
    GameInfo& game = installGame(3, 3, {1, 2, 3, 2, 3, 1, 3, 1, 2});
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    ctx.downPiece = &game.board[0];
    ctx.upPiece = &game.board[3];
    ctx.downPiece->selected = 1;
    ctx.upPiece->selected = 1;
    GameAction action;
    action.actionCriteria = 0x53;
    action.minPieces = 3;
    action.removePieces = 1;
    ::testing::internal::CaptureStdout();
    actions.performActionSelectColor(action);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "piece count up = 1, min pieces = 3\npiece count down = 1, min pieces = 3\n");
    EXPECT_EQ(game.board[0].colorIndex, 2);  // swapped back
    EXPECT_EQ(game.board[3].colorIndex, 1);
    EXPECT_EQ(game.board[0].selected, 0);
    EXPECT_EQ(game.board[3].selected, 0);
    EXPECT_EQ(view.flashFrames, 0);
}

TEST_F(BoardActionsTest, StraightRunLineIsFlashedAndRemoved) {
    GameInfo& game = installGame(3, 3, {1, 2, 3, 1, 3, 2, 1, 2, 3});
    game.setupMaxLinearColors = 2;
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    addEvent(game, 2, kEventPiecesRemoved);
    ctx.upPiece = &game.board[6];  // (2,0): row 0 is 1 1 1
    GameAction action;
    action.actionCriteria = 0x52;
    action.minPieces = 3;
    action.removePieces = 1;
    ::testing::internal::CaptureStdout();
    actions.performActionSelectColor(action);
    const std::string out = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(out,
              "piece count up = 3, min pieces = 3\nSelecting flagged up pieces.\n"
              "count 1 selected piece 1 at (0,0)\ncount 4 selected piece 4 at (1,0)\n"
              "count 7 selected piece 7 at (2,0)\n"
              "Removing piece 1 at 0,0\nRemoving piece 4 at 1,0\nRemoving piece 7 at 2,0\n");
    EXPECT_EQ(view.flashFrames, 6);
    EXPECT_EQ(gSelectColor.red, kDefaultSelectColor.red);
    ASSERT_NE(game.eventQueue, nullptr);
    EXPECT_EQ(game.eventQueue->eventType, kEventPiecesRemoved);
}

TEST_F(BoardActionsTest, RegionSwapThatJoinsNothingStays) {
    GameInfo& game = installGame(3, 3, {1, 2, 3, 2, 3, 1, 3, 1, 2});
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    ctx.downPiece = &game.board[0];
    ctx.upPiece = &game.board[3];
    GameAction action;
    action.actionCriteria = 0x13;
    action.minPieces = 2;
    action.removePieces = 1;
    ::testing::internal::CaptureStdout();
    actions.performActionSelectColor(action);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(game.board[0].colorIndex, 1);
    EXPECT_EQ(game.board[3].colorIndex, 2);
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(BoardActionsTest, SelectWithoutRemovalOnlySelects) {
    GameInfo& game = installGame(2, 2, {1, 1, 2, 3});
    ctx.upPiece = &game.board[0];
    GameAction action;
    action.actionCriteria = 0x02;
    action.minPieces = 2;
    ::testing::internal::CaptureStdout();
    actions.performActionSelectColor(action);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(game.board[0].selected, 1);
    EXPECT_EQ(game.board[1].selected, 1);
    EXPECT_EQ(game.board[2].selected, 0);
    EXPECT_EQ(view.flashFrames, 0);
    EXPECT_EQ(game.board[0].pieceID, 1u);
}

TEST_F(BoardActionsTest, MissingGesturePieceIsSkipped) {
    GameInfo& game = installGame(2, 2, {1, 1, 2, 3});
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    GameAction action;
    action.actionCriteria = 0x53;
    action.minPieces = 3;
    ::testing::internal::CaptureStdout();
    actions.performActionSelectColor(action);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(BoardActionsTest, RefillHandsOutSmallestNumbersInScanOrder) {
    GameInfo& game = installGame(4, 6);
    game.numColors = 8;
    game.board[0].pieceID = 0;       // (0,0) held 1
    game.board[3 * 6 + 5].pieceID = 0;  // (3,5) held 24
    game.board[5].pieceID = 0;       // (0,5) held 6
    game.board[3 * 6 + 5].selected = 1;
    srandom(9);
    actions.performActionFillSpacesRandomly();
    EXPECT_EQ(game.board[0].pieceID, 1u);
    EXPECT_EQ(game.board[5].pieceID, 6u);
    EXPECT_EQ(game.board[23].pieceID, 24u);
    EXPECT_EQ(game.board[23].selected, 0);
    for (const BoardPiece& p : game.board) {
        EXPECT_GE(p.colorIndex, 1);
        EXPECT_LE(p.colorIndex, 8);
    }
    // Holes take the numbers free at the time: here 1 is taken, so the hole gets 2.
    game.board[0].pieceID = 0;
    game.board[1].pieceID = 1;
    game.board[9].pieceID = 0;
    actions.performActionFillSpacesRandomly();
    EXPECT_EQ(game.board[0].pieceID, 2u);
    EXPECT_EQ(game.board[9].pieceID, 10u);
}

TEST_F(BoardActionsTest, ResolveRemovesALineOfFourInOnePass) {
    // 4 x 2: row 0 is 1 1 1 1, row 1 alternates 2 3.
    GameInfo& game = installGame(4, 2, {1, 2, 1, 3, 1, 2, 1, 3});
    game.setupMaxLinearColors = 2;
    auto& swap = addUserEvent(game, 1, kUserEventSwapAdjacent);
    swap.triggerAction = std::make_shared<GameAction>();
    swap.triggerAction->removePieces = 1;
    addEvent(game, 2, kEventPiecesRemoved);
    ::testing::internal::CaptureStdout();
    actions.performActionResolveMatches();
    const std::string out = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(boardPicture(game), ".2|.3|.2|.3");
    EXPECT_NE(out.find("Removing piece 7 at 3,0\n"), std::string::npos);
    EXPECT_EQ(view.flashFrames, 6);  // one removal
    int queued = 0;
    for (auto* e = game.eventQueue.get(); e; e = e->next.get()) ++queued;
    EXPECT_EQ(queued, 1);
}

TEST_F(BoardActionsTest, ResolveStopsWhenLinesAreFoundButNotRemoved) {
    GameInfo& game = installGame(3, 1, {2, 2, 2});
    game.setupMaxLinearColors = 2;
    ::testing::internal::CaptureStdout();
    actions.performActionResolveMatches();  // no swap event: nothing removes the line
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(boardPicture(game), "2|2|2");
    EXPECT_EQ(game.board[0].selected, 1);
}

TEST_F(BoardActionsTest, RemovalRepeatsCellsEmptiedEarlier) {
    GameInfo& game = installGame(2, 1, {0, 1});
    addEvent(game, 2, kEventPiecesRemoved);
    ::testing::internal::CaptureStdout();
    actions.removeSelectedPieces();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(game.eventQueue, nullptr);
    game.board[0].selected = 1;
    ::testing::internal::CaptureStdout();
    actions.removeSelectedPieces();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Removing piece 0 at 0,0\n");
    EXPECT_NE(game.eventQueue, nullptr);
}

TEST_F(BoardActionsTest, RemainingPiecesAndVariables) {
    GameInfo& game = installGame(3, 2, {1, 0, 2, 2, 0, 3});
    for (std::uint32_t id : {7u, 5u}) {
        auto v = std::make_unique<GameVariable>();
        v->variableID = id;
        v->next = std::move(game.variables);
        game.variables = std::move(v);
    }
    EXPECT_EQ(actions.getVariable(0), nullptr);
    EXPECT_EQ(actions.getVariable(9), nullptr);
    GameVariable* seven = actions.getVariable(7);  // the second record of the list
    ASSERT_NE(seven, nullptr);
    EXPECT_EQ(seven, game.variables->next.get());
    actions.performActionGetRemainingPieceCount(seven);
    EXPECT_EQ(seven->variableValue, 4u);
    actions.performActionGetRemainingPieceCount(nullptr);
}

}  // namespace
}  // namespace tolvar
