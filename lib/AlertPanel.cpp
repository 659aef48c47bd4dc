#include "AlertPanel.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

bool continuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

std::size_t characters(std::string_view text) {
    std::size_t n = 0;
    for (const char c : text) n += !continuationByte(c);
    return n;
}

// The byte where the count-th character of text begins (its size when shorter).
std::size_t byteOfCharacter(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    for (std::size_t n = 0; at < text.size(); ++at) {
        if (!continuationByte(text[at]) && n++ == count) return at;
    }
    return text.size();
}

// One line of the message (no line breaks) as lines of at most kAlertColumns characters.
void wrapLine(std::string_view line, std::vector<std::string>& out) {
    std::string current;
    std::size_t currentLength = 0;
    auto flush = [&] {
        out.push_back(std::move(current));
        current.clear();
        currentLength = 0;
    };
    std::size_t start = 0;
    while (start <= line.size()) {
        const std::size_t space = std::min(line.find(' ', start), line.size());
        std::string_view word = line.substr(start, space - start);
        start = space + 1;
        std::size_t length = characters(word);
        if (currentLength > 0 && currentLength + 1 + length <= kAlertColumns) {
            current += ' ';
            current += word;
            currentLength += 1 + length;
            continue;
        }
        if (currentLength > 0) flush();
        // A word longer than a line: pieces that end after a "/" where one is near enough.
        while (length > kAlertColumns) {
            std::size_t cut = byteOfCharacter(word, kAlertColumns);
            const std::size_t slash = word.rfind('/', cut - 1);
            if (slash != std::string_view::npos && slash > cut / 2) cut = slash + 1;
            out.emplace_back(word.substr(0, cut));
            word.remove_prefix(cut);
            length = characters(word);
        }
        current.assign(word);
        currentLength = length;
    }
    flush();
}

}  // namespace

std::string alertPanelText(const std::string& message) {
    std::string_view text = message;
    const std::size_t end = byteOfCharacter(text, kAlertCharacters);
    const bool cut = end < text.size();
    text = text.substr(0, end);
    std::vector<std::string> lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t stop = std::min(text.find('\n', start), text.size());
        wrapLine(text.substr(start, stop - start), lines);
        start = stop + 1;
    }
    std::string shown;
    for (std::size_t i = 0; i < lines.size(); ++i) shown += (i == 0 ? "" : "\n") + lines[i];
    return cut ? shown + "\xE2\x80\xA6" : shown;
}

void runAlertPanel(SDL_Window* parent, const std::string& title, const std::string& message,
                   const std::string& button) {
    const std::string shownTitle = title.empty() ? std::string(" ") : title;
    const std::string label = button.empty() ? std::string("OK") : button;
    SDL_MessageBoxButtonData buttons[1] = {};
    buttons[0].flags = SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT | SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT;
    buttons[0].buttonid = 0;
    buttons[0].text = label.c_str();
    SDL_MessageBoxData data = {};
    data.flags = SDL_MESSAGEBOX_INFORMATION;
    data.window = parent;
    data.title = shownTitle.c_str();
    const std::string shown = alertPanelText(message);
    data.message = shown.c_str();
    data.numbuttons = 1;
    data.buttons = buttons;
    int pressed = -1;
    if (SDL_ShowMessageBox(&data, &pressed) != 0)
        std::fprintf(stderr, "%s (the alert could not be shown: %s)\n", message.c_str(), SDL_GetError());
}
