// Where an alert goes over the game's picture: a panel in the middle, its message in lines that
// fit the panel, and its one button under them. Long texts wrap, and a text too long for the
// picture is cut with "..." on its last line, so the panel never leaves the picture.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tolvar {

struct PanelRect {
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;  // origin at the lower left
    bool contains(float x, float y) const { return x >= x0 && x <= x1 && y >= y0 && y <= y1; }
};

struct AlertLayout {
    PanelRect panel;
    std::vector<std::string> lines;
    float textX = 0;          // where each line starts
    float firstBaseline = 0;  // the first line's baseline; the others follow lineHeight lower
    float lineHeight = 0;
    PanelRect button;
    float labelX = 0, labelBaseline = 0;
    std::string label;
};

// The width of a text in the picture's units, as the window's font draws it.
using TextWidth = std::function<float(const std::string&)>;

// The alert's message and button laid out for a picture of pictureWidth x pictureHeight.
AlertLayout layoutAlert(const std::string& message, const std::string& button, const TextWidth& widthOf,
                        float lineHeight, float pictureWidth, float pictureHeight);

// The message as lines no wider than width: broken between words, a word wider than a line
// between its characters; the message's own line breaks kept.
std::vector<std::string> wrapText(const std::string& message, const TextWidth& widthOf, float width);

}  // namespace tolvar
