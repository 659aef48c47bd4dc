// Rules dictionary -> game records (createStructsFromRulesDict:).
#pragma once

#include <memory>

#include "core/PropertyList.h"
#include "rules/ActionsMenu.h"
#include "rules/GameInfo.h"
#include "rules/GameOutput.h"

namespace tolvar {

// Builds a new GameInfo from a rules dictionary, with every default and diagnostic line (into out:
// a game that is started prints them, one only looked at discards them), each
// list in reverse of its array, and binds keyed user events to menu. Returns none for a null
// argument or a value that is not a dictionary.
std::unique_ptr<GameInfo> createStructsFromRulesDict(const Value* rulesDict, ActionsMenu& menu,
                                                     const GameOutput& out = GameOutput());

// The board settings and score multiplier of a rules dictionary, read as a game start reads them
// (without its diagnostic lines); the lists are left alone.
void readGameSettings(const Dictionary& rules, GameInfo& info);

}  // namespace tolvar
