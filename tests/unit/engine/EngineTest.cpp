// The event tick (action order, completion with several pending removals), the input poll
// (new events only, gestures, keys, Escape), starting games, and the best-score table.
#include <sys/stat.h>

#include <variant>

#include "EngineFakes.h"
#include "engine/BoardActions.h"
#include "engine/Completion.h"
#include "engine/Dispatcher.h"
#include "engine/Engine.h"
#include "engine/EventQueue.h"
#include "engine/UserInput.h"
#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

using namespace testing;

struct DispatcherTest : EngineFixture {
    void SetUp() override { installGame(2, 2, {1, 2, 3, 4}), ctx.gamePaused = 0; }
    std::string tick() { return stdoutOf([&] { dispatcher.processEvents(); }); }
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
    ctx.gameStarted = 1;
    EXPECT_EQ(tick(), "processing event 1\n");
    EXPECT_EQ(game.eventQueue, nullptr);
}

TEST_F(DispatcherTest, OnlyAnUnbrokenChainOfEventsPastTheBoundStopsTheGame) {
    gameInfo->gameName = "Loops";
    SupportedEvent& removed = addEvent(*gameInfo, 2, kEventPiecesRemoved);
    appendAction(removed.actions, 40, kActionAddScore);  // draws once
    constexpr std::size_t kBound = RunawayGuard::kMaxChainedEvents;
    auto chainOf = [&](std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) queue(removed);
        return tick();
    };
    // Chains up to the bound run whole, each in a tick of its own, however many there are; past the
    // longest real cascade their motion is no longer shown.
    int hiddenDraws = 0;
    view.onDraw = [&] { hiddenDraws += !view.motionShown; };
    for (std::size_t n : {kBound, kBound, kBound - 1}) {
        hiddenDraws = 0;
        EXPECT_EQ(chainOf(n).find("stopped"), std::string::npos);
        EXPECT_EQ(hiddenDraws, static_cast<int>(n - RunawayGuard::kShownChainedEvents));
        EXPECT_TRUE(view.motionShown);
    }
    hiddenDraws = 0;
    chainOf(RunawayGuard::kShownChainedEvents);
    EXPECT_EQ(hiddenDraws, 0);
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_EQ(ctx.gamePaused, 0);
    EXPECT_EQ(gameInfo->eventQueue, nullptr);
    const std::string out = chainOf(kBound + 5);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), static_cast<long>(2 * kBound + 1));
    EXPECT_TRUE(out.ends_with("stopped: event 2 (type 12) keeps queueing events, " + std::to_string(kBound) +
                              " in a row\n")) << out.substr(out.size() - 200);
    EXPECT_EQ(host.alerts, std::vector<std::string>{" |The game \"Loops\" was stopped: its event 2 (type 12) keeps "
                                                    "queueing events without end. Press the 'esc' key to play again.|OK"});
    EXPECT_EQ(ctx.gamePaused, 1);
    EXPECT_EQ(gameInfo->eventQueue, nullptr);
    EXPECT_TRUE(view.motionShown);
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
    appendAction(other.actions, 22, 26).variableID = 6;  // no such variable: skipped
    addEvent(*gameInfo, 3, kEventNoMovesLeft);
    queue(other);
    queue(removed);
    EXPECT_EQ(tick(), "processing event 5\naction 21\naction 22\nprocessing event 2\n");
    queue(other);
    EXPECT_EQ(tick(), "processing event 5\naction 21\naction 22\nprocessing event 3\n");
}

struct UserInputTest : EngineFixture {
    // Cells of an 8 x 8 board are 93.5 wide from (138, 10); events land inside them.
    void poll(std::int64_t type, int x, int y, std::uint16_t code = 0, const char* text = "") {
        input.setCurrentEvent(CurrentEvent{type, code, text, 178 + 93.5f * x, 50 + 93.5f * y});
        input.checkUserEvents();
    }
    void key(std::int64_t type, std::uint16_t code, const char* s) { poll(type, 0, 0, code, s); }
    void click(int x, int y) { poll(kEventTypeMouseDown, x, y), poll(kEventTypeMouseUp, x, y); }
    // A checkerboard with a region of three at (0,0), (0,1), (1,0); space removes the selection.
    GameInfo& game(std::uint32_t kind = kUserEventSelectColorRegion) {
        std::vector<int> colours(64);
        for (int n = 0; n < 64; ++n) colours[n] = 1 + (n + n / 8) % 2;
        colours[0] = colours[1] = colours[8] = 3;
        GameInfo& game = installGame(8, 8, colours);
        addUserEvent(game, 1, kUserEventRemoveSelection).userEventCharacter = ' ';
        addUserEvent(game, 2, kind).minimumPieces = 2;
        addEvent(game, 2, kEventPiecesRemoved);
        ctx.gamePaused = 0;
        return game;
    }
    UserInput input{ctx};
};

