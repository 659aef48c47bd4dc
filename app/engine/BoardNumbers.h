// Board numbers: every board dealt has one, and the number alone decides it. Dealing board N
// starts the game's random sequence again from N, so the set-up and every later draw (refills,
// flashes) follow from N and the player's moves, whatever the program did before. A board asked
// for without a number gets one drawn from the engine's sequence of picks, which the shell seeds
// (the time, or a fixed seed for a run that must repeat).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/EngineContext.h"

namespace tolvar {

inline constexpr std::uint32_t kFirstBoardNumber = 1;
inline constexpr std::uint32_t kLastBoardNumber = 999'999'999;  // nine digits: easy to read out and type

bool isBoardNumber(std::int64_t number);

// A number of text as a player types it ("123456", blanks around it allowed), or why it is none,
// as a sentence naming the text and the numbers a board can have.
std::optional<std::uint32_t> parseBoardNumber(const std::string& text, std::string* why = nullptr);

// The next number of ctx's picks.
std::uint32_t pickBoardNumber(EngineContext& ctx);

// Deals board number of the running game in place of its board: the random sequence starts
// again from number, the board is set up from it, and the number is the game's.
void dealBoard(EngineContext& ctx, std::uint32_t number);

}  // namespace tolvar
