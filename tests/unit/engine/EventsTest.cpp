// The event tick (the start event, the order of actions, the completion rule with several
// pending removals) and the input poll (new events only, gestures, keys, Escape).
#include "EngineFakes.h"
#include "engine/Dispatcher.h"
#include "engine/EventQueue.h"
#include "engine/UserInput.h"

namespace tolvar {
namespace {

using testing::addEvent;
using testing::addUserEvent;
using testing::appendAction;
using testing::installGame;
using testing::queued;
using testing::selectedCount;

struct DispatcherTest : testing::EngineFixture {
    void SetUp() override { installGame(2, 2, {1, 2, 3, 4}), ctx.gamePaused = 0; }
    std::string tick() { return testing::stdoutOf([&] { dispatcher.processEvents(); }); }
    void queue(const SupportedEvent& e) { EventQueue(*gameInfo).addEventToQueue(e.copyForQueue()); }
    Dispatcher dispatcher{ctx};
};

TEST_F(DispatcherTest, ActionsRunInListOrderAndUnknownOnesAreSkipped) {
    SupportedEvent& start = addEvent(*gameInfo, 1, kEventGameStarted);
    appendAction(start.actions, 30, 2).amount = 4;  // multiplier 1 + 4
    appendAction(start.actions, 31, 0);
    appendAction(start.actions, 32, 1).amount = -1;  // score -= multiplier
    appendAction(start.actions, 33, 25);
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "processing event 1\naction 30\naction 31\nunknown action specified.\n"
                      "action 32\naction 33\nunknown action specified.\n");
    EXPECT_EQ(gameInfo->scoreMultiplier, 5u);
    EXPECT_EQ(gameInfo->score, static_cast<std::uint64_t>(-5));  // wrapped below zero
    EXPECT_EQ(ctx.gameStarted, 0);
    EXPECT_EQ(view.draws, 2);  // action 1 and the end of the tick
}

TEST_F(DispatcherTest, StartEventReplacesWhateverWasPendingAndIsOptional) {
    GameInfo& game = *gameInfo;
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "");  // no start event: only the flag goes
    EXPECT_EQ(ctx.gameStarted, 0);
    addEvent(game, 1, kEventGameStarted);
    addEvent(game, 4, kEventPiecesRemoved);
    queue(addEvent(game, 2, kEventPiecesRemoved));  // listed last: the one found
    EXPECT_EQ(EventQueue(game).isEventSupported(kEventPiecesRemoved)->eventID, 2u);
    EXPECT_EQ(EventQueue(game).isEventSupported(kEventNoMovesLeft), nullptr);
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "processing event 1\n");
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(DispatcherTest, CompletionRunsOnlyForTheLastPendingRemoval) {
    SupportedEvent& removed = addEvent(*gameInfo, 2, kEventPiecesRemoved);
    appendAction(removed.actions, 21, 21);  // no criterion: every completion test ends the game
    appendAction(addEvent(*gameInfo, 3, kEventNoMovesLeft).actions, 40, 3);
    queue(removed);
    queue(removed);
    EXPECT_EQ(tick(), "processing event 2\naction 21\nprocessing event 2\naction 21\n"
                      "processing event 3\naction 40\n");
    queue(removed);
    EXPECT_EQ(tick(), "processing event 2\naction 21\nprocessing event 3\naction 40\n");
}

TEST_F(DispatcherTest, CompletionInAnotherEventWaitsForPendingRemovals) {
    SupportedEvent& removed = addEvent(*gameInfo, 2, kEventPiecesRemoved);
    SupportedEvent& other = addEvent(*gameInfo, 5, 99);
    appendAction(other.actions, 21, 21);
    addEvent(*gameInfo, 3, kEventNoMovesLeft);
    queue(other);
    queue(removed);
    EXPECT_EQ(tick(), "processing event 5\naction 21\nprocessing event 2\n");
    queue(other);
    EXPECT_EQ(tick(), "processing event 5\naction 21\nprocessing event 3\n");
}

