// The game's own sounds, by the names the desktop plays them under and a rules file may give an
// action's "Sound". Any other value of "Sound" names a sound file beside the rules file.
#pragma once

#include <cstdint>
#include <string_view>

namespace tolvar {

inline constexpr std::string_view kSoundSelect = "select";        // a region is selected
inline constexpr std::string_view kSoundDeselect = "deselect";    // a selected region is let go
inline constexpr std::string_view kSoundRemoval = "removal";      // pieces leave the board
inline constexpr std::string_view kSoundLanding = "landing";      // pieces land after a fall or slide
inline constexpr std::string_view kSoundSwap = "swap";            // two neighbours change places
inline constexpr std::string_view kSoundRefill = "refill";        // empty cells fill with new pieces
inline constexpr std::string_view kSoundEnd = "end";              // the game is over: the score screen
inline constexpr std::string_view kSoundBestScore = "best-score"; // the score entered the best scores

inline constexpr std::string_view kSoundNames[] = {kSoundSelect, kSoundDeselect, kSoundRemoval, kSoundLanding,
                                                   kSoundSwap,   kSoundRefill,   kSoundEnd,     kSoundBestScore};

// A sound file is read whole the first time it plays; a larger one is refused, so that reading
// it never holds up the game.
inline constexpr std::uintmax_t kMaxSoundFileBytes = 4u * 1024u * 1024u;

constexpr bool isGameSound(std::string_view name) {
    for (std::string_view known : kSoundNames)
        if (known == name) return true;
    return false;
}

}  // namespace tolvar
