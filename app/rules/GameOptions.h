// The player's choices for a game's board: its width, its height and its number of colours, each
// replacing the rules' own value for the games started with them. The rules dictionary itself is
// never changed: a game is played from a copy with those keys replaced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/PropertyList.h"
#include "rules/GameInfo.h"

namespace tolvar {

struct GameOptions {
    std::optional<std::uint8_t> boardWidth;
    std::optional<std::uint8_t> boardHeight;
    std::optional<std::uint8_t> numColors;

    bool empty() const { return !boardWidth && !boardHeight && !numColors; }
    bool operator==(const GameOptions&) const = default;
};

// A copy of rules (a game's dictionary) with the chosen keys replaced; rules that are not a
// dictionary are copied as they are.
Value rulesWithOptions(const Value& rules, const GameOptions& options);

// The options without the choices that equal the rules' own values (game: the rules as read).
GameOptions optionsDifferingFrom(const GameInfo& game, const GameOptions& options);

// The options as a dictionary of rules keys ("BoardWidth", ...), and back: a value that is not a
// number from 1 to 255 counts as no choice.
Dictionary optionsDictionary(const GameOptions& options);
GameOptions optionsFromDictionary(const Dictionary& dict);

// The name of the best-score table a game goes to: its own name, or, played with options, the
// name with its board and colours: "Vexamor 12 × 10, 5 colours".
std::string bestScoresTableName(const GameInfo& game, const GameOptions& options);

}  // namespace tolvar
