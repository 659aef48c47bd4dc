// A game kept as a property list and continued: it goes on exactly, Return and Continue give
// back the very board left, and a saved game holding what no real game can is refused.
#include <variant>

#include "PlayFixture.h"
#include "core/PlistFile.h"

namespace tolvar {
namespace {

using namespace testing;

// Everything the player would see of the running game, and what would run next.
std::string everything(const Engine& engine) {
    const std::optional<Value> saved = engine.savedGame();
    return saved ? toXmlPropertyList(*saved) : std::string("no game");
}

TEST_F(PlayerAidsTest, ReturnAndContinueGiveBackTheBoardLeftOverManyCycles) {
    start(smallVexamor(), kSmall);
    click({0, 0}, {0, 0});
    key(U' ');              // the 1s removed, their event pending
    click({2, 0}, {2, 0});  // the 3s selected
    const std::string before = everything(engine), board = picture();
    ASSERT_EQ(board, ".2|.2|33 sel 2");  // the 3s only: a removed piece loses its mark
    ASSERT_NE(before.find("<key>PendingEvents</key>\n\t<array>\n\t\t<dict>"), std::string::npos);
    const Value sameRules = rules;
    // The click on Continue lands where the selected region is on the board; the desktop hands
    // it to the game as its current event, and polls again after every tick.
    auto continueClick = [&](Engine& running) {
        for (const std::int64_t type : {kEventTypeMouseDown, kEventTypeMouseUp})
            stdoutOf([&] { running.takeInput(at(type, {2, 0})); });
    };
    std::unique_ptr<Engine> later;  // another run of the program, continuing the saved game
    for (int cycle = 0; cycle < 12; ++cycle) {
        SCOPED_TRACE(cycle);
        Engine& running = later ? *later : engine;
        running.returnToMain();
        continueClick(running);
        if (cycle % 2 == 0) {
            ASSERT_TRUE(running.resumeGame());
        } else {
            const Value saved = *running.savedGame();
            later = std::make_unique<Engine>(view, host);
            std::string why;
            stdoutOf([&] { why = later->continueGame(saved, &sameRules, menu); });
            ASSERT_EQ(why, "");
        }
        Engine& shown = later ? *later : engine;
        stdoutOf([&] { shown.checkUserEvents(); });  // the poll after the next tick
        EXPECT_EQ(everything(shown), before);
        EXPECT_EQ(picture(shown), board);
    }
    // The board still takes the player's clicks once shown.
    Engine& shown = later ? *later : engine;
    stdoutOf([&] { shown.takeInput(at(kEventTypeMouseDown, {2, 1})); });
    stdoutOf([&] { shown.takeInput(at(kEventTypeMouseUp, {2, 1})); });
    EXPECT_EQ(picture(shown), ".2|.2|33 sel 0");  // the 3s unselected
}

TEST_F(PlayerAidsTest, ASavedGameGoesOnExactlyAndDamagedOrChangedOnesAreRefused) {
    start(with(createTestGameThree(), {{"BoardWidth", 5}, {"BoardHeight", 5}}), {});
    const std::vector<BoardCell> move = engine.hint().cells;
    ASSERT_EQ(move.size(), 2u);
    click(move[0], move[1]);  // its trigger is pending
    const std::optional<Value> saved = engine.savedGame();
    ASSERT_TRUE(saved);
    std::string wanted = tick();
    wanted += picture();

    auto text = std::get<Value>(parsePropertyList(toXmlPropertyList(*saved)));
    const Value sameRules = rules;
    engine.startGame(nullptr, menu);  // the game gone, and the sequence somewhere else
    engine.random().seed(77);
    std::string why;
    stdoutOf([&] { why = engine.continueGame(text, &sameRules, menu); });
    EXPECT_EQ(why, "");
    std::string got = tick();
    got += picture();
    EXPECT_EQ(got, wanted);
    EXPECT_TRUE(host.gameWindowShown);
    EXPECT_FALSE(host.mainWindowShown);

    auto damaged = [&](const char* key, Value value) {
        Dictionary d = *text.asDictionary();
        d.set(key, std::move(value));
        return Value::dictionary(std::move(d));
    };
    const std::string cannot = "The saved game of \"Glimmet\" cannot be continued: ";
    const std::pair<Value, std::string> refused[] = {
        {damaged("RulesFingerprint", Value::string("0")), "the game's rules have changed since it was saved."},
        {damaged("Board", Value::array({})), "its board is not of the game's size."},
        {damaged("Board", [&] {
             Array cells = *text.asDictionary()->find("Board")->asArray();
             std::swap(cells[0], cells[1]);
             return Value::array(std::move(cells));
         }()),
         "a cell of its board is out of place."},
        {damaged("Score", Value::string("7")), "\"Score\" is missing or not a whole number."},
        {damaged("RandomFront", Value::integer(40)), "\"RandomFront\" is 40, not within 0 to 30."},
        {damaged("RandomRear", Value::integer(0)), "its random sequence is not complete."},
        {damaged("Variables", Value::array({Value::integer(1), Value::integer(2)})),
         "its score variables are not the game's."},
        {damaged("PendingEvents", Value::array({Value::dictionary()})),
         "\"EventID\" is missing or not a whole number."},
    };
    const std::string running = picture();
    for (const auto& damage : refused) {
        std::string said;
        stdoutOf([&] { said = engine.continueGame(damage.first, &sameRules, menu); });
        EXPECT_EQ(said, cannot + damage.second);
        EXPECT_EQ(picture(), running) << "the running game stays";
    }
    const Value changed = with(sameRules, {{"NumColors", 7}});
    stdoutOf([&] { why = engine.continueGame(text, &changed, menu); });
    EXPECT_EQ(why, cannot + "the game's rules have changed since it was saved.");
    EXPECT_EQ(engine.continueGame(text, nullptr, menu),
              "The saved game of \"Glimmet\" cannot be continued: the rules file has no game of that name.");
    EXPECT_EQ(Engine::savedGameTitle(text), "Glimmet");
}

TEST_F(PlayerAidsTest, AQuitWhileATickIsShownKeepsTheGameFromBeforeIt) {
    start(smallVexamor(), kSmall);
    click({2, 0}, {2, 0});
    key(U' ');
    const Value beforeTick = *engine.savedGame();
    std::string whole = tick();
    whole += picture();
    // The window still plays the tick's flash and fall: a quit now keeps the game before it.
    const Value kept = *engine.savedGameBeforeTick();
    EXPECT_EQ(kept, beforeTick);
    EXPECT_NE(kept, *engine.savedGame());

    const Value sameRules = rules;
    std::string why;
    stdoutOf([&] { why = engine.continueGame(kept, &sameRules, menu); });
    ASSERT_EQ(why, "");
    std::string again = tick();
    again += picture();
    EXPECT_EQ(again, whole);
    // A tick with nothing to do, or a move after the tick, leaves the game as it is to keep.
    tick();
    EXPECT_EQ(*engine.savedGameBeforeTick(), *engine.savedGame());
}

TEST_F(PlayerAidsTest, ASavedGameHoldingWhatNoRealGameCanIsRefusedWithTheReason) {
    start(with(createTestGameThree(), {{"BoardWidth", 5}, {"BoardHeight", 5}}), {});
    const std::vector<BoardCell> move = engine.hint().cells;
    click(move[0], move[1]);  // its trigger is pending
    const Value good = *engine.savedGame();
    const Dictionary& fields = *good.asDictionary();
    const Value sameRules = rules;
    auto changed = [&](const char* key, Value value) {
        Dictionary d = fields;
        d.set(key, std::move(value));
        return Value::dictionary(std::move(d));
    };
    auto cell = [&](std::size_t number, std::int64_t value) {  // the first cell with one number changed
        Array board = *fields.find("Board")->asArray();
        Array first = *board[0].asArray();
        first[number] = Value::integer(value);
        board[0] = Value::array(std::move(first));
        return changed("Board", Value::array(std::move(board)));
    };
    auto pending = [&](std::size_t copies, std::int64_t id, std::int64_t type) {
        Dictionary entry = *fields.find("PendingEvents")->asArray()->front().asDictionary();
        entry.set("EventID", Value::integer(id));
        entry.set("EventType", Value::integer(type));
        return changed("PendingEvents", Value::array(Array(copies, Value::dictionary(entry))));
    };
    const std::pair<Value, std::string> refused[] = {
        {pending(100000, 200, 300), "it has 100000 pending events, and a game has 16 at most"},
        {pending(1, 3, 11), "pending event 3 (type 11) is not one the player's moves queue in this game"},
        {cell(1, 200), "the cell at 0,0 has colour 200, not one of the game's 8"},
        {cell(2, -1), "the cell at 0,0 has shape -1, not one of the game's 1"},
        {cell(3, 7), "the cell at 0,0 is selected 7, not 0 or 1"},
        {cell(0, 31), "the cell at 0,0 holds piece 31, which no board of the game numbers"},
        {cell(6, 0x7fc00000), "the cell at 0,0 has a shade outside 0 to 1"},  // not a number
        {changed("ScoreMultiplier", Value::integer(-1)), "\"ScoreMultiplier\" is -1, not within 0 to 9223372036854775807"},
        {changed("Score", Value::integer(-5)), "\"Score\" is -5, not within 0 to 9223372036854775807"},
        {changed("UpCell", Value::integer(25)), "\"UpCell\" is 25, not within -1 to 24"},
        {changed("GamePaused", Value::integer(2)), "\"GamePaused\" is 2, not within 0 to 1"},
        {changed("RandomFront", Value::integer(-3)), "\"RandomFront\" is -3, not within 0 to 30"},
    };
    const std::string cannot = "The saved game of \"Glimmet\" cannot be continued: ";
    const std::string running = picture();
    for (const auto& damage : refused) {
        const Value& saved = damage.first;  // named, as lambdas capture no structured binding in clang 14
        const std::string& why = damage.second;
        SCOPED_TRACE(why);
        EXPECT_EQ(stdoutOf([&] { EXPECT_EQ(Engine::savedGameProblem(saved, &sameRules), cannot + why + "."); }), "")
            << "looking prints none of the rules' diagnostics";
        std::string said;
        stdoutOf([&] { said = engine.continueGame(saved, &sameRules, menu); });
        EXPECT_EQ(said, cannot + why + ".");
        EXPECT_EQ(picture(), running) << "the running game stays";
    }
    EXPECT_EQ(Engine::savedGameProblem(good, &sameRules), "");
    EXPECT_EQ(Engine::savedGameProblem(good, nullptr),
              "The saved game of \"Glimmet\" cannot be continued: the rules file has no game of that name.");
}

TEST_F(PlayerAidsTest, AScoreBelowZeroIsContinuedInAGameWhoseRulesSubtract) {
    // A negative starting multiplier makes every point taken away: the score wraps below zero.
    start(with(createTestGameThree(), {{"BoardWidth", 5}, {"BoardHeight", 5}, {"ScoreMultiplier", -1}}), {});
    Dictionary fields = *engine.savedGame()->asDictionary();
    fields.set("Score", Value::integer(-40));
    const Value saved = Value::dictionary(std::move(fields));
    const Value sameRules = rules;
    EXPECT_EQ(Engine::savedGameProblem(saved, &sameRules), "");
}

}  // namespace
}  // namespace tolvar
