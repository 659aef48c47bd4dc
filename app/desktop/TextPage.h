// Text read from a file, drawn in the scrolling region that holds it: wrapped to the region's
// width once for each change of the text or the width, and only the lines in view submitted each
// frame. A frame's vertices then stay within what one window can show, however long the text
// (Dear ImGui's own wrapped text submits every glyph of the text, in view or not).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct ImFont;

namespace tolvar {

struct Paragraph {
    std::string text;  // may hold line breaks
    unsigned int colour = 0;  // ImU32; 0 draws in the text colour
    bool blankLineBefore = true;  // after the paragraph before it
    bool operator==(const Paragraph& o) const = default;
};

class TextPage {
public:
    // Draws the paragraphs at the cursor, each on lines of its own, wrapped to the region's width
    // less room for its scroll bar. Call between a child window's Begin and End.
    void draw(std::vector<Paragraph> paragraphs);

    // The lines of the last layout (for the tests).
    std::size_t lineCount() const { return lines_.size(); }

private:
    struct Line {
        std::size_t paragraph;
        std::size_t begin, end;  // bytes of the paragraph's text
    };
    void layOut(float width);
    // The lines of bytes [begin, end) of a paragraph, a part without line breaks.
    void wrap(std::size_t paragraph, std::size_t begin, std::size_t end, float width);

    std::vector<Paragraph> paragraphs_;
    std::vector<Line> lines_;
    float width_ = -1.0f;
    const ImFont* font_ = nullptr;
    float fontSize_ = 0.0f;
};

}  // namespace tolvar
