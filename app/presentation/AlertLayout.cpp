#include "presentation/AlertLayout.h"

#include <algorithm>
#include <string_view>

namespace tolvar {

namespace {
constexpr float kPanelWidthShare = 0.7f;  // of the picture's width, at most
constexpr float kMargin = 24.0f;          // inside the panel, round the text and the button
constexpr float kButtonPadding = 18.0f;   // left and right of the label
constexpr float kButtonHeightInLines = 1.6f;
constexpr const char* kCut = "...";

bool continuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The longest start of word (whole characters, at least one) that fits width.
std::size_t fittingPrefix(std::string_view word, const TextWidth& widthOf, float width) {
    std::size_t fit = 0;
    for (std::size_t end = 1; end <= word.size(); ++end) {
        if (end < word.size() && continuationByte(word[end])) continue;
        if (fit > 0 && widthOf(std::string(word.substr(0, end))) > width) break;
        fit = end;
    }
    return fit;
}

void wrapParagraph(std::string_view text, const TextWidth& widthOf, float width, std::vector<std::string>& out) {
    std::string line;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t space = std::min(text.find(' ', start), text.size());
        std::string_view word = text.substr(start, space - start);
        start = space + 1;
        const std::string joined = line.empty() ? std::string(word) : line + " " + std::string(word);
        if (widthOf(joined) <= width || (line.empty() && word.empty())) {
            line = joined;
            continue;
        }
        if (!line.empty()) out.push_back(std::move(line));
        line.clear();
        while (!word.empty() && widthOf(std::string(word)) > width) {
            const std::size_t cut = fittingPrefix(word, widthOf, width);
            out.emplace_back(word.substr(0, cut));
            word.remove_prefix(cut);
        }
        line = std::string(word);
    }
    out.push_back(std::move(line));
}
}  // namespace

std::vector<std::string> wrapText(const std::string& message, const TextWidth& widthOf, float width) {
    std::vector<std::string> lines;
    const std::string_view text = message;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t stop = std::min(text.find('\n', start), text.size());
        wrapParagraph(text.substr(start, stop - start), widthOf, width, lines);
        start = stop + 1;
    }
    return lines;
}

AlertLayout layoutAlert(const std::string& message, const std::string& button, const TextWidth& widthOf,
                        float lineHeight, float pictureWidth, float pictureHeight) {
    AlertLayout a;
    a.lineHeight = lineHeight;
    a.label = button.empty() ? std::string("OK") : button;
    const float textRoom = pictureWidth * kPanelWidthShare - 2 * kMargin;
    a.lines = wrapText(message, widthOf, textRoom);
    const float buttonHeight = lineHeight * kButtonHeightInLines;
    // As many lines as the picture holds above the button; the last one shown says it goes on.
    const float room = pictureHeight - 4 * kMargin - buttonHeight;
    const std::size_t most = std::max<std::size_t>(1, static_cast<std::size_t>(room / lineHeight));
    if (a.lines.size() > most) {
        a.lines.resize(most);
        std::string& last = a.lines.back();
        while (!last.empty() && widthOf(last + kCut) > textRoom) {
            last.pop_back();
            while (!last.empty() && continuationByte(last.back())) last.pop_back();
        }
        last += kCut;
    }
    float widest = std::min(widthOf(a.label) + 2 * kButtonPadding, textRoom);
    for (const std::string& line : a.lines) widest = std::max(widest, widthOf(line));
    const float panelWidth = widest + 2 * kMargin;
    const float panelHeight = static_cast<float>(a.lines.size()) * lineHeight + buttonHeight + 3 * kMargin;
    a.panel = {(pictureWidth - panelWidth) / 2, (pictureHeight - panelHeight) / 2, (pictureWidth + panelWidth) / 2,
               (pictureHeight + panelHeight) / 2};
    a.textX = a.panel.x0 + kMargin;
    a.firstBaseline = a.panel.y1 - kMargin - lineHeight * 0.75f;
    const float buttonWidth = std::min(widthOf(a.label) + 2 * kButtonPadding, panelWidth - 2 * kMargin);
    a.button = {a.panel.x1 - kMargin - buttonWidth, a.panel.y0 + kMargin, a.panel.x1 - kMargin,
                a.panel.y0 + kMargin + buttonHeight};
    a.labelX = a.button.x0 + (buttonWidth - widthOf(a.label)) / 2;
    a.labelBaseline = a.button.y0 + (buttonHeight - lineHeight * 0.75f) / 2 + lineHeight * 0.2f;
    return a;
}

}  // namespace tolvar
