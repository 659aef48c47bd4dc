#include "desktop/TextPage.h"

#include <imgui.h>

#include <algorithm>

namespace tolvar {

namespace {
bool continuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }
}  // namespace

void TextPage::wrap(std::size_t paragraph, std::size_t begin, std::size_t end, float width) {
    ImFont* font = ImGui::GetFont();
    const float scale = ImGui::GetFontSize() / font->FontSize;
    const char* const base = paragraphs_[paragraph].text.data();
    const char* s = base + begin;
    const char* const stop = base + end;
    do {
        const char* eol = font->CalcWordWrapPositionA(scale, s, stop, width);
        // Not even one character fits: it goes on a line of its own.
        if (eol <= s && s < stop) {
            eol = s + 1;
            while (eol < stop && continuationByte(*eol)) ++eol;
        }
        lines_.push_back({paragraph, static_cast<std::size_t>(s - base), static_cast<std::size_t>(eol - base)});
        s = eol;
        // A wrapped line's next line starts at its next word.
        while (s < stop && (*s == ' ' || *s == '\t')) ++s;
    } while (s < stop);
}

void TextPage::layOut(float width) {
    lines_.clear();
    for (std::size_t p = 0; p < paragraphs_.size(); ++p) {
        if (p > 0 && paragraphs_[p].blankLineBefore) lines_.push_back({p, 0, 0});
        const std::string& text = paragraphs_[p].text;
        for (std::size_t begin = 0;;) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            wrap(p, begin, end, width);
            if (end == text.size()) break;
            begin = end + 1;
        }
    }
}

void TextPage::draw(std::vector<Paragraph> paragraphs) {
    // The width the text keeps whether the scroll bar shows or not, so that showing it does not
    // wrap the text anew.
    float width = ImGui::GetContentRegionAvail().x;
    if (ImGui::GetScrollMaxY() <= 0.0f) width -= ImGui::GetStyle().ScrollbarSize;
    if (width < 1.0f) width = 1.0f;
    const bool sameFont = ImGui::GetFont() == font_ && ImGui::GetFontSize() == fontSize_;
    if (paragraphs != paragraphs_ || width != width_ || !sameFont) {
        // Another text is read from its start; new findings under the same one keep the place.
        const bool sameStart = !paragraphs.empty() && !paragraphs_.empty() && paragraphs.front() == paragraphs_.front();
        if (!sameStart) ImGui::SetScrollY(0.0f);
        paragraphs_ = std::move(paragraphs);
        width_ = width;
        font_ = ImGui::GetFont();
        fontSize_ = ImGui::GetFontSize();
        layOut(width);
    }
    ImGui::PushStyleVar(ImGuiStyleVar_ItemSpacing, ImVec2(ImGui::GetStyle().ItemSpacing.x, 0.0f));
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(lines_.size()), ImGui::GetTextLineHeight());
    while (clipper.Step()) {
        for (int i = clipper.DisplayStart; i < clipper.DisplayEnd; ++i) {
            const Line& line = lines_[static_cast<std::size_t>(i)];
            const Paragraph& paragraph = paragraphs_[line.paragraph];
            const char* const text = paragraph.text.data();
            if (paragraph.colour != 0) ImGui::PushStyleColor(ImGuiCol_Text, paragraph.colour);
            ImGui::TextUnformatted(text + line.begin, text + line.end);
            if (paragraph.colour != 0) ImGui::PopStyleColor();
        }
    }
    clipper.End();
    ImGui::PopStyleVar();
}

}  // namespace tolvar
