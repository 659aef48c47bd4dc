// Where the board lies in the game window. The drawing and the mapping of window points to
// cells both use this one computation, so they always agree. All in single precision.
#pragma once

#include "rules/GameInfo.h"

namespace tolvar {

// The game window's content size and drawing coordinates (one unit per pixel, origin at the
// lower left, y upward).
inline constexpr float winWidth = 1024.0f;
inline constexpr float winHeight = 768.0f;

struct BoardLayout {
    float m = 0;     // margin: 50 with a launcher, else 10
    float h = 0;     // cell height
    float w = 0;     // cell width
    float ph = 0;    // piece height (h - 3)
    float pw = 0;    // piece width
    float left = 0;  // the board's left edge
};

// Requires boardWidth and boardHeight of at least 1.
BoardLayout computeBoardLayout(const GameInfo& game);

}  // namespace tolvar
