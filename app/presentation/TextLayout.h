// Where the game window's texts go and how large they are, in the picture's pixels (origin at the
// picture's lower left): the game's name and the score beside the board, and the score screen's
// tables. Each text block sits on a backing panel that holds it whole, inside the picture and
// clear of the board's frame. Sizes follow the picture's size on the screen, never below a
// readable size (larger on a high-density display). Nothing here draws.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "TextPixels.h"
#include "engine/BoardLayout.h"

namespace tolvar {

// The family the game window's texts are drawn in.
inline constexpr const char* kBoardFontFamily = "Helvetica";
// The smallest text the window draws, in pixels on a display of scale 1.
inline constexpr int kSmallestReadablePixels = 11;
// Smaller still, only for a word that cannot be broken into the room beside the board otherwise.
inline constexpr int kTightestPixels = 8;
// The text's size for a picture of a given height: a thirtieth of it, or so.
inline constexpr float kTextHeightShare = 0.034f;

// A line's size in pixels at a pixel size (the font's own measure in the window; a stand-in in tests).
using MeasureText = std::function<text::TextSize(const std::string& text, int pixels)>;
// The measure of kBoardFontFamily through SDL_ttf.
MeasureText boardFontMeasure();

struct TextBox {
    int x = 0, y = 0, width = 0, height = 0;  // lower left corner and size
    int right() const { return x + width; }
    int top() const { return y + height; }
    bool holds(const TextBox& o) const { return o.x >= x && o.y >= y && o.right() <= right() && o.top() <= top(); }
    bool meets(const TextBox& o) const { return x < o.right() && o.x < right() && y < o.top() && o.y < top(); }
};

// How a line is shown: the colour the drawing gives it.
enum class TextTone { Heading, Label, Figure, Row, Highlight };

struct PlacedText {
    std::string text;
    int pixels = 0;  // the font size
    TextBox box;     // the line's measured box: its advance and the font's line height
    TextTone tone = TextTone::Figure;
};

struct TextPanel {
    TextBox backing;  // empty when there is nothing to show
    std::vector<PlacedText> lines;
};

// A text of a panel that stacks its texts one under the other; a text too wide for the panel's
// room breaks between words. `share` is its size against the panel's main text.
struct StackedText {
    std::string text;
    float share = 1.0f;
    TextTone tone = TextTone::Figure;
};

// The room beside the board, in the picture's pixels.
struct BoardTextRoom {
    int pictureWidth = 0, pictureHeight = 0;
    int leftColumnEnd = 0;      // where the board's frame begins, from the picture's left
    int rightColumnStart = 0;   // where it ends
    float displayScale = 1.0f;  // the display's density against a 1080-line screen
};

// The room beside the board that L lays out, in a picture of pictureWidth x pictureHeight pixels
// (the picture's 1024 x 768 units scaled): the columns end at the outer edge of the board's frame.
BoardTextRoom boardTextRoom(const BoardLayout& L, int pictureWidth, int pictureHeight, float displayScale);

struct BoardTexts {
    TextPanel name;   // in the column left of the board, at the top
    TextPanel score;  // in the column right of it
};

// The game's name (its texts: the name, and any smaller text that goes with it under it) and the
// score (its label and its digits), each in its column.
BoardTexts layoutBoardTexts(const BoardTextRoom& room, const std::vector<StackedText>& name,
                            const std::vector<StackedText>& score, const MeasureText& measure);

// The score screen's texts.
struct ScoreTableRow {
    std::string rank, score, date;
    bool highlighted = false;
    bool operator==(const ScoreTableRow&) const = default;
};
struct ScoreScreenTexts {
    std::string lastHeading, lastScore, bestHeading, hint;
    std::vector<ScoreTableRow> rows;
    bool operator==(const ScoreScreenTexts&) const = default;
};
struct ScoreScreenLayout {
    TextPanel last;  // the last score, at the top left
    TextPanel best;  // the best scores in columns (rank, score, date) and the hint below them
    std::size_t rowsShown = 0;  // the best rows that fit, from the first
};
ScoreScreenLayout layoutScoreScreen(int pictureWidth, int pictureHeight, float displayScale,
                                    const ScoreScreenTexts& texts, const MeasureText& measure);

}  // namespace tolvar
