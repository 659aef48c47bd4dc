#include "rules/GameLibrary.h"

#include "RegularFile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <variant>

#include "core/DataFolder.h"
#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"
#include "rules/ShownText.h"

namespace tolvar {

namespace {

// Creates the game's own folder when it is missing (its parent is not created here) and prints
// the outcome as the code of the failure, 0 when it worked.
void ensureTolvarFolder(const std::string& folder) {
    struct stat info {};
    if (::stat(folder.c_str(), &info) == 0) return;
    long code = 0;
    if (::mkdir(folder.c_str(), 0777) != 0) code = errno;
    printf("code: %ld\n", code);
    fflush(stdout);
}

// Anything at the path, even a dangling link, counts as an existing file that must be kept.
bool somethingAt(const std::string& path) {
    std::error_code ec;
    return std::filesystem::symlink_status(path, ec).type() != std::filesystem::file_type::not_found &&
           !ec;
}

}  // namespace

bool GameLibrary::setupGameSelections() {
    const std::string folder = applicationSupportDirectory(true) + "/Tolvar";
    ensureTolvarFolder(folder);
    const std::string path = folder + "/RulesDict.dict";
    if (somethingAt(path)) return loadRulesFromFile(path);
    allGameRules_ = createTestRulesDict(path, rulesNotWritten_);
    fillGameMenu();
    return true;
}

bool GameLibrary::loadRulesFromFile(const std::string& rulesPath) {
    ensureTolvarFolder(applicationSupportDirectory(true) + "/Tolvar");
    allGameRules_.reset();
    auto result = readPropertyListFile(rulesPath);
    std::string reason;
    if (const PlistError* error = std::get_if<PlistError>(&result)) {
        reason = error->reason;
    } else if (!std::get<Value>(result).isDictionary()) {
        reason = "its top level is not a dictionary of games";
    } else {
        allGameRules_ = std::move(std::get<Value>(result));
        fillGameMenu();
        return true;
    }
    fprintf(stderr, "Tolvar: cannot read the rules file %s: %s; no games are offered.\n",
            shownPath(rulesPath).c_str(), reason.c_str());
    return false;
}

void GameLibrary::fillGameMenu() {
    gameMenu_.clear();
    gameMenu_.push_back("None");
    if (!allGameRules_) return;
    for (const auto& entry : allGameRules_->asDictionary()->entries()) gameMenu_.push_back(entry.first);
}

void GameLibrary::selectGame(const std::string& title) {
    selectedTitle_ = title;
    currentRules_.reset();
    if (!allGameRules_ || title == "None") return;
    const Value* rules = allGameRules_->asDictionary()->find(title);
    if (!rules) return;
    // A game whose rules are not a dictionary plays like one with no keys: every default.
    currentRules_ = rules->isDictionary() ? *rules : Value::dictionary();
    descriptions_ = gameDescriptions(*currentRules_->asDictionary());
    // Only what the main window shows is kept: a description can be any length in the file.
    for (Description& d : descriptions_) d.text = shownDescription(d.text);
    if (!descriptionFor(descriptions_, "C")) descriptions_.push_back({"", "Unknown"});
}

const std::string& GameLibrary::descriptionText(std::string_view locale) const {
    static const std::string kNone;
    const Description* d = descriptionFor(descriptions_, locale);
    return d ? d->text : kNone;
}

}  // namespace tolvar
