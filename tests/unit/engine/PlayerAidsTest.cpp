// What the engine offers the player around the rules: undo and redo, the hint, the keyboard
// cursor, a new board, and a game kept for the main window.
#include <variant>

#include "PlayFixture.h"
#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"
#include "engine/Completion.h"
#include "engine/Engine.h"
#include "engine/MoveHistory.h"
#include "engine/RandomSequence.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

using namespace testing;

TEST_F(PlayerAidsTest, AClickIsOneMoveAndOnlyChangesCount) {
    start(smallVexamor(), kSmall);
    const std::string start = picture();
    EXPECT_FALSE(engine.canUndo());
    click({0, 0}, {2, 1});  // a drag across the board selects the region under the mouse-up
    const std::string selected = picture();
    EXPECT_EQ(selected, "12|12|33 sel 2");
    click({5, 5}, {5, 5});  // off the board: nothing changes, no move
    key(U'q');               // a key the rules do not bind
    key(U' ');               // removes the selection
    EXPECT_EQ(tick().substr(0, 18), "processing event 2");
    const std::string removed = picture();
    ASSERT_TRUE(engine.canUndo());
    EXPECT_FALSE(engine.canRedo());

    // Undo goes back move by move to the start; one more does nothing.
    const std::vector<std::string> back = {selected, start};
    for (const std::string& want : back) {
        EXPECT_TRUE(engine.undo());
        EXPECT_EQ(picture(), want);
    }
    EXPECT_FALSE(engine.undo());
    EXPECT_EQ(running().score, 0u);

    // Redo plays the moves again: the removal's event is pending again and prints the same.
    EXPECT_TRUE(engine.redo());
    EXPECT_EQ(picture(), selected);
    EXPECT_TRUE(engine.redo());
    EXPECT_FALSE(engine.redo());
    EXPECT_EQ(tick().substr(0, 18), "processing event 2");
    EXPECT_EQ(picture(), removed);

    // A new move forgets what was undone.
    engine.undo();
    click({0, 1}, {0, 1});
    EXPECT_FALSE(engine.canRedo());
}

TEST_F(PlayerAidsTest, NewBoardsAndTheEndOfAGameForgetTheMoves) {
    using Forget = std::function<void(PlayerAidsTest&)>;
    const std::pair<const char*, Forget> cases[] = {
        {"Escape", [](PlayerAidsTest& t) { t.key(U'\x1b', kKeyCodeEscape); }},
        {"new game", [](PlayerAidsTest& t) { t.engine.newGame(); }},
        {"start", [](PlayerAidsTest& t) { t.start(smallVexamor(), kSmall); }},
    };
    for (const auto& [what, forget] : cases) {
        SCOPED_TRACE(what);
        start(smallVexamor(), kSmall);
        click({2, 0}, {2, 0});
        ASSERT_TRUE(engine.canUndo());
        forget(*this);
        EXPECT_FALSE(engine.canUndo());
        EXPECT_EQ(selectedCount(running()), 0);
    }
    // One region of two: removing it ends the game; no undo past the best-score check, and the
    // keyboard cursor of a game played with the keys goes with the board.
    start(with(createTestGameOne(), {{"BoardWidth", 2}, {"BoardHeight", 1}}), {2, 2});
    click({0, 0}, {0, 0});
    key(kKeyUpArrow);
    ASSERT_TRUE(engine.cursor());
    key(U' ');
    ASSERT_TRUE(engine.canUndo());
    ASSERT_TRUE(engine.hasUnfinishedGame());
    tick();
    EXPECT_EQ(engine.gamePaused(), 1);
    EXPECT_FALSE(engine.cursor()) << "Return on the score screen is no click on the cursor's cell";
    EXPECT_FALSE(engine.canUndo());
    EXPECT_FALSE(engine.undo());
    EXPECT_FALSE(engine.hasUnfinishedGame());
    EXPECT_FALSE(engine.savedGame());
    EXPECT_FALSE(engine.resumeGame());
}

