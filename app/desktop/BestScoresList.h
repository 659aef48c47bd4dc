// What the best-score window lists: every table of "BestScores.dict" as rows of rank, score and
// date, the newest entry of each table marked, the tables grouped under the game they belong to
// (a game played on another board size keeps a table of its own, named after the game and the
// size). Read from the file each time the window opens or the file changes; nothing here draws.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/PropertyList.h"

namespace tolvar {

struct BestScoreRow {
    int rank = 0;  // 1 for the best
    std::int32_t score = 0;
    std::string date;     // in the player's locale; empty when the entry has none
    bool newest = false;  // the entry entered last of its table
};

struct BestScoreTable {
    std::string name;  // the table's own name in the file
    std::vector<BestScoreRow> rows;
};

struct BestScoreGroup {
    std::string game;  // the game the tables belong to
    std::vector<BestScoreTable> tables;
};

struct BestScoresListing {
    std::vector<BestScoreGroup> groups;
    bool noFile = false;  // no game has ended yet: there is no file
    // Why the file cannot be read; empty when it was read (or there is none).
    std::string problem;
    // Tables that are not lists of scores, by name: left out.
    std::vector<std::string> unreadableTables;
};

// The listing of games, the file's dictionary of tables. A table belongs to the longest of
// gameNames that it is, or that it starts with followed by a blank; its group comes in the order
// of gameNames, and tables of no known game follow, each a group of its own, by name. Within a
// group the game's own table comes first, then the others by name. A table lists at most its
// first kBestScoresKept entries, in the file's order (best first).
BestScoresListing listBestScores(const Value& games, const std::vector<std::string>& gameNames);

// The same from the file at path: a missing file or one that cannot be read gives no groups, and
// noFile or a problem naming the file.
BestScoresListing readBestScores(const std::string& path, const std::vector<std::string>& gameNames);

}  // namespace tolvar
