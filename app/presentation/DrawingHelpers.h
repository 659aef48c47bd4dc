// What the board, the pieces and the score screen draw with: the background's texel size, text in
// the bitmap font and the figures' fractions.
#pragma once

#include <GL/gl.h>
#include <GL/freeglut.h>

#include <cstdint>
#include <string>

namespace tolvar::drawing {

// Text in the 18-point Helvetica bitmap font, from the raster position (x, y).
inline void drawText(float x, float y, const std::string& text) {
    glRasterPos2f(x, y);
    for (char c : text) glutBitmapCharacter(GLUT_BITMAP_HELVETICA_18, static_cast<unsigned char>(c));
}

// Halves and thirds of the figures: in double precision from the float values, passed as floats.
inline float half(float v) { return static_cast<float>(static_cast<double>(v) / 2.0); }
inline float third(float v) { return static_cast<float>(static_cast<double>(v) / 3.0); }

}  // namespace tolvar::drawing
