// The best-score window's listing: each table's rows with the newest marked, the tables grouped
// under their games and ordered, and the file missing or unreadable said plainly.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "core/PlistFile.h"
#include "desktop/BestScoresList.h"
#include "presentation/ScoreText.h"

namespace tolvar {
namespace {

constexpr double kDay = 86400.0;
constexpr double kNoDate = -1.0;

// An entry of score, dated `day` days after the epoch (none for kNoDate).
Value entry(std::int64_t score, double day) {
    Dictionary d;
    d.set("Score", Value::integer(score));
    if (day != kNoDate) d.set("Date", Value::date(Date::fromUnixTime(day * kDay)));
    return Value::dictionary(std::move(d));
}

Value table(std::initializer_list<std::pair<std::int64_t, double>> entries) {
    Array a;
    for (const auto& [score, day] : entries) a.push_back(entry(score, day));
    return Value::array(std::move(a));
}

Value games(std::initializer_list<std::pair<std::string, Value>> tables) {
    Dictionary d;
    for (const auto& [name, scores] : tables) d.set(name, scores);
    return Value::dictionary(std::move(d));
}

TEST(BestScoresList, RowsKeepTheFileOrderAndMarkTheEntryDatedLast) {
    struct Case {
        const char* what;
        Value scores;
        std::vector<std::int32_t> shownScores;
        int newestRank;  // 0: none
    };
    Array many;
    for (int i = 0; i < 25; ++i) many.push_back(entry(100 - i, i));
    const Case cases[] = {
        {"the newest in the middle", table({{30, 1}, {20, 3}, {10, 2}}), {30, 20, 10}, 2},
        {"the newest last", table({{30, 1}, {20, 2}, {10, 3}}), {30, 20, 10}, 3},
        {"two dated alike: the better one", table({{30, 1}, {20, 5}, {10, 5}}), {30, 20, 10}, 2},
        {"no dates: none marked", table({{7, kNoDate}, {5, kNoDate}}), {7, 5}, 0},
        {"an undated entry among dated ones", table({{7, kNoDate}, {5, 4}}), {7, 5}, 2},
        {"an empty table", Value::array(), {}, 0},
        {"past 20 entries, the first 20 (the newest of them)", Value::array(many),
         {100, 99, 98, 97, 96, 95, 94, 93, 92, 91, 90, 89, 88, 87, 86, 85, 84, 83, 82, 81}, 20},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const BestScoresListing listing = listBestScores(games({{"Vexamor", c.scores}}), {"Vexamor"});
        ASSERT_EQ(listing.groups.size(), 1u);
        ASSERT_EQ(listing.groups[0].tables.size(), 1u);
        const std::vector<BestScoreRow>& rows = listing.groups[0].tables[0].rows;
        std::vector<std::int32_t> scores;
        int newest = 0;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].rank, static_cast<int>(i) + 1);
            scores.push_back(rows[i].score);
            if (rows[i].newest) {
                EXPECT_EQ(newest, 0) << "a second newest at rank " << rows[i].rank;
                newest = rows[i].rank;
            }
            const ScoreEntry stored = scoreEntryAt(c.scores, i);
            EXPECT_EQ(rows[i].date, scoreDateText(stored.date));
            EXPECT_EQ(rows[i].date.empty(), stored.date == nullptr);
        }
        EXPECT_EQ(scores, c.shownScores);
        EXPECT_EQ(newest, c.newestRank);
    }
}

