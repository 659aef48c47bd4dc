// A built-in game set up as the game starts it: its records from the rules dictionary and a new
// board, made the running game.
#pragma once

#include <string>

#include "presentation/GameView.h"

namespace tolvar::bench {

// "Vexamor", "Trindle" or "Glimmet"; false when the game is unknown or cannot be set up. The
// diagnostic lines of the set-up are kept off standard output.
bool startBuiltinGame(const std::string& name, GameView& view);

}  // namespace tolvar::bench
