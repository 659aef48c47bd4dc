// Frames redraw only what changed: after every tick of scripted play in each built-in game the
// window holds exactly what a forced full redraw of the same state draws.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "GlTestWindow.h"
#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "core/BestScoresFile.h"
#include "engine/StandInShell.h"
#include "rules/ActionsMenu.h"
#include "rules/BuiltinGames.h"

namespace tolvar::test {
namespace {

std::vector<unsigned char> windowPixels() {
    std::vector<unsigned char> pixels(1024u * 768u * 4u);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, 1024, 768, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

enum class Gesture { ClickAndSpace, DragToNeighbour };

struct Play {
    const char* name;
    Value (*rules)();
    Gesture gesture;
    int boardWidth = 0, boardHeight = 0, numColors = 0;  // 0: the game's own
};

class PartialRedrawTest : public ::testing::TestWithParam<Play> {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << why;
        ASSERT_TRUE(std::filesystem::is_directory(folder_));
        view_.loadBGTexture();
        ASSERT_NE(view_.bgTexture(), 0u) << "the patches are checked over the real background";
        srandom(11);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    // The window against a full redraw of the board as it stands (while a board shows).
    void expectWholeFrame(const std::string& step) {
        if (!engine_.game() || !engine_.game()->hasBoard() || engine_.gamePaused() != 0) return;
        const std::vector<unsigned char> shown = windowPixels();
        view_.rotValue -= 3;  // the turn of the frame on the screen
        view_.setNeedsDisplay();
        view_.drawBoard(*engine_.game());
        const std::vector<unsigned char> whole = windowPixels();
        std::size_t differ = 0, first = shown.size();
        for (std::size_t i = 0; i < shown.size(); ++i)
            if (shown[i] != whole[i] && differ++ == 0) first = i;
        ++compared_;
        EXPECT_EQ(differ, 0u) << step << ": first at x=" << (first / 4) % 1024 << " y=" << first / 4 / 1024;
    }
    void tick(const std::string& step) {
        engine_.processEvents();
        expectWholeFrame(step);
    }
    void input(std::int64_t type, float x, float y, const std::string& characters = {}) {
        CurrentEvent event;
        event.type = type, event.x = x, event.y = y;
        event.characters = characters;
        event.keyCode = characters == "\x1b" ? kKeyCodeEscape : static_cast<std::uint16_t>(characters.empty() ? 0 : 100 + characters[0]);
        engine_.takeInput(event);
    }
    void key(const std::string& characters) {
        input(kEventTypeKeyDown, 0, 0, characters);
        input(kEventTypeKeyUp, 0, 0, characters);
    }
    // The middle of cell (x, y) in window points.
    std::pair<float, float> centre(int x, int y) const {
        const BoardLayout L = computeBoardLayout(*engine_.game());
        return {x * L.w + L.left + L.pw / 2, y * L.h + L.m + L.ph / 2};
    }
    void start(const Play& play) {
        Value rules = play.rules();
        if (play.boardWidth) {
            Dictionary& d = *rules.asDictionary();
            d.set("BoardWidth", Value::integer(play.boardWidth));
            d.set("BoardHeight", Value::integer(play.boardHeight));
            d.set("NumColors", Value::integer(play.numColors));
        }
        engine_.startGame(&rules, menu_);
        ASSERT_NE(engine_.game(), nullptr);
        ASSERT_TRUE(engine_.game()->hasBoard());
        expectWholeFrame("start");
        tick("the game has started");
    }

    // Best scores go to a folder of the test's own.
    static std::string scratchFolder() {
        char folder[] = "/tmp/tolvar-redraw-XXXXXX";
        return mkdtemp(folder) ? folder : "";
    }
    const std::string folder_ = scratchFolder();
    // The window's callbacks, with the engine's game and random sequence.
    GameView::Window engineWindow() {
        GameView::Window callbacks = window_.callbacks();
        callbacks.game = [this] { return engine_.game(); };
        callbacks.random = [this] { return engine_.random().next(); };
        callbacks.marks = [this] { return marks_; };
        return callbacks;
    }
    BoardMarks marks_;  // what the window marks on the board
    BestScoresFile scores_{folder_};
    StandInHost host_{scores_};
    CountingWindow window_;
    GameView view_{host_, engineWindow()};
    Engine engine_{view_, host_};
    ActionsMenu menu_;
    int compared_ = 0;
};

TEST_P(PartialRedrawTest, EveryTickShowsWhatAFullRedrawShows) {
    const Play& play = GetParam();
    start(play);
    for (int move = 0; move < 24 && !HasFailure(); ++move) {
        const std::string step = std::string(play.name) + " move " + std::to_string(move);
        const int x = static_cast<int>(random() % engine_.game()->boardWidth);
        const int y = static_cast<int>(random() % engine_.game()->boardHeight);
        const auto [fx, fy] = centre(x, y);
        if (play.gesture == Gesture::ClickAndSpace) {
            input(kEventTypeMouseDown, fx, fy);
            input(kEventTypeMouseUp, fx, fy);
            tick(step + " selected");
            tick(step + " turning");
            if (move % 3 != 2) key(" ");  // every third selection is dropped by the next click
        } else {
            const bool across = x + 1 < engine_.game()->boardWidth && (random() & 1);
            const auto [tx, ty] = across ? centre(x + 1, y) : centre(x, y > 0 ? y - 1 : y + 1);
            input(kEventTypeMouseDown, fx, fy);
            input(kEventTypeMouseUp, tx, ty);
        }
        for (int t = 0; t < 3; ++t) tick(step + " tick " + std::to_string(t));
        if (move % 8 == 7) {  // Escape plays again from a new board
            key("\x1b");
            tick(step + " after Escape");
        }
    }
    EXPECT_GT(compared_, 50);
}

// A move's preview lights its cells and puts a label by the pointer's cell; moved, changed or
// taken away, the frames redraw only what it covered, and the board is left exactly as it was.
TEST_P(PartialRedrawTest, ALightAndALabelComeAndGoLeavingTheBoardAsItWas) {
    start(GetParam());
    const GameInfo& game = *engine_.game();
    const std::uint32_t right = game.boardWidth - 1, top = game.boardHeight - 1;
    const std::vector<unsigned char> plain = windowPixels();
    struct Marked {
        const char* what;
        std::vector<BoardCell> lit;
        std::optional<BoardLabel> label;
    };
    const Marked states[] = {
        {"a region and its label", {{0, 0}, {1, 0}, {0, 1}}, BoardLabel{"+12 points, 6 pieces", BoardCell{0, 1}}},
        {"moved", {{2, 2}}, BoardLabel{"+1 point, 1 piece", BoardCell{2, 2}}},
        {"another text in its place", {{2, 2}}, BoardLabel{"+3 points, 2 pieces", BoardCell{2, 2}}},
        {"a line over the middle", {}, BoardLabel{"No move left", std::nullopt}},
        {"by the top right cell", {{right, top}, {right, top - 1}}, BoardLabel{"+1 point, 2 pieces", BoardCell{right, top}}},
        {"light without a label", {{right, 0}}, std::nullopt},
    };
    for (const Marked& m : states) {
        marks_ = {std::nullopt, {}, m.lit, m.label};
        view_.drawBoard(game);
        EXPECT_NE(windowPixels(), plain) << m.what << ": nothing was drawn";
        expectWholeFrame(m.what);
    }
    marks_ = {};
    view_.drawBoard(game);
    EXPECT_EQ(windowPixels(), plain) << "the light and the label leave the board as it was";
}

using ScoreScreenRedrawTest = PartialRedrawTest;

TEST_P(ScoreScreenRedrawTest, TheBoardAfterTheScoreScreenIsWhole) {
    // A board that ends in one move: two pieces of one colour.
    Play tiny = GetParam();
    tiny.boardWidth = 2, tiny.boardHeight = 1, tiny.numColors = 1;
    start(tiny);
    const auto [fx, fy] = centre(0, 0);
    input(kEventTypeMouseDown, fx, fy);
    input(kEventTypeMouseUp, fx, fy);
    tick("selected");
    key(" ");
    for (int t = 0; t < 3; ++t) tick("after the last move");
    ASSERT_TRUE(host_.scoresTimer) << "the score screen shows";
    EXPECT_NE(view_.scoreModelCount(), 0);
    key("\x1b");
    tick("a new board after the score screen");
    EXPECT_FALSE(host_.scoresTimer);
    EXPECT_GT(compared_, 1);
}

INSTANTIATE_TEST_SUITE_P(BuiltinGames, PartialRedrawTest,
                         ::testing::Values(Play{"Vexamor", createTestGameOne, Gesture::ClickAndSpace},
                                           Play{"Trindle", createTestGameTwo, Gesture::DragToNeighbour},
                                           Play{"Glimmet", createTestGameThree, Gesture::DragToNeighbour}),
                         [](const auto& info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(OneMoveGame, ScoreScreenRedrawTest,
                         ::testing::Values(Play{"Vexamor", createTestGameOne, Gesture::ClickAndSpace}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tolvar::test
