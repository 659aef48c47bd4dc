// The texts beside the board and on the score screen, cut to their buffers.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>

#include "presentation/ScoreText.h"

namespace tolvar {
namespace {

TEST(GameTexts, ScoresRowsAndNamesAreFormattedAndCut) {
    const struct {
        std::string got, want;
    } cases[] = {
        {boardScoreText(7), "0007"},
        {boardScoreText(12345), "12345"},
        {boardScoreText(123456789012345ull), "12345678901"},
        {boardScoreText(static_cast<std::uint64_t>(-5)), "-005"},  // printed signed
        {lastScoreText(0x100000005ull), "0005"},                    // low 32 bits
        {lastScoreText(0xFFFFFFFFull), "-001"},
        {scoreRowText(0, 42, "Nov 14, 2023 22:13"), "#1:   0042    Nov 14, 2023 22:13\n"},
        {scoreRowText(8, 7, "D"), "#9:   0007    D\n"},
        {scoreRowText(9, 7, "D"), "#10: 0007    D\n"},
        {scoreRowText(2, -3, "x"), "#3:   -003    x\n"},
        {boardGameNameText(std::string(63, 'a')), std::string(63, 'a')},
        {boardGameNameText(std::string(64, 'b')), std::string(63, 'b')},
        // A two-byte character that does not fit whole is left out.
        {boardGameNameText(std::string(62, 'd') + "\xC3\xA9tail"), std::string(62, 'd')},
    };
    for (const auto& c : cases) EXPECT_EQ(c.got, c.want);
    EXPECT_EQ(scoreRowText(0, 1, std::string(300, 'z')).size(), 127u);
}

TEST(GameTexts, DatesAreMonthDayYearAndTwentyFourHourTime) {
    const char* tz = std::getenv("TZ");
    const std::string savedTz = tz ? tz : "";
    setenv("TZ", "UTC", 1);
    tzset();
    std::setlocale(LC_TIME, "C");
    const Date d = Date::fromUnixTime(1700000000.0), early = Date::fromUnixTime(1704070800.0), absurd{1.0e300};
    EXPECT_EQ(scoreDateText(&d), "Nov 14, 2023 22:13");
    EXPECT_EQ(scoreDateText(&early), "Jan 01, 2024 01:00");
    EXPECT_EQ(scoreDateText(&absurd), "");
    EXPECT_EQ(scoreDateText(nullptr), "");
    tz ? setenv("TZ", savedTz.c_str(), 1) : unsetenv("TZ");
    tzset();
}

TEST(GameTexts, ScoreEntriesReadScoreAndDateOrFallBack) {
    Array entries;
    Dictionary good, textScore;
    good.set("Score", Value::integer(0x100000009ll));
    good.set("Date", Value::date(Date::fromUnixTime(0.0)));
    textScore.set("Score", Value::string("17"));
    textScore.set("Date", Value::string("yesterday"));
    entries.push_back(Value::dictionary(std::move(good)));
    entries.push_back(Value::integer(3));
    entries.push_back(Value::dictionary(std::move(textScore)));
    const Value list = Value::array(std::move(entries));
    EXPECT_EQ(scoreEntryCount(list), 3u);
    EXPECT_EQ(scoreEntryCount(Value::string("no list")), 0u);
    const int scores[] = {9, 0, 17, 0};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(scoreEntryAt(list, i).score, scores[i]) << i;
        EXPECT_EQ(scoreEntryAt(list, i).date != nullptr, i == 0) << i;
    }
    const Date* first = scoreEntryAt(list, 0).date;
    EXPECT_TRUE(first && first->unixTime() == 0.0);
}

}  // namespace
}  // namespace tolvar
