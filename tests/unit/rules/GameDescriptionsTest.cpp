// A game's description in the player's language: GameDescription.TAG picked by the locale.
#include <gtest/gtest.h>

#include "rules/GameDescriptions.h"

namespace tolvar {
namespace {

TEST(GameDescriptions, LanguageTags) {
    const std::pair<const char*, bool> cases[] = {
        {"de", true},       {"fr", true},        {"ast", true},     {"pt-BR", true},  {"pt_BR", true},
        {"zh-Hant-TW", true}, {"DE", true},      {"", false},       {"d", false},     {"deut", false},
        {"de-", false},     {"de--AT", false},   {"de-A", false},   {"de AT", false}, {"de.UTF-8", false},
        {"de-abcdefghi", false}, {"1e", false},  {"dé", false},
    };
    for (const auto& [tag, looks] : cases) EXPECT_EQ(looksLikeLanguageTag(tag), looks) << tag;
}

TEST(GameDescriptions, KeysOfALanguage) {
    EXPECT_EQ(descriptionLanguage("GameDescription.de"), "de");
    EXPECT_EQ(descriptionLanguage("GameDescription."), "");
    EXPECT_EQ(descriptionLanguage("GameDescription"), std::nullopt);
    EXPECT_EQ(descriptionLanguage("GameName.de"), std::nullopt);
}

TEST(GameDescriptions, TheLocalePicksTheLanguage) {
    Dictionary rules;
    rules.set("GameDescription.de", Value::string("Deutsch"));
    rules.set("GameDescription", Value::string("English"));
    rules.set("GameDescription.de-AT", Value::string("Österreichisch"));
    rules.set("GameDescription.PT_br", Value::string("Brasileiro"));
    rules.set("GameDescription.fr", Value::integer(3));  // not a string: never picked
    const std::vector<Description> descriptions = gameDescriptions(rules);
    ASSERT_EQ(descriptions.size(), 4u);
    EXPECT_EQ(descriptions[0].language, "de");  // the file's order
    const std::pair<const char*, const char*> cases[] = {
        {"de_DE.UTF-8", "Deutsch"},  {"de_AT.UTF-8", "Österreichisch"}, {"de_AT", "Österreichisch"},
        {"de", "Deutsch"},           {"de_CH.UTF-8@euro", "Deutsch"},  {"pt_BR.UTF-8", "Brasileiro"},
        {"pt_PT.UTF-8", "English"},  {"fr_FR.UTF-8", "English"},       {"C", "English"},
        {"C.UTF-8", "English"},      {"POSIX", "English"},             {"", "English"},
    };
    for (const auto& [locale, text] : cases) {
        const Description* d = descriptionFor(descriptions, locale);
        ASSERT_NE(d, nullptr) << locale;
        EXPECT_EQ(d->text, text) << locale;
    }
    // Without a description of no language, another language's is not shown in its place.
    const std::vector<Description> germanOnly{{"de", "Deutsch"}};
    EXPECT_EQ(descriptionFor(germanOnly, "fr_FR.UTF-8"), nullptr);
    EXPECT_EQ(descriptionFor(germanOnly, "de_DE.UTF-8")->text, "Deutsch");
}

}  // namespace
}  // namespace tolvar
