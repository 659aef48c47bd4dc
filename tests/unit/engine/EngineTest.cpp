// The game lifecycle through the engine's facade (starts, unplayable rules, the menu) and the
// best-score table (where a score goes, a broken file kept aside).
#include <sys/stat.h>

#include <variant>

#include "EngineFakes.h"
#include "engine/Completion.h"
#include "engine/Engine.h"
#include "platform/PlistFile.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

using testing::stdoutOf;

struct EngineTest : ::testing::Test {
    void TearDown() override { gameInfo.reset(); }
    void start(const Value& rules) { stdoutOf([&] { engine.startGame(&rules, menu); }); }
    testing::RecordingView view;
    testing::RecordingHost host;
    Engine engine{view, host};
    ActionsMenu menu;
};

TEST_F(EngineTest, StartBuildsTheBoardTheFirstTickStartsAndNoGameOnlyDiscards) {
    EXPECT_EQ(engine.gamePaused(), 1);  // as launched
    start(createTestGameOne());
    ASSERT_NE(gameInfo, nullptr);
    EXPECT_EQ(gameInfo->board.size(), 64u);
    EXPECT_EQ(engine.gamePaused(), 0);
    EXPECT_TRUE(host.gameWindowShown && !host.mainWindowShown);
    EXPECT_EQ(stdoutOf([&] { engine.processEvents(); }), "processing event 1\naction 2\naction 1\n");
    host.scoresTimer = true;
    start(createTestGameTwo());
    EXPECT_EQ(gameInfo->board.size(), 144u);
    EXPECT_EQ(engine.gameStarted(), 1);
    EXPECT_FALSE(host.scoresTimer);
    EXPECT_EQ(host.timerSchedules, 1);  // scheduled once per run
    engine.returnToMain();
    EXPECT_TRUE(!host.gameWindowShown && host.mainWindowShown && gameInfo);
    engine.startGame(nullptr, menu);
    EXPECT_EQ(gameInfo, nullptr);
    EXPECT_EQ(engine.downPiece(), nullptr);
    EXPECT_EQ(stdoutOf([&] {  // the ticks, the poll and the menu then do nothing
                  engine.processEvents();
                  engine.checkUserEvents();
                  engine.checkMenuAction(menu, 0);
              }),
              "");
}

TEST_F(EngineTest, UnplayableRulesAreRefusedWithTheirKeyAndValue) {
    auto with = [](const Value& rules, const char* key, int value) {
        Dictionary copy = *rules.asDictionary();
        copy.set(key, Value::integer(value));
        return Value::dictionary(std::move(copy));
    };
    const std::tuple<const char*, int, const char*> cases[] = {
        {"BoardWidth", 256, "\"BoardWidth\" is 0"},
        {"BoardHeight", 0, "\"BoardHeight\" is 0"},
        {"NumColors", 0, "\"NumColors\" is 0"},
        {"NumShapes", 0, "\"NumShapes\" is 0"},
        {"SetupRandomFill", 0, "\"SetupMaxLinearColors\" is 2 while \"SetupRandomFill\" is 0"},
        {"NumColors", 1, "\"SetupMaxLinearColors\" is 2 while \"NumColors\" is 1"},
    };
    for (const auto& [key, value, says] : cases) {
        start(createTestGameOne());
        host.alerts.clear();
        start(with(createTestGameThree(), key, value));
        EXPECT_EQ(gameInfo, nullptr);
        EXPECT_EQ(host.alerts, std::vector<std::string>{" |The game \"Glimmet\" cannot be played: " +
                                                        std::string(says) + ".|OK"});
        EXPECT_EQ(stdoutOf([&] { engine.processEvents(); }), "");
    }
    host.alerts.clear();
    start(with(createTestGameTwo(), "NumColors", 1));  // playable without a run limit
    EXPECT_TRUE(host.alerts.empty() && gameInfo);
}