TEST_F(UserInputTest, ClicksSelectAndDeselectARegionAndAHeldKeyDoesNotRepeat) {
    GameInfo& g = game();
    click(3, 3);  // a lone piece
    EXPECT_EQ(selectedCount(g), 0);
    click(1, 0);
    EXPECT_EQ(selectedCount(g), 3);
    click(0, 1);
    EXPECT_EQ(selectedCount(g), 0);
    click(0, 0);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(boardPicture(g).substr(0, 10), "..121212|.");
    EXPECT_EQ(queued(g), 1);
    g.board[20].selected = 1;
    key(kEventTypeKeyDown, 49, " ");  // the same key again with nothing between: a repeat
    EXPECT_EQ(queued(g), 1);
    addUserEvent(g, 3, kUserEventRemoveSelection).userEventCharacter = 'x';
    key(kEventTypeKeyDown, 7, "x");  // another key while the first is held is new
    EXPECT_EQ(queued(g), 2);
}

// Removal takes only the selected cells that hold a piece and unselects them, by the remove
// key's user event and by the removal of a select-colour action alike: a selection of cells
// already emptied removes, prints and queues nothing, so a second press brings no points.
TEST_F(UserInputTest, RemovalTakesSelectedPiecesOnlyAndOnce) {
    enum Path { kKey, kAction };
    struct Case {
        Path path;
        std::vector<std::size_t> selected;  // cells of the 3 x 2 board "11|.2|11"
        const char* printed;
        const char* after;
        int queued;  // pieces-removed, and the key's trigger
    };
    const Case cases[] = {
        {kKey, {0, 3}, "", ".1|..|11", 2},
        {kKey, {}, "", "11|.2|11", 0},
        {kAction, {0, 3}, "Removing piece 1 at 0,0\nRemoving piece 4 at 1,1\n", ".1|..|11", 1},
        {kAction, {}, "", "11|.2|11", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.selected) + (c.path == kKey ? " key" : " action"));
        GameInfo& g = installGame(3, 2, {1, 1, 0, 2, 1, 1});
        SupportedUserEvent& remove = addUserEvent(g, 1, kUserEventRemoveSelection);
        remove.triggerAction = std::make_shared<GameAction>();
        addEvent(g, 2, kEventPiecesRemoved);
        g.board[2].selected = 1;  // an empty cell marked, as removals of old left them
        for (std::size_t cell : c.selected) g.board[cell].selected = 1;
        BoardActions actions{ctx};
        const auto removal = [&] {
            return stdoutOf([&] { c.path == kKey ? input.processUserEvent(remove) : actions.removeSelectedPieces(); });
        };
        EXPECT_EQ(removal(), c.printed);
        EXPECT_EQ(boardPicture(g), c.after);
        EXPECT_EQ(queued(g), c.queued);
        EXPECT_EQ(selectedCount(g), 1);  // only the empty cell's mark, which no removal touches
        EXPECT_EQ(removal(), "");  // again: nothing left to remove
        EXPECT_EQ(queued(g), c.queued);
    }
}

TEST_F(UserInputTest, APointOutsideAHoleTheSameMouseEventTwiceOrAKeyWithoutAPieceDoNothing) {
    GameInfo& g = game();
    poll(kEventTypeMouseUp, -2, 0);
    EXPECT_EQ(ctx.upPiece, nullptr);
    g.board[9].pieceID = 0;  // (1,1)
    click(1, 1);
    EXPECT_EQ(selectedCount(g), 0);
    click(5, 5);
    EXPECT_EQ(ctx.upPiece, &g.board[45]);
    poll(kEventTypeMouseUp, 6, 6);  // a second mouse-up in a row is the same event
    EXPECT_EQ(ctx.upPiece, &g.board[45]);
    ctx.forgetGesture();  // a region reached from a key without a mouse-up does nothing
    EXPECT_EQ(input.charIsUserAction(0)->userEventID, 2u);  // the one without a key
    g.userEvents->userEventCharacter = 'r';
    key(kEventTypeKeyDown, 8, "r");
    EXPECT_EQ(selectedCount(g), 0);
}

