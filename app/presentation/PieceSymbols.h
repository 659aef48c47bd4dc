// Symbols on the pieces: each of the ten colours has a symbol of its own (circle, cross,
// triangle, square, diamond, star, plus, ring, bar, dot), black with a white edge so that it
// reads on every colour and on the nebula, so that a player who cannot tell the colours apart
// tells the pieces apart by their symbols.
#pragma once

#include <cstdint>

namespace tolvar {

// The symbol of colour number colorIndex (1 to 10) in the middle of the rectangle X, Y, W, H,
// scaled to it and facing the viewer over whatever is drawn there (a flat figure or the model);
// nothing for other numbers. Leaves the OpenGL state as it found it.
void drawColourSymbol(std::uint8_t colorIndex, float X, float Y, float W, float H);

}  // namespace tolvar
