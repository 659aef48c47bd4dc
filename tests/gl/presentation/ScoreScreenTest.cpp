// The score screen: its rows at their places, the highlight that stays, the hint under the last
// row, the models, and the timer it asks for.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "GlTestWindow.h"
#include "engine/BoardLayout.h"
#include "presentation/GameView.h"
#include "rules/GameInfo.h"

namespace tolvar::test {
namespace {

Value scoreList(int count) {
    Array entries;
    for (int i = 0; i < count; ++i) {
        Dictionary entry;
        entry.set("Score", Value::integer(10 + i));
        entry.set("Date", Value::date(Date::fromUnixTime(1700000000.0 + 3600.0 * i)));
        entries.push_back(Value::dictionary(std::move(entry)));
    }
    return Value::array(std::move(entries));
}

// Text pixels of the row whose baseline is at y, in the rows' column.
int rowPixels(int y, const std::function<bool(const Rgb&)>& colour) {
    return countPixels(392, y - 4, 392 + 300, y + 13, colour);
}

bool isRowColour(const Rgb& p) { return near(p, 127, 0, 127, 3); }
bool isHighlightColour(const Rgb& p) { return near(p, 191, 0, 191, 3); }
bool isWhite(const Rgb& p) { return p.r > 240 && p.g > 240 && p.b > 240; }

class ScoreScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << "no OpenGL window: " << why;
        view = std::make_unique<GameView>(host, window.callbacks());
        gameInfo = std::make_unique<GameInfo>();
        gameInfo->boardWidth = 4;
        gameInfo->boardHeight = 4;
        gameInfo->score = 42;
        gameInfo->gameName = "Test Game";
    }
    void TearDown() override {
        view.reset();
        gameInfo.reset();
    }

    RecordingHost host;
    CountingWindow window;
    std::unique_ptr<GameView> view;
};

TEST_F(ScoreScreenTest, RowsStandTwentyPixelsApartWithTheHintBelow) {
    const Value scores = scoreList(3);
    view->displayScores(scores, -1);
    // Rows 0..2 at 698, 678, 658; no row at 638; the hint one empty row lower, at 618.
    for (int i = 0; i < 3; ++i) EXPECT_GT(rowPixels(698 - 20 * i, isRowColour), 40) << "row " << i;
    EXPECT_EQ(rowPixels(638, isRowColour), 0);
    EXPECT_GT(rowPixels(678 - 20 * 3, isWhite), 40) << "hint";
    EXPECT_EQ(rowPixels(698, isHighlightColour), 0) << "the first screen of a run highlights nothing";

    // The headings and the last score.
    EXPECT_GT(countPixels(10, 734, 150, 752, isWhite), 30) << "Last Score:";
    EXPECT_GT(countPixels(392, 734, 560, 752, isWhite), 30) << "Best Scores:";
    EXPECT_GT(countPixels(20, 694, 80, 712, isRowColour), 20) << "the last score";
}

TEST_F(ScoreScreenTest, HighlightedRowKeepsItsColourThroughTimerFrames) {
    const Value scores = scoreList(5);
    view->displayScores(scores, 3);
    EXPECT_GT(rowPixels(698 - 20 * 3, isHighlightColour), 40);
    EXPECT_EQ(rowPixels(698 - 20 * 3, isRowColour), 0);
    EXPECT_GT(rowPixels(698 - 20 * 2, isRowColour), 40);
    EXPECT_EQ(view->currentHighlight(), 3);

    view->scoresTimerFired(scores);
    view->scoresTimerFired(scores);
    EXPECT_GT(rowPixels(698 - 20 * 3, isHighlightColour), 40);
    EXPECT_EQ(view->currentHighlight(), 3);
}

TEST_F(ScoreScreenTest, OnlyTwentyRowsAreShown) {
    const Value scores = scoreList(25);
    view->displayScores(scores, 24);
    // Rank 20 (index 19) at 318 is shown; the hint takes the place below at 278.
    EXPECT_GT(rowPixels(698 - 20 * 19, isRowColour), 40);
    EXPECT_EQ(rowPixels(298, isRowColour) + rowPixels(298, isHighlightColour), 0);
    EXPECT_GT(rowPixels(278, isWhite), 40);
}

TEST_F(ScoreScreenTest, StartsTheTimerOnceAndShowsEachFrame) {
    const Value scores = scoreList(2);
    view->displayScores(scores, 0);
    EXPECT_EQ(host.timerStarts, 1);
    EXPECT_TRUE(host.timerRunning);
    view->scoresTimerFired(scores);
    view->scoresTimerFired(scores);
    EXPECT_EQ(host.timerStarts, 1);
    EXPECT_EQ(window.flushes, 3);
    EXPECT_EQ(window.displays, 3);

    // Stopped (the space bar), a new screen starts it again.
    host.stopScoresTimer();
    view->displayScores(scores, -1);
    EXPECT_EQ(host.timerStarts, 2);
}

TEST_F(ScoreScreenTest, TwentyModelsFlyOutFromTheCentre) {
    const Value scores = scoreList(1);
    glClearColor(0, 0, 0, 1);
    view->displayScores(scores, 0);
    EXPECT_EQ(view->scoreModelCount(), 20);
    // After a few frames the models have left the centre and are spread about the window.
    for (int i = 0; i < 30; ++i) view->scoresTimerFired(scores);
    EXPECT_EQ(view->scoreModelCount(), 20);
    const int outside = countPixels(0, 0, 1023, 560, [](const Rgb& p) { return p.r + p.g + p.b > 40; });
    EXPECT_GT(outside, 200);
}

TEST_F(ScoreScreenTest, BrokenEntriesAndListsDrawWithoutHarm) {
    Array entries;
    entries.push_back(Value::string("not a score"));
    Dictionary noDate;
    noDate.set("Score", Value::integer(5));
    entries.push_back(Value::dictionary(std::move(noDate)));
    const Value scores = Value::array(std::move(entries));
    view->displayScores(scores, 1);
    EXPECT_GT(rowPixels(698, isRowColour), 20);
    EXPECT_GT(rowPixels(678, isHighlightColour), 20);

    // Not a list at all: no rows, the hint directly under the headings' gap.
    view->displayScores(Value::string("nothing"), -1);
    EXPECT_EQ(rowPixels(698, isRowColour), 0);
    EXPECT_GT(rowPixels(678 - 20 * 0, isWhite), 40);
}

TEST_F(ScoreScreenTest, WithoutBackgroundEachFrameStartsBlack) {
    glClearColor(0.9f, 0.9f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    view->displayScores(scoreList(1), 0);
    EXPECT_TRUE(near(pixelAt(1010, 10), 0, 0, 0, 3));
    EXPECT_TRUE(near(pixelAt(1010, 740), 0, 0, 0, 3));
}

}  // namespace
}  // namespace tolvar::test
