// The best-score table: where a score goes, the file, and a broken file kept aside.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <fstream>
#include <variant>

#include <sys/stat.h>

#include "EngineFakes.h"
#include "engine/Completion.h"
#include "platform/PlistFile.h"

namespace tolvar {
namespace {

Array table(const std::vector<int>& scores) {
    Array a;
    for (int s : scores) {
        Dictionary d;
        d.set("Score", Value::integer(s));
        d.set("Date", Value::date(Date::fromUnixTime(1.7e9)));
        a.push_back(Value::dictionary(std::move(d)));
    }
    return a;
}

std::string silently(const std::function<void()>& f) {
    ::testing::internal::CaptureStdout();
    f();
    return ::testing::internal::GetCapturedStdout();
}

TEST(BestScoreIndexTest, LowerIsBetter) {
    int at = -2;
    silently([&] { at = bestScoreInsertionIndex(table({12, 30, 55}), 30, true); });
    EXPECT_EQ(at, 2);  // equal scores do not displace each other
    silently([&] { at = bestScoreInsertionIndex(table({12, 30, 55}), 60, true); });
    EXPECT_EQ(at, 3);
    silently([&] { at = bestScoreInsertionIndex(table({12, 30, 55}), 3, true); });
    EXPECT_EQ(at, 0);
}

TEST(BestScoreIndexTest, HigherIsBetterPrintsItsPlace) {
    int at = -2;
    EXPECT_EQ(silently([&] { at = bestScoreInsertionIndex(table({900, 400}), 500, false); }),
              "got on list at index 1, score 500\n");
    EXPECT_EQ(at, 1);
    EXPECT_EQ(silently([&] { at = bestScoreInsertionIndex(table({900, 400}), 100, false); }), "");
    EXPECT_EQ(at, 2);
}

TEST(BestScoreIndexTest, OnlyTheFirstTwentyAreCompared) {
    std::vector<int> twenty(20, 5);
    EXPECT_EQ(bestScoreInsertionIndex(table(twenty), 9, true), -1);
    std::vector<int> many;
    for (int i = 1; i <= 25; ++i) many.push_back(i * 10);
    EXPECT_EQ(bestScoreInsertionIndex(table(many), 45, true), 4);
    EXPECT_EQ(bestScoreInsertionIndex(table(many), 1000, true), -1);
}

TEST(BestScoreIndexTest, ScoresCompareAsUnsignedAfterWidening) {
    // A stored -1 widens to the largest unsigned value: every score is lower.
    EXPECT_EQ(bestScoreInsertionIndex(table({-1}), 7, true), 0);
    // A wrapped (negative) score is huge: last when lower is better.
    EXPECT_EQ(bestScoreInsertionIndex(table({4}), static_cast<std::uint64_t>(-3), true), 1);
    EXPECT_EQ(silently([] { bestScoreInsertionIndex(table({4}), 0x1'0000'0005ull, false); }),
              "got on list at index 0, score 5\n");
}

class BestScoresFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        GameInfo& game = testing::installGame(2, 2);
        game.gameName = "Vexamor";
        game.score = 30;
    }
    void TearDown() override { gameInfo.reset(); }
    std::string path() const { return (host.folder / "BestScores.dict").string(); }
    void check(bool lowerIsBetter) {
        GameAction action;
        action.lowerIsBetter = lowerIsBetter ? 1 : 0;
        ::testing::internal::CaptureStdout();
        best.performActionCheckBestScores(action);
        ::testing::internal::GetCapturedStdout();
    }
    std::vector<int> stored(const std::string& game) const {
        auto read = readPropertyListFile(path());
        std::vector<int> out;
        const Value* v = std::get<Value>(read).asDictionary()->find(game);
        for (const Value& e : *v->asArray()) {
            out.push_back(static_cast<int>(*e.asDictionary()->find("Score")->asInteger()));
            EXPECT_TRUE(e.asDictionary()->find("Date")->isDate());
        }
        return out;
    }
    testing::RecordingView view;
    testing::RecordingHost host;
    EngineContext ctx{view, host};
    BestScores best{ctx};
};

TEST_F(BestScoresFileTest, FirstScoreMakesTheTableAndCongratulates) {
    ctx.gamePaused = 0;
    check(true);
    EXPECT_EQ(view.highlight, 0);
    ASSERT_EQ(host.alerts.size(), 1u);
    EXPECT_EQ(host.alerts[0].message, "You got one of the best scores!");
    EXPECT_EQ(host.alerts[0].button, "Sweet!");
    EXPECT_EQ(stored("Vexamor"), std::vector<int>{30});
    EXPECT_EQ(ctx.gamePaused, 1);
}

TEST_F(BestScoresFileTest, SecondGameGoesInPlaceAndOtherGamesStay) {
    Dictionary root;
    root.set("Vexamor", Value::array(table({12, 30, 55})));
    root.set("Other", Value::array(table({1})));
    ASSERT_TRUE(writePropertyListFile(path(), Value::dictionary(root)));
    check(true);
    EXPECT_EQ(view.highlight, 2);
    EXPECT_EQ(stored("Vexamor"), (std::vector<int>{12, 30, 30, 55}));
    EXPECT_EQ(stored("Other"), std::vector<int>{1});
}

TEST_F(BestScoresFileTest, FullTableRefusesAWorseScoreAndIsNotWritten) {
    Dictionary root;
    root.set("Vexamor", Value::array(table(std::vector<int>(20, 10))));
    ASSERT_TRUE(writePropertyListFile(path(), Value::dictionary(root)));
    const auto before = std::filesystem::last_write_time(path());
    check(true);
    EXPECT_EQ(view.highlight, -1);
    EXPECT_EQ(view.scoreScreens, 1);
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_EQ(std::filesystem::last_write_time(path()), before);
    EXPECT_EQ(ctx.gamePaused, 1);
}

TEST_F(BestScoresFileTest, UnreadableTableIsKeptAside) {
    {
        std::ofstream out(path(), std::ios::binary);
        out << "<?xml version=\"1.0\"?><plist><dict><key>Vexamor</key><arr";
    }
    ::testing::internal::CaptureStderr();
    check(true);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("BestScores.dict"), std::string::npos);
    EXPECT_NE(err.find(".unreadable"), std::string::npos);
    std::ifstream aside(path() + ".unreadable", std::ios::binary);
    std::string kept((std::istreambuf_iterator<char>(aside)), std::istreambuf_iterator<char>());
    EXPECT_EQ(kept, "<?xml version=\"1.0\"?><plist><dict><key>Vexamor</key><arr");
    EXPECT_EQ(stored("Vexamor"), std::vector<int>{30});
}

TEST_F(BestScoresFileTest, WrongKindsAreKeptAsideToo) {
    Dictionary root;
    root.set("Vexamor", Value::string("not a list"));
    ASSERT_TRUE(writePropertyListFile(path(), Value::dictionary(root)));
    ::testing::internal::CaptureStderr();
    check(false);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find(".unreadable"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(path() + ".unreadable"));
    EXPECT_EQ(stored("Vexamor"), std::vector<int>{30});
}

TEST_F(BestScoresFileTest, SomethingElseInThePlaceOfTheFileIsKeptAsideUnopened) {
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);  // opening it for reading would block
    ::testing::internal::CaptureStderr();
    check(true);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::filesystem::status(path() + ".unreadable").type(),
              std::filesystem::file_type::fifo);
    EXPECT_EQ(stored("Vexamor"), std::vector<int>{30});
}

}  // namespace
}  // namespace tolvar
