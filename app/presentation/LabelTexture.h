// A short line of light text on a dark backing, drawn over whatever the game window shows, so it
// reads over the background, the pieces and their colours alike. All the drawing of such a line
// is here; its text is a TextLabel, made again only when it changes.
#pragma once

#include <string>

#include "presentation/TextLabel.h"

namespace tolvar {

class LabelTexture {
public:
    // The text's texture belongs to the game window's context, which must be current when it goes.
    // The line to draw (in the game window's context); empty for none. Nothing happens when it
    // is the line already held.
    void setText(const std::string& text);
    const std::string& text() const { return text_; }
    // The backing's size in window points; 0 x 0 when there is no line or no font draws it.
    float width() const;
    float height() const;
    // The backing with its lower left corner at (x, y), and the line on it.
    void draw(float x, float y) const;

private:
    std::string text_;
    TextLabel label_;
};

}  // namespace tolvar
