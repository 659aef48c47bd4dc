// The help page of a game, read from its rules: its name, its description and how it is played
// with the mouse and the keys its rules bind. The program's own keys are added by the caller.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/PropertyList.h"

namespace tolvar {

// Its texts are as the help window shows them: cut to the lengths of ShownText.h.
struct GameHelp {
    std::string title;
    std::string description;
    std::vector<std::string> inputs;  // one line an input, in the rules' order; "… and more inputs" past kShownInputs
};

inline constexpr std::size_t kShownInputs = 40;

// The line for one input of the rules: "Click a region of 2 or more", "Drag a piece onto a
// neighbour", "Space: Remove Selection"; empty for an input without key that nothing plays.
std::string inputHelpLine(std::uint32_t userEventType, std::int8_t character, std::int32_t minimumPieces);

// The help for a game's rules dictionary; no rules (or not a dictionary) gives an empty page.
GameHelp gameHelp(const Value* rules);

}  // namespace tolvar
