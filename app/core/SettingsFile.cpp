#include "core/SettingsFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <variant>

#include "core/BestScoresFile.h"
#include "core/FolderLock.h"
#include "core/PlistFile.h"

namespace tolvar {

namespace {

constexpr const char* kGamesKey = "Games";

// The file as it is now: its settings, or why it cannot be used.
struct StoredSettings {
    Dictionary settings;
    std::string unreadable;
};

StoredSettings readSettings(const std::string& path) {
    StoredSettings stored;
    if (!somethingAt(path)) return stored;
    auto read = readPropertyListFile(path);
    if (const auto* error = std::get_if<PlistError>(&read)) {
        stored.unreadable = error->reason;
        return stored;
    }
    const Dictionary* settings = std::get<Value>(read).asDictionary();
    if (!settings) {
        stored.unreadable = "not a dictionary of settings";
        return stored;
    }
    stored.settings = *settings;
    return stored;
}

}  // namespace

SettingsFile::SettingsFile(std::string folder) : folder_(std::move(folder)) {
    StoredSettings stored = readSettings(path());
    if (!stored.unreadable.empty())
        std::fprintf(stderr, "%s: cannot be read (%s); the settings start afresh\n", path().c_str(),
                     stored.unreadable.c_str());
    settings_ = std::move(stored.settings);
}

bool SettingsFile::flag(const std::string& key, bool fallback) const {
    const Value* value = settings_.find(key);
    const bool* set = value ? value->asBoolean() : nullptr;
    return set ? *set : fallback;
}

std::optional<FileWriteError> SettingsFile::setFlag(const std::string& key, bool value) {
    return update([&](Dictionary& settings) { settings.set(key, Value::boolean(value)); });
}

Dictionary SettingsFile::gameSettings(const std::string& gameName) const {
    const Value* games = settings_.find(kGamesKey);
    const Dictionary* byName = games ? games->asDictionary() : nullptr;
    const Value* game = byName ? byName->find(gameName) : nullptr;
    const Dictionary* settings = game ? game->asDictionary() : nullptr;
    return settings ? *settings : Dictionary{};
}

std::optional<FileWriteError> SettingsFile::setGameSettings(const std::string& gameName,
                                                            const Dictionary& settings) {
    return update([&](Dictionary& all) {
        const Value* games = all.find(kGamesKey);
        Dictionary byName = games && games->asDictionary() ? *games->asDictionary() : Dictionary{};
        if (settings.empty())
            byName.erase(gameName);
        else
            byName.set(gameName, Value::dictionary(settings));
        all.set(kGamesKey, Value::dictionary(std::move(byName)));
    });
}

template <typename Change>
std::optional<FileWriteError> SettingsFile::update(Change&& change) {
    FolderLock lock(folder_);
    const std::string file = path();
    StoredSettings stored = readSettings(file);
    if (!stored.unreadable.empty()) {
        const std::string aside = freeAsideName(file);
        if (std::rename(file.c_str(), aside.c_str()) != 0) {
            change(settings_);
            return FileWriteError{file, std::string("cannot be read (") + stored.unreadable +
                                            ") nor kept aside (" + std::strerror(errno) + ")"};
        }
        std::fprintf(stderr, "%s: cannot be read (%s); kept as %s, new settings are written\n", file.c_str(),
                     stored.unreadable.c_str(), aside.c_str());
    }
    change(stored.settings);
    // The choice holds for this run even when the file cannot take it.
    std::optional<FileWriteError> error = writePropertyListFile(file, Value::dictionary(stored.settings));
    settings_ = std::move(stored.settings);
    return error;
}

}  // namespace tolvar
