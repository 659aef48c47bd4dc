#include "desktop/SoundEffects.h"

#include <SDL.h>

#include <cstdio>
#include <variant>

#include "RegularFile.h"
#include "rules/SoundNames.h"

namespace tolvar {

namespace {

constexpr int kSampleRate = 44100;
constexpr int kChannels = 2;           // stereo out; the sounds are mono
constexpr int kBufferFrames = 1024;    // about 23 ms: a sound starts within a frame or two
constexpr int kMixingChannels = 16;    // sounds that may overlap

}  // namespace

SoundEffects::SoundEffects(std::string gameSounds, bool on) : gameSounds_(std::move(gameSounds)), on_(on) {}

SoundEffects::~SoundEffects() {
    chunks_.clear();  // before the device they were made for goes
    if (device_ != Device::Open) return;
    Mix_CloseAudio();
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

void SoundEffects::setOn(bool on) {
    on_ = on;
    if (on_) openDevice();
    else if (device_ == Device::Open) Mix_HaltChannel(-1);
}

void SoundEffects::prepare() {
    if (on_) openDevice();
}

bool SoundEffects::openDevice() {
    if (device_ != Device::Closed) return device_ == Device::Open;
    device_ = Device::Failed;
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        std::fprintf(stderr, "tolvar: the game plays without sound: no audio device (%s)\n", SDL_GetError());
        return false;
    }
    if (Mix_OpenAudio(kSampleRate, MIX_DEFAULT_FORMAT, kChannels, kBufferFrames) != 0) {
        std::fprintf(stderr, "tolvar: the game plays without sound: the audio device cannot be opened (%s)\n",
                     Mix_GetError());
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return false;
    }
    // The decoders of compressed files a rules file may name; WAV needs none.
    Mix_Init(MIX_INIT_OGG | MIX_INIT_FLAC | MIX_INIT_MP3);
    Mix_AllocateChannels(kMixingChannels);
    device_ = Device::Open;
    return true;
}

std::string SoundEffects::fileOf(const std::string& name, std::string& problem) const {
    if (isGameSound(name)) return gameSounds_ + "/" + name + ".wav";
    if (name.empty() || name.find('/') != std::string::npos || name == "." || name == "..") {
        problem = "it is neither a sound of the game nor the name of a file beside the rules file";
        return {};
    }
    return rulesFolder_.empty() ? name : rulesFolder_ + "/" + name;
}

Mix_Chunk* SoundEffects::chunk(const std::string& name) {
    std::string problem;
    const std::string file = fileOf(name, problem);
    const std::string key = problem.empty() ? file : "\n" + name;  // a name that is no file stands for itself
    const auto known = chunks_.find(key);
    if (known != chunks_.end()) return known->second.get();
    Chunk& kept = chunks_[key];
    if (problem.empty()) {
        // Only a regular file of a sound's size is read: a FIFO or a device would hold the game up.
        auto read = readRegularFile(file, kMaxSoundFileBytes);
        if (const ReadRefusal* refused = std::get_if<ReadRefusal>(&read)) {
            problem = refused->reason;
        } else {
            const std::string& bytes = std::get<std::string>(read);
            kept.reset(Mix_LoadWAV_RW(SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size())), 1));
            if (!kept) problem = Mix_GetError();
        }
    }
    if (!kept) std::fprintf(stderr, "tolvar: the sound \"%s\" is not played: %s%s%s\n", name.c_str(),
                            file.empty() ? "" : file.c_str(), file.empty() ? "" : ": ", problem.c_str());
    return kept.get();
}

void SoundEffects::play(const std::string& name) {
    if (!on_ || !openDevice()) return;
    // No free channel (many sounds at once) leaves this one out.
    if (Mix_Chunk* samples = chunk(name)) Mix_PlayChannel(-1, samples, 0);
}

}  // namespace tolvar