TEST_F(PlayerAidsTest, AGameLeftForTheMainWindowIsShownAgainAsItWas) {
    start(smallVexamor(), kSmall);
    click({2, 0}, {2, 0});
    key(kKeyUpArrow);
    engine.returnToMain();
    EXPECT_TRUE(host.mainWindowShown);
    EXPECT_FALSE(host.gameWindowShown);
    EXPECT_FALSE(engine.cursor());
    ASSERT_TRUE(engine.hasUnfinishedGame());
    EXPECT_TRUE(engine.resumeGame());
    EXPECT_FALSE(host.mainWindowShown);
    EXPECT_TRUE(host.gameWindowShown);
    EXPECT_EQ(picture(), "12|12|33 sel 2");
    EXPECT_TRUE(engine.undo()) << "its moves are kept too";
}

TEST_F(PlayerAidsTest, OnAHugeBoardTheOldestMovesGoFirst) {
    start(with(createTestGameOne(), {{"BoardWidth", 255}, {"BoardHeight", 255}}), {});
    const std::size_t kept = MoveHistory::kCellsKept / running().board.size();
    const BoardCell cell = engine.hint().cells.front();
    for (std::size_t i = 0; i < kept + 3; ++i) click(cell, cell);  // selects and deselects
    std::size_t undone = 0;
    while (engine.undo()) ++undone;
    EXPECT_EQ(undone, kept);
    EXPECT_EQ(kept, 30u);
}

TEST_F(PlayerAidsTest, ADragInASwapGameIsOneMoveAndRedoSwapsAgain) {
    // Trindle on 4 x 2, columns "12", "21", "34", "34": swapping (0,0) with (1,0) joins two
    // pairs, which go; the 3s and 4s keep the game going.
    start(with(createTestGameTwo(), {{"BoardWidth", 4}, {"BoardHeight", 2}}), {1, 2, 2, 1, 3, 4, 3, 4});
    std::string first = click({0, 0}, {1, 0});
    first += tick();
    const std::string after = picture();
    EXPECT_TRUE(engine.undo());
    EXPECT_EQ(picture(), "12|21|34|34 sel 0");
    EXPECT_FALSE(engine.undo()) << "the mouse-down and mouse-up were one move";
    EXPECT_TRUE(engine.redo());
    EXPECT_EQ(tick(), first);
    EXPECT_EQ(picture(), after);
}

