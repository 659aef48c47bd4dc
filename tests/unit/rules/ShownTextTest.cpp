// What the windows show of a long text from a rules file: its start, cut between whole
// characters, and how much was left out.
#include <gtest/gtest.h>

#include "rules/GameHelp.h"
#include "rules/ShownText.h"

namespace tolvar {
namespace {

const std::string kEllipsis = "\xE2\x80\xA6";

TEST(ShownText, CutsBetweenWholeCharactersAndCountsTheRest) {
    // text, limit, shown, characters left out
    const std::tuple<std::string, std::size_t, std::string, std::size_t> cases[] = {
        {"", 3, "", 0},
        {"abc", 3, "abc", 0},
        {"abcd", 3, "abc", 1},
        {"h\xC3\xA9llo", 2, "h\xC3\xA9", 3},                        // é is one character of two bytes
        {"\xE2\x80\xA6\xE2\x80\xA6\xE2\x80\xA6", 1, "\xE2\x80\xA6", 2},  // … is three bytes
        {"\xF0\x9F\x8E\xB2x", 1, "\xF0\x9F\x8E\xB2", 1},            // a four-byte character
        {"a\x80\x80" "bc", 1, "a\x80\x80", 2},                      // stray continuation bytes stay with it
    };
    for (const auto& [text, limit, shown, more] : cases) {
        const CutText cut = cutText(text, limit);
        EXPECT_EQ(cut.shown, shown) << text;
        EXPECT_EQ(cut.moreCharacters, more) << text;
    }
}

// The help keeps only what it shows: the name's and the description's start, and a few inputs.
TEST(ShownText, TheHelpKeepsOnlyWhatItShows) {
    std::string description;
    for (int i = 0; i < 20000; ++i) description += "word ";  // 100,000 characters
    const std::string name(kShownNameCharacters + 1, 'n');
    Dictionary game;
    game.set("GameName", Value::string(name));
    game.set("GameDescription", Value::string(description));
    Dictionary click;
    click.set("UserEventType", Value::integer(4));
    game.set("SupportedUserEvents", Value::array(Array(1000, Value::dictionary(click))));
    const Value rules = Value::dictionary(std::move(game));
    const GameHelp help = gameHelp(&rules);
    EXPECT_EQ(help.title, std::string(kShownNameCharacters, 'n') + kEllipsis);
    EXPECT_EQ(help.description, description.substr(0, kShownDescriptionCharacters) + kEllipsis +
                                    " (the description goes on for 80000 more characters)");
    ASSERT_EQ(help.inputs.size(), kShownInputs + 1);
    EXPECT_EQ(help.inputs.back(), kEllipsis + " and more inputs");
}

}  // namespace
}  // namespace tolvar
