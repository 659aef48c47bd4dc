// An alert's message in lines that fit a small screen: "could not be saved to <a long path>:
// <the reason>" made the panel over a thousand pixels wide.
#include <gtest/gtest.h>

#include <sstream>

#include "AlertPanel.h"

namespace {

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::size_t characters(const std::string& line) {
    std::size_t n = 0;
    for (const char c : line) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

// The message's characters in order, line breaks and the spaces at them left out.
std::string joined(const std::string& text) {
    std::string out;
    for (const char c : text)
        if (c != '\n' && c != ' ') out += c;
    return out;
}

TEST(AlertText, EveryLineFitsAndNothingIsLost) {
    const std::string path = "/home/player/.local/share/Tolvar/a folder with a long name/and another one "
                             "below it/BestScores.dict";
    const std::string messages[] = {
        "You got one of the best scores, but it could not be saved to \"" + path +
            "\": Read-only file system.",
        "/" + std::string(150, 'x') + "/" + std::string(10, 'y'),                     // a path of long names
        std::string(130, 'z'),                                                         // no place to break
        "Gr\xC3\xBC\xC3\x9F" + std::string(70, 'e') + " \xE2\x80\xA6 done\n\nsecond paragraph",  // UTF-8, breaks
    };
    for (const std::string& message : messages) {
        const std::string shown = alertPanelText(message);
        for (const std::string& line : lines(shown)) EXPECT_LE(characters(line), kAlertColumns) << line;
        EXPECT_EQ(joined(shown), joined(message));
    }
    // A path breaks after a "/" when one is in the line's second half.
    const std::string twoNames = "/" + std::string(40, 'a') + "/" + std::string(40, 'b');
    const std::vector<std::string> pieces = lines(alertPanelText(twoNames));
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0], "/" + std::string(40, 'a') + "/");
    // Line breaks of the message stay; a short message is as it was.
    EXPECT_EQ(alertPanelText("One.\n\nTwo."), "One.\n\nTwo.");
    EXPECT_EQ(alertPanelText("You got one of the best scores!"), "You got one of the best scores!");
}

TEST(AlertText, AVeryLongMessageIsCut) {
    std::string message;
    for (int i = 0; i < 100000; ++i) message += "word ";
    const std::string shown = alertPanelText(message);
    EXPECT_LE(characters(shown), kAlertCharacters + kAlertCharacters / kAlertColumns + 2);
    EXPECT_EQ(shown.substr(shown.size() - 3), "\xE2\x80\xA6");
    EXPECT_LE(lines(shown).size(), kAlertCharacters / 40);
}

}  // namespace
