// A running game kept as a property list, to be continued in another run of the program: the
// game's title, a fingerprint of its rules, and its snapshot (board with selection, score,
// multiplier, variables, pending events, random sequence, last gesture, lifecycle flags).
// Reading and writing the file is the shell's; this only converts.
#pragma once

#include <string>
#include <variant>

#include "engine/GameSnapshot.h"
#include "core/PropertyList.h"

namespace tolvar {

// A fingerprint of a game's rules dictionary: equal rules give equal fingerprints, and any
// change to them (a key, a value, their order) gives another.
std::string rulesFingerprint(const Value& rules);

// The saved game of a snapshot of game, whose rules have that fingerprint.
Value savedGameValue(const GameInfo& game, const GameSnapshot& snapshot,
                     const std::string& fingerprint);

// The title of the game a saved game belongs to; empty when it names none.
std::string savedGameTitle(const Value& saved);

// The snapshot a saved game holds, checked against the game's records (built from rules
// with that fingerprint); or why it cannot be continued, as a sentence for the player.
std::variant<GameSnapshot, std::string> snapshotFromSavedGame(const Value& saved,
                                                              const GameInfo& game,
                                                              const std::string& fingerprint);

}  // namespace tolvar
