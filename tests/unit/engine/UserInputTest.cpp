// The input poll: new events only, mouse gestures, keys, Escape and the space bar.
#include <gtest/gtest.h>

#include "EngineFakes.h"
#include "engine/UserInput.h"

namespace tolvar {
namespace {

using testing::addEvent;
using testing::addUserEvent;
using testing::installGame;

// Window points of the cells of an 8 x 8 board without square shapes (93.5 per cell from
// (138, 10)).
float cellX(int x) { return 138.0f + 93.5f * static_cast<float>(x) + 40.0f; }
float cellY(int y) { return 10.0f + 93.5f * static_cast<float>(y) + 40.0f; }

class UserInputTest : public ::testing::Test {
protected:
    void TearDown() override { gameInfo.reset(); }
    void mouse(std::int64_t type, int x, int y) {
        host.event = CurrentEvent{};
        host.event.type = type;
        host.event.x = cellX(x);
        host.event.y = cellY(y);
        input.checkUserEvents();
    }
    void key(std::int64_t type, std::uint16_t code, const std::string& characters) {
        host.event = CurrentEvent{};
        host.event.type = type;
        host.event.keyCode = code;
        host.event.characters = characters;
        input.checkUserEvents();
    }
    void click(int x, int y) {
        mouse(kEventTypeMouseDown, x, y);
        mouse(kEventTypeMouseUp, x, y);
    }
    // A game whose user events are those of the colour-region game: space removes the
    // selection, a click selects a region of at least two.
    GameInfo& regionGame() {
        std::vector<int> colours(64, 0);
        for (int n = 0; n < 64; ++n) colours[n] = 1 + (n + n / 8) % 2;  // a checkerboard
        colours[0] = colours[1] = colours[8] = 3;                     // a region of three
        GameInfo& game = installGame(8, 8, colours);
        addUserEvent(game, 1, kUserEventRemoveSelection).userEventCharacter = 32;
        addUserEvent(game, 2, kUserEventSelectColorRegion).minimumPieces = 2;
        addEvent(game, 2, kEventPiecesRemoved);
        ctx.gamePaused = 0;
        return game;
    }
    int selectedCount() const {
        int n = 0;
        for (const BoardPiece& p : gameInfo->board) n += p.selected;
        return n;
    }
    int queued() const {
        int n = 0;
        for (auto* e = gameInfo->eventQueue.get(); e; e = e->next.get()) ++n;
        return n;
    }

    testing::RecordingView view;
    testing::RecordingHost host;
    EngineContext ctx{view, host};
    UserInput input{ctx};
};

TEST_F(UserInputTest, ClickSelectsAndDeselectsARegionAndSpaceRemovesIt) {
    GameInfo& game = regionGame();
    click(3, 3);  // a lone piece
    EXPECT_EQ(selectedCount(), 0);
    click(1, 0);
    EXPECT_EQ(selectedCount(), 3);
    click(0, 1);
    EXPECT_EQ(selectedCount(), 0);
    click(0, 0);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(game.board[0].pieceID, 0u);
    EXPECT_EQ(game.board[8].pieceID, 0u);
    EXPECT_EQ(game.board[0].selected, 1);  // removal leaves the mark
    EXPECT_EQ(queued(), 1);
    // The same key again without another event between is a repeat: nothing more.
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(), 1);
    // Released and pressed again: the emptied cells still carry the mark, so it queues again.
    key(kEventTypeKeyUp, 49, " ");
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(), 2);
}

TEST_F(UserInputTest, ADifferentKeyIsNewButTheSameMouseEventIsNot) {
    GameInfo& game = regionGame();
    addUserEvent(game, 3, kUserEventRemoveSelection).userEventCharacter = 'x';
    click(1, 0);
    key(kEventTypeKeyDown, 7, "x");
    EXPECT_EQ(queued(), 1);
    key(kEventTypeKeyDown, 49, " ");  // another key while the first is held: new
    EXPECT_EQ(queued(), 2);
    // A second mouse-up in a row is the same event seen again.
    mouse(kEventTypeMouseUp, 5, 5);
    const BoardPiece* up = ctx.upPiece;
    mouse(kEventTypeMouseUp, 6, 6);
    EXPECT_EQ(ctx.upPiece, up);
}

TEST_F(UserInputTest, MouseOutsideTheBoardOrOnAHoleDoesNothing) {
    GameInfo& game = regionGame();
    game.board[9].pieceID = 0;  // (1,1)
    host.event = CurrentEvent{};
    host.event.type = kEventTypeMouseUp;
    host.event.x = 5.0f;
    host.event.y = 5.0f;
    input.checkUserEvents();
    EXPECT_EQ(ctx.upPiece, nullptr);
    mouse(kEventTypeMouseDown, 1, 1);
    mouse(kEventTypeMouseUp, 1, 1);
    EXPECT_EQ(selectedCount(), 0);
}

