// The rules file the game plays from: its games, what the checker finds in it, and whether it
// changed on disk since it was last read. An author saves in any editor (written in place or
// renamed over the old file); the next look sees it.
#pragma once

#include <string>

#include "checker/RulesChecker.h"
#include "desktop/FileStamp.h"
#include "rules/GameLibrary.h"

namespace tolvar {

class RulesWatch {
public:
    // The data folder's "RulesDict.dict" (created with the built-in games when missing), or the
    // given file, which is then only read.
    explicit RulesWatch(std::string file = {});

    // Reads the file into library, keeping the chosen game chosen when it is still there, and
    // checks it. The first load of the data folder's file creates it when missing.
    void load(GameLibrary& library);
    // True when the file is not as it was at the last load (written, replaced, removed, made).
    bool changedOnDisk() const;

    const std::string& path() const { return path_; }
    const checker::CheckReport& report() const { return report_; }
    // True when the game titled title has errors, so it cannot be started.
    bool refuses(const std::string& title) const;

private:
    std::string path_;
    bool ownFile_ = false;  // the data folder's file, written once when missing
    bool loaded_ = false;
    FileStamp stamp_;
    checker::CheckReport report_;
};

}  // namespace tolvar
