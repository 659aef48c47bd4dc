// Building a new board for the running game, and the colour of each colour number.
#pragma once

#include "engine/RandomSequence.h"
#include "engine/View.h"
#include "rules/GameInfo.h"
#include "rules/GameOutput.h"

namespace tolvar {

// How many colour numbers have a colour of their own (1 to kDrawnColorCount).
inline constexpr unsigned kDrawnColorCount = 10;

// Sets red, green and blue from colorIndex (colours 1..10; others keep their components), and
// with colorsMatchShapes copies colorIndex into shapeIndex.
void setPieceColor(const GameInfo& game, BoardPiece& piece);

// Builds the board of game (the caller has released any previous one): random fill, holes,
// and the repair of straight runs longer than setupMaxLinearColors. Without a random fill the
// board is all empty cells.
void setupGame(GameInfo& game, View& view, RandomSequence& random, const GameOutput& out);

// The colour numbers, one line per column, then an empty line.
void printBoardColors(const GameInfo& game, const GameOutput& out);

}  // namespace tolvar