TEST_F(DispatcherTest, MissingVariablesAndMessagesAreHarmlessAndPausedTicksDoNotDraw) {
    SupportedEvent& over = addEvent(*gameInfo, 3, kEventNoMovesLeft);
    appendAction(over.actions, 12, 26).variableID = 6;  // no such variable
    appendAction(over.actions, 5, 23).message = "50% done";
    appendAction(over.actions, 6, 23);
    queue(over);
    ctx.gamePaused = 1;
    tick();
    EXPECT_EQ(gameInfo->score, 0u);
    EXPECT_EQ(host.alerts, (std::vector<std::string>{" |50% done|OK", " ||OK"}));
    EXPECT_EQ(view.draws, 2);  // the alerts draw; the paused tick does not
    gameInfo.reset();
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "");  // nothing happens without a game
    EXPECT_EQ(ctx.gameStarted, 1);
}

struct UserInputTest : testing::EngineFixture {
    // Cells of an 8 x 8 board are 93.5 wide from (138, 10); events land inside them.
    void poll(std::int64_t type, int x, int y, std::uint16_t code = 0, const char* text = "") {
        host.event = CurrentEvent{type, code, text, 178 + 93.5f * x, 50 + 93.5f * y};
        input.checkUserEvents();
    }
    void key(std::int64_t type, std::uint16_t code, const char* s) { poll(type, 0, 0, code, s); }
    void click(int x, int y) { poll(kEventTypeMouseDown, x, y), poll(kEventTypeMouseUp, x, y); }
    // Space removes the selection, a click selects a region of at least two: a checkerboard
    // with one region of three at (0,0), (0,1), (1,0).
    GameInfo& regionGame() {
        std::vector<int> colours(64);
        for (int n = 0; n < 64; ++n) colours[n] = 1 + (n + n / 8) % 2;
        colours[0] = colours[1] = colours[8] = 3;
        GameInfo& game = installGame(8, 8, colours);
        addUserEvent(game, 1, kUserEventRemoveSelection).userEventCharacter = ' ';
        addUserEvent(game, 2, kUserEventSelectColorRegion).minimumPieces = 2;
        addEvent(game, 2, kEventPiecesRemoved);
        ctx.gamePaused = 0;
        return game;
    }
    GameInfo& swapGame(const std::vector<int>& colours) {
        GameInfo& game = installGame(8, 8, colours);
        addUserEvent(game, 1, kUserEventSwapAdjacent);
        ctx.gamePaused = 0;
        return game;
    }
    UserInput input{ctx};
};

TEST_F(UserInputTest, ClicksSelectAndDeselectARegionAndAHeldKeyDoesNotRepeat) {
    GameInfo& game = regionGame();
    click(3, 3);  // a lone piece
    EXPECT_EQ(selectedCount(game), 0);
    click(1, 0);
    EXPECT_EQ(selectedCount(game), 3);
    click(0, 1);
    EXPECT_EQ(selectedCount(game), 0);
    click(0, 0);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(testing::boardPicture(game).substr(0, 10), "..121212|.");
    EXPECT_EQ(game.board[0].selected, 1);  // removal leaves the mark
    EXPECT_EQ(queued(game), 1);
    key(kEventTypeKeyDown, 49, " ");  // the same key again with nothing between: a repeat
    EXPECT_EQ(queued(game), 1);
    key(kEventTypeKeyUp, 49, " ");  // released and pressed again: the marks queue once more
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(game), 2);
    addUserEvent(game, 3, kUserEventRemoveSelection).userEventCharacter = 'x';
    key(kEventTypeKeyDown, 7, "x");  // another key while the first is held is new
    EXPECT_EQ(queued(game), 3);
}

