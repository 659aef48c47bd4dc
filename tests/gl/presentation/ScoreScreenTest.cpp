// The score screen: rows 20 pixels apart from y = 698, the highlight, the hint one empty row
// below the last row, the flying models and the timer that drives them.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <memory>

#include "GlTestWindow.h"
#include "presentation/GameView.h"

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

bool isRow(const Rgb& p) { return near(p, 127, 0, 127, 3); }
bool isHighlight(const Rgb& p) { return near(p, 191, 0, 191, 3); }
bool isWhite(const Rgb& p) { return p.r > 240 && p.g > 240 && p.b > 240; }
// Text pixels of the row with baseline y.
int rowPixels(int y, bool (*colour)(const Rgb&)) { return countPixels(392, y - 4, 692, y + 13, colour); }
int rowY(int index) { return 698 - 20 * index; }

class ScoreScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << "no OpenGL window: " << why;
        gameInfo = std::make_unique<GameInfo>();
        gameInfo->score = 42;
    }
    void TearDown() override { gameInfo.reset(); }
    RecordingHost host;
    CountingWindow window;
    GameView view{host, window.callbacks()};
};

TEST_F(ScoreScreenTest, RowsHeadingsAndHintOnABlackScreen) {
    glClearColor(0.9f, 0.9f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    view.displayScores(scoreList(3), -1);
    for (int i = 0; i < 3; ++i) EXPECT_GT(rowPixels(rowY(i), isRow), 40) << "row " << i;
    EXPECT_EQ(rowPixels(rowY(3), isRow), 0);
    EXPECT_GT(rowPixels(rowY(4), isWhite), 40) << "hint";
    EXPECT_EQ(rowPixels(rowY(0), isHighlight), 0) << "nothing highlighted";
    EXPECT_GT(countPixels(10, 734, 150, 752, isWhite), 30) << "Last Score:";
    EXPECT_GT(countPixels(392, 734, 560, 752, isWhite), 30) << "Best Scores:";
    EXPECT_GT(countPixels(20, 694, 80, 712, isRow), 20) << "the last score";
    EXPECT_TRUE(near(pixelAt(1010, 10), 0, 0, 0, 3));
    EXPECT_TRUE(near(pixelAt(1010, 740), 0, 0, 0, 3));
}

TEST_F(ScoreScreenTest, TwentyFiveEntriesShowTwenty) {
    view.displayScores(scoreList(25), 24);
    EXPECT_GT(rowPixels(rowY(19), isRow), 40);
    EXPECT_EQ(rowPixels(rowY(20), isRow) + rowPixels(rowY(20), isHighlight), 0);
    EXPECT_GT(rowPixels(rowY(21), isWhite), 40) << "hint";
}

TEST_F(ScoreScreenTest, TimerFramesKeepTheHighlightAndFlyTheModelsOut) {
    const Value scores = scoreList(5);
    view.displayScores(scores, 3);
    EXPECT_EQ(host.timerStarts, 1);
    EXPECT_EQ(view.scoreModelCount(), 20);
    for (int i = 0; i < 30; ++i) view.scoresTimerFired(scores);
    EXPECT_EQ(host.timerStarts, 1);
    EXPECT_EQ(window.flushes, 31);
    EXPECT_EQ(window.displays, 31);
    EXPECT_EQ(view.currentHighlight(), 3);
    EXPECT_GT(rowPixels(rowY(3), isHighlight), 40);
    EXPECT_EQ(rowPixels(rowY(3), isRow), 0);
    EXPECT_GT(rowPixels(rowY(2), isRow), 40);
    EXPECT_EQ(view.scoreModelCount(), 20);
    EXPECT_GT(countPixels(0, 0, 1023, 560, [](const Rgb& p) { return p.r + p.g + p.b > 40; }), 200)
        << "the models have left the centre";
    host.stopScoresTimer();  // the space bar
    view.displayScores(scores, -1);
    EXPECT_EQ(host.timerStarts, 2);
}

TEST_F(ScoreScreenTest, BrokenEntriesAndListsDrawWithoutHarm) {
    Array entries;
    entries.push_back(Value::string("not a score"));
    Dictionary noDate;
    noDate.set("Score", Value::integer(5));
    entries.push_back(Value::dictionary(std::move(noDate)));
    view.displayScores(Value::array(std::move(entries)), 1);
    EXPECT_GT(rowPixels(rowY(0), isRow), 20);
    EXPECT_GT(rowPixels(rowY(1), isHighlight), 20);
    view.displayScores(Value::string("nothing"), -1);
    EXPECT_EQ(rowPixels(rowY(0), isRow), 0);
    EXPECT_GT(rowPixels(rowY(1), isWhite), 40) << "hint";
}

}  // namespace
}  // namespace tolvar::test
