// Where the game window's texts go at every window size: measured with the game's own font.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "presentation/TextLayout.h"

namespace tolvar {
namespace {

// The picture (1024 x 768 units) fitted into a window, as the game window fits it.
struct Picture {
    int width, height;
};
Picture pictureIn(int windowWidth, int windowHeight) {
    const double s = std::min(windowWidth / 1024.0, windowHeight / 768.0);
    return {static_cast<int>(1024 * s + 0.5), static_cast<int>(768 * s + 0.5)};
}

GameInfo board(int w, int h, bool square, bool launcher) {
    GameInfo g;
    g.boardWidth = static_cast<std::uint8_t>(w), g.boardHeight = static_cast<std::uint8_t>(h);
    g.squareShapes = square, g.hasLauncher = launcher;
    return g;
}

std::vector<StackedText> nameTexts(const std::string& name) { return {{name, 1.0f, TextTone::Heading}}; }
std::vector<StackedText> scoreTexts(const std::string& digits) {
    return {{"Score", 0.7f, TextTone::Label}, {digits, 1.0f, TextTone::Figure}};
}

// The panel lies in the picture, holds its lines, and its lines do not overlap.
void expectWellFormed(const TextPanel& p, const Picture& pic, const std::string& what) {
    ASSERT_FALSE(p.lines.empty()) << what;
    EXPECT_TRUE((TextBox{0, 0, pic.width, pic.height}.holds(p.backing))) << what << ": outside the picture";
    for (std::size_t i = 0; i < p.lines.size(); ++i) {
        EXPECT_TRUE(p.backing.holds(p.lines[i].box)) << what << ": line " << i << " off its backing";
        EXPECT_GT(p.lines[i].box.width, 0) << what;
        for (std::size_t j = i + 1; j < p.lines.size(); ++j)
            EXPECT_FALSE(p.lines[i].box.meets(p.lines[j].box)) << what << ": lines " << i << " and " << j;
    }
}

int largest(const TextPanel& p) {
    int px = 0;
    for (const PlacedText& l : p.lines) px = std::max(px, l.pixels);
    return px;
}

struct BoardCase {
    int windowWidth, windowHeight;
    float scale;
    GameInfo game;
    const char* name;
    int digitsAtLeast, digitsAtMost;  // the score's size in pixels
};

TEST(BoardTextLayout, NameAndScoreFitBesideTheBoardAtEverySize) {
    const BoardCase cases[] = {
        {400, 300, 1.0f, board(8, 8, false, false), "Vexamor", 8, 11},
        {500, 1150, 1.0f, board(8, 8, false, false), "Rising Regions", 11, 13},
        {400, 300, 1.0f, board(10, 12, true, false), "Glimmet", 8, 11},
        {800, 600, 1.0f, board(8, 8, false, false), "Vexamor", 19, 21},
        {1024, 768, 1.0f, board(6, 9, true, true), "Trindle", 24, 27},
        {1024, 768, 2.0f, board(8, 8, false, false), "Vexamor", 22, 27},  // the readable floor doubled
        {3840, 2160, 1.0f, board(8, 8, false, false), "Rising Regions", 60, 80},
        {3840, 2160, 2.0f, board(8, 8, false, true), "Vexamor", 60, 80},
    };
    for (const BoardCase& c : cases) {
        const std::string what = std::to_string(c.windowWidth) + "x" + std::to_string(c.windowHeight) + " " + c.name;
        const Picture pic = pictureIn(c.windowWidth, c.windowHeight);
        const BoardTextRoom room = boardTextRoom(computeBoardLayout(c.game), pic.width, pic.height, c.scale);
        const BoardTexts t = layoutBoardTexts(room, nameTexts(c.name), scoreTexts("0004"), boardFontMeasure());
        expectWellFormed(t.name, pic, what + " name");
        expectWellFormed(t.score, pic, what + " score");
        // Clear of the board's frame, on either side.
        EXPECT_LE(t.name.backing.right(), room.leftColumnEnd) << what;
        EXPECT_GE(t.score.backing.x, room.rightColumnStart) << what;
        EXPECT_GE(t.name.backing.top(), pic.height * 3 / 4) << what << ": at the top";
        // The label above its digits, the digits whole, sized from the window.
        ASSERT_EQ(t.score.lines.size(), 2u) << what;
        EXPECT_EQ(t.score.lines[0].text, "Score");
        EXPECT_EQ(t.score.lines[1].text, "0004");
        EXPECT_GT(t.score.lines[0].box.y, t.score.lines[1].box.y) << what;
        EXPECT_GE(t.score.lines[1].pixels, c.digitsAtLeast) << what;
        EXPECT_LE(t.score.lines[1].pixels, c.digitsAtMost) << what;
        // Whole words: a name breaks between words only.
        std::string words;
        for (const PlacedText& l : t.name.lines) words += (words.empty() ? "" : " ") + l.text;
        EXPECT_EQ(words, c.name) << what;
    }
}

TEST(BoardTextLayout, ALongNameBreaksBetweenWordsAndAWordTooLongInsideIt) {
    const GameInfo g = board(8, 8, false, false);
    const Picture pic = pictureIn(800, 600);
    const BoardTextRoom room = boardTextRoom(computeBoardLayout(g), pic.width, pic.height, 1.0f);
    const BoardTexts words = layoutBoardTexts(room, nameTexts("The Long Game Of Many Words"), scoreTexts("0"),
                                              boardFontMeasure());
    expectWellFormed(words.name, pic, "words");
    EXPECT_GE(words.name.lines.size(), 3u);
    EXPECT_GE(largest(words.name), kSmallestReadablePixels) << "broken rather than made small";
    const BoardTexts word = layoutBoardTexts(room, nameTexts(std::string(40, 'W')), scoreTexts("0"), boardFontMeasure());
    expectWellFormed(word.name, pic, "one word");
    EXPECT_GE(word.name.lines.size(), 2u);
    EXPECT_LE(word.name.backing.right(), room.leftColumnEnd);
}

TEST(BoardTextLayout, ASmallerTextGoesUnderTheNameInItsPanel) {
    const Picture pic = pictureIn(1024, 768);
    const BoardTextRoom room = boardTextRoom(computeBoardLayout(board(8, 8, false, false)), pic.width, pic.height, 1.0f);
    std::vector<StackedText> name = nameTexts("Vexamor");
    name.push_back({"#12", 0.6f, TextTone::Label});
    const BoardTexts t = layoutBoardTexts(room, name, scoreTexts("0"), boardFontMeasure());
    expectWellFormed(t.name, pic, "name and number");
    ASSERT_EQ(t.name.lines.size(), 2u);
    EXPECT_LT(t.name.lines[1].box.top(), t.name.lines[0].box.y + 1);
    EXPECT_LT(t.name.lines[1].pixels, t.name.lines[0].pixels);
    EXPECT_GE(t.name.lines[1].pixels, kSmallestReadablePixels);
}

ScoreScreenTexts scoreScreen(std::size_t rows, int highlighted) {
    ScoreScreenTexts t{"Last Score", "0042", "Best Scores", "(press 'esc' to play again)", {}};
    for (std::size_t i = 0; i < rows; ++i)
        t.rows.push_back({"#" + std::to_string(i + 1), "0" + std::to_string(100 + i), "Nov 14, 2023 22:13",
                          static_cast<int>(i) == highlighted});
    return t;
}

TEST(ScoreScreenLayout, TablesFitThePictureWithEveryRowTheyCan) {
    struct Case {
        int w, h;
        std::size_t rows, shownAtLeast;
    };
    const Case cases[] = {{400, 300, 20, 15},  {400, 300, 3, 3},   {500, 1150, 20, 20},
                          {800, 600, 20, 20},  {1024, 768, 0, 0},  {1024, 768, 20, 20},
                          {3840, 2160, 20, 20}, {3840, 2160, 5, 5}};
    for (const Case& c : cases) {
        const std::string what = std::to_string(c.w) + "x" + std::to_string(c.h) + " rows " + std::to_string(c.rows);
        const Picture pic = pictureIn(c.w, c.h);
        const ScoreScreenLayout l = layoutScoreScreen(pic.width, pic.height, 1.0f, scoreScreen(c.rows, 1), boardFontMeasure());
        expectWellFormed(l.last, pic, what + " last");
        expectWellFormed(l.best, pic, what + " best");
        EXPECT_FALSE(l.last.backing.meets(l.best.backing)) << what;
        EXPECT_GE(l.rowsShown, c.shownAtLeast) << what;
        EXPECT_LE(l.rowsShown, c.rows) << what;
        // Heading, three cells a row, hint; the highlighted row in its own tone.
        EXPECT_EQ(l.best.lines.size(), 2 + 3 * l.rowsShown) << what;
        const auto highlighted = std::count_if(l.best.lines.begin(), l.best.lines.end(),
                                               [](const PlacedText& p) { return p.tone == TextTone::Highlight; });
        EXPECT_EQ(highlighted, l.rowsShown > 1 ? 3 : 0) << what;
        EXPECT_GE(largest(l.best), kSmallestReadablePixels) << what;
    }
    const Picture big = pictureIn(3840, 2160), small = pictureIn(800, 600);
    EXPECT_GT(largest(layoutScoreScreen(big.width, big.height, 1.0f, scoreScreen(20, 0), boardFontMeasure()).best),
              2 * largest(layoutScoreScreen(small.width, small.height, 1.0f, scoreScreen(20, 0), boardFontMeasure()).best));
}

TEST(ScoreScreenLayout, ScoresLineUpInColumns) {
    const ScoreScreenTexts texts = scoreScreen(12, -1);
    const ScoreScreenLayout l = layoutScoreScreen(1024, 768, 1.0f, texts, boardFontMeasure());
    // Ranks and scores end at one edge each ("#9" and "#10" alike), dates start at one edge.
    const PlacedText& first = l.best.lines[1];
    for (std::size_t row = 1; row < l.rowsShown; ++row) {
        const PlacedText* cells = &l.best.lines[1 + 3 * row];
        EXPECT_EQ(cells[0].box.right(), first.box.right()) << row;
        EXPECT_EQ(cells[1].box.right(), (&first)[1].box.right()) << row;
        EXPECT_EQ(cells[2].box.x, (&first)[2].box.x) << row;
        EXPECT_LT(cells[0].box.y, cells[-3].box.y) << row;
    }
}

}  // namespace
}  // namespace tolvar
