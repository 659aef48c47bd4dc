// "BestScores.dict": a dictionary from each game's name to its table of best scores.
//
// Each entry is read, merged and written under a lock on the folder, and the file is replaced
// in one step. A file that cannot be read is never written over: it is moved aside as
// "BestScores.dict.unreadable" (or ".unreadable.1", ".unreadable.2", ... when earlier copies are
// there) and a new table is started. When only some games' tables are broken, the whole file is
// copied aside the same way, those tables are dropped and the others kept.
#pragma once

#include <string>

#include "core/ScoreStore.h"

namespace tolvar {

class BestScoresFile : public ScoreStore {
public:
    explicit BestScoresFile(std::string folder) : folder_(std::move(folder)) {}

    EnteredScore enterScore(const std::string& gameName,
                            const std::function<int(Array& table)>& placeEntry) override;

    std::string path() const { return folder_ + "/BestScores.dict"; }

private:
    std::string folder_;
};

// The first of path + suffix, path + suffix + ".1", ... that names nothing yet.
std::string freeAsideName(const std::string& path, const std::string& suffix = ".unreadable");

// Whether anything is at path, even a dangling link or what cannot be opened.
bool somethingAt(const std::string& path);

}  // namespace tolvar
