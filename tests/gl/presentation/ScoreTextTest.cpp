// The texts beside the board and on the score screen, cut to their buffers.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>

#include "presentation/ScoreText.h"

namespace tolvar {
namespace {

TEST(BoardTexts, ScoreHasAtLeastFourDigitsAndIsCutToElevenCharacters) {
    EXPECT_EQ(boardScoreText(7), "0007");
    EXPECT_EQ(boardScoreText(12345), "12345");
    EXPECT_EQ(boardScoreText(0), "0000");
    EXPECT_EQ(boardScoreText(123456789012345ull), "12345678901");
    // The score is printed as a signed number.
    EXPECT_EQ(boardScoreText(static_cast<std::uint64_t>(-5)), "-005");
}

TEST(BoardTexts, GameNameIsCutTo63BytesOnACharacterBoundary) {
    EXPECT_EQ(boardGameNameText("Vexamor"), "Vexamor");
    const std::string exact(63, 'a');
    EXPECT_EQ(boardGameNameText(exact), exact);
    EXPECT_EQ(boardGameNameText(std::string(64, 'b')), std::string(63, 'b'));
    EXPECT_EQ(boardGameNameText(std::string(500, 'c')).size(), 63u);
    // 62 ASCII bytes then a two-byte character: the character does not fit and is left out whole.
    const std::string accented = std::string(62, 'd') + "\xC3\xA9" + "tail";
    EXPECT_EQ(boardGameNameText(accented), std::string(62, 'd'));
    EXPECT_EQ(boardGameNameText(""), "");
}

TEST(ScoreScreenTexts, RowsAlignRanksOneToNineAndTenOnwards) {
    EXPECT_EQ(scoreRowText(0, 42, "Nov 14, 2023 22:13"), "#1:   0042    Nov 14, 2023 22:13\n");
    EXPECT_EQ(scoreRowText(8, 7, "D"), "#9:   0007    D\n");
    EXPECT_EQ(scoreRowText(9, 7, "D"), "#10: 0007    D\n");
    EXPECT_EQ(scoreRowText(19, 123456, ""), "#20: 123456    \n");
    EXPECT_EQ(scoreRowText(2, -3, "x"), "#3:   -003    x\n");
    // A date text too long for the buffer is cut; the row never exceeds 127 bytes.
    EXPECT_EQ(scoreRowText(0, 1, std::string(300, 'z')).size(), 127u);
}

TEST(ScoreScreenTexts, LastScoreKeepsItsLow32Bits) {
    EXPECT_EQ(lastScoreText(42), "0042");
    EXPECT_EQ(lastScoreText(0x100000005ull), "0005");
    EXPECT_EQ(lastScoreText(0xFFFFFFFFull), "-001");
}

class DateText : public ::testing::Test {
protected:
    void SetUp() override {
        const char* tz = std::getenv("TZ");
        if (tz) savedTz = tz;
        hadTz = tz != nullptr;
        setenv("TZ", "UTC", 1);
        tzset();
        std::setlocale(LC_TIME, "C");
    }
    void TearDown() override {
        if (hadTz) setenv("TZ", savedTz.c_str(), 1);
        else unsetenv("TZ");
        tzset();
    }
    std::string savedTz;
    bool hadTz = false;
};

TEST_F(DateText, MonthDayYearAndTwentyFourHourTime) {
    const Date d = Date::fromUnixTime(1700000000.0);  // 2023-11-14 22:13:20 UTC
    EXPECT_EQ(scoreDateText(&d), "Nov 14, 2023 22:13");
    const Date early = Date::fromUnixTime(1704070800.0);  // 2024-01-01 01:00 UTC
    EXPECT_EQ(scoreDateText(&early), "Jan 01, 2024 01:00");
    EXPECT_EQ(scoreDateText(nullptr), "");
    const Date absurd{1.0e300};
    EXPECT_EQ(scoreDateText(&absurd), "");
}

TEST(ScoreEntries, ReadScoreAndDateOrFallBack) {
    Array entries;
    Dictionary good;
    good.set("Score", Value::integer(0x100000009ll));
    good.set("Date", Value::date(Date::fromUnixTime(0.0)));
    entries.push_back(Value::dictionary(std::move(good)));
    entries.push_back(Value::integer(3));
    Dictionary textScore;
    textScore.set("Score", Value::string("17"));
    textScore.set("Date", Value::string("yesterday"));
    entries.push_back(Value::dictionary(std::move(textScore)));
    const Value list = Value::array(std::move(entries));

    EXPECT_EQ(scoreEntryCount(list), 3u);
    EXPECT_EQ(scoreEntryAt(list, 0).score, 9);
    ASSERT_NE(scoreEntryAt(list, 0).date, nullptr);
    EXPECT_EQ(scoreEntryAt(list, 0).date->unixTime(), 0.0);
    EXPECT_EQ(scoreEntryAt(list, 1).score, 0);
    EXPECT_EQ(scoreEntryAt(list, 1).date, nullptr);
    EXPECT_EQ(scoreEntryAt(list, 2).score, 17);
    EXPECT_EQ(scoreEntryAt(list, 2).date, nullptr);
    EXPECT_EQ(scoreEntryAt(list, 3).score, 0);
    EXPECT_EQ(scoreEntryCount(Value::string("no list")), 0u);
}

}  // namespace
}  // namespace tolvar
