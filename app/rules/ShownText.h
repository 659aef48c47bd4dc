// How much of a text read from a rules file the windows show. A description, a name or a
// finding can be any length in the file; on screen each is cut to a length a window shows well,
// and says what was left out. The checker warns past the same lengths.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tolvar {

inline constexpr std::size_t kShownDescriptionCharacters = 20000;  // some 250 lines of the main window
inline constexpr std::size_t kShownNameCharacters = 200;           // a game's name in lists and headings
inline constexpr std::size_t kShownLineCharacters = 1000;          // one finding of the checker

// The number of characters in text: its bytes that begin a UTF-8 sequence.
std::size_t characterCount(std::string_view text);

// The first limit characters of text, cut between whole characters; the rest is counted.
struct CutText {
    std::string shown;
    std::size_t moreCharacters = 0;  // characters left out
};
CutText cutText(std::string_view text, std::size_t limit);

// A description as the windows show it: whole up to kShownDescriptionCharacters, else its start
// and "… (the description goes on for N more characters)".
std::string shownDescription(std::string_view text);
// A name or a line as the windows show it: whole up to limit characters, else its start and "…".
std::string shownLine(std::string_view text, std::size_t limit);
// A window's title naming the game it shows ("Vexamor - Tolvar"); the window's own name alone
// when there is no game.
std::string titleNaming(const std::string& game, const std::string& window);

}  // namespace tolvar