TEST_F(UserInputTest, APointOutsideAHoleOrTheSameMouseEventTwiceDoNothing) {
    GameInfo& game = regionGame();
    host.event = CurrentEvent{kEventTypeMouseUp, 0, "", 5.0f, 5.0f};
    input.checkUserEvents();
    EXPECT_EQ(ctx.upPiece, nullptr);
    game.board[9].pieceID = 0;  // (1,1)
    click(1, 1);
    EXPECT_EQ(selectedCount(game), 0);
    poll(kEventTypeMouseUp, 5, 5);
    const BoardPiece* up = ctx.upPiece;
    poll(kEventTypeMouseUp, 6, 6);  // a second mouse-up in a row is the same event
    EXPECT_EQ(ctx.upPiece, up);
}

TEST_F(UserInputTest, KeysWaitForThePauseButMouseAndEscapeDoNot) {
    GameInfo& game = regionGame();
    ctx.gamePaused = 1;
    click(1, 0);
    EXPECT_EQ(selectedCount(game), 3);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(game), 0);
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
    click(1, 0);  // until the next tick the poll ignores input
    EXPECT_EQ(ctx.upPiece, nullptr);
}

TEST_F(UserInputTest, DragSwapsNeighboursOfDifferentColoursWhenTheTriggerAllows) {
    std::vector<int> colours(64);
    for (int n = 0; n < 64; ++n) colours[n] = 1 + (n % 3);
    GameInfo& game = swapGame(colours);
    game.userEvents->triggerAction = std::make_shared<GameAction>();
    game.userEvents->triggerAction->actionCriteria = 0x10;
    poll(kEventTypeMouseDown, 0, 0);
    EXPECT_EQ(game.board[0].selected, 1);
    poll(kEventTypeMouseUp, 0, 1);
    EXPECT_EQ(testing::boardPicture(game).substr(0, 3), "213");  // numbers stay with the cells
    EXPECT_EQ(game.board[0].pieceID, 1u);
    EXPECT_EQ(selectedCount(game), 0);
    ASSERT_EQ(queued(game), 1);
    EXPECT_EQ(game.eventQueue->eventID, kUserTriggerEventID);
    EXPECT_EQ(game.eventQueue->eventType, kEventUserTrigger);
    game.eventQueue.reset();
    const std::string before = testing::boardPicture(game);
    poll(kEventTypeMouseDown, 2, 2);  // diagonal
    poll(kEventTypeMouseUp, 3, 3);
    game.board[2].colorIndex = game.board[10].colorIndex = 5;  // one colour
    poll(kEventTypeMouseDown, 0, 2);
    poll(kEventTypeMouseUp, 1, 2);
    EXPECT_EQ(queued(game), 0);
    EXPECT_EQ(selectedCount(game), 0);
    game.board[2].colorIndex = 3, game.board[10].colorIndex = 2;
    EXPECT_EQ(testing::boardPicture(game), before);
}

TEST_F(UserInputTest, TwoClicksSwapInBoardOrderAndNoTriggerSwapsAnything) {
    GameInfo& game = swapGame(std::vector<int>(64, 4));
    game.board[8].colorIndex = 2;  // (1,0)
    click(1, 0);                   // leaves (1,0) selected
    EXPECT_EQ(game.board[8].selected, 1);
    click(0, 0);
    EXPECT_EQ(game.board[0].colorIndex, 2);
    EXPECT_EQ(game.board[8].colorIndex, 4);
    EXPECT_EQ(ctx.downPiece, &game.board[0]);  // first in board order
    EXPECT_EQ(ctx.upPiece, &game.board[8]);
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(UserInputTest, SearchesFindTheLastListedAndARegionWithoutMouseUpDoesNothing) {
    GameInfo& game = regionGame();
    EXPECT_EQ(input.mouseUpIsUserAction()->userEventID, 2u);
    EXPECT_EQ(input.charIsUserAction(' ')->userEventID, 1u);
    EXPECT_EQ(input.charIsUserAction(0)->userEventID, 2u);  // the one without a key
    EXPECT_EQ(input.isUserEventSupported(kUserEventSwapAdjacent), nullptr);
    game.userEvents->userEventCharacter = 'r';
    key(kEventTypeKeyDown, 8, "r");
    EXPECT_EQ(selectedCount(game), 0);
}

}  // namespace
}  // namespace tolvar