TEST_F(UserInputTest, KeysWaitForThePauseButMouseAndEscapeDoNot) {
    GameInfo& g = game();
    ctx.gamePaused = 1;
    click(1, 0);
    EXPECT_EQ(selectedCount(g), 3);
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_EQ(queued(g), 0);
    host.scoresTimer = true;
    key(kEventTypeKeyUp, 49, " ");
    key(kEventTypeKeyDown, 49, " ");
    EXPECT_FALSE(host.scoresTimer);  // the space bar stops the score screen
    g.score = 77, g.scoreMultiplier = 10;
    host.scoresTimer = true;
    key(kEventTypeKeyDown, kKeyCodeEscape, "\x1b");
    EXPECT_EQ(std::pair(g.score, g.scoreMultiplier), std::pair(0ul, 1ul));
    EXPECT_FALSE(host.scoresTimer);
    EXPECT_EQ(host.projectionResets, 1);
    EXPECT_EQ(std::pair(ctx.gameStarted, ctx.gamePaused), std::pair(1, 0));
    EXPECT_EQ(ctx.upPiece, nullptr);  // the old board is gone
    EXPECT_EQ(g.board.size(), 64u);
    click(1, 0);  // until the next tick the poll ignores input
    EXPECT_EQ(ctx.upPiece, nullptr);
}

TEST_F(UserInputTest, DragSwapsNeighboursOfDifferentColoursOnly) {
    GameInfo& g = game(kUserEventSwapAdjacent);
    g.userEvents->triggerAction = std::make_shared<GameAction>();
    g.userEvents->triggerAction->actionCriteria = 0x10;
    poll(kEventTypeMouseDown, 0, 1);
    EXPECT_EQ(g.board[1].selected, 1);
    poll(kEventTypeMouseUp, 0, 2);
    EXPECT_EQ(boardPicture(g).substr(0, 3), "313");  // numbers stay with the cells
    EXPECT_EQ(g.board[1].pieceID, 2u);
    const std::string before = boardPicture(g);
    poll(kEventTypeMouseDown, 2, 2);  // diagonal
    poll(kEventTypeMouseUp, 3, 3);
    poll(kEventTypeMouseDown, 0, 0);  // one colour
    poll(kEventTypeMouseUp, 1, 0);
    EXPECT_EQ(queued(g), 1);  // the first swap's trigger only
    EXPECT_EQ(selectedCount(g), 0);
    EXPECT_EQ(boardPicture(g), before);
}

struct EngineTest : ::testing::Test {
    void start(const Value& rules) { stdoutOf([&] { engine.startGame(&rules, menu); }); }
    const GameInfo* game() const { return engine.game(); }
    StandInHost host;
    StandInView view{host};
    Engine engine{view, host};
    ActionsMenu menu;
};

TEST_F(EngineTest, StartBuildsTheBoardTheFirstTickStartsAndNoGameOnlyDiscards) {
    start(createTestGameOne());
    ASSERT_NE(game(), nullptr);
    EXPECT_EQ(game()->board.size(), 64u);
    EXPECT_EQ(engine.gamePaused(), 0);
    EXPECT_TRUE(host.gameWindowShown);
    EXPECT_FALSE(host.mainWindowShown);
    EXPECT_EQ(stdoutOf([&] { engine.processEvents(); }),
              "processing event 1\naction 2\naction 1\n");
    host.scoresTimer = true;
    start(createTestGameTwo());
    EXPECT_EQ(game()->board.size(), 144u);
    EXPECT_EQ(engine.gameStarted(), 1);
    EXPECT_FALSE(host.scoresTimer);
    EXPECT_EQ(host.timerSchedules, 1);  // scheduled once per run
    engine.startGame(nullptr, menu);
    EXPECT_EQ(game(), nullptr);  // no game: the old one is only discarded
    EXPECT_EQ(engine.downPiece(), nullptr);
    EXPECT_EQ(stdoutOf([&] { engine.processEvents(), engine.checkUserEvents(); }), "");
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
        EXPECT_EQ(game(), nullptr);
        const std::string alert = " |The game \"Glimmet\" cannot be played: " + std::string(says);
        EXPECT_EQ(host.alerts, std::vector<std::string>{alert + ".|OK"});
        EXPECT_EQ(stdoutOf([&] { engine.processEvents(); }), "");
    }
    host.alerts.clear();
    start(with(createTestGameTwo(), "NumColors", 1));  // playable without a run limit
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_NE(game(), nullptr);
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
        int place = -2;
        auto find = [&, s = score, l = lower] { place = bestScoreInsertionIndex(table, s, l, GameOutput()); };
        EXPECT_EQ(stdoutOf(find), says);
        EXPECT_EQ(place, at) << score << (lower ? " lower" : " higher");
    }
}

