// The lengths of the texts a rules file gives the windows (in characters) up to which they are
// shown whole and at ease; past them a window still shows the text, cut or in a scrolled box, and
// the rules checker warns the author.
#pragma once

#include <cstddef>
#include <cstring>

#include "rules/RulesKeys.h"

namespace tolvar::textlimits {

// A game's name, in the game pop-up, the board's corner and the best-score tables.
inline constexpr std::size_t kGameNameShown = 60;
// A game's description, under the game pop-up and in the help window.
inline constexpr std::size_t kGameDescriptionShown = 4000;
// The message of an alert an action shows during a game.
inline constexpr std::size_t kAlertMessageShown = 1000;

// The length up to which the text under key is shown whole, or 0 for a key of no shown text.
inline std::size_t shownLength(const char* key) {
    if (std::strcmp(key, rulekeys::kGameName) == 0) return kGameNameShown;
    if (std::strcmp(key, rulekeys::kGameDescription) == 0) return kGameDescriptionShown;
    if (std::strcmp(key, rulekeys::kMessage) == 0) return kAlertMessageShown;
    return 0;
}

}  // namespace tolvar::textlimits
