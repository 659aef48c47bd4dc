#include "desktop/RulesWatch.h"

#include <algorithm>

#include "core/DataFolder.h"
#include "core/PlistFile.h"

namespace tolvar {

RulesWatch::RulesWatch(std::string file) : path_(std::move(file)) {
    if (path_.empty()) {
        path_ = rulesFilePath();
        ownFile_ = true;
    }
}

void RulesWatch::load(GameLibrary& library) {
    const std::string chosen = library.selectedTitle();
    // A fresh library: a file that can no longer be read offers no game.
    library = GameLibrary();
    if (ownFile_ && !loaded_) library.setupGameSelections();
    else library.loadRulesFromFile(path_);
    loaded_ = true;
    stamp_ = FileStamp::of(path_);
    if (library.rulesNotWritten().empty()) {
        report_ = checker::checkRulesFile(path_);
    } else {
        // No file to read (a full disk, a read-only folder): the games played are the built-in
        // ones, and the reason the file is missing is the one to show.
        report_ = checker::checkRulesText(toXmlPropertyList(*library.allGameRules()));
        checker::Problem notWritten;
        notWritten.message = library.rulesNotWritten();
        report_.problems.insert(report_.problems.begin(), std::move(notWritten));
    }
    const auto& titles = library.gameMenu();
    library.selectGame(std::find(titles.begin(), titles.end(), chosen) != titles.end() ? chosen : "None");
}

bool RulesWatch::changedOnDisk() const { return !(FileStamp::of(path_) == stamp_); }

bool RulesWatch::refuses(const std::string& title) const {
    for (const checker::Problem& p : report_.problemsOf(title))
        if (p.severity == checker::Severity::Error) return true;
    return false;
}

}  // namespace tolvar
