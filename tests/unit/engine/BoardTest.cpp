// Board queries: cells, window points, regions, straight runs and selection.
#include <gtest/gtest.h>

#include <cmath>

#include "EngineFakes.h"
#include "engine/Board.h"
#include "engine/BoardLayout.h"

namespace tolvar {
namespace {

using testing::makeGame;

TEST(BoardLayoutTest, SquareBoardIsCentred) {
    auto game = makeGame(5, 5);
    game->squareShapes = 1;
    const BoardLayout l = computeBoardLayout(*game);
    EXPECT_FLOAT_EQ(l.m, 10.0f);
    EXPECT_FLOAT_EQ(l.h, 149.6f);
    EXPECT_FLOAT_EQ(l.w, 149.6f);
    EXPECT_FLOAT_EQ(l.ph, 146.6f);
    EXPECT_FLOAT_EQ(l.pw, 146.6f);
    EXPECT_FLOAT_EQ(l.left, 138.0f);
}

TEST(BoardLayoutTest, WideBoardFillsTheSquareArea) {
    auto game = makeGame(10, 5);
    const BoardLayout l = computeBoardLayout(*game);
    EXPECT_FLOAT_EQ(l.w, 74.8f);
    EXPECT_FLOAT_EQ(l.h, 149.6f);
    EXPECT_FLOAT_EQ(l.pw, 71.8f);
    EXPECT_FLOAT_EQ(l.ph, 146.6f);
    EXPECT_FLOAT_EQ(l.left, 138.0f);
    EXPECT_FLOAT_EQ(l.w * 10, 748.0f);
}

TEST(BoardLayoutTest, LauncherWidensTheMargin) {
    auto game = makeGame(8, 8);
    game->squareShapes = 1;
    game->hasLauncher = 1;
    const BoardLayout l = computeBoardLayout(*game);
    EXPECT_FLOAT_EQ(l.m, 50.0f);
    EXPECT_FLOAT_EQ(l.h, 83.5f);
    EXPECT_FLOAT_EQ(l.left, 178.0f);
}

TEST(BoardWindowPointTest, MapsPointsToCells) {
    auto game = makeGame(8, 8);
    Board board(*game);
    BoardPiece* p = board.getBoardPieceAtWindowX(138.0f, 10.0f);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->x, 0u);
    EXPECT_EQ(p->y, 0u);
    EXPECT_EQ(board.getBoardPieceAtWindowX(1000.0f, 400.0f), nullptr);  // column 9
    // 93.5 wide cells from 138: the last column ends at 886.
    p = board.getBoardPieceAtWindowX(885.9f, 757.9f);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->x, 7u);
    EXPECT_EQ(p->y, 7u);
    EXPECT_EQ(board.getBoardPieceAtWindowX(886.0f, 100.0f), nullptr);
    EXPECT_EQ(board.getBoardPieceAtWindowX(300.0f, 758.0f), nullptr);
}

TEST(BoardWindowPointTest, LessThanACellOutsideTruncatesToTheEdge) {
    auto game = makeGame(8, 8);
    Board board(*game);
    BoardPiece* p = board.getBoardPieceAtWindowX(138.0f - 50.0f, 10.0f - 50.0f);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->x, 0u);
    EXPECT_EQ(p->y, 0u);
    EXPECT_EQ(board.getBoardPieceAtWindowX(138.0f - 93.5f, 20.0f), nullptr);
    EXPECT_EQ(board.getBoardPieceAtWindowX(-1e30f, 1e30f), nullptr);
    EXPECT_EQ(board.getBoardPieceAtWindowX(std::nanf(""), 20.0f), nullptr);
}

TEST(BoardQueryTest, CellsAndPieceNumbers) {
    auto game = makeGame(8, 8);
    Board board(*game);
    EXPECT_EQ(board.getBoardPieceAtX(1, 0).pieceID, 9u);
    EXPECT_EQ(board.getBoardPieceAtX(7, 7).pieceID, 64u);
    EXPECT_EQ(board.getPieceByID(9), &board.getBoardPieceAtX(1, 0));
    EXPECT_EQ(board.getPieceByID(0), nullptr);
    board.getBoardPieceAtX(3, 2).pieceID = 0;
    EXPECT_EQ(board.getPieceByID(0), &board.getBoardPieceAtX(3, 2));
}

TEST(BoardQueryTest, MismatchedRecordIsReported) {
    auto game = makeGame(2, 2);
    game->board[1].y = 5;
    Board board(*game);
    ::testing::internal::CaptureStdout();
    board.getBoardPieceAtX(0, 1);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Mismatch on Y.  1 != 5\n");
}

TEST(BoardRegionTest, RegionsFollowColourAndStopAtHolesAndDiagonals) {
    // Column by column, bottom to top:
    //   x=0: 1 2 1
    //   x=1: 2 1 0
    //   x=2: 1 1 1
    auto game = makeGame(3, 3, {1, 2, 1, 2, 1, 0, 1, 1, 1});
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 1u);
    flags.clear();
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(1, 1), flags), 4u);
    EXPECT_TRUE(flags.test(board.getBoardPieceAtX(2, 2).pieceID));
    EXPECT_FALSE(flags.test(board.getBoardPieceAtX(0, 2).pieceID));
}

TEST(BoardRegionTest, AlreadyFlaggedPiecesAreNotCountedAgain) {
    auto game = makeGame(3, 3, std::vector<int>(9, 1));
    Board board(*game);
    Flags flags = board.makeFlags();
    // Flag the middle column: the left column is then cut off from the right one.
    for (int y = 0; y < 3; ++y) flags.set(board.getBoardPieceAtX(1, y).pieceID);
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 3u);
    flags.clear();
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(1, 1), flags), 9u);
}

