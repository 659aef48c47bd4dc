// A game started with the player's board size and colours: the board dealt has them, the rules
// stay as written, a saved game goes on with them, and the best scores go to the table they name.
// Also how far each choice may go.
#include <variant>

#include "PlayFixture.h"
#include "core/PlistFile.h"
#include "engine/GameLimits.h"

namespace tolvar {
namespace {

using namespace testing;

// Remembers the name of each table a score is entered into; keeps no score.
struct NamingStore : ScoreStore {
    EnteredScore enterScore(const std::string& gameName, const std::function<int(Array&)>&) override {
        names.push_back(gameName);
        return {};
    }
    std::vector<std::string> names;
};

GameOptions options(int width, int height, int colours) {
    GameOptions o;
    o.boardWidth = static_cast<std::uint8_t>(width);
    o.boardHeight = static_cast<std::uint8_t>(height);
    o.numColors = static_cast<std::uint8_t>(colours);
    return o;
}

// The largest colour number on the board.
int mostColour(const GameInfo& game) {
    int most = 0;
    for (const BoardPiece& p : game.board) most = std::max(most, static_cast<int>(p.colorIndex));
    return most;
}

struct GameOptionsTest : ::testing::Test {
    void start(const GameOptions& chosen) {
        engine.random().seed(9);
        stdoutOf([&] { engine.startGame(&rules, menu, chosen); });
    }
    // Plays a board of one colour to its end: a click on a piece, then the game's remove key.
    void playToTheEnd() { playToTheEnd(engine); }
    static void playToTheEnd(Engine& engine) {
        stdoutOf([&] {
            engine.processEvents();
            const BoardLayout l = computeBoardLayout(*engine.game());
            CurrentEvent e;
            e.x = l.left + 0.5f * l.w;
            e.y = l.m + 0.5f * l.h;
            for (const std::int64_t type : {kEventTypeMouseDown, kEventTypeMouseUp}) {
                e.type = type;
                engine.takeInput(e);
            }
            e = CurrentEvent();
            e.characters = " ";
            e.keyCode = 132;
            for (const std::int64_t type : {kEventTypeKeyDown, kEventTypeKeyUp}) {
                e.type = type;
                engine.takeInput(e);
            }
            for (int tick = 0; tick < 10 && engine.gamePaused() == 0; ++tick) engine.processEvents();
        });
    }

