// A game's description in the player's language: besides GameDescription, a rules dictionary may
// give GameDescription.TAG for any language tag ("GameDescription.de", "GameDescription.pt_BR").
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PropertyList.h"

namespace tolvar {

inline constexpr std::string_view kDescriptionKeyPrefix = "GameDescription.";

// The tag of a GameDescription.TAG key ("de" for "GameDescription.de"); none for any other key,
// GameDescription itself included.
std::optional<std::string_view> descriptionLanguage(std::string_view key);

// Whether tag looks like a language tag: a language of two or three letters, then any subtags of
// two to eight letters or digits after '-' or '_' ("de", "pt-BR", "pt_BR", "zh-Hant").
bool looksLikeLanguageTag(std::string_view tag);

// One description of a game: language is empty for GameDescription itself.
struct Description {
    std::string language;
    std::string text;
};

// Every description of rules that is a string, in the order of the file.
std::vector<Description> gameDescriptions(const Dictionary& rules);

// The description for locale, a locale as setlocale names it ("de_AT.UTF-8", "C"): the one tagged
// with its language and territory ("de_AT" or "de-AT"), else its language ("de"), else the one
// without a language; letter case does not matter. Null when none of them is there.
const Description* descriptionFor(const std::vector<Description>& descriptions, std::string_view locale);

}  // namespace tolvar
