#include "desktop/BestScoresList.h"

#include <algorithm>
#include <variant>

#include "core/BestScoresFile.h"
#include "core/Translate.h"
#include "core/PlistFile.h"
#include "core/ScoreStore.h"
#include "presentation/ScoreText.h"

namespace tolvar {

namespace {

// The entry of scores entered last: the one with the latest date (the better one of a tie);
// none when no entry has a date.
std::size_t newestEntry(const Value& scores, std::size_t count) {
    std::size_t newest = count;
    for (std::size_t i = 0; i < count; ++i) {
        const Date* date = scoreEntryAt(scores, i).date;
        if (date && (newest == count || date->secondsSinceReference >
                                            scoreEntryAt(scores, newest).date->secondsSinceReference))
            newest = i;
    }
    return newest;
}

BestScoreTable tableOf(const std::string& name, const Value& scores) {
    BestScoreTable table{name, {}};
    const std::size_t count = std::min(scoreEntryCount(scores), kBestScoresKept);
    const std::size_t newest = newestEntry(scores, count);
    for (std::size_t i = 0; i < count; ++i) {
        const ScoreEntry entry = scoreEntryAt(scores, i);
        table.rows.push_back({static_cast<int>(i) + 1, entry.score, scoreDateText(entry.date), i == newest});
    }
    return table;
}

// The game of gameNames a table belongs to: the longest that the table's name is, or starts
// with and a blank; none (gameNames.size()).
std::size_t gameOfTable(const std::string& table, const std::vector<std::string>& gameNames) {
    std::size_t found = gameNames.size();
    for (std::size_t i = 0; i < gameNames.size(); ++i) {
        const std::string& game = gameNames[i];
        const bool belongs = table == game || (table.size() > game.size() && table.compare(0, game.size(), game) == 0 &&
                                               table[game.size()] == ' ');
        if (belongs && (found == gameNames.size() || game.size() > gameNames[found].size())) found = i;
    }
    return found;
}

}  // namespace

BestScoresListing listBestScores(const Value& games, const std::vector<std::string>& gameNames) {
    BestScoresListing listing;
    const Dictionary* tables = games.asDictionary();
    if (!tables) {
        listing.problem = tr("not a dictionary of games");
        return listing;
    }
    std::vector<BestScoreGroup> known(gameNames.size());
    for (std::size_t i = 0; i < gameNames.size(); ++i) known[i].game = gameNames[i];
    std::vector<BestScoreGroup> others;
    for (const auto& [name, scores] : tables->entries()) {
        if (!scores.isArray()) {
            listing.unreadableTables.push_back(name);
            continue;
        }
        const std::size_t game = gameOfTable(name, gameNames);
        BestScoreGroup* group = nullptr;
        if (game < gameNames.size()) {
            group = &known[game];
        } else {
            others.push_back({name, {}});
            group = &others.back();
        }
        group->tables.push_back(tableOf(name, scores));
    }
    // A game's own table first, then its other sizes by name.
    for (BestScoreGroup& group : known)
        std::sort(group.tables.begin(), group.tables.end(), [&group](const BestScoreTable& a, const BestScoreTable& b) {
            if ((a.name == group.game) != (b.name == group.game)) return a.name == group.game;
            return a.name < b.name;
        });
    std::sort(others.begin(), others.end(),
              [](const BestScoreGroup& a, const BestScoreGroup& b) { return a.game < b.game; });
    for (BestScoreGroup& group : known)
        if (!group.tables.empty()) listing.groups.push_back(std::move(group));
    for (BestScoreGroup& group : others) listing.groups.push_back(std::move(group));
    return listing;
}

BestScoresListing readBestScores(const std::string& path, const std::vector<std::string>& gameNames) {
    if (!somethingAt(path)) {
        BestScoresListing listing;
        listing.noFile = true;
        return listing;
    }
    auto read = readPropertyListFile(path);
    const auto* error = std::get_if<PlistError>(&read);
    BestScoresListing listing = error ? BestScoresListing{{}, false, error->reason, {}} : listBestScores(std::get<Value>(read), gameNames);
    if (!listing.problem.empty())
        listing.problem = trf("The best scores cannot be read from %s: %s.", path, listing.problem);
    return listing;
}

}  // namespace tolvar