TEST(BestScoresList, TablesAreGroupedUnderTheirGamesAndOrdered) {
    using Groups = std::vector<std::pair<std::string, std::vector<std::string>>>;
    struct Case {
        const char* what;
        std::vector<std::string> gameNames;
        std::vector<std::string> tables;  // in the file's order
        Groups expected;
    };
    const Case cases[] = {
        {"a game's own table first, its sizes by name, the games in the rules' order",
         {"Vexamor", "Trindle"},
         {"Trindle", "Vexamor 6 \u00d7 6, 3 colours", "Vexamor", "Vexamor 12 \u00d7 10, 5 colours"},
         {{"Vexamor", {"Vexamor", "Vexamor 12 \u00d7 10, 5 colours", "Vexamor 6 \u00d7 6, 3 colours"}},
          {"Trindle", {"Trindle"}}}},
        {"tables of no known game after the games, by name; a name running on is another game",
         {"Vexamor"},
         {"Zeta", "Vexamorish", "Vexamor", "Alpha"},
         {{"Vexamor", {"Vexamor"}}, {"Alpha", {"Alpha"}}, {"Vexamorish", {"Vexamorish"}}, {"Zeta", {"Zeta"}}}},
        {"only a size's table: the game's group all the same", {"Vexamor"}, {"Vexamor 4 \u00d7 4, 2 colours"},
         {{"Vexamor", {"Vexamor 4 \u00d7 4, 2 colours"}}}},
        {"the longest game name a table starts with", {"Vex", "Vex Two"}, {"Vex Two 5 \u00d7 5", "Vex 5 \u00d7 5"},
         {{"Vex", {"Vex 5 \u00d7 5"}}, {"Vex Two", {"Vex Two 5 \u00d7 5"}}}},
        {"games without a table are not listed", {"Vexamor", "Trindle", "Glimmet"}, {"Glimmet"},
         {{"Glimmet", {"Glimmet"}}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Dictionary file;
        for (const std::string& name : c.tables) file.set(name, table({{1, 1}}));
        const BestScoresListing listing = listBestScores(Value::dictionary(std::move(file)), c.gameNames);
        Groups groups;
        for (const BestScoreGroup& g : listing.groups) {
            groups.push_back({g.game, {}});
            for (const BestScoreTable& t : g.tables) groups.back().second.push_back(t.name);
        }
        EXPECT_EQ(groups, c.expected);
        EXPECT_TRUE(listing.problem.empty());
        EXPECT_TRUE(listing.unreadableTables.empty());
    }
}

TEST(BestScoresList, TablesThatAreNoListsAreNamedAndLeftOut) {
    const BestScoresListing listing =
        listBestScores(games({{"Vexamor", Value::string("high")}, {"Trindle", table({{3, 1}})}}), {"Vexamor", "Trindle"});
    ASSERT_EQ(listing.groups.size(), 1u);
    EXPECT_EQ(listing.groups[0].game, "Trindle");
    EXPECT_EQ(listing.unreadableTables, std::vector<std::string>{"Vexamor"});
}

class BestScoresFileListing : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tolvar-scores-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        path = (folder / "BestScores.dict").string();
    }
    void TearDown() override { std::filesystem::remove_all(folder); }
    void put(const std::string& bytes) const { std::ofstream(path, std::ios::binary) << bytes; }
    std::filesystem::path folder;
    std::string path;
};

TEST_F(BestScoresFileListing, AMissingOrUnreadableFileIsSaidWithItsName) {
    BestScoresListing listing = readBestScores(path, {"Vexamor"});
    EXPECT_TRUE(listing.noFile);
    EXPECT_TRUE(listing.problem.empty());
    EXPECT_TRUE(listing.groups.empty());

    struct Case {
        const char* what;
        std::string bytes;
        const char* reason;  // a part of the problem, besides the file's name
    };
    const Case cases[] = {
        {"not a property list", "scores: 10, 20", "cannot be read"},
        {"cut short", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Vexamor</key><array>", "cannot be read"},
        {"a list, not a dictionary", toXmlPropertyList(table({{1, 1}})), "not a dictionary of games"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        put(c.bytes);
        listing = readBestScores(path, {"Vexamor"});
        EXPECT_FALSE(listing.noFile);
        EXPECT_TRUE(listing.groups.empty());
        EXPECT_NE(listing.problem.find(path), std::string::npos) << listing.problem;
        EXPECT_NE(listing.problem.find(c.reason), std::string::npos) << listing.problem;
    }
    // A folder where the file should be is something there that cannot be read, not "no scores".
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    listing = readBestScores(path, {"Vexamor"});
    EXPECT_FALSE(listing.noFile);
    EXPECT_NE(listing.problem.find(path), std::string::npos);
}

TEST_F(BestScoresFileListing, AReadableFileIsListed) {
    ASSERT_FALSE(writePropertyListFile(path, games({{"Vexamor", table({{12, 1}, {9, 2}})}})));
    const BestScoresListing listing = readBestScores(path, {"Vexamor"});
    EXPECT_TRUE(listing.problem.empty());
    ASSERT_EQ(listing.groups.size(), 1u);
    ASSERT_EQ(listing.groups[0].tables.at(0).rows.size(), 2u);
    EXPECT_TRUE(listing.groups[0].tables[0].rows[1].newest);
}

}  // namespace
}  // namespace tolvar