TEST_F(EngineTest, MenuItemsRunTheirUserEventOnlyWhenPlayingAndNotFromAKey) {
    start(createTestGameOne());
    stdoutOf([&] { engine.processEvents(); });
    ASSERT_TRUE(menu.item(0).enabled);  // the space bar's Remove Selection
    gameInfo->board[0].selected = 1;
    host.event.type = kEventTypeKeyDown;
    engine.checkMenuAction(menu, 0);
    EXPECT_EQ(gameInfo->eventQueue, nullptr);
    host.event.type = kEventTypeKeyUp;
    engine.checkMenuAction(menu, 3);  // disabled
    EXPECT_EQ(gameInfo->eventQueue, nullptr);
    engine.checkMenuAction(menu, 0);
    ASSERT_NE(gameInfo->eventQueue, nullptr);
    EXPECT_EQ(gameInfo->eventQueue->eventType, kEventPiecesRemoved);
    EXPECT_TRUE(engine.performKeyEquivalent(CurrentEvent{kEventTypeKeyDown, 49, " "}));
    EXPECT_FALSE(engine.performKeyEquivalent(CurrentEvent{kEventTypeKeyDown, 12, "q"}));
}

TEST(BestScoreIndexTest, InsertionCases) {
    std::vector<std::int64_t> many;
    for (int i = 1; i <= 25; ++i) many.push_back(i * 10);
    const std::tuple<std::vector<std::int64_t>, std::uint64_t, bool, int, const char*> cases[] = {
        {{12, 30, 55}, 30, true, 2, ""},  // an equal score goes after
        {{12, 30, 55}, 60, true, 3, ""},
        {{12, 30, 55}, 3, true, 0, ""},
        {{900, 400}, 500, false, 1, "got on list at index 1, score 500\n"},
        {{900, 400}, 100, false, 2, ""},
        {std::vector<std::int64_t>(20, 5), 9, true, -1, ""},  // twenty refuse a worse one
        {many, 45, true, 4, ""},                               // only the first twenty count
        {many, 1000, true, -1, ""},
        {{-1}, 7, true, 0, ""},  // a stored -1 widens to the largest unsigned value
        {{4}, static_cast<std::uint64_t>(-3), true, 1, ""},  // a wrapped score is huge
        {{4}, 0x1'0000'0005ull, false, 0, "got on list at index 0, score 5\n"},
    };
    for (const auto& [stored, score, lower, at, says] : cases) {
        Array table;
        for (std::int64_t s : stored) {
            Dictionary d;
            d.set("Score", Value::integer(s));
            d.set("Date", Value::date(Date::fromUnixTime(1.7e9)));
            table.push_back(Value::dictionary(std::move(d)));
        }
        int got = -2;
        EXPECT_EQ(stdoutOf([&] { got = bestScoreInsertionIndex(table, score, lower); }), says);
        EXPECT_EQ(got, at) << score << (lower ? " lower" : " higher");
    }
}

TEST(BestScoresFileTest, ABrokenTableIsKeptAsideUnopenedAndANewOneWritten) {
    Dictionary wrongKind;
    wrongKind.set("Vexamor", Value::string("not a list"));
    for (int pipe = 0; pipe < 2; ++pipe) {  // a pipe would block whoever opens it
        testing::RecordingView view;
        testing::RecordingHost host;
        EngineContext ctx{view, host};
        testing::installGame(2, 2).gameName = "Vexamor";
        gameInfo->score = 30;
        const std::string path = (host.folder / "BestScores.dict").string();
        ASSERT_TRUE(pipe ? mkfifo(path.c_str(), 0600) == 0
                         : writePropertyListFile(path, Value::dictionary(wrongKind)));
        GameAction action;
        action.lowerIsBetter = static_cast<std::uint32_t>(pipe);
        const std::string err =
            testing::stderrOf([&] { BestScores{ctx}.performActionCheckBestScores(action); });
        EXPECT_NE(err.find("BestScores.dict.unreadable"), std::string::npos) << err;
        EXPECT_EQ(std::filesystem::status(path + ".unreadable").type(),
                  pipe ? std::filesystem::file_type::fifo : std::filesystem::file_type::regular);
        auto read = readPropertyListFile(path);
        const Value* scores = std::get<Value>(read).asDictionary()->find("Vexamor");
        ASSERT_TRUE(scores && scores->asArray() && scores->asArray()->size() == 1);
        EXPECT_EQ(*scores->asArray()->front().asDictionary()->find("Score")->asInteger(), 30);
        EXPECT_EQ(view.highlight, 0);
        gameInfo.reset();
    }
}

}  // namespace
}  // namespace tolvar
