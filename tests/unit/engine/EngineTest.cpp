// The game lifecycle through the engine's facade: starts, unplayable rules, the menu.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "EngineFakes.h"
#include "engine/Engine.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

class EngineTest : public ::testing::Test {
protected:
    void TearDown() override { gameInfo.reset(); }
    std::string quietly(const std::function<void()>& f) {
        ::testing::internal::CaptureStdout();
        f();
        return ::testing::internal::GetCapturedStdout();
    }
    void start(const Value& rules) {
        quietly([&] { engine.startGame(&rules, menu); });
    }
    static Value with(Value rules, const std::string& key, std::int64_t value) {
        Dictionary copy = *rules.asDictionary();
        copy.set(key, Value::integer(value));
        return Value::dictionary(std::move(copy));
    }
    testing::RecordingView view;
    testing::RecordingHost host;
    Engine engine{view, host};
    ActionsMenu menu;
};

TEST_F(EngineTest, StartBuildsTheBoardAndTheFirstTickRunsTheStartEvent) {
    EXPECT_EQ(engine.gamePaused(), 1);  // as launched
    srandom(1);
    start(createTestGameOne());
    ASSERT_NE(gameInfo, nullptr);
    EXPECT_EQ(gameInfo->board.size(), 64u);
    EXPECT_EQ(engine.gameStarted(), 1);
    EXPECT_EQ(engine.gamePaused(), 0);
    EXPECT_TRUE(host.gameWindowShown);
    EXPECT_FALSE(host.mainWindowShown);
    EXPECT_EQ(host.timerSchedules, 1);
    EXPECT_EQ(quietly([&] { engine.processEvents(); }), "processing event 1\naction 2\naction 1\n");
    EXPECT_EQ(engine.gameStarted(), 0);

    host.scoresTimer = true;
    start(createTestGameTwo());
    EXPECT_EQ(gameInfo->board.size(), 144u);
    EXPECT_FALSE(host.scoresTimer);
    EXPECT_EQ(host.timerSchedules, 1);  // scheduled once per run

    engine.returnToMain();
    EXPECT_FALSE(host.gameWindowShown);
    EXPECT_TRUE(host.mainWindowShown);
    EXPECT_NE(gameInfo, nullptr);
}

TEST_F(EngineTest, StartWithNoGameOnlyDiscardsTheOldOne) {
    start(createTestGameOne());
    engine.startGame(nullptr, menu);
    EXPECT_EQ(gameInfo, nullptr);
    EXPECT_EQ(engine.downPiece(), nullptr);
    // The ticks, the poll and the menu then do nothing.
    EXPECT_EQ(quietly([&] {
                  engine.processEvents();
                  engine.checkUserEvents();
                  engine.checkMenuAction(menu, 0);
                  engine.printBoardColors();
              }),
              "");
}

TEST_F(EngineTest, UnplayableRulesAreRefusedWithTheirKeyAndValue) {
    struct Case {
        const char* key;
        std::int64_t value;
        const char* says;
    };
    const Case cases[] = {
        {"BoardWidth", 256, "\"BoardWidth\" is 0"},
        {"BoardHeight", 0, "\"BoardHeight\" is 0"},
        {"NumColors", 0, "\"NumColors\" is 0"},
        {"NumShapes", 0, "\"NumShapes\" is 0"},
        {"SetupRandomFill", 0, "\"SetupMaxLinearColors\" is 2 while \"SetupRandomFill\" is 0"},
        {"NumColors", 1, "\"SetupMaxLinearColors\" is 2 while \"NumColors\" is 1"},
    };
    for (const Case& c : cases) {
        start(createTestGameOne());
        host.alerts.clear();
        start(with(createTestGameThree(), c.key, c.value));
        EXPECT_EQ(gameInfo, nullptr) << c.key;
        ASSERT_EQ(host.alerts.size(), 1u) << c.key;
        EXPECT_EQ(host.alerts[0].title, " ");
        EXPECT_EQ(host.alerts[0].button, "OK");
        EXPECT_NE(host.alerts[0].message.find("\"Glimmet\""), std::string::npos);
        EXPECT_NE(host.alerts[0].message.find(c.says), std::string::npos) << host.alerts[0].message;
        EXPECT_EQ(quietly([&] { engine.processEvents(); }), "");
    }
    // A single colour is playable when no run limit applies.
    host.alerts.clear();
    start(with(createTestGameTwo(), "NumColors", 1));
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_NE(gameInfo, nullptr);
}

TEST_F(EngineTest, MenuItemsRunTheirUserEventOnlyWhenPlayingAndNotFromAKey) {
    srandom(2);
    start(createTestGameOne());
    quietly([&] { engine.processEvents(); });
    ASSERT_TRUE(menu.item(0).enabled);  // the space bar's Remove Selection
    // Select something to remove: find a piece with a neighbour of its colour.
    GameInfo& game = *gameInfo;
    for (std::size_t n = 0; n + 1 < game.board.size(); ++n) {
        if (game.board[n].colorIndex == game.board[n + 1].colorIndex && (n + 1) % 8 != 0) {
            game.board[n].selected = game.board[n + 1].selected = 1;
            break;
        }
    }
    host.event.type = kEventTypeKeyDown;
    engine.checkMenuAction(menu, 0);
    EXPECT_EQ(game.eventQueue, nullptr);
    host.event.type = kEventTypeKeyUp;
    engine.checkMenuAction(menu, 3);  // disabled
    EXPECT_EQ(game.eventQueue, nullptr);
    engine.checkMenuAction(menu, 0);
    ASSERT_NE(game.eventQueue, nullptr);
    EXPECT_EQ(game.eventQueue->eventType, kEventPiecesRemoved);

    CurrentEvent space;
    space.type = kEventTypeKeyDown;
    space.characters = " ";
    EXPECT_TRUE(engine.performKeyEquivalent(space));
    space.characters = "q";
    EXPECT_FALSE(engine.performKeyEquivalent(space));
}

}  // namespace
}  // namespace tolvar
