// The game window's texts as the player reads them: the game's name and the score beside the
// board, and the score screen's tables, each on its dark backing, in a scalable font sized from
// the picture's size on the screen. Layouts and text textures are kept between frames and made
// again only when a text or the picture's size changes. Drawn in the game window's context, in
// the picture's units (its pixels per unit read from the viewport).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/BoardLayout.h"
#include "presentation/ShownBoard.h"
#include "presentation/TextLabel.h"
#include "presentation/TextLayout.h"

namespace tolvar {

// The backing behind every text: dark and mostly opaque, so any part of the background reads
// as dark under it.
inline constexpr float kTextBackingColor[4] = {0.04f, 0.02f, 0.08f, 0.72f};
// The colour of each kind of text on it.
const float* toneColour(TextTone tone);

// Panels of text with their labels, kept between frames.
class TextPanels {
public:
    // Draws the panels' backings, then their texts; only the panels that meet clip (picture
    // units) when there is one.
    void draw(const std::vector<const TextPanel*>& panels, float unitsPerPixel, const PixelRect* clip);

private:
    std::vector<TextLabel> labels_;  // one per line, in the order of the panels' lines
};

class WindowTexts {
public:
    // The display's density against a 1080-line screen: no text is smaller than a readable size
    // times it.
    void setDisplayScale(float scale) { displayScale_ = scale; }

    // The name (with the board's number under it, smaller) and the score beside the board the
    // layout L places; within patch (picture units) only the panels that reach into it.
    void drawBoardTexts(const BoardLayout& L, const std::string& gameName, std::uint32_t boardNumber,
                        std::uint64_t score, const PixelRect* patch);
    // The score screen's tables over what is drawn.
    void drawScoreTables(const ScoreScreenTexts& texts);

    // The layouts last drawn, in the picture's pixels.
    const BoardTexts& boardTexts() const { return board_; }
    const ScoreScreenLayout& scoreLayout() const { return scores_; }

private:
    // The current viewport's pixels per picture unit and its size.
    struct Picture {
        int width = 0, height = 0;
        float pixelsPerUnit = 1.0f;
        bool operator==(const Picture&) const = default;
    };
    static Picture currentPicture();

    float displayScale_ = 1.0f;
    struct BoardKey {
        Picture picture;
        float left = 0.0f;
        std::string name, number, score;
        float scale = 0.0f;
        bool operator==(const BoardKey&) const = default;
    };
    BoardKey boardKey_;
    BoardTexts board_;
    TextPanels boardPanels_;
    struct ScoresKey {
        Picture picture;
        ScoreScreenTexts texts;
        float scale = 0.0f;
        bool operator==(const ScoresKey&) const = default;
    };
    ScoresKey scoresKey_;
    ScoreScreenLayout scores_;
    TextPanels scorePanels_;
};

}  // namespace tolvar
