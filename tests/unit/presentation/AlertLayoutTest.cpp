#include "presentation/AlertLayout.h"

#include <gtest/gtest.h>

#include <string>

namespace tolvar {
namespace {

// 10 units a character, as a fixed-width font would draw.
float tenEach(const std::string& text) {
    float n = 0;
    for (const char c : text) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n * 10.0f;
}

constexpr float kLine = 22.0f, kWide = 1024.0f, kHigh = 768.0f;

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "|") + line;
    return text;
}

TEST(AlertLayout, LinesBreakBetweenWordsAndLongWordsBetweenCharacters) {
    struct Case {
        const char* message;
        float width;
        const char* lines;
    } cases[] = {
        {"You got one of the best scores!", 1000, "You got one of the best scores!"},
        {"aaa bbb ccc", 70, "aaa bbb|ccc"},
        {"first\nsecond line", 1000, "first|second line"},
        {"/a/very/long/path", 50, "/a/ve|ry/lo|ng/pa|th"},
        {"caf\xC3\xA9s", 40, "caf\xC3\xA9|s"},  // never half a character
        {"", 100, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(joined(wrapText(c.message, tenEach, c.width)), c.lines) << c.message;
}

TEST(AlertLayout, APanelStaysCentredInThePictureWhateverTheText) {
    const std::string path(400, 'x');
    std::string essay;
    for (int i = 0; i < 500; ++i) essay += "word ";
    for (const std::string& message :
         {std::string("No more moves!"), "It could not be saved to \"/home/" + path + "\": No space left.", essay}) {
        const AlertLayout a = layoutAlert(message, "Sweet!", tenEach, kLine, kWide, kHigh);
        SCOPED_TRACE(message.substr(0, 40));
        EXPECT_GE(a.panel.x0, 0);
        EXPECT_GE(a.panel.y0, 0);
        EXPECT_LE(a.panel.x1, kWide);
        EXPECT_LE(a.panel.y1, kHigh);
        EXPECT_NEAR(a.panel.x0 + a.panel.x1, kWide, 0.01);
        EXPECT_NEAR(a.panel.y0 + a.panel.y1, kHigh, 0.01);
        for (const std::string& line : a.lines) EXPECT_LE(a.textX + tenEach(line), a.panel.x1);
        const float lastBaseline = a.firstBaseline - static_cast<float>(a.lines.size() - 1) * a.lineHeight;
        EXPECT_GT(lastBaseline, a.button.y1);  // the text stays above the button
        EXPECT_GE(a.button.x0, a.panel.x0);
        EXPECT_GE(a.button.y0, a.panel.y0);
        EXPECT_LE(a.button.x1, a.panel.x1);
    }
}

TEST(AlertLayout, ATextTooLongForThePictureIsCutAndSaysSo) {
    std::string essay;
    for (int i = 0; i < 500; ++i) essay += "word ";
    const AlertLayout cut = layoutAlert(essay, "OK", tenEach, kLine, kWide, kHigh);
    ASSERT_FALSE(cut.lines.empty());
    EXPECT_EQ(cut.lines.back().substr(cut.lines.back().size() - 3), "...");
    const AlertLayout whole = layoutAlert("Short and whole.", "", tenEach, kLine, kWide, kHigh);
    EXPECT_EQ(joined(whole.lines), "Short and whole.");
    EXPECT_EQ(whole.label, "OK");  // a button without a label still says something
    EXPECT_TRUE(whole.button.contains((whole.button.x0 + whole.button.x1) / 2, (whole.button.y0 + whole.button.y1) / 2));
    EXPECT_FALSE(whole.button.contains(whole.panel.x0 + 1, whole.panel.y1 - 1));
}

}  // namespace
}  // namespace tolvar
