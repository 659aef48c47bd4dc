#include "core/BestScoresFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <variant>
#include <vector>

#include "core/FolderLock.h"
#include "core/PlistFile.h"

namespace tolvar {

namespace {

// The file as it was found.
struct StoredTables {
    Value games = Value::dictionary();  // the readable tables, each cut to its best entries
    bool exists = false;
    std::string unreadable;             // why the whole file cannot be used, or empty
    std::vector<std::string> dropped;   // games whose table is not a list
};

StoredTables readTables(const std::string& path) {
    StoredTables stored;
    // Anything at the path counts, even what cannot be opened; the reader opens only regular
    // files, so a pipe in its place cannot block the game.
    stored.exists = somethingAt(path);
    if (!stored.exists) return stored;
    auto read = readPropertyListFile(path);
    if (const auto* error = std::get_if<PlistError>(&read)) {
        stored.unreadable = error->reason;
        return stored;
    }
    const Dictionary* games = std::get<Value>(read).asDictionary();
    if (!games) {
        stored.unreadable = "not a dictionary of games";
        return stored;
    }
    Dictionary kept;
    for (const auto& [name, table] : games->entries()) {
        const Array* entries = table.asArray();
        if (!entries) {
            stored.dropped.push_back(name);
            continue;
        }
        const auto best = entries->begin() + static_cast<std::ptrdiff_t>(std::min(entries->size(), kBestScoresKept));
        kept.set(name, Value::array(Array(entries->begin(), best)));
    }
    stored.games = Value::dictionary(std::move(kept));
    return stored;
}

std::string quotedNames(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "\"" : ", \"") + name + "\"";
    return text;
}

// Keeps the file that is about to be replaced under a free ".unreadable" name: moved when none
// of it is usable, copied when some games' tables are. Returns why it could not be kept.
std::optional<std::string> keepAside(const std::string& path, const StoredTables& stored) {
    const std::string aside = freeAsideName(path);
    if (!stored.unreadable.empty()) {
        if (std::rename(path.c_str(), aside.c_str()) != 0) {
            const std::string reason = std::strerror(errno);
            std::fprintf(stderr, "%s: cannot be read (%s) nor kept aside (%s); not written\n",
                         path.c_str(), stored.unreadable.c_str(), reason.c_str());
            return reason;
        }
        std::fprintf(stderr, "%s: cannot be read (%s); kept as %s, a new table is written\n",
                     path.c_str(), stored.unreadable.c_str(), aside.c_str());
        return std::nullopt;
    }
    std::error_code ec;
    std::filesystem::copy_file(path, aside, ec);  // never over an existing file
    const std::string games = quotedNames(stored.dropped);
    if (ec) {
        std::fprintf(stderr, "%s: the scores of %s are not a list, and the file cannot be kept aside (%s); not written\n",
                     path.c_str(), games.c_str(), ec.message().c_str());
        return ec.message();
    }
    std::fprintf(stderr, "%s: the scores of %s are not a list and are dropped; the whole file is kept as %s\n",
                 path.c_str(), games.c_str(), aside.c_str());
    return std::nullopt;
}

}  // namespace

bool somethingAt(const std::string& path) {
    std::error_code ec;
    const auto type = std::filesystem::symlink_status(path, ec).type();
    return type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none;
}

std::string freeAsideName(const std::string& path, const std::string& suffix) {
    std::string aside = path + suffix;
    for (int n = 1; somethingAt(aside); ++n) aside = path + suffix + "." + std::to_string(n);
    return aside;
}

EnteredScore BestScoresFile::enterScore(const std::string& gameName,
                                        const std::function<int(Array& table)>& placeEntry) {
    const std::string file = path();
    FolderLock lock(folder_);
    StoredTables stored = readTables(file);
    Dictionary& games = *stored.games.asDictionary();

    EnteredScore entered;
    if (const Value* table = games.find(gameName)) entered.table = *table;
    entered.place = placeEntry(*entered.table.asArray());
    if (entered.place < 0) return entered;  // nothing changes; a broken file stays as it is

    Array& table = *entered.table.asArray();
    if (table.size() > kBestScoresKept) table.resize(kBestScoresKept);
    games.set(gameName, entered.table);
    const bool broken = !stored.unreadable.empty() || !stored.dropped.empty();
    if (broken) {
        if (auto reason = keepAside(file, stored)) {
            entered.saveError = FileWriteError{file, "it cannot be read, nor kept aside: " + *reason};
            return entered;
        }
    }
    entered.saveError = writePropertyListFile(file, stored.games);
    return entered;
}

}  // namespace tolvar
