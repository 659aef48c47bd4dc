// The help page a game's rules give: name, description and one line an input, in the rules' order.
#include <gtest/gtest.h>

#include <tuple>

#include "rules/GameHelp.h"

namespace tolvar {
namespace {

Value input(std::int64_t type, std::int64_t character, std::int64_t minimum) {
    Dictionary d;
    d.set("UserEventType", Value::integer(type));
    if (character != 0) d.set("UserEventCharacter", Value::integer(character));
    if (minimum != 0) d.set("MinimumPieces", Value::integer(minimum));
    return Value::dictionary(std::move(d));
}

TEST(GameHelp, InputLines) {
    // type, key, minimum pieces, the line
    const std::tuple<std::uint32_t, std::int8_t, std::int32_t, const char*> cases[] = {
        {4, 0, 2, "Click a region of 2 or more"},
        {4, 0, 5, "Click a region of 5 or more"},
        {4, 0, 0, "Click a piece to select its region"},
        {4, 0, 1, "Click a piece to select its region"},
        {3, 0, 2, "Drag a piece onto a neighbour"},
        {9, ' ', 0, "Space: Remove Selection"},
        {9, 'x', 0, "X: Remove Selection"},
        {4, 'r', 3, "R: Select Color Region"},
        {42, 'q', 0, "Q: Action"},
        {9, 0, 0, ""},  // a removal with no key cannot be played from the help
        {1, 0, 0, ""},
    };
    for (const auto& [type, key, minimum, line] : cases)
        EXPECT_EQ(inputHelpLine(type, key, minimum), line) << type << " " << int(key) << " " << minimum;
}

TEST(GameHelp, OddRules) {
    EXPECT_TRUE(gameHelp(nullptr).title.empty());
    const Value text = Value::string("not rules");
    const GameHelp none = gameHelp(&text);
    EXPECT_EQ(none.title, "");
    EXPECT_EQ(none.description, "");
    EXPECT_TRUE(none.inputs.empty());

    // Entries that are no dictionaries are passed over; keys keep only their low 8 bits, as the
    // game reads them (288 is the space bar); numbers written as text are read as the game does.
    Dictionary rules;
    rules.set("GameName", Value::integer(7));  // not text: no title
    Dictionary textual;
    textual.set("UserEventType", Value::string("4"));
    textual.set("MinimumPieces", Value::string("3"));
    rules.set("SupportedUserEvents", Value::array({Value::string("stray"), input(9, 288, 0), input(3, 0, 0),
                                                   Value::dictionary(std::move(textual))}));
    const Value v = Value::dictionary(std::move(rules));
    const GameHelp help = gameHelp(&v);
    EXPECT_EQ(help.title, "");
    EXPECT_EQ(help.inputs, (std::vector<std::string>{"Space: Remove Selection", "Drag a piece onto a neighbour",
                                                    "Click a region of 3 or more"}));
}

}  // namespace
}  // namespace tolvar
