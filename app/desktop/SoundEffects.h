// The game's sound effects, played through SDL2_mixer as the window shows what they go with.
//
// Nothing here waits: the audio device is opened once (with the game window when sound is on, else
// when it is first turned on; not before the main window shows), each sound file is read once and kept, and a sound is handed to a free mixer
// channel and left to play. When there is no audio device, the device is busy or a sound file
// cannot be read, the game goes on in silence and standard error says why, once for the device and
// once for each file.
#pragma once

#include <SDL_mixer.h>

#include <map>
#include <memory>
#include <string>

namespace tolvar {

class SoundEffects {
public:
    // gameSounds: the folder of the game's own sounds, NAME.wav for each name of rules/SoundNames.h.
    SoundEffects(std::string gameSounds, bool on);
    ~SoundEffects();
    SoundEffects(const SoundEffects&) = delete;
    SoundEffects& operator=(const SoundEffects&) = delete;

    bool on() const { return on_; }
    // Off stops what is playing; on opens the device when it was never opened.
    void setOn(bool on);
    // Opens the device, when sound is on, ahead of the first sound.
    void prepare();
    // The folder of the rules file, where a sound a rules file names by its file name is.
    void setRulesFolder(std::string folder) { rulesFolder_ = std::move(folder); }
    // Plays the sound named name (a game sound's name, or a file beside the rules file); nothing
    // while sound is off or cannot play.
    void play(const std::string& name);

private:
    enum class Device { Closed, Open, Failed };
    struct FreeChunk {
        void operator()(Mix_Chunk* chunk) const { Mix_FreeChunk(chunk); }
    };
    using Chunk = std::unique_ptr<Mix_Chunk, FreeChunk>;

    bool openDevice();
    // The sound's samples, read on first use; nullptr when they cannot be (said once).
    Mix_Chunk* chunk(const std::string& name);
    // The file a sound name stands for, or the reason there is none.
    std::string fileOf(const std::string& name, std::string& problem) const;

    std::string gameSounds_;
    std::string rulesFolder_;
    bool on_;
    Device device_ = Device::Closed;
    std::map<std::string, Chunk> chunks_;  // by file; an empty one could not be read
};

}  // namespace tolvar