    NamingStore scores;
    StandInHost host{scores};
    StandInView view{host};
    Engine engine{view, host};
    ActionsMenu menu;
    Value rules = createTestGameOne();  // Vexamor: 8 x 8 square pieces in 4 colours
};

TEST_F(GameOptionsTest, TheBoardDealtHasTheChosenSizeAndColoursAndTheRulesStayAsWritten) {
    const std::string written = toXmlPropertyList(rules);
    struct Case {
        GameOptions chosen;
        int width, height, colours;
    } cases[] = {
        {options(6, 5, 3), 6, 5, 3},
        {options(8, 8, 4), 8, 8, 4},  // the rules' own values
        {GameOptions{}, 8, 8, 4},
        {[] { GameOptions o; o.boardHeight = 3; return o; }(), 8, 3, 4},
        {options(1, 1, 1), 1, 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.width * 100 + c.height);
        start(c.chosen);
        ASSERT_NE(engine.game(), nullptr);
        EXPECT_EQ(engine.game()->boardWidth, c.width);
        EXPECT_EQ(engine.game()->boardHeight, c.height);
        EXPECT_EQ(engine.game()->numColors, c.colours);
        EXPECT_EQ(engine.game()->board.size(), static_cast<std::size_t>(c.width * c.height));
        EXPECT_LE(mostColour(*engine.game()), c.colours);
        EXPECT_EQ(toXmlPropertyList(rules), written);
    }
}

TEST_F(GameOptionsTest, ABoardPlayedWithChoicesEntersItsScoreInTheTableNamedAfterThem) {
    for (const auto& [chosen, table] : std::vector<std::pair<GameOptions, std::string>>{
             {options(2, 2, 1), "Vexamor 2 \xC3\x97 2, 1 colour"},
             {options(1, 2, 1), "Vexamor 1 \xC3\x97 2, 1 colour"},
         }) {
        start(chosen);
        playToTheEnd();
        ASSERT_FALSE(scores.names.empty());
        EXPECT_EQ(scores.names.back(), table);
    }
    // Choices equal to the rules' own values are no choice: the game's own table.
    rules = with(rules, {{"NumColors", 1}, {"BoardWidth", 2}, {"BoardHeight", 2}});
    start(options(2, 2, 1));
    playToTheEnd();
    EXPECT_EQ(scores.names.back(), "Vexamor");
    EXPECT_EQ(scores.names.size(), 3u);
}

TEST_F(GameOptionsTest, ASavedGameGoesOnWithItsChoicesAndItsTable) {
    start(options(6, 5, 3));
    const Value saved = *engine.savedGame();
    const std::string board = boardPicture(*engine.game());

    Engine later{view, host};
    ActionsMenu laterMenu;
    std::string why = "not run";
    stdoutOf([&] { why = later.continueGame(saved, &rules, laterMenu); });
    ASSERT_EQ(why, "");
    EXPECT_EQ(boardPicture(*later.game()), board);
    EXPECT_EQ(later.game()->numColors, 3);
    EXPECT_EQ(Engine::savedGameProblem(saved, &rules), "");
    EXPECT_EQ(toXmlPropertyList(*later.savedGame()), toXmlPropertyList(saved));  // the choices kept again

    // A one-move board continued in another run enters its score in the table of its choices.
    start(options(2, 2, 1));
    const Value oneMove = *engine.savedGame();
    Engine third{view, host};
    stdoutOf([&] { why = third.continueGame(oneMove, &rules, laterMenu); });
    ASSERT_EQ(why, "");
    playToTheEnd(third);
    ASSERT_FALSE(scores.names.empty());
    EXPECT_EQ(scores.names.back(), "Vexamor 2 \xC3\x97 2, 1 colour");

    // Without its choices the board saved does not fit the rules' 8 x 8.
    Dictionary stripped = *saved.asDictionary();
    ASSERT_TRUE(stripped.erase("Options"));
    const Value bare = Value::dictionary(std::move(stripped));
    EXPECT_NE(Engine::savedGameProblem(bare, &rules), "");
}

TEST(GameLimitsTest, EachChoiceGoesAsFarAsTheCheckerAccepts) {
    GameInfo square;  // Vexamor's: square pieces, no launcher
    square.squareShapes = 1;
    GameInfo flat;
    GameInfo runs;
    runs.setupMaxLinearColors = 2;
    runs.setupRandomFill = 1;
    struct Case {
        const GameInfo* game;
        unsigned height, widest;
    } widths[] = {{&square, 8, 10}, {&square, 5, 6}, {&square, 1, 1}, {&square, 255, 255}, {&flat, 3, 255}};
    for (const Case& c : widths) {
        SCOPED_TRACE(c.height);
        EXPECT_EQ(widthRange(*c.game, c.height).most, c.widest);
        // The widest board fits the window; one more column runs off it.
        if (c.game->squareShapes && c.widest < kMostBoardSide) {
            const std::unique_ptr<GameInfo> sized = copyOfGame(*c.game);
            sized->boardHeight = static_cast<std::uint8_t>(c.height);
            const BoardLayout layout = computeBoardLayout(*sized);
            EXPECT_LE(layout.w * static_cast<float>(c.widest), winWidth);
            EXPECT_GT(layout.w * static_cast<float>(c.widest + 1), winWidth);
        }
    }
    EXPECT_EQ(colorRange(flat).least, 1u);
    EXPECT_EQ(colorRange(runs).least, 2u);
    EXPECT_EQ(colorRange(flat).most, kDrawnColorCount);

    square.boardWidth = square.boardHeight = 8;
    square.numColors = 4;
    for (const auto& [chosen, problem] : std::vector<std::pair<GameOptions, std::string>>{
             {options(6, 5, 3), ""},
             {options(7, 5, 3), "the width is 1 to 6 at a height of 5"},
             {options(6, 0, 3), "the height is 1 to 255"},
             {options(6, 5, 11), "the number of colours is 1 to 10"},
             {[] { GameOptions o; o.boardWidth = 11; return o; }(), "the width is 1 to 10 at a height of 8"},
         })
        EXPECT_EQ(optionsProblem(square, chosen), problem);
    EXPECT_EQ(optionsProblem(runs, options(3, 3, 1)), "the number of colours is 2 to 10");
}

TEST(GameLimitsTest, RememberedChoicesArePlayedWithinTheLimits) {
    GameInfo square;  // Vexamor's rules: 8 x 8 square pieces in 4 colours
    square.squareShapes = 1;
    square.boardWidth = square.boardHeight = 8;
    square.numColors = 4;
    GameOptions onlyRows;
    onlyRows.boardHeight = 4;
    GameOptions none;
    for (const auto& [remembered, played] : std::vector<std::pair<GameOptions, GameOptions>>{
             {options(12, 10, 5), options(12, 10, 5)},
             {options(12, 8, 5), options(10, 8, 5)},    // the most columns the window holds at 8 rows
             {options(6, 5, 0), [] { GameOptions o; o.boardWidth = 6; o.boardHeight = 5; return o; }()},
             {options(6, 5, 11), [] { GameOptions o; o.boardWidth = 6; o.boardHeight = 5; return o; }()},
             {onlyRows, [] { GameOptions o; o.boardWidth = 5; o.boardHeight = 4; return o; }()},  // the rules' 8 shrink
             {none, none},
         })
        EXPECT_EQ(optionsWithinLimits(square, remembered), played);
    square.boardWidth = 30;  // rules whose board runs off the window are played as written
    EXPECT_EQ(optionsWithinLimits(square, none), none);
}

}  // namespace
}  // namespace tolvar
