#include "presentation/WindowTexts.h"

#include <GL/gl.h>

#include <cmath>

#include "core/Translate.h"
#include "presentation/ScoreText.h"

namespace tolvar {

namespace {
constexpr float kHeadingColor[4] = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr float kLabelColor[4] = {0.80f, 0.80f, 0.86f, 1.0f};
constexpr float kFigureColor[4] = {1.0f, 0.86f, 0.35f, 1.0f};
constexpr float kRowColor[4] = {0.90f, 0.86f, 1.0f, 1.0f};
constexpr float kHighlightColor[4] = {1.0f, 0.55f, 1.0f, 1.0f};
// The label over the score's digits, against their size.
constexpr float kScoreLabelShare = 0.7f;
}  // namespace

const float* toneColour(TextTone tone) {
    switch (tone) {
        case TextTone::Heading: return kHeadingColor;
        case TextTone::Label: return kLabelColor;
        case TextTone::Row: return kRowColor;
        case TextTone::Highlight: return kHighlightColor;
        case TextTone::Figure: break;
    }
    return kFigureColor;
}

void TextPanels::draw(const std::vector<const TextPanel*>& panels, float unitsPerPixel, const PixelRect* clip) {
    std::size_t lines = 0;
    for (const TextPanel* p : panels) lines += p->lines.size();
    labels_.resize(lines);
    const auto units = [&](int pixels) { return static_cast<float>(pixels) * unitsPerPixel; };
    const auto meets = [&](const TextBox& b) {
        if (!clip) return true;
        const PixelRect r{static_cast<int>(std::floor(units(b.x))), static_cast<int>(std::floor(units(b.y))),
                          static_cast<int>(std::ceil(units(b.right()))), static_cast<int>(std::ceil(units(b.top())))};
        return clip->intersects(r);
    };
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4fv(kTextBackingColor);
    for (const TextPanel* p : panels)
        if (p->backing.width > 0 && meets(p->backing))
            glRectf(units(p->backing.x), units(p->backing.y), units(p->backing.right()), units(p->backing.top()));
    glPopAttrib();
    std::size_t at = 0;
    for (const TextPanel* p : panels) {
        const bool shown = meets(p->backing);
        for (const PlacedText& line : p->lines) {
            TextLabel& label = labels_[at++];
            if (!shown) continue;
            label.set(line.text, kBoardFontFamily, line.pixels);
            label.draw(units(line.box.x), units(line.box.y), unitsPerPixel, toneColour(line.tone));
        }
    }
}

WindowTexts::Picture WindowTexts::currentPicture() {
    GLint view[4] = {0, 0, static_cast<GLint>(winWidth), static_cast<GLint>(winHeight)};
    glGetIntegerv(GL_VIEWPORT, view);
    Picture picture;
    picture.width = view[2] > 0 ? view[2] : static_cast<int>(winWidth);
    picture.height = view[3] > 0 ? view[3] : static_cast<int>(winHeight);
    picture.pixelsPerUnit = static_cast<float>(picture.width) / winWidth;
    return picture;
}

void WindowTexts::drawBoardTexts(const BoardLayout& L, const std::string& gameName, std::uint32_t boardNumber,
                                 std::uint64_t score, const PixelRect* patch) {
    BoardKey key{currentPicture(), L.left, boardGameNameText(gameName), boardNumberText(boardNumber),
                 boardScoreText(score), displayScale_};
    if (!(key == boardKey_)) {
        const BoardTextRoom room = boardTextRoom(L, key.picture.width, key.picture.height, displayScale_);
        std::vector<StackedText> name{{key.name, 1.0f, TextTone::Heading}};
        if (!key.number.empty()) name.push_back({key.number, kScoreLabelShare, TextTone::Label});
        board_ = layoutBoardTexts(room, name,
                                  {{tr("Score"), kScoreLabelShare, TextTone::Label}, {key.score, 1.0f, TextTone::Figure}},
                                  boardFontMeasure());
        boardKey_ = std::move(key);
    }
    boardPanels_.draw({&board_.name, &board_.score}, 1.0f / boardKey_.picture.pixelsPerUnit, patch);
}

void WindowTexts::drawScoreTables(const ScoreScreenTexts& texts) {
    const Picture picture = currentPicture();
    if (!(picture == scoresKey_.picture && displayScale_ == scoresKey_.scale && texts == scoresKey_.texts)) {
        scoresKey_ = ScoresKey{picture, texts, displayScale_};
        scores_ = layoutScoreScreen(picture.width, picture.height, displayScale_, texts, boardFontMeasure());
    }
    scorePanels_.draw({&scores_.last, &scores_.best}, 1.0f / picture.pixelsPerUnit, nullptr);
}

}  // namespace tolvar
