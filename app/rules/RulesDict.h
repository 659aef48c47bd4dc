// Rules dictionary -> game records (createStructsFromRulesDict:).
#pragma once

#include <memory>

#include "core/PropertyList.h"
#include "rules/ActionsMenu.h"
#include "rules/GameInfo.h"

namespace tolvar {

// Whether building a game prints its diagnostic lines ("Adding action 1 to event 1"): a game
// that is started does; one only looked at (is its saved game still good?) does not.
enum class Diagnostics { Printed, Quiet };

// Builds a new GameInfo from a rules dictionary, with every default and diagnostic line, each
// list in reverse of its array, and binds keyed user events to menu. Returns none for a null
// argument or a value that is not a dictionary.
std::unique_ptr<GameInfo> createStructsFromRulesDict(const Value* rulesDict, ActionsMenu& menu,
                                                     Diagnostics said = Diagnostics::Printed);

// The board settings and score multiplier of a rules dictionary, read as a game start reads them
// (without its diagnostic lines); the lists are left alone.
void readGameSettings(const Dictionary& rules, GameInfo& info);

}  // namespace tolvar