TEST_F(UserInputTest, KeysWaitForThePauseButMouseAndEscapeDoNot) {
    GameInfo& game = regionGame();
    ctx.gamePaused = 1;
    click(1, 0);
    EXPECT_EQ(selectedCount(), 3);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(), 0);
    host.scoresTimer = true;
    key(kEventTypeKeyUp, 49, " ");
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_FALSE(host.scoresTimer);  // the space bar stops the score screen

    game.score = 77;
    game.scoreMultiplier = 10;
    host.scoresTimer = true;
    srandom(1);
    key(kEventTypeKeyDown, kKeyCodeEscape, "\x1b");
    EXPECT_EQ(game.score, 0u);
    EXPECT_EQ(game.scoreMultiplier, 1u);
    EXPECT_FALSE(host.scoresTimer);
    EXPECT_EQ(host.projectionResets, 1);
    EXPECT_EQ(ctx.gameStarted, 1);
    EXPECT_EQ(ctx.gamePaused, 0);
    EXPECT_EQ(ctx.upPiece, nullptr);  // the old board is gone
    EXPECT_EQ(game.board.size(), 64u);
    // Until the next tick the poll ignores input.
    click(1, 0);
    EXPECT_EQ(ctx.upPiece, nullptr);
}

TEST_F(UserInputTest, DragSwapsNeighboursWhenColoursDiffer) {
    std::vector<int> colours(64);
    for (int n = 0; n < 64; ++n) colours[n] = 1 + (n % 3);
    GameInfo& game = installGame(8, 8, colours);
    auto& swap = addUserEvent(game, 1, kUserEventSwapAdjacent);
    swap.triggerAction = std::make_shared<GameAction>();
    swap.triggerAction->actionCriteria = 0x10;
    ctx.gamePaused = 0;

    // (0,0) colour 1 and (0,1) colour 2: swapped, and the trigger is queued.
    mouse(kEventTypeMouseDown, 0, 0);
    EXPECT_EQ(game.board[0].selected, 1);
    mouse(kEventTypeMouseUp, 0, 1);
    EXPECT_EQ(game.board[0].colorIndex, 2);
    EXPECT_EQ(game.board[1].colorIndex, 1);
    EXPECT_EQ(game.board[0].pieceID, 1u);  // numbers stay with the cells
    EXPECT_EQ(selectedCount(), 0);
    ASSERT_NE(game.eventQueue, nullptr);
    EXPECT_EQ(game.eventQueue->eventID, kUserTriggerEventID);
    EXPECT_EQ(game.eventQueue->eventType, kEventUserTrigger);
    game.eventQueue.reset();

    // Diagonal: nothing swapped, both cleared.
    mouse(kEventTypeMouseDown, 2, 2);
    mouse(kEventTypeMouseUp, 3, 3);
    EXPECT_EQ(selectedCount(), 0);
    EXPECT_EQ(game.eventQueue, nullptr);

    // Two neighbours of one colour: the trigger allows no swap.
    game.board[2].colorIndex = 5;
    game.board[10].colorIndex = 5;
    mouse(kEventTypeMouseDown, 0, 2);
    mouse(kEventTypeMouseUp, 1, 2);
    EXPECT_EQ(game.eventQueue, nullptr);
    EXPECT_EQ(selectedCount(), 0);
}

TEST_F(UserInputTest, TwoClicksSwapInBoardOrderAndNoTriggerSwapsAnything) {
    std::vector<int> colours(64, 4);
    GameInfo& game = installGame(8, 8, colours);
    addUserEvent(game, 1, kUserEventSwapAdjacent);  // no trigger action
    ctx.gamePaused = 0;
    game.board[8].colorIndex = 2;  // (1,0)
    click(1, 0);                   // leaves (1,0) selected
    EXPECT_EQ(game.board[8].selected, 1);
    mouse(kEventTypeMouseDown, 0, 0);  // two selected now
    mouse(kEventTypeMouseUp, 0, 0);
    EXPECT_EQ(game.board[0].colorIndex, 2);
    EXPECT_EQ(game.board[8].colorIndex, 4);
    EXPECT_EQ(ctx.downPiece, &game.board[0]);  // first in board order
    EXPECT_EQ(ctx.upPiece, &game.board[8]);
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(UserInputTest, SearchesFindTheLastListedAndEmptyCharactersMatchNoKey) {
    GameInfo& game = regionGame();
    EXPECT_EQ(input.mouseUpIsUserAction()->userEventID, 2u);
    EXPECT_EQ(input.charIsUserAction(32)->userEventID, 1u);
    EXPECT_EQ(input.charIsUserAction(0)->userEventID, 2u);  // the one without a key
    EXPECT_EQ(input.isUserEventSupported(kUserEventSwapAdjacent), nullptr);
    // A region event reached from a key with no mouse-up yet does nothing.
    game.userEvents->userEventCharacter = 'r';
    ctx.upPiece = nullptr;
    key(kEventTypeKeyDown, 8, "r");
    EXPECT_EQ(selectedCount(), 0);
}

}  // namespace
}  // namespace tolvar
