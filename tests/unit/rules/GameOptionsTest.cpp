// The player's board choices as a copy of the rules, as a dictionary, and as a best-score table's name.
#include <gtest/gtest.h>

#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"
#include "rules/GameOptions.h"
#include "rules/RulesDict.h"

namespace tolvar {
namespace {

TEST(GameOptionsTest, TheCopyReplacesOnlyTheChosenKeysAndLeavesTheRulesAlone) {
    const Value rules = createTestGameOne();
    const Value shared = rules;  // a dictionary's copies share it
    const std::string written = toXmlPropertyList(rules);
    GameOptions chosen;
    chosen.boardWidth = 12;
    chosen.numColors = 5;
    const Value played = rulesWithOptions(shared, chosen);
    EXPECT_EQ(toXmlPropertyList(rules), written);
    const Dictionary& copy = *played.asDictionary();
    EXPECT_EQ(copy.find("BoardWidth")->intValue(), 12);
    EXPECT_EQ(copy.find("NumColors")->intValue(), 5);
    EXPECT_EQ(*copy.find("BoardHeight"), *rules.asDictionary()->find("BoardHeight"));
    EXPECT_EQ(copy.size(), rules.asDictionary()->size());
    for (const auto& [key, value] : rules.asDictionary()->entries())
        if (key != "BoardWidth" && key != "NumColors") {
            EXPECT_EQ(*copy.find(key), value) << key;
        }
    EXPECT_EQ(rulesWithOptions(Value::string("junk"), chosen), Value::string("junk"));
}

TEST(GameOptionsTest, OnlyNumbersFromOneTo255AreReadBackAsChoices) {
    struct Case {
        Value value;
        std::optional<std::uint8_t> read;
    } cases[] = {{Value::integer(1), 1},         {Value::integer(255), 255},     {Value::integer(0), std::nullopt},
                 {Value::integer(256), std::nullopt}, {Value::integer(-3), std::nullopt},
                 {Value::string("7"), std::nullopt},  {Value::real(6.0), std::nullopt}};
    for (const Case& c : cases) {
        Dictionary d;
        d.set("BoardHeight", c.value);
        EXPECT_EQ(optionsFromDictionary(d).boardHeight, c.read) << toXmlPropertyList(c.value);
    }
    GameOptions chosen;
    chosen.boardHeight = 9;
    chosen.numColors = 2;
    EXPECT_EQ(optionsFromDictionary(optionsDictionary(chosen)), chosen);
    EXPECT_TRUE(optionsDictionary(GameOptions{}).empty());
}

TEST(GameOptionsTest, ATableIsNamedAfterTheBoardPlayedWhenItWasChosen) {
    GameInfo game;
    game.gameName = "Vexamor";
    game.boardWidth = 12;
    game.boardHeight = 10;
    game.numColors = 5;
    GameOptions chosen;
    chosen.numColors = 5;
    EXPECT_EQ(bestScoresTableName(game, chosen), "Vexamor 12 \xC3\x97 10, 5 colours");
    game.numColors = 1;
    EXPECT_EQ(bestScoresTableName(game, chosen), "Vexamor 12 \xC3\x97 10, 1 colour");
    EXPECT_EQ(bestScoresTableName(game, GameOptions{}), "Vexamor");
    // Choices equal to the rules' values are none.
    game.numColors = 5;
    EXPECT_TRUE(optionsDifferingFrom(game, chosen).empty());
    chosen.boardWidth = 11;
    GameOptions differing;
    differing.boardWidth = 11;
    EXPECT_EQ(optionsDifferingFrom(game, chosen), differing);
}

}  // namespace
}  // namespace tolvar
