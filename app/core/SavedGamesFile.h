// "SavedGame.dict": the unfinished games kept when the program quits, one a game title, so that
// two copies quitting with different games keep both. The file is a dictionary from each title
// to its saved game (the engine's dictionary, with the date it was saved as "SavedAt"). A file
// of one saved game, as earlier versions wrote it, is read as that game under its title.
//
// A game is stored under a lock on the folder: the file is read, the one title's entry is put
// in or taken out, and the file is replaced in one step; the other titles' games stay as the
// other copies left them.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "core/AtomicFile.h"
#include "core/PropertyList.h"

namespace tolvar {

struct SavedGames {
    std::map<std::string, Value> games;  // by title
    std::string unreadable;              // why the file cannot be read, or empty
};

struct StoredGame {
    std::optional<FileWriteError> error;
    // Another copy saved a game of the same title after this copy last saw that title's entry:
    // that newer game was replaced, and kept aside as a file of its own, named here (empty when
    // it could not be kept).
    bool replacedNewer = false;
    std::string replacedKeptAs;
};

class SavedGamesFile {
public:
    static constexpr const char* kFileName = "SavedGame.dict";
    static constexpr const char* kSavedAtKey = "SavedAt";

    explicit SavedGamesFile(std::string folder) : folder_(std::move(folder)) {}

    std::string path() const { return folder_ + "/" + kFileName; }

    // Every saved game; nothing, without a word, when there is no file.
    SavedGames read() const;

    // Puts game in as title's saved game (dated now), or takes title's entry out when game is
    // nothing, keeping every other title's. known is the entry of that title this copy last saw
    // (nothing for none): an entry found that is not it was saved by another copy since, and is
    // kept aside when this one replaces it; a game being taken out never takes another copy's.
    // The file goes when its last game does. The entry written is returned through written.
    StoredGame store(const std::string& title, const std::optional<Value>& game,
                     const std::optional<Value>& known, std::optional<Value>* written = nullptr);

private:
    std::string folder_;
};

// The games a property list holds: a dictionary of titles to saved games, or one saved game.
std::map<std::string, Value> savedGamesIn(const Value& file);

}  // namespace tolvar
