// Where the best-score tables are kept, as the rule engine sees it: one call per finished game.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "core/AtomicFile.h"
#include "core/PropertyList.h"

namespace tolvar {

// A table holds at most this many entries, best first; longer tables are read as their first ones.
constexpr std::size_t kBestScoresKept = 20;

struct EnteredScore {
    Value table = Value::array({});           // the game's table after the entry, to be shown
    int place = -1;                           // where the new entry went, or -1
    std::optional<FileWriteError> saveError;  // why a placed entry could not be saved
};

class ScoreStore {
public:
    virtual ~ScoreStore() = default;

    // Reads the game's table (empty when there is none), lets placeEntry put the new entry in
    // and return its index (or -1 when it does not belong), and saves a placed entry before
    // returning. Other copies of the game entering scores at the same time wait for each other,
    // so neither loses the other's entry.
    virtual EnteredScore enterScore(const std::string& gameName,
                                    const std::function<int(Array& table)>& placeEntry) = 0;
};

}  // namespace tolvar
