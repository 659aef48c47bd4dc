// The board: layout and window points, regions, straight runs, selection, and a new board's
// fill and repair.
#include <cmath>
#include <cstdlib>

#include "EngineFakes.h"
#include "engine/Board.h"
#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"

namespace tolvar {
namespace {

using testing::makeGame;
using testing::stdoutOf;

TEST(BoardLayoutTest, CellsFitTheSquareAreaAndALauncherWidensTheMargin) {
    struct Case {
        int w, h, square, launcher;
        float m, cw, ch, pw, ph, left;
    };
    for (const Case& c : {Case{5, 5, 1, 0, 10, 149.6f, 149.6f, 146.6f, 146.6f, 138},
                          Case{10, 5, 0, 0, 10, 74.8f, 149.6f, 71.8f, 146.6f, 138},
                          Case{8, 8, 1, 1, 50, 83.5f, 83.5f, 80.5f, 80.5f, 178}}) {
        auto game = makeGame(c.w, c.h);
        game->squareShapes = static_cast<std::uint8_t>(c.square);
        game->hasLauncher = static_cast<std::uint8_t>(c.launcher);
        const BoardLayout l = computeBoardLayout(*game);
        const float got[] = {l.m, l.w, l.h, l.pw, l.ph, l.left};
        const float want[] = {c.m, c.cw, c.ch, c.pw, c.ph, c.left};
        for (int i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(got[i], want[i]) << c.w << "x" << c.h << " " << i;
    }
}

TEST(BoardWindowPointTest, PointsMapToCellsAndLessThanACellOutsideTruncatesToTheEdge) {
    auto game = makeGame(8, 8);  // cells 93.5 wide from (138, 10)
    Board board(*game);
    struct Case {
        float x, y;
        int cell;  // x * 8 + y, or -1: none
    };
    const Case cases[] = {{138, 10, 0},  {885.9f, 757.9f, 63}, {88, -40, 0},
                          {1000, 400, -1}, {886, 100, -1},    {300, 758, -1},
                          {44.5f, 20, -1}, {-1e30f, 1e30f, -1}, {std::nanf(""), 20, -1}};
    for (const Case& c : cases) {
        const BoardPiece* p = board.getBoardPieceAtWindowX(c.x, c.y);
        EXPECT_EQ(p, c.cell < 0 ? nullptr : &game->board[c.cell]) << c.x << "," << c.y;
    }
}

TEST(BoardQueryTest, PieceNumbersFreeNumbersAndAMismatchedRecord) {
    auto game = makeGame(2, 2);
    Board board(*game);
    EXPECT_EQ(board.getPieceByID(3), &board.getBoardPieceAtX(1, 0));  // column by column
    EXPECT_EQ(board.getPieceByID(0), nullptr);
    EXPECT_EQ(board.getAvailablePieceID(), 5u);  // none free: the last number tried
    game->board[2].pieceID = 0;
    EXPECT_EQ(board.getPieceByID(0), &game->board[2]);
    EXPECT_EQ(board.getAvailablePieceID(), 3u);
    for (std::uint32_t n = 0; n < 4; ++n) game->board[n].pieceID = 5 - n;
    EXPECT_EQ(board.getAvailablePieceID(), 1u);
    game->board[1].y = 5;
    EXPECT_EQ(stdoutOf([&] { board.getBoardPieceAtX(0, 1); }), "Mismatch on Y.  1 != 5\n");
}

TEST(BoardRegionTest, RegionsFollowColourAndStopAtHolesDiagonalsAndFlaggedPieces) {
    auto game = makeGame(3, 3, {1, 2, 1, 2, 1, 0, 1, 1, 1});  // 121 | 21. | 111
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionColorCountForPiece(game->board[0], flags), 1u);
    flags.clear();
    EXPECT_EQ(board.getRegionColorCountForPiece(game->board[4], flags), 4u);
    EXPECT_EQ(flags.setNumbers(), (std::vector<std::uint32_t>{5, 7, 8, 9}));
    game->board[5].pieceID = 6, game->board[5].colorIndex = 1;  // the hole filled: flags are walls
    EXPECT_EQ(board.getRegionColorCountForPiece(game->board[2], flags), 2u);
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
    EXPECT_EQ(board.getNthSelectedPiece(1, selected = 0), nullptr);
    EXPECT_EQ(selected, 0u);
}

TEST(BoardRunTest, OnlyRunsLongerThanTheLimitAreFlaggedAndAHoleEndsOne) {
    auto game = makeGame(3, 3, std::vector<int>(9, 2));
    game->setupMaxLinearColors = 2;
    Board board(*game);
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(game->board[4], flags), 3u);
    EXPECT_EQ(flags.setNumbers(), (std::vector<std::uint32_t>{2, 4, 5, 6, 8}));  // row and column
    game->setupMaxLinearColors = 0;
    game->board[0].colorIndex = 4;
    EXPECT_EQ(board.getRegionLinearColorCountForPiece(game->board[0], flags), 1u);
    EXPECT_EQ(flags.setNumbers(), std::vector<std::uint32_t>{1});

