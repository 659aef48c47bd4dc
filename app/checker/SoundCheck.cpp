// An action's "Sound": one of the game's sounds, or a sound file beside the rules file that the
// game can play (WAV, Ogg Vorbis, FLAC or MP3, told by the first bytes of the file).
#include <string_view>
#include <variant>

#include "RegularFile.h"
#include "core/Translate.h"
#include "checker/RulesChecker.h"
#include "rules/SoundNames.h"

namespace tolvar::checker {

namespace {

std::string gameSoundsText() {
    std::string text;
    for (std::string_view name : kSoundNames) text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
}

bool startsWith(const std::string& bytes, std::string_view prefix, std::size_t at = 0) {
    return bytes.size() >= at + prefix.size() && std::string_view(bytes).substr(at, prefix.size()) == prefix;
}

// The smallest WAV file with samples: its RIFF header, a "fmt " chunk and a "data" chunk header.
constexpr std::size_t kWavHeaderBytes = 44;

bool isSoundFile(const std::string& bytes) {
    const bool wav = startsWith(bytes, "RIFF") && startsWith(bytes, "WAVE", 8) && bytes.size() > kWavHeaderBytes &&
                     bytes.find("fmt ") != std::string::npos && bytes.find("data") != std::string::npos;
    const bool mpegFrame = bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
                           (static_cast<unsigned char>(bytes[1]) & 0xE0) == 0xE0;
    return wav || startsWith(bytes, "OggS") || startsWith(bytes, "fLaC") || startsWith(bytes, "ID3") || mpegFrame;
}

}  // namespace

std::string soundProblem(const std::string& sound, const std::string& folder) {
    if (isGameSound(sound)) return {};
    const std::string named = "\"" + shownPath(sound) + "\"";
    const std::string expected =
        trf("expected one of the game's sounds (%s) or a sound file beside the rules file", gameSoundsText());
    if (sound.empty() || sound.find('/') != std::string::npos || sound == "." || sound == "..")
        return trf("%s is not a file name; %s", named, expected);
    const auto read = readRegularFile(folder.empty() ? sound : folder + "/" + sound, kMaxSoundFileBytes);
    if (const ReadRefusal* refused = std::get_if<ReadRefusal>(&read))
        return refused->reason == "no such file"
                   ? trf("%s is no sound of the game, and as a file beside the rules file it is not there; %s", named,
                         expected)
                   : trf("%s is no sound of the game, and as a file beside the rules file it %s; %s", named,
                         refused->reason, expected);
    if (!isSoundFile(std::get<std::string>(read)))
        return trf("%s beside the rules file is not a sound file; expected WAV, Ogg Vorbis, FLAC or MP3", named);
    return {};
}

}  // namespace tolvar::checker
