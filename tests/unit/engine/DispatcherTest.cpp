// The event tick: the start event, draining the queue, the order of actions and the
// completion rule with several pending removals.
#include <gtest/gtest.h>

#include "EngineFakes.h"
#include "engine/Dispatcher.h"
#include "engine/EventQueue.h"

namespace tolvar {
namespace {

using testing::addEvent;
using testing::appendAction;
using testing::installGame;

class DispatcherTest : public ::testing::Test {
protected:
    void SetUp() override {
        GameInfo& game = installGame(2, 2, {1, 2, 3, 4});
        game.setupMaxLinearColors = 0;
        ctx.gamePaused = 0;
    }
    void TearDown() override { gameInfo.reset(); }
    std::string tick() {
        ::testing::internal::CaptureStdout();
        dispatcher.processEvents();
        return ::testing::internal::GetCapturedStdout();
    }
    testing::RecordingView view;
    testing::RecordingHost host;
    EngineContext ctx{view, host};
    Dispatcher dispatcher{ctx};
};

TEST_F(DispatcherTest, ActionsRunInListOrderAndUnknownOnesAreSkipped) {
    GameInfo& game = *gameInfo;
    SupportedEvent& start = addEvent(game, 1, kEventGameStarted);
    // The list as the rules loader builds it: the last action listed comes first.
    appendAction(start.actions, 30, 2).amount = 4;  // multiplier 1 + 4
    appendAction(start.actions, 31, 0);
    appendAction(start.actions, 32, 1).amount = -1;  // score -= multiplier
    appendAction(start.actions, 33, 25);
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(),
              "processing event 1\naction 30\naction 31\nunknown action specified.\n"
              "action 32\naction 33\nunknown action specified.\n");
    EXPECT_EQ(game.scoreMultiplier, 5u);
    EXPECT_EQ(game.score, static_cast<std::uint64_t>(-5));  // wrapped below zero
    EXPECT_EQ(ctx.gameStarted, 0);
    EXPECT_EQ(view.draws, 2);  // action 1 and the end of the tick
}

TEST_F(DispatcherTest, StartEventReplacesWhateverWasPending) {
    GameInfo& game = *gameInfo;
    addEvent(game, 1, kEventGameStarted);
    SupportedEvent& removed = addEvent(game, 2, kEventPiecesRemoved);
    EventQueue queue(game);
    queue.addEventToQueue(removed.copyForQueue());
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "processing event 1\n");
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(DispatcherTest, GameWithoutStartEventOnlyClearsTheFlag) {
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "");
    EXPECT_EQ(ctx.gameStarted, 0);
}

TEST_F(DispatcherTest, LastListedEventOfATypeIsFound) {
    GameInfo& game = *gameInfo;
    addEvent(game, 4, kEventPiecesRemoved);
    addEvent(game, 9, kEventPiecesRemoved);  // listed later in the rules: head of the list
    EXPECT_EQ(EventQueue(game).isEventSupported(kEventPiecesRemoved)->eventID, 9u);
    EXPECT_EQ(EventQueue(game).isEventSupported(kEventNoMovesLeft), nullptr);
}

TEST_F(DispatcherTest, CompletionRunsOnlyForTheLastPendingRemoval) {
    GameInfo& game = *gameInfo;
    // No completion criterion: every completion test queues the no-moves event.
    SupportedEvent& removed = addEvent(game, 2, kEventPiecesRemoved);
    appendAction(removed.actions, 21, 21);
    SupportedEvent& over = addEvent(game, 3, kEventNoMovesLeft);
    appendAction(over.actions, 40, 3);
    EventQueue queue(game);
    queue.addEventToQueue(removed.copyForQueue());
    queue.addEventToQueue(removed.copyForQueue());
    EXPECT_EQ(tick(),
              "processing event 2\naction 21\n"
              "processing event 2\naction 21\n"
              "processing event 3\naction 40\n");

    queue.addEventToQueue(removed.copyForQueue());
    EXPECT_EQ(tick(), "processing event 2\naction 21\nprocessing event 3\naction 40\n");
}

TEST_F(DispatcherTest, CompletionInAnotherEventWaitsForPendingRemovals) {
    GameInfo& game = *gameInfo;
    SupportedEvent& removed = addEvent(game, 2, kEventPiecesRemoved);
    SupportedEvent& other = addEvent(game, 5, 99);
    appendAction(other.actions, 21, 21);
    addEvent(game, 3, kEventNoMovesLeft);
    EventQueue queue(game);
    queue.addEventToQueue(other.copyForQueue());
    queue.addEventToQueue(removed.copyForQueue());
    EXPECT_EQ(tick(), "processing event 5\naction 21\nprocessing event 2\n");
    queue.addEventToQueue(other.copyForQueue());
    EXPECT_EQ(tick(), "processing event 5\naction 21\nprocessing event 3\n");
}

TEST_F(DispatcherTest, VariablesAndAlertsAndPausedRedraw) {
    GameInfo& game = *gameInfo;
    auto v = std::make_unique<GameVariable>();
    v->variableID = 1;
    game.variables = std::move(v);
    game.scoreMultiplier = 10;
    SupportedEvent& over = addEvent(game, 3, kEventNoMovesLeft);
    appendAction(over.actions, 8, 27).variableID = 1;
    appendAction(over.actions, 9, 26).variableID = 1;
    appendAction(over.actions, 12, 26).variableID = 6;  // no such variable
    appendAction(over.actions, 5, 23).message = "50% done";
    appendAction(over.actions, 6, 23);
    EventQueue(game).addEventToQueue(over.copyForQueue());
    ctx.gamePaused = 1;
    tick();
    EXPECT_EQ(game.score, 40u);  // four pieces at 10 each
    ASSERT_EQ(host.alerts.size(), 2u);
    EXPECT_EQ(host.alerts[0].title, " ");
    EXPECT_EQ(host.alerts[0].message, "50% done");
    EXPECT_EQ(host.alerts[0].button, "OK");
    EXPECT_EQ(host.alerts[1].message, "");
    EXPECT_EQ(view.draws, 2);  // the alerts draw; the paused tick does not
}

TEST_F(DispatcherTest, NothingHappensWithoutAGame) {
    gameInfo.reset();
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "");
    EXPECT_EQ(ctx.gameStarted, 1);
    EXPECT_EQ(view.draws, 0);
}

TEST(EventQueueTest, QueueIsFirstInFirstOut) {
    auto game = testing::makeGame(1, 1);
    EventQueue queue(*game);
    for (std::uint32_t id = 1; id <= 3; ++id) {
        auto entry = std::make_unique<SupportedEvent>();
        entry->eventID = id;
        entry->eventType = id * 10;
        queue.addEventToQueue(std::move(entry));
    }
    EXPECT_EQ(game->eventQueue->eventID, 1u);
    EXPECT_EQ(game->eventQueue->next->next->eventID, 3u);
    EXPECT_EQ(EventQueue::queueContains(game->eventQueue.get(), 30), 1);
    EXPECT_EQ(EventQueue::queueContains(game->eventQueue->next.get(), 10), 0);
    EXPECT_EQ(EventQueue::queueContains(nullptr, 10), 0);
    queue.clearEventQueue();
    EXPECT_EQ(game->eventQueue, nullptr);
}

}  // namespace
}  // namespace tolvar
