// A new board: random fill, holes, colours, and the repair of runs that are too long.
#include <gtest/gtest.h>

#include <cstdlib>

#include "EngineFakes.h"
#include "engine/Board.h"
#include "engine/BoardSetup.h"

namespace tolvar {
namespace {

std::unique_ptr<GameInfo> freshGame(int w, int h, int colors) {
    auto game = std::make_unique<GameInfo>();
    game->boardWidth = static_cast<std::uint8_t>(w);
    game->boardHeight = static_cast<std::uint8_t>(h);
    game->numColors = static_cast<std::uint8_t>(colors);
    game->numShapes = 1;
    game->setupRandomFill = 1;
    return game;
}

TEST(BoardSetupTest, PieceNumbersRunDownTheColumns) {
    auto game = freshGame(8, 8, 4);
    testing::RecordingView view;
    srandom(7);
    setupGame(*game, view);
    EXPECT_EQ(view.spriteClears, 1);
    ASSERT_EQ(game->board.size(), 64u);
    Board board(*game);
    EXPECT_EQ(board.getBoardPieceAtX(1, 0).pieceID, 9u);
    EXPECT_EQ(board.getBoardPieceAtX(7, 7).pieceID, 64u);
    for (const BoardPiece& p : game->board) {
        ASSERT_GE(p.colorIndex, 1);
        ASSERT_LE(p.colorIndex, 4);
        EXPECT_EQ(p.shapeIndex, 1);
    }
}

TEST(BoardSetupTest, DrawsColourThenShapeFromTheSeed) {
    auto game = freshGame(3, 2, 5);
    game->numShapes = 3;
    testing::RecordingView view;
    srandom(42);
    std::vector<std::pair<int, int>> expected;
    for (int n = 0; n < 6; ++n) {
        const int colour = static_cast<int>(random() % 5) + 1;
        const int shape = static_cast<int>(random() % 3) + 1;
        expected.emplace_back(colour, shape);
    }
    srandom(42);
    setupGame(*game, view);
    for (int n = 0; n < 6; ++n) {
        EXPECT_EQ(game->board[n].colorIndex, expected[n].first) << n;
        EXPECT_EQ(game->board[n].shapeIndex, expected[n].second) << n;
    }
}

TEST(BoardSetupTest, ColourTableAndMatchingShapes) {
    auto game = freshGame(1, 1, 10);
    BoardPiece p;
    const float table[10][3] = {{1, 0, 0},       {0, 0.75f, 0},      {0, 0, 0.75f},
                                {0.5f, 0, 0.5f}, {0, 0.5f, 1},       {1, 1, 0},
                                {0.5f, 0.25f, 0.125f}, {0.65f, 0.65f, 0.65f}, {1, 1, 1},
                                {0, 0, 0}};
    for (int c = 1; c <= 10; ++c) {
        p.colorIndex = static_cast<std::uint8_t>(c);
        setPieceColor(*game, p);
        EXPECT_FLOAT_EQ(p.red, table[c - 1][0]);
        EXPECT_FLOAT_EQ(p.green, table[c - 1][1]);
        EXPECT_FLOAT_EQ(p.blue, table[c - 1][2]);
    }
    p.colorIndex = 11;  // outside the table: the components stay
    setPieceColor(*game, p);
    EXPECT_FLOAT_EQ(p.red, 0.0f);
    game->colorsMatchShapes = 1;
    p.colorIndex = 6;
    setPieceColor(*game, p);
    EXPECT_EQ(p.shapeIndex, 6);
}

TEST(BoardSetupTest, HolesAboutOneCellInNumColors) {
    auto game = freshGame(40, 40, 4);
    game->holesAllowed = 1;
    testing::RecordingView view;
    srandom(3);
    setupGame(*game, view);
    int holes = 0;
    for (const BoardPiece& p : game->board) holes += p.pieceID == 0;
    EXPECT_GT(holes, 1600 / 4 - 80);
    EXPECT_LT(holes, 1600 / 4 + 80);
}

TEST(BoardSetupTest, RepairLeavesNoLineOfThreeAndKeepsShapesMatched) {
    auto game = freshGame(8, 8, 8);
    game->setupMaxLinearColors = 2;
    game->colorsMatchShapes = 1;
    testing::RecordingView view;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        srandom(seed);
        ::testing::internal::CaptureStdout();
        setupGame(*game, view);
        const std::string out = ::testing::internal::GetCapturedStdout();
        EXPECT_NE(out.find("Color count for piece 1 at 0,0 is "), std::string::npos);
        Board board(*game);
        for (int x = 0; x < 8; ++x)
            for (int y = 0; y < 8; ++y) {
                const int c = board.getBoardPieceAtX(x, y).colorIndex;
                EXPECT_EQ(board.getBoardPieceAtX(x, y).shapeIndex, c);
                if (x >= 2) {
                    EXPECT_FALSE(board.getBoardPieceAtX(x - 1, y).colorIndex == c &&
                                 board.getBoardPieceAtX(x - 2, y).colorIndex == c);
                }
                if (y >= 2) {
                    EXPECT_FALSE(board.getBoardPieceAtX(x, y - 1).colorIndex == c &&
                                 board.getBoardPieceAtX(x, y - 2).colorIndex == c);
                }
            }
    }
}

TEST(BoardSetupTest, RepairWithNoFittingColourGoesOn) {
    // With a limit of 1 a piece whose left and lower neighbours differ has no colour that fits.
    auto game = freshGame(6, 6, 3);
    game->setupMaxLinearColors = 1;
    testing::RecordingView view;
    srandom(11);
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    setupGame(*game, view);
    ::testing::internal::GetCapturedStdout();
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("no colour keeps the runs"), std::string::npos);
    EXPECT_EQ(game->board.size(), 36u);
}

TEST(BoardSetupTest, NoLimitNoCountAndNoFillGivesEmptyCells) {
    auto game = freshGame(3, 4, 2);
    testing::RecordingView view;
    ::testing::internal::CaptureStdout();
    setupGame(*game, view);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");

    game->setupRandomFill = 0;
    game->board.clear();
    const long before = (srandom(5), random());
    srandom(5);
    setupGame(*game, view);
    EXPECT_EQ(random(), before);  // nothing was drawn
    ASSERT_EQ(game->board.size(), 12u);
    EXPECT_EQ(game->board[7].pieceID, 0u);
    EXPECT_EQ(game->board[7].x, 1u);
    EXPECT_EQ(game->board[7].y, 3u);
}

TEST(BoardSetupTest, PrintsColoursColumnByColumn) {
    auto game = testing::makeGame(2, 3, {1, 2, 3, 4, 0, 1});
    ::testing::internal::CaptureStdout();
    printBoardColors(*game);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "123\n401\n\n");
}

}  // namespace
}  // namespace tolvar
