// The texts of the game window, formatted into the fixed-size buffers the drawing uses: the
// score beside the board, the game's name, and the columns of the score screen's rows.
#pragma once

#include <cstdint>
#include <string>

#include "core/PropertyList.h"

namespace tolvar {

// Sizes of the text buffers, terminator included.
inline constexpr std::size_t kScoreTextSize = 12;
inline constexpr std::size_t kGameNameSize = 64;
inline constexpr std::size_t kScreenTextSize = 128;

// The score beside the board: at least four digits, zero-padded ("0007"), printed as a signed
// number, cut to 11 characters.
std::string boardScoreText(std::uint64_t score);

// What a move would bring, for the label by the pointer: "+12 points, 6 pieces", "-1 point,
// 1 piece"; the points alone when it removes no piece ("+5 points"); empty when it brings
// neither.
std::string movePreviewText(std::int64_t points, std::uint64_t pieces);

// The game's name cut to 63 bytes, never in the middle of a UTF-8 character.
std::string boardGameNameText(const std::string& gameName);

// The line under the name that says which board is played: "Board 123456"; empty for no number
// (a game saved before boards had numbers).
std::string boardNumberText(std::uint32_t boardNumber);

// A date as "Mon dd, yyyy HH:mm" in the user's time locale (local time); empty for no date.
std::string scoreDateText(const Date* date);

// The rank of row `index` (0-based) of the best scores: "#1".
std::string scoreRankText(int index);
// A best score's figure: "%04d" ("0042", "-003").
std::string rowScoreText(std::int32_t score);

// The last score on the score screen ("%04d" of its low 32 bits).
std::string lastScoreText(std::uint64_t score);

// One entry of a best-score list: its "Score" (32-bit) and "Date"; 0 and no date when the entry
// is not a dictionary or lacks them.
struct ScoreEntry {
    std::int32_t score = 0;
    const Date* date = nullptr;
};
ScoreEntry scoreEntryAt(const Value& scores, std::size_t index);
// The number of entries of a best-score list; 0 when it is not an array.
std::size_t scoreEntryCount(const Value& scores);

}  // namespace tolvar
