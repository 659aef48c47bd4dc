// Board actions (falling pieces, closing up lines, select-and-remove, refills, line
// resolution) and the test for a move left.
#include <cstdlib>

#include "EngineFakes.h"
#include "engine/BoardActions.h"
#include "engine/Completion.h"
#include "engine/SelectColor.h"

namespace tolvar {
namespace {

using testing::addEvent;
using testing::addUserEvent;
using testing::boardPicture;
using testing::installGame;
using testing::stdoutOf;

class BoardActionsTest : public testing::EngineFixture {
protected:
    // Runs a select-colour action; returns what it printed.
    std::string select(std::uint32_t criteria, int minPieces, int remove) {
        GameAction a;
        a.actionCriteria = criteria;
        a.minPieces = minPieces;
        a.removePieces = remove;
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
    struct Case {
        int w, h;
        std::vector<int> colours;
        Collapse collapse;
        int direction;
        const char* after;
        std::vector<std::uint32_t> ids;
        std::vector<std::string> moves;
    };
    const Case cases[] = {
        // Falling runs in passes, the lowest hole first, each move shown before it is made.
        {1, 4, {0, 2, 0, 3}, fall, kDirectionDown, "23..", {2, 4, 0, 0},
         {"2: 0,1 -> 0,0", "4: 0,3 -> 0,1"}},
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
        (actions.*c.collapse)(c.direction);
        EXPECT_EQ(boardPicture(game), c.after);
        for (std::size_t n = 0; n < game.board.size(); ++n) {
            const BoardPiece& p = game.board[n];
            EXPECT_EQ(std::vector<std::size_t>({p.pieceID, p.x, p.y}),
                      std::vector<std::size_t>({c.ids[n], n / c.h, n % c.h})) << n;
        }
        if (c.collapse == fall) {
            EXPECT_EQ(view.moves, c.moves);
        }
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
    EXPECT_EQ(testing::selectedCount(game), 0);
    EXPECT_EQ(view.flashFrames, 0);
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(BoardActionsTest, LineIsFlashedAndRemoved) {
    GameInfo& game = installGame(3, 3, {1, 2, 3, 1, 3, 2, 1, 2, 3});
    game.setupMaxLinearColors = 2;
    addUserEvent(game, 1, kUserEventSwapAdjacent);
    addEvent(game, 2, kEventPiecesRemoved);
    ctx.upPiece = &game.board[6];  // (2,0): row 0 is 1 1 1
    EXPECT_EQ(select(0x52, 3, 1),
              "piece count up = 3, min pieces = 3\nSelecting flagged up pieces.\n"
              "count 1 selected piece 1 at (0,0)\ncount 4 selected piece 4 at (1,0)\n"
              "count 7 selected piece 7 at (2,0)\n"
              "Removing piece 1 at 0,0\nRemoving piece 4 at 1,0\nRemoving piece 7 at 2,0\n");
    EXPECT_EQ(view.flashFrames, 6);
    EXPECT_EQ(gSelectColor.red, kDefaultSelectColor.red);
    ASSERT_EQ(testing::queued(game), 1);
    EXPECT_EQ(game.eventQueue->eventType, kEventPiecesRemoved);
}

TEST_F(BoardActionsTest, RefillHandsOutSmallestFreeNumbersInScanOrder) {
    GameInfo& game = installGame(4, 6);
    game.numColors = 8;
    game.board[0].pieceID = game.board[5].pieceID = game.board[23].pieceID = 0;
    game.board[23].selected = 1;
    srandom(9);
    actions.performActionFillSpacesRandomly();
    for (std::uint32_t n = 0; n < 24; ++n) EXPECT_EQ(game.board[n].pieceID, n + 1);
    EXPECT_EQ(game.board[23].selected, 0);
    for (const BoardPiece& p : game.board) EXPECT_TRUE(p.colorIndex >= 1 && p.colorIndex <= 8);
    // Holes take the numbers free at the time: here 1 is taken, so the first hole gets 2.
    game.board[0].pieceID = game.board[9].pieceID = 0;
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
    EXPECT_EQ(testing::queued(game), 1);

    GameInfo& kept = installGame(3, 1, {2, 2, 2});
    kept.setupMaxLinearColors = 2;
    stdoutOf([&] { actions.performActionResolveMatches(); });  // no swap event removes it
    EXPECT_EQ(boardPicture(kept), "2|2|2");
    EXPECT_EQ(kept.board[0].selected, 1);
}

TEST_F(BoardActionsTest, RemovalRepeatsCellsEmptiedEarlier) {
    GameInfo& game = installGame(2, 1, {0, 1});
    addEvent(game, 2, kEventPiecesRemoved);
    EXPECT_EQ(stdoutOf([&] { actions.removeSelectedPieces(); }), "");
    EXPECT_EQ(game.eventQueue, nullptr);
    game.board[0].selected = 1;
    EXPECT_EQ(stdoutOf([&] { actions.removeSelectedPieces(); }), "Removing piece 0 at 0,0\n");
    EXPECT_NE(game.eventQueue, nullptr);
}

TEST_F(BoardActionsTest, EachKindOfGameEndsWhenNoMoveIsLeft) {
    Completion completion{ctx};
    const std::uint32_t region = kUserEventSelectColorRegion, swap = kUserEventSwapAdjacent;
    struct Case {
        std::uint32_t kind;
        int w, maxLinear;
        std::vector<int> colours;
        int hole;  // a cell emptied that keeps its colour
        bool criteria, over;
    };
    const Case cases[] = {
        {region, 3, 0, {1, 2, 1, 2, 1, 2, 1, 2, 1}, -1, true, true},
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, -1, true, false},  // (1,1) joins (1,0)
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, 4, true, true},    // a hole joins nothing
        {region, 3, 0, {1, 2, 1, 2, 2, 2, 1, 2, 1}, -1, false, true},   // no criteria: over
        {swap, 3, 0, {1, 1, 1}, -1, true, true},                       // groups of one colour
        {swap, 3, 0, {1, 1, 2}, -1, true, false},
        {swap, 3, 0, {1, 3, 2}, -1, true, true},
        {swap, 3, 0, {1, 12, 12}, -1, true, false},  // colours above 9 count too
        {swap, 3, 2, {1, 2, 3, 2, 3, 1, 4, 5, 6}, -1, true, true},  // lines: no swap helps
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
