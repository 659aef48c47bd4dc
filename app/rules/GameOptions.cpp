#include "rules/GameOptions.h"

#include "rules/RulesKeys.h"

namespace tolvar {

namespace {

constexpr std::int64_t kLeastChoice = 1;
constexpr std::int64_t kMostChoice = 255;  // the keys are read as one byte

// Each choice with its rules key and the game's field it fills.
struct Choice {
    const char* key;
    std::optional<std::uint8_t> GameOptions::*option;
    std::uint8_t GameInfo::*field;
};
constexpr Choice kChoices[] = {
    {rulekeys::kBoardWidth, &GameOptions::boardWidth, &GameInfo::boardWidth},
    {rulekeys::kBoardHeight, &GameOptions::boardHeight, &GameInfo::boardHeight},
    {rulekeys::kNumColors, &GameOptions::numColors, &GameInfo::numColors},
};

}  // namespace

Value rulesWithOptions(const Value& rules, const GameOptions& options) {
    const Dictionary* original = rules.asDictionary();
    if (!original || options.empty()) return rules;
    Dictionary copy = *original;  // the game's own dictionary is shared, never changed
    for (const Choice& c : kChoices)
        if (const auto& value = options.*c.option) copy.set(c.key, Value::integer(*value));
    return Value::dictionary(std::move(copy));
}

GameOptions optionsDifferingFrom(const GameInfo& game, const GameOptions& options) {
    GameOptions differing;
    for (const Choice& c : kChoices)
        if (const auto& value = options.*c.option; value && *value != game.*c.field) differing.*c.option = value;
    return differing;
}

Dictionary optionsDictionary(const GameOptions& options) {
    Dictionary dict;
    for (const Choice& c : kChoices)
        if (const auto& value = options.*c.option) dict.set(c.key, Value::integer(*value));
    return dict;
}

GameOptions optionsFromDictionary(const Dictionary& dict) {
    GameOptions options;
    for (const Choice& c : kChoices) {
        const Value* value = dict.find(c.key);
        const std::int64_t* number = value ? value->asInteger() : nullptr;
        if (number && *number >= kLeastChoice && *number <= kMostChoice)
            options.*c.option = static_cast<std::uint8_t>(*number);
    }
    return options;
}

std::string bestScoresTableName(const GameInfo& game, const GameOptions& options) {
    if (options.empty()) return game.gameName;
    const unsigned colours = game.numColors;
    return game.gameName + " " + std::to_string(game.boardWidth) + " \xC3\x97 " + std::to_string(game.boardHeight) +
           ", " + std::to_string(colours) + (colours == 1 ? " colour" : " colours");
}

}  // namespace tolvar
