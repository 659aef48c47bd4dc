// The board (window points, regions, runs, fill and repair), its actions (falling pieces,
// closing up lines, select-and-remove, refills, line resolution) and the end-of-game test.
#include <cmath>
#include <cstdlib>

#include "EngineFakes.h"
#include "engine/Board.h"
#include "engine/BoardActions.h"
#include "engine/BoardSetup.h"
#include "engine/Completion.h"
#include "engine/RandomSequence.h"

namespace tolvar {
namespace {

using namespace testing;

TEST(BoardWindowPointTest, PointsMapToCellsAndLessThanACellOutsideTruncatesToTheEdge) {
    auto game = makeGame(8, 8);  // cells 93.5 wide from (138, 10)
    Board board(*game, GameOutput());
    const auto& b = game->board;
    struct Case { float x, y; int cell; };  // cell: x * 8 + y, or -1: none
    const Case cases[] = {{138, 10, 0},    {885.9f, 757.9f, 63}, {88, -40, 0},
                          {1000, 400, -1}, {886, 100, -1},      {300, 758, -1},
                          {44.5f, 20, -1}, {-1e30f, 1e30f, -1}, {std::nanf(""), 20, -1}};
    for (const Case& c : cases)
        EXPECT_EQ(board.getBoardPieceAtWindowX(c.x, c.y), c.cell < 0 ? nullptr : &b[c.cell])
            << c.x << "," << c.y;
}

TEST(BoardRegionTest, RegionsFollowColourAndStopAtHolesDiagonalsAndFlaggedPieces) {
    auto game = makeGame(3, 3, {1, 2, 1, 2, 1, 0, 1, 1, 1});  // 121 | 21. | 111
    Board board(*game, GameOutput());
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
    Board board(*game, GameOutput());
    Flags flags = board.makeFlags();
    EXPECT_EQ(board.getRegionColorCountForPiece(board.getBoardPieceAtX(0, 0), flags), 65025u);
    flags.clear();
    board.selectRegionColorPieces(board.getBoardPieceAtX(254, 254), flags);
    EXPECT_EQ(selectedCount(*game), 65025);
    flags.clear();
    board.deSelectRegionColorPieces(board.getBoardPieceAtX(100, 7), flags);
    EXPECT_EQ(selectedCount(*game), 0);
}

TEST(BoardRunTest, OnlyRunsLongerThanTheLimitAreFlaggedAndAHoleEndsOne) {
    auto game = makeGame(3, 3, std::vector<int>(9, 2));
    game->setupMaxLinearColors = 2;
    Board board(*game, GameOutput());
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
    Board rowBoard(*row, GameOutput());
    EXPECT_EQ(rowBoard.getRegionLinearColorCountForPiece(row->board[0], flags), 2u);
    EXPECT_TRUE(flags.setNumbers().empty());
    EXPECT_EQ(rowBoard.getRegionLinearColorCountForPiece(row->board[2], flags), 4u);  // starts one
    EXPECT_EQ(flags.setNumbers(), (std::vector<std::uint32_t>{0, 1, 2, 4}));
    EXPECT_EQ(rowBoard.straightRunLength(row->board[2]), 4u);  // the same count without flags
    EXPECT_EQ(rowBoard.straightRunLength(row->board[3]), 1u);
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
    StandInHost host;
    StandInView view{host};
    RandomSequence random;
    random.seed(42);
    std::vector<long> want;  // number, place, colour, shape: a braced list draws in order
    for (long n = 0; n < 6; ++n)
        want.insert(want.end(), {n + 1, n / 2, n % 2, random.next() % 5 + 1, random.next() % 3 + 1});
    random.seed(42);
    setupGame(*game, view, random, GameOutput());
    EXPECT_EQ(view.spriteClears, 1);
    std::vector<long> got;
    for (const BoardPiece& p : game->board)
        got.insert(got.end(), {p.pieceID, p.x, p.y, p.colorIndex, p.shapeIndex});
    EXPECT_EQ(got, want);
}

TEST(BoardSetupTest, RepairLeavesNoLineOfThreeKeepsShapesMatchedAndNeverLoops) {
    auto game = freshGame(8, 8, 8, 2);
    game->colorsMatchShapes = 1;
    StandInHost host;
    StandInView view{host};
    RandomSequence random;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        random.seed(seed);
        EXPECT_NE(stdoutOf([&] { setupGame(*game, view, random, GameOutput()); }).find("Color count for piece 1 at 0,0"),
                  std::string::npos);
        Board board(*game, GameOutput());
        auto colour = [&](int x, int y) { return board.getBoardPieceAtX(x, y).colorIndex; };
        for (int x = 0; x < 8; ++x)
            for (int y = 0; y < 8; ++y) {
                const int c = colour(x, y);
                EXPECT_EQ(board.getBoardPieceAtX(x, y).shapeIndex, c);
                EXPECT_FALSE(x >= 2 && colour(x - 1, y) == c && colour(x - 2, y) == c) << seed;
                EXPECT_FALSE(y >= 2 && colour(x, y - 1) == c && colour(x, y - 2) == c) << seed;
            }
    }
    // With a limit of 1 a piece whose left and lower neighbours differ has no colour that fits.
    auto stuck = freshGame(6, 6, 3, 1);
    random.seed(11);
    EXPECT_NE(stderrOf([&] { setupGame(*stuck, view, random, GameOutput()); }).find("no colour keeps the runs"),
              std::string::npos);
    EXPECT_EQ(stuck->board.size(), 36u);
}

TEST(BoardSetupTest, NoLimitCountsNothingAndNoFillGivesEmptyCells) {
    auto game = freshGame(3, 4, 2);
    StandInHost host;
    StandInView view{host};
    RandomSequence random;
    EXPECT_EQ(stdoutOf([&] { setupGame(*game, view, random, GameOutput()); }), "");
    game->setupRandomFill = 0;
    game->board.clear();
    const long before = (random.seed(5), random.next());
    random.seed(5);
    setupGame(*game, view, random, GameOutput());
    EXPECT_EQ(random.next(), before);  // nothing was drawn
    EXPECT_EQ(boardPicture(*game), "....|....|....");
    EXPECT_EQ(std::pair(game->board[7].x, game->board[7].y), std::pair(1u, 3u));
    EXPECT_EQ(stdoutOf([&] { printBoardColors(*makeGame(2, 3, {1, 2, 3, 4, 0, 1}), GameOutput()); }),
              "123\n401\n\n");
}

struct BoardActionsTest : EngineFixture {
    std::string select(std::uint32_t criteria, int minPieces, int remove) {  // what it printed
        GameAction a;
        a.actionCriteria = criteria, a.minPieces = minPieces, a.removePieces = remove;
        return stdoutOf([&] { actions.performActionSelectColor(a); });
    }
    BoardActions actions{ctx};
};

TEST_F(BoardActionsTest, CollapseExamples) {
    using Collapse = void (BoardActions::*)(int);
    const Collapse fall = &BoardActions::performActionCollapseInDirection;
    const Collapse empty = &BoardActions::performActionCollapseEmptyRows;
    const Collapse full = &BoardActions::performActionCollapseFullRows;
    const std::vector<int> rows{1, 1, 2, 0, 1, 1, 0, 3, 1, 1, 0, 0};  // rows 0 and 1 full
    struct Case { int w, h; std::vector<int> colours; Collapse collapse; int direction;
                  const char* after; std::vector<std::uint32_t> ids;
                  std::vector<std::string> moves; };
    const Case cases[] = {
        // Falling runs in passes, the lowest hole first, each move shown before it is made.
        {1, 4, {0, 2, 0, 3}, fall, kDirectionDown, "23..", {2, 4, 0, 0},
         {"2 from 0 1 to 0 0 ", "4 from 0 3 to 0 1 "}},
        {2, 3, {0, 2, 0, 3, 0, 1}, fall, kDirectionLeft, ".2.|3.1", {0, 2, 0, 4, 0, 6}, {}},
        {5, 2, {1, 2, 0, 0, 0, 0, 3, 4, 2, 1}, empty, kDirectionLeft, "12|34|21|..|..",
         {1, 2, 7, 8, 9, 10, 0, 0, 0, 0}, {}},
        {2, 3, {0, 2, 3, 0, 4, 1}, empty, kDirectionDown, "23.|41.", {2, 3, 0, 5, 6, 0}, {}},
        {3, 4, rows, full, kDirectionDown, "2...|.3..|....", {3, 0, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0},
         {}},
        {3, 4, rows, full, kDirectionLeft, "112.|11.3|11..", {1, 2, 3, 0, 5, 6, 0, 8, 9, 10, 0, 0},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.after);
        GameInfo& game = installGame(c.w, c.h, c.colours);
        view.moves.clear();
        view.recordMoves = true;
        (actions.*c.collapse)(c.direction);
        EXPECT_EQ(boardPicture(game), c.after);
        for (std::size_t n = 0; n < game.board.size(); ++n) {
            const BoardPiece& p = game.board[n];
            EXPECT_EQ(std::vector<std::size_t>({p.pieceID, p.x, p.y}),
                      std::vector<std::size_t>({c.ids[n], n / c.h, n % c.h})) << n;
        }
        EXPECT_EQ(view.moves, c.moves);
    }
}

TEST_F(BoardActionsTest, ARegionSwapThatJoinsNothingStaysButALineSwapIsUndone) {
    GameInfo& game = installGame(3, 3, {1, 2, 3, 2, 3, 1, 3, 1, 2});
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    EXPECT_EQ(select(0x53, 3, 1), "");  // no gesture: nothing to look at
    ctx.downPiece = &game.board[0];     // (0,0) and (1,0) were just swapped
    ctx.upPiece = &game.board[3];
    select(0x13, 2, 1);
    EXPECT_EQ(boardPicture(game), "123|231|312");
    ctx.downPiece->selected = ctx.upPiece->selected = 1;
    EXPECT_EQ(select(0x53, 3, 1),
              "piece count up = 1, min pieces = 3\npiece count down = 1, min pieces = 3\n");
    EXPECT_EQ(boardPicture(game), "223|131|312");  // swapped back
    EXPECT_EQ(selectedCount(game), 0);
    EXPECT_EQ(view.flashFrames, 0);
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(BoardActionsTest, LineIsFlashedRemovedAndUnselected) {
    GameInfo& game = installGame(3, 3, {1, 2, 3, 1, 3, 2, 1, 2, 3});
    game.setupMaxLinearColors = 2;
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    addEvent(game, 2, kEventPiecesRemoved);
    EXPECT_EQ(stdoutOf([&] { actions.removeSelectedPieces(); }), "");  // nothing selected
    EXPECT_EQ(game.eventQueue, nullptr);
    ctx.upPiece = &game.board[6];  // (2,0): row 0 is 1 1 1
    EXPECT_EQ(select(0x52, 3, 1),
              "piece count up = 3, min pieces = 3\nSelecting flagged up pieces.\n"
              "count 1 selected piece 1 at (0,0)\ncount 4 selected piece 4 at (1,0)\n"
              "count 7 selected piece 7 at (2,0)\n"
              "Removing piece 1 at 0,0\nRemoving piece 4 at 1,0\nRemoving piece 7 at 2,0\n");
    EXPECT_EQ(view.flashFrames, 6);
    EXPECT_EQ(game.selectColor.red, kDefaultSelectColor.red);
    ASSERT_EQ(queued(game), 1);
    EXPECT_EQ(game.eventQueue->eventType, kEventPiecesRemoved);
    EXPECT_EQ(selectedCount(game), 0);
}

TEST_F(BoardActionsTest, RefillHandsOutSmallestFreeNumbersInScanOrder) {
    GameInfo& game = installGame(4, 6);
    game.numColors = 8;
    game.board[0].pieceID = game.board[5].pieceID = game.board[23].pieceID = 0;
    game.board[23].selected = 1;
    ctx.random.seed(9);
    actions.performActionFillSpacesRandomly();
    for (std::uint32_t n = 0; n < 24; ++n) EXPECT_EQ(game.board[n].pieceID, n + 1);
    EXPECT_EQ(game.board[23].selected, 0);
    for (const BoardPiece& p : game.board) {
        EXPECT_GE(p.colorIndex, 1);
        EXPECT_LE(p.colorIndex, 8);
    }
    game.board[0].pieceID = game.board[9].pieceID = 0;  // numbers free at the time: 1 is taken
    game.board[1].pieceID = 1;
    actions.performActionFillSpacesRandomly();
    EXPECT_EQ(game.board[0].pieceID, 2u);
    EXPECT_EQ(game.board[9].pieceID, 10u);
}

TEST_F(BoardActionsTest, ResolveRemovesALineOfFourInOnePassAndStopsWhenNothingIsRemoved) {
    GameInfo& game = installGame(4, 2, {1, 2, 1, 3, 1, 2, 1, 3});  // row 0 is 1 1 1 1
    game.setupMaxLinearColors = 2;
    auto& swap = addUserEvent(game, 1, kUserEventSwapAdjacent);
    swap.triggerAction = std::make_shared<GameAction>();
    swap.triggerAction->removePieces = 1;
    addEvent(game, 2, kEventPiecesRemoved);
    const std::string out = stdoutOf([&] { actions.performActionResolveMatches(); });
    EXPECT_EQ(boardPicture(game), ".2|.3|.2|.3");
    EXPECT_NE(out.find("Removing piece 7 at 3,0\n"), std::string::npos);
    EXPECT_EQ(view.flashFrames, 6);  // one removal
    EXPECT_EQ(queued(game), 1);
    GameInfo& kept = installGame(3, 1, {2, 2, 2});
    kept.setupMaxLinearColors = 2;
    stdoutOf([&] { actions.performActionResolveMatches(); });  // no swap event removes it
    EXPECT_EQ(boardPicture(kept), "2|2|2");
    EXPECT_EQ(kept.board[0].selected, 1);
}

TEST_F(BoardActionsTest, EachKindOfGameEndsWhenNoMoveIsLeft) {
    Completion completion{ctx};
    const std::uint32_t region = kUserEventSelectColorRegion, swap = kUserEventSwapAdjacent;
    struct Case { std::uint32_t kind; int w, maxLinear; std::vector<int> colours;
                  int hole; bool criteria, over; };  // hole: a cell emptied that keeps its colour
    const Case cases[] = {
        {region, 3, 0, {1, 2, 1, 2, 1, 2, 1, 2, 1}, -1, true, true},
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, -1, true, false},  // (1,1) joins (1,0)
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, 4, true, true},    // a hole joins nothing
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, -1, false, true},  // no criteria: over
        {swap, 3, 0, {1, 1, 1}, -1, true, true},                       // groups of one colour
        {swap, 3, 0, {1, 1, 2}, -1, true, false},
        {swap, 3, 0, {1, 3, 2}, -1, true, true},
        {swap, 3, 0, {1, 12, 12}, -1, true, false},                  // colours above 9 count too
        {swap, 3, 2, {1, 2, 3, 2, 3, 1, 4, 5, 6}, -1, true, true},   // lines: no swap helps
        {swap, 3, 2, {1, 2, 3, 2, 3, 1, 3, 3, 3}, -1, true, false},  // a line already there
        {swap, 3, 2, {1, 2, 3, 1, 3, 2, 4, 1, 6}, -1, true, false},  // (2,0) up makes row 0
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << &c - cases);
        GameInfo& g = installGame(c.w, static_cast<int>(c.colours.size()) / c.w, c.colours);
        g.setupMaxLinearColors = static_cast<std::uint8_t>(c.maxLinear);
        g.numColors = 8;
        if (c.hole >= 0) g.board[c.hole].pieceID = 0;
        addEvent(g, 3, kEventNoMovesLeft);
        if (c.criteria) g.completionCriteria = std::make_unique<CompletionCriterion>();
        if (c.criteria) g.completionCriteria->completionType = kCompletionNoMovesLeft;
        addUserEvent(g, 1, c.kind).minimumPieces = 2;
        const std::string before = boardPicture(g);
        const int draws = view.draws;
        completion.performActionCheckForGameCompletion();
        EXPECT_EQ(g.eventQueue != nullptr, c.over);
        EXPECT_EQ(boardPicture(g), before);  // trial swaps are put back
        EXPECT_EQ(view.draws - draws, c.maxLinear && c.over ? 1 : 0);  // redrawn when stuck
    }
}

}  // namespace
}  // namespace tolvar
