#include "presentation/TextLayout.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tolvar {

namespace {

// The x-height of a pixel size: how much it shrinks in one step of the search for a size that fits.
constexpr int kShrinkPercent = 90;
// The board's frame: 6 units outside the board, its line 3 units wide.
constexpr float kFrameOutside = 6.0f + 1.5f;
// The best scores' panel starts left of the picture's middle by this share of its width.
constexpr float kBestTableLeftOfMiddle = 120.0f / 1024.0f;

int readablePixels(float displayScale) {
    return static_cast<int>(std::lround(kSmallestReadablePixels * std::max(1.0f, displayScale)));
}
int preferredPixels(int pictureHeight, float displayScale) {
    return std::max(readablePixels(displayScale), static_cast<int>(std::lround(pictureHeight * kTextHeightShare)));
}
// The space between a panel's edge and its text, and between a panel and what lies beside it.
int paddingFor(int pixels) { return std::max(2, pixels / 3); }
int gapFor(int pixels) { return std::max(2, pixels / 4); }
int nextSmaller(int pixels, int smallest) { return std::max(smallest, std::min(pixels - 1, pixels * kShrinkPercent / 100)); }

std::size_t utf8Length(const std::string& s, std::size_t at) {
    const unsigned char c = static_cast<unsigned char>(s[at]);
    const std::size_t n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
    return std::min(n, s.size() - at);
}

// A word wider than the room, broken between characters.
void breakWord(const std::string& word, int pixels, int room, const MeasureText& measure,
               std::vector<std::string>& lines) {
    std::string line;
    for (std::size_t at = 0; at < word.size();) {
        const std::size_t n = utf8Length(word, at);
        const std::string longer = line + word.substr(at, n);
        if (!line.empty() && measure(longer, pixels).width > room) {
            lines.push_back(line);
            line = word.substr(at, n);
        } else {
            line = longer;
        }
        at += n;
    }
    if (!line.empty()) lines.push_back(line);
}

// The text in lines no wider than room, broken between words (and inside words too wide when
// breakWords). Nothing when a word is wider than the room and may not be broken.
std::optional<std::vector<std::string>> wrapText(const std::string& text, int pixels, int room, bool breakWords,
                                                 const MeasureText& measure) {
    std::vector<std::string> lines;
    std::string line;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(' ', start);
        if (end == std::string::npos) end = text.size();
        const std::string word = text.substr(start, end - start);
        start = end + 1;
        if (word.empty()) continue;
        const std::string longer = line.empty() ? word : line + " " + word;
        if (measure(longer, pixels).width <= room) {
            line = longer;
            continue;
        }
        if (!line.empty()) lines.push_back(line);
        line = word;
        if (measure(word, pixels).width <= room) continue;
        if (!breakWords) return std::nullopt;
        std::vector<std::string> pieces;
        breakWord(word, pixels, room, measure, pieces);
        line = pieces.back();
        pieces.pop_back();
        lines.insert(lines.end(), pieces.begin(), pieces.end());
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

// The texts stacked and centred in a panel whose text is at most room pixels wide, the panel's
// lower left at (0, 0); nothing when they do not fit at that size.
std::optional<TextPanel> stackPanel(const std::vector<StackedText>& texts, int pixels, int smallest, int room,
                                    bool breakWords, const MeasureText& measure) {
    TextPanel panel;
    const int pad = paddingFor(pixels);
    for (const StackedText& t : texts) {
        const int size = std::max(smallest, static_cast<int>(std::lround(pixels * t.share)));
        const auto lines = wrapText(t.text, size, room, breakWords, measure);
        if (!lines) return std::nullopt;
        for (const std::string& line : *lines) {
            const text::TextSize s = measure(line, size);
            panel.lines.push_back(PlacedText{line, size, TextBox{0, 0, s.width, s.height}, t.tone});
        }
    }
    if (panel.lines.empty()) return panel;
    int width = 0, height = 0;
    for (const PlacedText& l : panel.lines) width = std::max(width, l.box.width), height += l.box.height;
    panel.backing = TextBox{0, 0, width + 2 * pad, height + 2 * pad};
    int top = panel.backing.height - pad;
    for (PlacedText& l : panel.lines) {
        top -= l.box.height;
        l.box.x = (panel.backing.width - l.box.width) / 2;
        l.box.y = top;
    }
    return panel;
}

void movePanel(TextPanel& panel, int x, int y) {
    const int dx = x - panel.backing.x, dy = y - panel.backing.y;
    panel.backing.x = x, panel.backing.y = y;
    for (PlacedText& l : panel.lines) l.box.x += dx, l.box.y += dy;
}

// A panel of the texts at the largest size that fits a column [from, to) of the picture, at its top.
TextPanel columnPanel(const BoardTextRoom& room, const std::vector<StackedText>& texts, int from, int to,
                      const MeasureText& measure) {
    const int smallest = readablePixels(room.displayScale);
    // A board that leaves no column beside it: the panel goes over the board's edge.
    const int width = std::max(to - from, 3 * smallest + 2 * gapFor(smallest) + 2 * paddingFor(smallest));
    // The largest size down to the readable one at which every word fits; then a word too long
    // for the column is rather made smaller, down to the tightest size, than broken.
    const int tightest = std::min(smallest, static_cast<int>(std::lround(kTightestPixels * std::max(1.0f, room.displayScale))));
    std::optional<TextPanel> panel;
    for (int px = preferredPixels(room.pictureHeight, room.displayScale);; px = nextSmaller(px, tightest)) {
        const int roomForText = width - 2 * gapFor(px) - 2 * paddingFor(px);
        panel = stackPanel(texts, px, std::min(px, smallest), roomForText, px == tightest, measure);
        if (panel || px == tightest) break;
    }
    if (!panel || panel->lines.empty()) return {};
    const int gap = gapFor(panel->lines.front().pixels);
    const int centred = from + (to - from - panel->backing.width) / 2;
    const int x = std::clamp(centred, 0, std::max(0, room.pictureWidth - panel->backing.width));
    movePanel(*panel, x, std::max(0, room.pictureHeight - gap - panel->backing.height));
    return *panel;
}

}  // namespace

MeasureText boardFontMeasure() {
    return [](const std::string& line, int pixels) { return text::measureText(line, kBoardFontFamily, pixels); };
}

BoardTextRoom boardTextRoom(const BoardLayout& L, int pictureWidth, int pictureHeight, float displayScale) {
    const float s = static_cast<float>(pictureWidth) / winWidth;
    BoardTextRoom room;
    room.pictureWidth = pictureWidth, room.pictureHeight = pictureHeight;
    room.leftColumnEnd = static_cast<int>(std::floor((L.left - kFrameOutside) * s));
    room.rightColumnStart = static_cast<int>(std::ceil((winWidth - L.left + kFrameOutside) * s));
    room.displayScale = displayScale;
    return room;
}

BoardTexts layoutBoardTexts(const BoardTextRoom& room, const std::vector<StackedText>& name,
                            const std::vector<StackedText>& score, const MeasureText& measure) {
    BoardTexts texts;
    texts.name = columnPanel(room, name, 0, room.leftColumnEnd, measure);
    texts.score = columnPanel(room, score, room.rightColumnStart, room.pictureWidth, measure);
    return texts;
}

namespace {

// The best scores' table at a size: heading, rows in three columns (rank and score to the right,
// date to the left), hint; the panel's lower left at (0, 0).
TextPanel bestTable(const ScoreScreenTexts& texts, std::size_t rows, int px, const MeasureText& measure) {
    TextPanel panel;
    const int pad = paddingFor(px), columnGap = px;
    const int lineHeight = measure("0", px).height;
    int rankWidth = 0, scoreWidth = 0, dateWidth = 0;
    for (std::size_t i = 0; i < rows; ++i) {
        rankWidth = std::max(rankWidth, measure(texts.rows[i].rank, px).width);
        scoreWidth = std::max(scoreWidth, measure(texts.rows[i].score, px).width);
        dateWidth = std::max(dateWidth, measure(texts.rows[i].date, px).width);
    }
    const int tableWidth = rows == 0 ? 0 : rankWidth + scoreWidth + dateWidth + 2 * columnGap;
    const int headingWidth = measure(texts.bestHeading, px).width, hintWidth = measure(texts.hint, px).width;
    const int content = std::max({tableWidth, headingWidth, hintWidth});
    const int lines = static_cast<int>(rows) + 2;
    panel.backing = TextBox{0, 0, content + 2 * pad, lines * lineHeight + 2 * pad};
    int y = panel.backing.height - pad - lineHeight;
    const auto place = [&](const std::string& text, int x, TextTone tone) {
        if (!text.empty()) panel.lines.push_back(PlacedText{text, px, TextBox{x, y, measure(text, px).width, lineHeight}, tone});
    };
    place(texts.bestHeading, pad, TextTone::Heading);
    for (std::size_t i = 0; i < rows; ++i) {
        y -= lineHeight;
        const ScoreTableRow& row = texts.rows[i];
        const TextTone tone = row.highlighted ? TextTone::Highlight : TextTone::Row;
        place(row.rank, pad + rankWidth - measure(row.rank, px).width, tone);
        place(row.score, pad + rankWidth + columnGap + scoreWidth - measure(row.score, px).width, tone);
        place(row.date, pad + rankWidth + scoreWidth + 2 * columnGap, tone);
    }
    y -= lineHeight;
    place(texts.hint, pad, TextTone::Label);
    return panel;
}

}  // namespace

ScoreScreenLayout layoutScoreScreen(int pictureWidth, int pictureHeight, float displayScale,
                                    const ScoreScreenTexts& texts, const MeasureText& measure) {
    ScoreScreenLayout layout;
    const int smallest = readablePixels(displayScale);
    for (int px = preferredPixels(pictureHeight, displayScale);; px = nextSmaller(px, smallest)) {
        const int gap = gapFor(px);
        const std::vector<StackedText> last = {{texts.lastHeading, 1.0f, TextTone::Heading},
                                               {texts.lastScore, 1.0f, TextTone::Figure}};
        layout.last = stackPanel(last, px, smallest, pictureWidth, true, measure).value_or(TextPanel{});
        movePanel(layout.last, gap, pictureHeight - gap - layout.last.backing.height);
        // The table right of the last score, from a little left of the middle, as far right as it
        // must; when it cannot be beside it, under it.
        const int besideFrom = layout.last.backing.right() + gap;
        const int leftOfMiddle = pictureWidth / 2 - static_cast<int>(std::lround(pictureWidth * kBestTableLeftOfMiddle));
        std::size_t rows = texts.rows.size();
        TextPanel best = bestTable(texts, rows, px, measure);
        int x = std::min(std::max(besideFrom, leftOfMiddle), pictureWidth - gap - best.backing.width);
        int roomTop = pictureHeight - gap;
        const bool beside = x >= besideFrom;
        if (!beside) {
            x = gap;
            roomTop = layout.last.backing.y - gap;
        }
        const bool fits = best.backing.height <= roomTop - gap && x >= 0;
        if (!fits && px > smallest) continue;
        // At the smallest size: as many rows as the height holds.
        while (rows > 0 && best.backing.height > roomTop - gap) best = bestTable(texts, --rows, px, measure);
        movePanel(best, std::max(0, x), std::max(0, roomTop - best.backing.height));
        layout.best = std::move(best);
        layout.rowsShown = rows;
        return layout;
    }
}

}  // namespace tolvar
