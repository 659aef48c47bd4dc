// "Settings.dict": the player's choices that outlast a run, in the data folder. Switches of the
// whole program ("Sound", "Symbols", ...) are booleans at the top; each game's own choices (its
// board size, its number of colours) are a dictionary under "Games", keyed by the game's name.
//
// A change is written at once: under the folder's lock the file is read again, the one change
// is made to what is there (so two copies of the game running at once keep each other's
// choices) and the file is replaced in one step. A file that cannot be read is never written
// over: it is moved aside as "Settings.dict.unreadable" (or ".1", ...) and the settings start
// afresh, which standard error says.
#pragma once

#include <optional>
#include <string>

#include "core/AtomicFile.h"
#include "core/PropertyList.h"

namespace tolvar {

class SettingsFile {
public:
    // Reads the file in folder; a missing file is no settings yet.
    explicit SettingsFile(std::string folder);

    std::string path() const { return folder_ + "/Settings.dict"; }

    // A switch of the whole program; fallback when it was never set (or is not a boolean).
    bool flag(const std::string& key, bool fallback) const;
    std::optional<FileWriteError> setFlag(const std::string& key, bool value);

    // A game's own choices; an empty dictionary when it has none.
    Dictionary gameSettings(const std::string& gameName) const;
    // Replaces them; an empty dictionary forgets the game's entry.
    std::optional<FileWriteError> setGameSettings(const std::string& gameName, const Dictionary& settings);

private:
    // Reads the file again under the lock, lets change alter it and writes it. The change holds
    // for the run even when the file could not be written (the error says why).
    template <typename Change>
    std::optional<FileWriteError> update(Change&& change);

    std::string folder_;
    Dictionary settings_;  // as last read or written
};

}  // namespace tolvar
