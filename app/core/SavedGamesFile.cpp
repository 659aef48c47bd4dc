#include "core/SavedGamesFile.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <variant>

#include "core/BestScoresFile.h"
#include "core/FolderLock.h"
#include "core/PlistFile.h"

namespace tolvar {

namespace {

constexpr const char* kNotGames = "not a dictionary of saved games";
constexpr const char* kReplacedSuffix = ".replaced";

// A saved game names its game; a dictionary of titles never holds a string under "GameName".
bool isOneSavedGame(const Dictionary& d) {
    const Value* name = d.find("GameName");
    return name && name->isString();
}

// The file's titles and entries, as they are (an entry that is not a saved game is kept too).
Dictionary titlesIn(const Value& file) {
    const Dictionary& d = *file.asDictionary();
    if (!isOneSavedGame(d)) return d;
    Dictionary one;
    one.set(*d.find("GameName")->asString(), file);
    return one;
}

}  // namespace

std::map<std::string, Value> savedGamesIn(const Value& file) {
    std::map<std::string, Value> games;
    if (!file.isDictionary()) return games;
    const Dictionary titles = titlesIn(file);
    for (const auto& [title, game] : titles.entries())
        if (game.isDictionary()) games.emplace(title, game);
    return games;
}

SavedGames SavedGamesFile::read() const {
    SavedGames saved;
    if (!somethingAt(path())) return saved;
    auto file = readPropertyListFile(path());
    if (const PlistError* error = std::get_if<PlistError>(&file)) {
        saved.unreadable = error->reason;
    } else if (!std::get<Value>(file).isDictionary()) {
        saved.unreadable = kNotGames;
    } else {
        saved.games = savedGamesIn(std::get<Value>(file));
    }
    return saved;
}

StoredGame SavedGamesFile::store(const std::string& title, const std::optional<Value>& game,
                                 const std::optional<Value>& known, std::optional<Value>* written) {
    StoredGame out;
    const std::string file = path();
    FolderLock lock(folder_);
    Dictionary titles;
    if (somethingAt(file)) {
        auto read = readPropertyListFile(file);
        const Value* found = std::get_if<Value>(&read);
        if (found && found->isDictionary()) {
            titles = titlesIn(*found);
        } else {
            // Never written over: kept aside, as a broken best-score file is.
            const std::string why = found ? kNotGames : std::get<PlistError>(read).reason;
            const std::string aside = freeAsideName(file);
            if (std::rename(file.c_str(), aside.c_str()) != 0) {
                out.error = FileWriteError{file, "it cannot be read (" + why + "), nor kept aside: " +
                                                     std::strerror(errno)};
                return out;
            }
            std::fprintf(stderr, "%s: cannot be read (%s); kept as %s\n", file.c_str(), why.c_str(), aside.c_str());
        }
    }
    const Value* found = titles.find(title);
    const bool theirs = found && !(known && *found == *known);
    if (!game) {
        if (!found || theirs) return out;  // nothing of this copy's to take out
        titles.erase(title);
    } else {
        if (theirs) {
            out.replacedNewer = true;
            const std::string aside = freeAsideName(file, kReplacedSuffix);
            if (const auto error = writeNewFile(aside, toXmlPropertyList(*found))) {
                out.error = FileWriteError{file, "another copy's newer game of \"" + title +
                                                     "\" cannot be kept aside: " + error->message()};
                return out;
            }
            out.replacedKeptAs = aside;
        }
        Dictionary entry = game->isDictionary() ? *game->asDictionary() : Dictionary();
        // In whole seconds, as the file keeps dates: the entry written is the entry read back.
        entry.set(kSavedAtKey, Value::date(Date::fromUnixTime(std::floor(Date::now().unixTime()))));
        Value dated = Value::dictionary(std::move(entry));
        if (written) *written = dated;
        titles.set(title, std::move(dated));
    }
    if (titles.empty()) {
        if (::unlink(file.c_str()) != 0 && errno != ENOENT) out.error = FileWriteError{file, std::strerror(errno)};
        return out;
    }
    out.error = writePropertyListFile(file, Value::dictionary(std::move(titles)));
    return out;
}

}  // namespace tolvar
