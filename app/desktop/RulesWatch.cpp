#include "desktop/RulesWatch.h"

#include <sys/stat.h>

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

bool RulesWatch::Stamp::operator==(const Stamp& o) const {
    return exists == o.exists && device == o.device && inode == o.inode && size == o.size &&
           modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec;
}

RulesWatch::Stamp RulesWatch::stampOf(const std::string& path) {
    Stamp s;
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return s;
    s.exists = true;
    s.device = info.st_dev;
    s.inode = info.st_ino;
    s.size = info.st_size;
    s.modified = info.st_mtim;
    return s;
}

void RulesWatch::load(GameLibrary& library) {
    const std::string chosen = library.selectedTitle();
    // A fresh library: a file that can no longer be read offers no game.
    library = GameLibrary();
    if (ownFile_ && !loaded_) library.setupGameSelections();
    else library.loadRulesFromFile(path_);
    loaded_ = true;
    stamp_ = stampOf(path_);
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

bool RulesWatch::changedOnDisk() const { return !(stampOf(path_) == stamp_); }

bool RulesWatch::refuses(const std::string& title) const {
    for (const checker::Problem& p : report_.problemsOf(title))
        if (p.severity == checker::Severity::Error) return true;
    return false;
}

}  // namespace tolvar
