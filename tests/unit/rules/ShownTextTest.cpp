// What the windows show of a long text from a rules file: its start, cut between whole
// characters, and how much was left out.
#include <gtest/gtest.h>

#include "rules/GameHelp.h"
#include "rules/GameLibrary.h"
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

TEST(ShownText, ALongDescriptionShowsItsStartAndSaysItIsCut) {
    std::string text;
    for (int i = 0; i < 20000; ++i) text += "word ";  // 100,000 characters
    const std::string shown = shownDescription(text);
    EXPECT_EQ(shown, text.substr(0, kShownDescriptionCharacters) + kEllipsis +
                         " (the description goes on for 80000 more characters)");
    EXPECT_EQ(shownDescription("Swap two pieces."), "Swap two pieces.");
    EXPECT_EQ(shownLine(std::string(kShownNameCharacters, 'n'), kShownNameCharacters),
              std::string(kShownNameCharacters, 'n'));
    EXPECT_EQ(shownLine(std::string(kShownNameCharacters + 1, 'n'), kShownNameCharacters),
              std::string(kShownNameCharacters, 'n') + kEllipsis);
}

TEST(ShownText, TheMenuAndTheHelpKeepOnlyWhatTheyShow) {
    const std::string description(3 * kShownDescriptionCharacters, 'd');
    const std::string name(5 * kShownNameCharacters, 'n');
    Dictionary game;
    game.set("GameName", Value::string(name));
    game.set("GameDescription", Value::string(description));
    Array inputs;
    for (int i = 0; i < 1000; ++i) {
        Dictionary input;
        input.set("UserEventType", Value::integer(4));
        inputs.push_back(Value::dictionary(std::move(input)));
    }
    game.set("SupportedUserEvents", Value::array(std::move(inputs)));
    const Value rules = Value::dictionary(std::move(game));

    const GameHelp help = gameHelp(&rules);
    EXPECT_EQ(help.title, shownLine(name, kShownNameCharacters));
    EXPECT_EQ(help.description, shownDescription(description));
    ASSERT_EQ(help.inputs.size(), kShownInputs + 1);
    EXPECT_EQ(help.inputs.back(), kEllipsis + " and more inputs");
}

}  // namespace
}  // namespace tolvar