    auto row = makeGame(4, 1, {1, 1, 0, 1});  // 1 1 . 1, the hole keeping colour 1
    row->board[2].colorIndex = 1;
    row->setupMaxLinearColors = 2;
    Board rowBoard(*row);
    EXPECT_EQ(rowBoard.getRegionLinearColorCountForPiece(row->board[0], flags), 2u);
    EXPECT_TRUE(flags.setNumbers().empty());
    EXPECT_EQ(rowBoard.getRegionLinearColorCountForPiece(row->board[2], flags), 4u);  // starts one
    EXPECT_EQ(flags.setNumbers(), (std::vector<std::uint32_t>{0, 1, 2, 4}));
}

TEST(BoardRunTest, RunLengthWithoutFlagsAgreesWithTheFlaggingQuery) {
    srandom(21);
    std::vector<int> colours(17 * 9);
    for (int& c : colours) c = static_cast<int>(random() % 4);  // 0: holes
    auto game = makeGame(17, 9, colours);
    game->setupMaxLinearColors = 2;
    Board board(*game);
    Flags flags = board.makeFlags();
    for (const BoardPiece& p : game->board)
        ASSERT_EQ(board.straightRunLength(p), board.getRegionLinearColorCountForPiece(p, flags))
            << p.x << "," << p.y;
}

TEST(BoardSelectionTest, NthSelectedPieceSkipsHoles) {
    auto game = makeGame(3, 3, {1, 2, 1, 2, 1, 0, 1, 1, 1});
    Board board(*game);
    game->board[6].selected = game->board[1].selected = game->board[5].selected = 1;  // 5: hole
    std::uint32_t count = 0;
    EXPECT_EQ(board.getNthSelectedPiece(1, count), &game->board[1]);
    EXPECT_EQ(board.getNthSelectedPiece(2, count = 0), &game->board[6]);
    EXPECT_EQ(board.getNthSelectedPiece(3, count = 0), nullptr);
    EXPECT_EQ(count, 2u);
}

// A game as the rules give it: no board yet.
std::unique_ptr<GameInfo> freshGame(int w, int h, int colours, int maxLinear = 0) {
    auto game = makeGame(w, h);
    game->board.clear();
    game->numColors = static_cast<std::uint8_t>(colours);
    game->setupMaxLinearColors = static_cast<std::uint8_t>(maxLinear);
    return game;
}

TEST(BoardSetupTest, NumbersRunDownTheColumnsAndEachCellDrawsColourThenShape) {
    auto game = freshGame(3, 2, 5);
    game->numShapes = 3;
    testing::RecordingView view;
    srandom(42);
    std::vector<std::pair<long, long>> draws(6);
    for (auto& d : draws) d.first = random() % 5 + 1, d.second = random() % 3 + 1;
    srandom(42);
    setupGame(*game, view);
    EXPECT_EQ(view.spriteClears, 1);
    ASSERT_EQ(game->board.size(), 6u);
    for (std::uint32_t n = 0; n < 6; ++n) {
        const BoardPiece& p = game->board[n];
        EXPECT_EQ(std::vector<long>({p.pieceID, p.x, p.y, p.colorIndex, p.shapeIndex}),
                  std::vector<long>({n + 1, n / 2, n % 2, draws[n].first, draws[n].second}));
    }
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
    auto game = freshGame(8, 8, 8, 2);
    game->colorsMatchShapes = 1;
    testing::RecordingView view;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        srandom(seed);
        const std::string out = stdoutOf([&] { setupGame(*game, view); });
        EXPECT_NE(out.find("Color count for piece 1 at 0,0 is "), std::string::npos);
        Board board(*game);
        auto colour = [&](int x, int y) { return board.getBoardPieceAtX(x, y).colorIndex; };
        for (int x = 0; x < 8; ++x)
            for (int y = 0; y < 8; ++y) {
                const int c = colour(x, y);
                EXPECT_EQ(board.getBoardPieceAtX(x, y).shapeIndex, c);
                EXPECT_FALSE(x >= 2 && colour(x - 1, y) == c && colour(x - 2, y) == c) << seed;
                EXPECT_FALSE(y >= 2 && colour(x, y - 1) == c && colour(x, y - 2) == c) << seed;
            }
    }
}

TEST(BoardSetupTest, RepairWithNoFittingColourGoesOn) {
    // With a limit of 1 a piece whose left and lower neighbours differ has no colour that fits.
    auto game = freshGame(6, 6, 3, 1);
    testing::RecordingView view;
    srandom(11);
    EXPECT_NE(testing::stderrOf([&] { setupGame(*game, view); }).find("no colour keeps the runs"),
              std::string::npos);
    EXPECT_EQ(game->board.size(), 36u);
}

TEST(BoardSetupTest, NoLimitCountsNothingAndNoFillGivesEmptyCells) {
    auto game = freshGame(3, 4, 2);
    testing::RecordingView view;
    EXPECT_EQ(stdoutOf([&] { setupGame(*game, view); }), "");
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
    auto game = makeGame(2, 3, {1, 2, 3, 4, 0, 1});
    EXPECT_EQ(stdoutOf([&] { printBoardColors(*game); }), "123\n401\n\n");
}

}  // namespace
}  // namespace tolvar