TEST(BoardRegionTest, OneColourBoardOfMaximumSizeNeedsNoDeepStack) {
    auto game = makeGame(255, 255, std::vector<int>(255 * 255, 3));
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 65025u);
    flags.clear();
    board.selectRegionColorPieces(board.getBoardPieceAtX(254, 254), flags);
    std::uint32_t selected = 0;
    board.getNthSelectedPiece(1, selected);
    EXPECT_EQ(selected, 65025u);
    flags.clear();
    board.deSelectRegionColorPieces(board.getBoardPieceAtX(100, 7), flags);
    selected = 0;
    EXPECT_EQ(board.getNthSelectedPiece(1, selected), nullptr);
    EXPECT_EQ(selected, 0u);
}

TEST(BoardRunTest, StraightRunsFlagOnlyRunsLongerThanTheLimit) {
    auto game = makeGame(3, 3, std::vector<int>(9, 2));
    game->setupMaxLinearColors = 2;
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(board.getBoardPieceAtX(1, 1), flags), 3u);
    EXPECT_EQ(flags.setNumbers().size(), 5u);  // the middle row and column
    EXPECT_FALSE(flags.test(board.getBoardPieceAtX(0, 0).pieceID));

    game->setupMaxLinearColors = 0;
    game->board[0].colorIndex = 4;  // (0,0) now stands alone
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 1u);
    EXPECT_EQ(flags.setNumbers(), std::vector<std::uint32_t>{1});
}

TEST(BoardRunTest, AHoleEndsARunButMayStartOne) {
    // Row 0 across four columns: 1 1 . 1 ; the hole keeps colour 1.
    auto game = makeGame(4, 1, {1, 1, 0, 1});
    game->board[2].colorIndex = 1;
    game->setupMaxLinearColors = 2;
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 2u);
    EXPECT_TRUE(flags.setNumbers().empty());
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(board.getBoardPieceAtX(2, 0), flags), 4u);
    // The empty start flags number 0 together with the three pieces.
    EXPECT_EQ(flags.setNumbers(), (std::vector<std::uint32_t>{0, 1, 2, 4}));
}

TEST(BoardSelectionTest, NthSelectedPieceCountsThemAll) {
    auto game = makeGame(3, 3, {1, 2, 1, 2, 1, 0, 1, 1, 1});
    Board board(*game);
    board.getBoardPieceAtX(2, 0).selected = 1;
    board.getBoardPieceAtX(0, 1).selected = 1;
    board.getBoardPieceAtX(1, 2).selected = 1;  // empty: not counted
    std::uint32_t count = 0;
    EXPECT_EQ(board.getNthSelectedPiece(1, count), &board.getBoardPieceAtX(0, 1));
    EXPECT_EQ(count, 2u);
    count = 0;
    EXPECT_EQ(board.getNthSelectedPiece(2, count), &board.getBoardPieceAtX(2, 0));
    count = 0;
    EXPECT_EQ(board.getNthSelectedPiece(3, count), nullptr);
    EXPECT_EQ(count, 2u);
}

TEST(BoardSelectionTest, FlaggedPiecesAreSelectedAndListed) {
    auto game = makeGame(2, 2);
    Board board(*game);
    Flags flags = board.makeFlags();
    flags.set(4);
    flags.set(2);
    ::testing::internal::CaptureStdout();
    board.selectFlaggedPieces(flags);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "count 2 selected piece 2 at (0,1)\ncount 4 selected piece 4 at (1,1)\n");
    EXPECT_EQ(game->board[1].selected, 1);
    EXPECT_EQ(game->board[0].selected, 0);
}

TEST(BoardQueryTest, FreePieceNumbersAndAppearanceCopy) {
    auto game = makeGame(2, 2);
    Board board(*game);
    EXPECT_EQ(board.getAvailablePieceID(), 5u);  // (2+1) x 2 - 1 = 5 is the last tried
    game->board[2].pieceID = 0;
    EXPECT_EQ(board.getAvailablePieceID(), 3u);
    game->board[0].pieceID = 5;
    game->board[1].pieceID = 4;
    game->board[3].pieceID = 3;
    game->board[2].pieceID = 2;
    EXPECT_EQ(board.getAvailablePieceID(), 1u);

    BoardPiece source;
    source.red = 0.5f;
    source.colorIndex = 7;
    source.shapeIndex = 3;
    BoardPiece& dest = board.getBoardPieceAtX(1, 0);
    dest.pieceID = 0;
    Board::copyPieceInfo(dest, source);
    EXPECT_EQ(dest.colorIndex, 7);
    EXPECT_EQ(dest.shapeIndex, 3);
    EXPECT_EQ(dest.pieceID, 0u);
    EXPECT_EQ(dest.x, 1u);
}

}  // namespace
}  // namespace tolvar

namespace tolvar {
namespace {

TEST(BoardRunTest, RunLengthWithoutFlagsAgreesWithTheFlaggingQuery) {
    srandom(21);
    std::vector<int> colours(17 * 9);
    for (int& c : colours) c = static_cast<int>(random() % 4);  // 0: holes
    auto game = testing::makeGame(17, 9, colours);
    game->setupMaxLinearColors = 2;
    Board board(*game);
    Flags flags = board.makeFlags();
    for (const BoardPiece& p : game->board)
        ASSERT_EQ(board.straightRunLength(p), board.getRegionLinearColorCountForPiece(p, flags))
            << p.x << "," << p.y;
}

}  // namespace
}  // namespace tolvar
