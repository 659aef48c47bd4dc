// Globals of the board drawing: the frame's colour and the turn of selected 3-D pieces.
#pragma once

#include <cstdint>

namespace tolvar {

// The colour of the frame round the board.
struct BorderColor {
    float red, green, blue;
};
inline constexpr BorderColor kDefaultBorderColor{0.5f, 0.25f, 0.0f};
extern BorderColor gBorderColor;

// Degrees that selected shape-1 pieces have turned: 0 at start, 3 more after every full frame.
extern std::int64_t rotValue;

}  // namespace tolvar
