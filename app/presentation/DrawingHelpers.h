// What the board, the pieces and the score screen draw with: the figures' fractions.
#pragma once

namespace tolvar::drawing {

// Halves and thirds of the figures: in double precision from the float values, passed as floats.
inline float half(float v) { return static_cast<float>(static_cast<double>(v) / 2.0); }
inline float third(float v) { return static_cast<float>(static_cast<double>(v) / 3.0); }

}  // namespace tolvar::drawing
