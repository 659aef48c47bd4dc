// Text drawn into pixels with a named font (fontconfig picks the font file, SDL2_ttf draws), and
// the one lookup of font files by family that the windows and the textures share.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tolvar::text {

// Largest point size the game draws text at; larger sizes draw nothing.
inline constexpr int kMaxPointSize = 2048;

// The regular, upright TrueType or OpenType file fontconfig finds closest to a family name
// ("Helvetica", "sans-serif"); an unknown family gives fontconfig's default sans font. Empty when
// fontconfig knows no such font at all. Every drawer of text can read the file it gives.
std::string fontFileFor(const std::string& family);

// The size a line of UTF-8 text takes in pixels at a point size (one point a pixel): its advance
// and the font's line height. Zero for empty text, no font or a size out of range.
struct TextSize {
    int width = 0;
    int height = 0;
};
TextSize measureText(const std::string& text, const std::string& family, int pointSize);

// A string drawn into straight-alpha RGBA pixels, rows top first, 4 bytes per pixel.
// `ascent` is the row of the baseline counted from the top.
struct Rendered {
    int width = 0;
    int height = 0;
    int ascent = 0;
    std::vector<std::uint8_t> rgba;
};

// Draws UTF-8 text in the given colour. wrapWidth > 0 breaks lines to fit that many pixels.
// False when there is nothing to draw (empty text, no font, a size out of range) or the font
// cannot draw it; `out` is then empty.
bool renderText(const char* text, const std::string& family, int pointSize, std::uint8_t red,
                std::uint8_t green, std::uint8_t blue, int wrapWidth, Rendered& out);

}  // namespace tolvar::text