TEST_F(EngineFixture, ABestScoreThatCannotBeSavedIsShownAndTheAlertAndStandardErrorSayWhy) {
    installGame(2, 2).gameName = "Vexamor";
    gameInfo->score = 30;
    const std::string path = scores.path();
    std::string err;
    {
        ScopedWriteFailure full(100, ENOSPC);
        err = stderrOf([&] { BestScores{ctx}.performActionCheckBestScores(GameAction{}); });
    }
    EXPECT_EQ(err, path + ": the best score could not be saved (No space left on device)\n");
    EXPECT_EQ(host.alerts, std::vector<std::string>{" |You got one of the best scores, but it could not be saved to \"" +
                                                    path + "\": No space left on device.|OK"});
    EXPECT_EQ(ctx.gamePaused, 1);
    EXPECT_FALSE(std::filesystem::exists(path));
    host.alerts.clear();  // once the disk has room, the same finish is saved and congratulated
    BestScores{ctx}.performActionCheckBestScores(GameAction{});
    EXPECT_EQ(host.alerts, std::vector<std::string>{" |You got one of the best scores!|Sweet!"});
    EXPECT_TRUE(std::filesystem::exists(path));
}

// A table put out of order by hand is sorted before the new score is placed, in either order.
TEST_F(EngineFixture, ATamperedTableIsSortedBeforeTheScoreIsPlaced) {
    const std::string path = scores.path();
    for (const bool lower : {true, false}) {
        Array table;
        for (const std::int64_t score : {50, 10, 90, 30}) {
            Dictionary d;
            d.set("Score", Value::integer(score));
            table.push_back(Value::dictionary(std::move(d)));
        }
        Dictionary games;
        games.set("Vexamor", Value::array(std::move(table)));
        ASSERT_FALSE(writePropertyListFile(path, Value::dictionary(std::move(games))));
        installGame(2, 2).gameName = "Vexamor";
        gameInfo->score = 40;
        GameAction action;
        action.lowerIsBetter = lower;
        stdoutOf([&] { BestScores{ctx}.performActionCheckBestScores(action); });
        std::vector<std::int64_t> stored;
        auto read = readPropertyListFile(path);
        for (const Value& e : *std::get<Value>(read).asDictionary()->find("Vexamor")->asArray())
            stored.push_back(*e.asDictionary()->find("Score")->asInteger());
        const std::vector<std::int64_t> sorted = lower ? std::vector<std::int64_t>{10, 30, 40, 50, 90}
                                                       : std::vector<std::int64_t>{90, 50, 40, 30, 10};
        EXPECT_EQ(stored, sorted);
    }
}

TEST(BestScoresFileTest, ABrokenTableIsKeptAsideUnopenedAndANewOneWritten) {
    Dictionary wrongKind;
    wrongKind.set("Vexamor", Value::string("not a list"));
    for (int pipe = 0; pipe < 2; ++pipe) {  // a pipe would block whoever opens it
        ScratchScores scratch;
        StandInHost host{scratch.file};
        StandInView view{host};
        EngineContext ctx{view, host};
        ctx.gameInfo = makeGame(2, 2);
        ctx.gameInfo->gameName = "Vexamor";
        ctx.gameInfo->score = 30;
        const std::string path = scratch.path();
        ASSERT_TRUE(pipe ? mkfifo(path.c_str(), 0600) == 0
                         : !writePropertyListFile(path, Value::dictionary(wrongKind)));
        GameAction action;
        action.lowerIsBetter = static_cast<std::uint32_t>(pipe);
        const std::string err =
            stderrOf([&] { BestScores{ctx}.performActionCheckBestScores(action); });
        EXPECT_NE(err.find("BestScores.dict.unreadable"), std::string::npos) << err;
        EXPECT_EQ(std::filesystem::status(path + ".unreadable").type(),
                  pipe ? std::filesystem::file_type::fifo : std::filesystem::file_type::regular);
        auto read = readPropertyListFile(path);
        const Value* scores = std::get<Value>(read).asDictionary()->find("Vexamor");
        ASSERT_NE(scores, nullptr);
        ASSERT_NE(scores->asArray(), nullptr);
        ASSERT_EQ(scores->asArray()->size(), 1u);
        EXPECT_EQ(*scores->asArray()->front().asDictionary()->find("Score")->asInteger(), 30);
    }
}

}  // namespace
}  // namespace tolvar
