// A saved game keeps its board's number and its undo history: after Continue, in another run of
// the program, Undo and Redo go as they would have without the quit. A history too long for a
// file keeps its newest moves; a game saved without one, or with one that cannot be read, still
// goes on.
#include <variant>

#include "PlayFixture.h"
#include "core/PlistFile.h"
#include "engine/SavedHistory.h"
#include "engine/UserInput.h"

namespace tolvar {
namespace {

using namespace testing;

struct SavedHistoryTest : PlayerAidsTest {
    // Plays the move the game's hint finds: a region selected then removed with the game's key,
    // or a swap. False when there is none.
    bool playHint() {
        const std::vector<BoardCell> cells = engine.hint().cells;
        if (cells.empty()) return false;
        if (const std::int8_t remove = removeSelectionKey(running())) {
            click(cells[0], cells[0]);
            key(static_cast<char32_t>(remove));
        } else {
            click(cells[0], cells[1]);
        }
        return true;
    }
    // Another run of the program continuing saved with the same rules; why it could not, and
    // what it said on standard error, come back through the arguments.
    std::unique_ptr<Engine> continued(const Value& saved, std::string* err = nullptr) {
        auto later = std::make_unique<Engine>(view, host);
        // Through the file's text, as the next run reads it.
        const Value read = std::get<Value>(parsePropertyList(toXmlPropertyList(saved)));
        std::string why;
        const std::string said = stderrOf([&] { why = later->continueGame(read, &rules, menu); });
        if (err) *err = said;
        EXPECT_EQ(why, "");
        return later;
    }
    // The game as a saved game holds it, its history left out (a snapshot's pending events
    // point into their own engine's rules).
    static std::string state(const Engine& e) {
        const std::optional<Value> saved = e.savedGame();
        if (!saved) return "no unfinished game";
        Dictionary d = *saved->asDictionary();
        d.erase(kHistoryKey);
        d.erase("BoardNumber");  // asked of boardNumber()
        return toXmlPropertyList(Value::dictionary(std::move(d)));
    }
    static int undoAll(Engine& e) {
        int n = 0;
        while (e.undo()) ++n;
        return n;
    }
};

TEST_F(SavedHistoryTest, AfterContinueUndoAndRedoGoAsBeforeTheQuit) {
    const Value games[] = {with(createTestGameOne(), {{"BoardWidth", 8}, {"BoardHeight", 8}}),
                           with(createTestGameTwo(), {{"BoardWidth", 8}, {"BoardHeight", 8}}),
                           with(createTestGameThree(), {{"BoardWidth", 8}, {"BoardHeight", 8}})};
    for (const Value& game : games) {
        SCOPED_TRACE(*game.asDictionary()->find("GameName")->asString());
        start(game, {});
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(playHint());
            for (int t = 0; t < 3; ++t) tick();
        }
        // The last move (a removal, or a swap) is saved with its events still pending.
        const std::vector<BoardCell> cells = engine.hint().cells;
        ASSERT_FALSE(cells.empty());
        const std::int8_t remove = removeSelectionKey(running());
        if (remove) click(cells[0], cells[0]);
        const std::string beforeLast = state(engine);
        if (remove) key(static_cast<char32_t>(remove));
        else click(cells[0], cells[1]);
        const std::string afterLast = state(engine);
        ASSERT_NE(beforeLast, afterLast);
        const Value saved = *engine.savedGame();

        std::unique_ptr<Engine> later = continued(saved);
        EXPECT_EQ(state(*later), afterLast);
        EXPECT_EQ(later->boardNumber(), engine.boardNumber());
        EXPECT_NE(later->boardNumber(), 0u);
        ASSERT_TRUE(later->undo());
        EXPECT_EQ(state(*later), beforeLast) << "undo gives the position before the last move";
        stdoutOf([&] { EXPECT_TRUE(later->redo()); });
        EXPECT_EQ(state(*later), afterLast) << "redo gives it back";
        // The game goes on alike, with as many moves to undo, back to the same first position.
        EXPECT_EQ(stdoutOf([&] { later->processEvents(); }), tick());
        EXPECT_EQ(undoAll(*later), undoAll(engine));
        EXPECT_EQ(state(*later), state(engine));
    }
}

TEST_F(SavedHistoryTest, TheBoardNumberAndAnUndoneMoveToRedoSurviveTheQuit) {
    start(smallVexamor(), kSmall);
    click({0, 0}, {0, 0});
    click({2, 0}, {2, 0});
    const std::string selected = state(engine);
    ASSERT_TRUE(engine.undo());
    const Value saved = *engine.savedGame();
    std::unique_ptr<Engine> later = continued(saved);
    EXPECT_EQ(later->boardNumber(), engine.boardNumber());
    EXPECT_TRUE(later->canUndo());
    stdoutOf([&] { EXPECT_TRUE(later->redo()); });
    EXPECT_EQ(state(*later), selected);
    // Saved again, it is the same game with the same history.
    stdoutOf([&] { engine.redo(); });
    EXPECT_EQ(*later->savedGame(), *engine.savedGame());
}

TEST_F(SavedHistoryTest, AGameWithoutOrWithADamagedHistoryGoesOnWithoutUndo) {
    start(smallVexamor(), kSmall);
    click({0, 0}, {0, 0});
    key(U' ');
    const Value good = *engine.savedGame();
    const std::string now = state(engine);
    auto without = [&](std::initializer_list<const char*> keys) {
        Dictionary d = *good.asDictionary();
        for (const char* k : keys) d.erase(k);
        return Value::dictionary(std::move(d));
    };
    auto damaged = [&](auto change) {
        Dictionary d = *good.asDictionary();
        Dictionary history = *d.find(kHistoryKey)->asDictionary();
        Array done = *history.find("Done")->asArray();
        Dictionary move = *done.back().asDictionary();
        change(move);
        done.back() = Value::dictionary(std::move(move));
        history.set("Done", Value::array(std::move(done)));
        d.set(kHistoryKey, Value::dictionary(std::move(history)));
        return Value::dictionary(std::move(d));
    };
    const std::string lost = "The saved game of \"Vexamor\": its undo history cannot be read (";
    const struct {
        const char* what;
        Value saved;
        std::string said;  // on standard error
        std::uint32_t number;
    } cases[] = {
        {"as earlier versions saved it", without({kHistoryKey, "BoardNumber"}), "", 0},
        {"a history that is no dictionary",
         [&] {
             Dictionary d = *good.asDictionary();
             d.set(kHistoryKey, Value::string("moves"));
             return Value::dictionary(std::move(d));
         }(),
         lost + "it is not a dictionary); it goes on without it.\n", engine.boardNumber()},
        {"a board cut short", damaged([](Dictionary& m) { m.set("Board", Value::data({{1, 2, 3}})); }),
         lost + "a move: a board of it is not of the game's size); it goes on without it.\n", engine.boardNumber()},
        {"a colour no game has", damaged([](Dictionary& m) {
             Data board = *m.find("Board")->asData();
             board.bytes[4] = 200;
             m.set("Board", Value::data(std::move(board)));
         }),
         lost + "a move: the cell at 0,0 has colour 200, not one of the game's 4); it goes on without it.\n",
         engine.boardNumber()},
        {"an input at no point", damaged([](Dictionary& m) {
             Dictionary in = *m.find("Inputs")->asArray()->front().asDictionary();
             in.set("X", Value::integer(0x7fc00000));
             m.set("Inputs", Value::array({Value::dictionary(std::move(in))}));
         }),
         lost + "an input is at no point of the window); it goes on without it.\n", engine.boardNumber()},
        {"a move without inputs", damaged([](Dictionary& m) { m.set("Inputs", Value::array()); }),
         lost + "a move has not 1 to 8 inputs); it goes on without it.\n", engine.boardNumber()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::string said;
        std::unique_ptr<Engine> later = continued(c.saved, &said);
        EXPECT_EQ(said, c.said);
        EXPECT_EQ(state(*later), now) << "the game itself is kept";
        EXPECT_FALSE(later->canUndo());
        EXPECT_EQ(later->boardNumber(), c.number);
        EXPECT_EQ(Engine::savedGameProblem(c.saved, &rules), "");
    }
}

TEST_F(SavedHistoryTest, ALongHistoryKeepsItsNewestMovesWithinTheFilesCap) {
    // 40 x 40, two regions: each click selects the other one, a move holding the whole board.
    constexpr int kSide = 40, kClicks = 240;
    std::vector<int> colours(kSide * kSide);
    for (std::size_t n = 0; n < colours.size(); ++n) colours[n] = n < colours.size() / 2 ? 1 : 2;
    start(with(createTestGameOne(), {{"BoardWidth", kSide}, {"BoardHeight", kSide}}), colours);
    for (int i = 0; i < kClicks; ++i) {
        const BoardCell at{i % 2 == 0 ? 0u : kSide - 1u, 0u};
        click(at, at);
    }
    ASSERT_TRUE(engine.undo());  // one to redo
    const Value saved = *engine.savedGame();
    Dictionary withoutHistory = *saved.asDictionary();
    withoutHistory.erase(kHistoryKey);
    const std::size_t whole = toXmlPropertyList(saved).size();
    const std::size_t game = toXmlPropertyList(Value::dictionary(withoutHistory)).size();
    EXPECT_LE(whole - game, kHistoryBytesSaved) << "the history's text within the cap";
    EXPECT_GE(whole - game, kHistoryBytesSaved * 9 / 10) << "the cap is used";

    std::unique_ptr<Engine> later = continued(saved);
    stdoutOf([&] {
        EXPECT_TRUE(later->redo());
        EXPECT_TRUE(engine.redo());
    });
    EXPECT_EQ(state(*later), state(engine));
    const int kept = undoAll(*later);
    EXPECT_GT(kept, 10);
    EXPECT_LT(kept, kClicks - 1) << "the oldest moves went";
    for (int i = 0; i < kept; ++i) ASSERT_TRUE(engine.undo());
    EXPECT_EQ(state(*later), state(engine)) << "the moves kept are the newest";
}

}  // namespace
}  // namespace tolvar
