#include "rules/ShownText.h"

namespace tolvar {

namespace {
constexpr const char* kEllipsis = "\xE2\x80\xA6";  // …

bool continuationByte(unsigned char c) { return (c & 0xC0) == 0x80; }
}  // namespace

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) count += !continuationByte(static_cast<unsigned char>(c));
    return count;
}

CutText cutText(std::string_view text, std::size_t limit) {
    // Walks at most limit characters; what remains is counted only when something was cut.
    std::size_t at = 0;
    for (std::size_t characters = 0; at < text.size() && characters < limit; ++characters) {
        ++at;
        while (at < text.size() && continuationByte(static_cast<unsigned char>(text[at]))) ++at;
    }
    CutText cut;
    cut.shown.assign(text.substr(0, at));
    if (at < text.size()) cut.moreCharacters = characterCount(text.substr(at));
    return cut;
}

std::string shownDescription(std::string_view text) {
    CutText cut = cutText(text, kShownDescriptionCharacters);
    if (cut.moreCharacters == 0) return std::move(cut.shown);
    return cut.shown + kEllipsis + " (the description goes on for " + std::to_string(cut.moreCharacters) +
           " more characters)";
}

std::string shownLine(std::string_view text, std::size_t limit) {
    CutText cut = cutText(text, limit);
    return cut.moreCharacters == 0 ? std::move(cut.shown) : cut.shown + kEllipsis;
}

std::string titleNaming(const std::string& game, const std::string& window) {
    return game.empty() ? window : shownLine(game, kShownNameCharacters) + " - " + window;
}

}  // namespace tolvar
