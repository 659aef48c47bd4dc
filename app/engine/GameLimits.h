// How far a game's board size and number of colours may go: what the rules checker accepts
// without a finding and what the player may choose in their place. The checker, the main
// window's choices and tolvar-sim all ask here.
#pragma once

#include <string>

#include "rules/GameInfo.h"
#include "rules/GameOptions.h"

namespace tolvar {

struct ChoiceRange {
    unsigned least = 1;
    unsigned most = 1;

    bool holds(unsigned value) const { return value >= least && value <= most; }
    unsigned clamp(unsigned value) const { return value < least ? least : value > most ? most : value; }
};

// A side of the board is kept in one byte.
inline constexpr unsigned kMostBoardSide = 255;

// The board's rows: 1 to 255.
ChoiceRange heightRange();
// The board's columns at that many rows: 1 to 255, and for square pieces no more than the window
// holds side by side (game: the rules' other settings).
ChoiceRange widthRange(const GameInfo& game, unsigned height);
// The colours: each drawn in a colour of its own; at least 2 when the game's set-up breaks up
// straight runs of one colour.
ChoiceRange colorRange(const GameInfo& game);

// The most square columns of game's height (boardHeight) the window shows side by side.
unsigned widestSquareBoard(const GameInfo& game);

// Why options cannot be played with game (the rules as read): "the width is 1 to 13", ...; an
// empty text when every choice is within its range.
std::string optionsProblem(const GameInfo& game, const GameOptions& options);
// options as they can be played: a height or number of colours outside its range (a settings
// file written by hand, rules that changed since) gives way to the rules' own value, and with a
// size chosen, square pieces take no more columns than the window holds at the rows played.
GameOptions optionsWithinLimits(const GameInfo& game, const GameOptions& options);

}  // namespace tolvar
