// A built-in game set up as the game starts it: its records from the rules dictionary and a new
// board dealt from a random sequence.
#pragma once

#include <memory>
#include <string>

#include "engine/RandomSequence.h"
#include "presentation/GameView.h"

namespace tolvar::bench {

// "Vexamor", "Trindle" or "Glimmet"; nullptr when the game is unknown or cannot be set up. The
// diagnostic lines of the set-up are thrown away.
std::unique_ptr<GameInfo> startBuiltinGame(const std::string& name, GameView& view, RandomSequence& random);

}  // namespace tolvar::bench