TEST_F(PlayerAidsTest, HintsComeFromTheEndTestsSearchAndChangeNothing) {
    struct Case {
        const char* what;
        std::uint32_t userEventType;
        int lineLimit;
        std::vector<int> colours;  // 3 x 3, columns bottom to top
        Hint hint;
    };
    const Case cases[] = {
        {"region", kUserEventSelectColorRegion, 0, {1, 2, 3, 4, 2, 2, 1, 3, 4}, {{{0, 1}, {1, 1}, {1, 2}}}},
        {"a hole is no region", kUserEventSelectColorRegion, 0, {0, 0, 3, 4, 2, 1, 1, 3, 4}, {}},
        {"no region", kUserEventSelectColorRegion, 0, {1, 2, 1, 2, 1, 2, 1, 2, 1}, {}},
        {"line by a swap", kUserEventSwapAdjacent, 2, {1, 5, 5, 5, 2, 3, 3, 4, 1}, {{{0, 0}, {1, 0}}}},
        {"no line", kUserEventSwapAdjacent, 2, {1, 2, 3, 2, 3, 1, 3, 1, 2}, {}},
        {"swap that joins", kUserEventSwapAdjacent, 0, {1, 2, 3, 2, 3, 1, 3, 1, 4}, {{{0, 0}, {1, 0}}}},
        // The first swaps in the search's order join nothing; a later one does.
        {"a later swap joins", kUserEventSwapAdjacent, 0, {1, 2, 3, 4, 5, 6, 7, 6, 8}, {{{1, 1}, {2, 1}}}},
        {"swap that only moves", kUserEventSwapAdjacent, 0, {1, 2, 3, 4, 5, 6, 7, 8, 1}, {{{0, 0}, {1, 0}}, false}},
        {"one colour", kUserEventSwapAdjacent, 0, {1, 1, 1, 1, 1, 1, 1, 1, 1}, {}},
        {"pieces apart", kUserEventSwapAdjacent, 0, {1, 0, 0, 0, 0, 0, 0, 0, 2}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto game = makeGame(3, 3, c.colours);
        game->setupMaxLinearColors = static_cast<std::uint8_t>(c.lineLimit);
        addUserEvent(*game, 1, c.userEventType).minimumPieces = 2;
        const std::vector<BoardPiece> before = game->board;
        EXPECT_EQ(findHint(*game, GameOutput()), c.hint);
        EXPECT_EQ(game->board, before);
    }
    start(smallVexamor(), kSmall);
    EXPECT_EQ(engine.hint().cells, (std::vector<BoardCell>{{0, 0}, {1, 0}}));
}

TEST_F(PlayerAidsTest, TheCursorMovesOnTheBoardAndEnterClicksItsCell) {
    start(smallVexamor(), kSmall);
    EXPECT_FALSE(engine.cursor());
    key(kCharacterReturn);
    EXPECT_FALSE(engine.cursor()) << "Return without a cursor is only a key";
    const std::pair<char32_t, BoardCell> moves[] = {
        {kKeyUpArrow, {1, 1}},  // shows it in the middle
        {kKeyUpArrow, {1, 1}},   {kKeyRightArrow, {2, 1}}, {kKeyRightArrow, {2, 1}},
        {kKeyDownArrow, {2, 0}}, {kKeyDownArrow, {2, 0}},  {kKeyLeftArrow, {1, 0}},
        {kKeyLeftArrow, {0, 0}}, {kKeyLeftArrow, {0, 0}},  {kKeyF1, {0, 0}},
    };
    for (const auto& [arrow, cell] : moves) {
        key(arrow);
        EXPECT_EQ(engine.cursor(), cell) << static_cast<int>(arrow);
    }
    EXPECT_EQ(selectedCount(running()), 0) << "keys that are not the rules' change nothing";
    key(kCharacterReturn);
    EXPECT_EQ(picture(), "12|12|33 sel 2") << "Enter selects like a click";
    EXPECT_TRUE(engine.undo());
    EXPECT_FALSE(engine.undo()) << "one move";
    input(at(kEventTypeMouseDown, {2, 1}));
    EXPECT_FALSE(engine.cursor()) << "the mouse hides it";

    // A key the rules bind is theirs: here every arrow's first byte.
    Dictionary bound = *smallVexamor().asDictionary();
    Array events = *bound.find("SupportedUserEvents")->asArray();
    Dictionary arrowKey = *events[0].asDictionary();
    arrowKey.set("UserEventCharacter", Value::integer(static_cast<std::int8_t>(0xEF)));
    events[0] = Value::dictionary(std::move(arrowKey));
    bound.set("SupportedUserEvents", Value::array(std::move(events)));
    start(Value::dictionary(std::move(bound)), kSmall);
    key(kKeyLeftArrow);
    EXPECT_FALSE(engine.cursor());
}

TEST(KeyCharactersTest, TheFirstCharacterIsDecodedFromUtf8) {
    const std::pair<std::string, char32_t> cases[] = {
        {"", 0}, {" x", U' '}, {"\xC3\xA9", 0xE9}, {utf8(kKeyLeftArrow), kKeyLeftArrow},
        {utf8(0x1F600), 0x1F600}, {"\xEF\x9C", 0}, {"\xFF", 0}, {"\xC3(", 0},
    };
    for (const auto& [characters, first] : cases) {
        CurrentEvent e;
        e.characters = characters;
        EXPECT_EQ(firstKeyCharacter(e), first) << characters;
    }
    EXPECT_EQ(utf8(kKeyUpArrow), "\xEF\x9C\x80");
    EXPECT_EQ(firstCharacter(CurrentEvent{kEventTypeKeyDown, 1, utf8(kKeyF1)}), static_cast<std::int8_t>(0xEF));
}

}  // namespace
}  // namespace tolvar
