// One line of text as a texture of the current OpenGL context, drawn from a scalable font through
// SDL_ttf. The texture is made again only when the text, the family or the size changes, so a
// label set to the same text on every frame costs one textured rectangle a frame.
#pragma once

#include <cstdint>
#include <string>

namespace tolvar {

class TextLabel {
public:
    TextLabel() = default;
    ~TextLabel();  // the context the texture was made in must be current
    TextLabel(const TextLabel&) = delete;
    TextLabel& operator=(const TextLabel&) = delete;
    TextLabel(TextLabel&& other) noexcept;
    TextLabel& operator=(TextLabel&& other) noexcept;

    // The text at `pixels` (a size in the window's pixels) in a font family. True when the
    // texture was made again; an empty text, or one no font draws, leaves nothing to draw.
    bool set(const std::string& text, const std::string& family, int pixels);

    int width() const { return width_; }  // the texture's pixels
    int height() const { return height_; }
    int ascent() const { return ascent_; }  // the baseline's row, from the top
    bool empty() const { return texture_ == 0; }

    // Draws it with its lower left corner at (x, y) in the current units, one of its pixels
    // `unitsPerPixel` units wide and high, tinted by colour over what is there (blended).
    void draw(float x, float y, float unitsPerPixel, const float colour[4]) const;

private:
    void release();

    std::string text_, family_;
    int pixels_ = 0;
    std::uint32_t texture_ = 0;
    int width_ = 0, height_ = 0, ascent_ = 0;
};

}  // namespace tolvar
