// Best-score tables kept in memory only, for bots and benches that play many games and keep none:
// the same tables as "BestScores.dict" would hold after the same entries (best 20, each game its
// own), without the file, the lock or the wait for the disk. Lost when the store goes.
#pragma once

#include <map>

#include "core/ScoreStore.h"

namespace tolvar {

class MemoryScoreStore : public ScoreStore {
public:
    EnteredScore enterScore(const std::string& gameName,
                            const std::function<int(Array& table)>& placeEntry) override {
        EnteredScore entered;
        const auto found = tables_.find(gameName);
        // Copies both ways: a table's values share their lists, and neither placeEntry nor whoever
        // shows the table may change the kept one.
        if (found != tables_.end()) entered.table = Value::array(found->second);
        entered.place = placeEntry(*entered.table.asArray());
        if (entered.place < 0) return entered;
        Array& table = *entered.table.asArray();
        if (table.size() > kBestScoresKept) table.resize(kBestScoresKept);
        tables_.insert_or_assign(gameName, table);
        return entered;
    }

private:
    std::map<std::string, Array> tables_;  // by game, best first
};

}  // namespace tolvar
