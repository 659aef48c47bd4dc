// The texts beside the board and on the score screen, cut to their buffers.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>

#include "presentation/ScoreText.h"

namespace tolvar {
namespace {

TEST(GameTexts, ScoresRowsNamesAndDatesAreFormattedAndCut) {
    setenv("TZ", "UTC", 1);  // this process only
    tzset();
    std::setlocale(LC_TIME, "C");
    const Date d = Date::fromUnixTime(1700000000.0), early = Date::fromUnixTime(1704070800.0), absurd{1.0e300};
    const std::pair<std::string, std::string> cases[] = {
        {boardScoreText(7), "0007"},
        {boardNumberText(123456), "Board 123456"},
        {boardNumberText(0), ""},  // a game saved before boards had numbers
        {boardScoreText(123456789012345ull), "12345678901"},
        {boardScoreText(static_cast<std::uint64_t>(-5)), "-005"},  // printed signed
        {lastScoreText(0x100000005ull), "0005"},                    // low 32 bits
        {lastScoreText(0xFFFFFFFFull), "-001"},
        {scoreRankText(0), "#1"},
        {scoreRankText(19), "#20"},
        {rowScoreText(42), "0042"},
        {rowScoreText(-3), "-003"},
        {rowScoreText(123456), "123456"},
        {boardGameNameText(std::string(63, 'a')), std::string(63, 'a')},
        {boardGameNameText(std::string(64, 'b')), std::string(63, 'b')},
        {boardGameNameText(std::string(62, 'd') + "\xC3\xA9tail"), std::string(62, 'd')},  // no half character
        {scoreDateText(&d), "Nov 14, 2023 22:13"},
        {scoreDateText(&early), "Jan 01, 2024 01:00"},
        {scoreDateText(&absurd), ""},
        {scoreDateText(nullptr), ""},
        {movePreviewText(12, 6), "+12 points, 6 pieces"},
        {movePreviewText(1, 1), "+1 point, 1 piece"},
        {movePreviewText(-1, 2), "-1 point, 2 pieces"},
        {movePreviewText(0, 3), "+0 points, 3 pieces"},
        {movePreviewText(5, 0), "+5 points"},
        {movePreviewText(0, 0), ""},
    };
    for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}

TEST(GameTexts, ScoreEntriesReadScoreAndDateOrFallBack) {
    Dictionary good, textScore;
    good.set("Score", Value::integer(0x100000009ll));
    good.set("Date", Value::date(Date::fromUnixTime(0.0)));
    textScore.set("Score", Value::string("17"));
    textScore.set("Date", Value::string("yesterday"));
    Array entries;
    entries.push_back(Value::dictionary(std::move(good)));
    entries.push_back(Value::integer(3));
    entries.push_back(Value::dictionary(std::move(textScore)));
    const Value list = Value::array(std::move(entries));
    EXPECT_EQ(scoreEntryCount(list), 3u);
    EXPECT_EQ(scoreEntryCount(Value::string("no list")), 0u);
    const ScoreEntry e[] = {scoreEntryAt(list, 0), scoreEntryAt(list, 1), scoreEntryAt(list, 2), scoreEntryAt(list, 3)};
    EXPECT_EQ(e[0].score, 9);  // the low 32 bits
    ASSERT_TRUE(e[0].date);
    EXPECT_EQ(e[0].date->unixTime(), 0.0);
    EXPECT_EQ(e[1].score, 0);  // not a dictionary
    EXPECT_FALSE(e[1].date);
    EXPECT_EQ(e[3].score, 0);  // past the end
    EXPECT_FALSE(e[3].date);
    EXPECT_EQ(e[2].score, 17);  // a text score, a text date
    EXPECT_FALSE(e[2].date);
}

}  // namespace
}  // namespace tolvar
