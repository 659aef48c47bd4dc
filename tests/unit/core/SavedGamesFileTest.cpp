// The saved games: copies of the game quitting with different games keep them all, a save over
// another copy's newer game of the same title keeps that one aside and says so, an older file of
// one game is read as before, and a file that cannot be read is never written over.
#include <variant>

#include "FileTestHelpers.h"
#include "core/PlistFile.h"
#include "core/SavedGamesFile.h"

namespace tolvar {
namespace {

using namespace testing;

// A saved game as the engine writes one, told apart by its score.
Value game(const std::string& title, std::int64_t score) {
    Dictionary d;
    d.set("Format", Value::integer(1));
    d.set("GameName", Value::string(title));
    d.set("Score", Value::integer(score));
    return Value::dictionary(std::move(d));
}

std::int64_t scoreOf(const Value& saved) { return *saved.asDictionary()->find("Score")->asInteger(); }

struct SavedGamesTest : ScratchFolder {
    std::map<std::string, std::int64_t> scores() const {
        std::map<std::string, std::int64_t> all;
        for (const auto& [title, saved] : SavedGamesFile(folder.string()).read().games) all[title] = scoreOf(saved);
        return all;
    }
};

TEST_F(SavedGamesTest, CopiesQuittingWithDifferentGamesKeepBoth) {
    // Both copies started before either quit: neither saw the other's game.
    SavedGamesFile a(folder.string()), b(folder.string());
    std::optional<Value> written;
    EXPECT_FALSE(a.store("Vexamor", game("Vexamor", 10), std::nullopt, &written).error);
    ASSERT_TRUE(written);
    EXPECT_TRUE(written->asDictionary()->find(SavedGamesFile::kSavedAtKey)->isDate());
    const StoredGame stored = b.store("Glimmet", game("Glimmet", 20), std::nullopt);
    EXPECT_FALSE(stored.error);
    EXPECT_FALSE(stored.replacedNewer);
    EXPECT_EQ(scores(), (std::map<std::string, std::int64_t>{{"Glimmet", 20}, {"Vexamor", 10}}));

    // A copy that finished its game takes out only that title's.
    EXPECT_FALSE(a.store("Vexamor", std::nullopt, written).error);
    EXPECT_EQ(scores(), (std::map<std::string, std::int64_t>{{"Glimmet", 20}}));
    // The last game taken out takes the file with it.
    const Value glimmet = SavedGamesFile(folder.string()).read().games.at("Glimmet");
    EXPECT_FALSE(b.store("Glimmet", std::nullopt, glimmet).error);
    EXPECT_EQ(names(), std::vector<std::string>{});
}

TEST_F(SavedGamesTest, ASaveOverAnotherCopysNewerGameKeepsThatOneAsideAndSaysSo) {
    SavedGamesFile file(folder.string());
    std::optional<Value> mine;
    ASSERT_FALSE(file.store("Vexamor", game("Vexamor", 1), std::nullopt, &mine).error);
    // Another copy, which read that game at its start, quits with its own Vexamor.
    ASSERT_FALSE(file.store("Vexamor", game("Vexamor", 2), mine).error);
    // This copy's end of game does not take the other copy's game out...
    EXPECT_FALSE(file.store("Vexamor", std::nullopt, mine).error);
    EXPECT_EQ(scores().at("Vexamor"), 2);
    // ...and its save replaces it only with the other kept aside, under a free name each time.
    for (const char* aside : {"SavedGame.dict.replaced", "SavedGame.dict.replaced.1"}) {
        const StoredGame stored = file.store("Vexamor", game("Vexamor", 3), mine);
        EXPECT_TRUE(stored.replacedNewer);
        EXPECT_FALSE(stored.error);
        EXPECT_EQ(stored.replacedKeptAs, path(aside));
        // The game kept aside is a file of one saved game, which reads as that game.
        EXPECT_EQ(scoreOf(std::get<Value>(readPropertyListFile(path(aside)))), 2);
        const Value ours = SavedGamesFile(folder.string()).read().games.at("Vexamor");
        ASSERT_FALSE(file.store("Vexamor", game("Vexamor", 2), ours).error);  // the other copy saves again
    }
    // Saving over the entry this copy saw is no news.
    const Value seen = SavedGamesFile(folder.string()).read().games.at("Vexamor");
    EXPECT_FALSE(file.store("Vexamor", game("Vexamor", 4), seen).replacedNewer);
    EXPECT_EQ(scores().at("Vexamor"), 4);
}

TEST_F(SavedGamesTest, AnOlderFileOfOneGameIsReadAsThatGameAndKeptBesideANewOne) {
    const Value old = game("Trindle", 7);
    ASSERT_FALSE(writePropertyListFile(path("SavedGame.dict"), old));
    const SavedGames read = SavedGamesFile(folder.string()).read();
    ASSERT_EQ(read.games.size(), 1u);
    EXPECT_EQ(read.games.at("Trindle"), old);
    EXPECT_FALSE(SavedGamesFile(folder.string()).store("Glimmet", game("Glimmet", 8), std::nullopt).error);
    EXPECT_EQ(scores(), (std::map<std::string, std::int64_t>{{"Glimmet", 8}, {"Trindle", 7}}));
    // A game titled "GameName" is a title like any other.
    EXPECT_FALSE(SavedGamesFile(folder.string()).store("GameName", game("GameName", 9), std::nullopt).error);
    EXPECT_EQ(scores().at("GameName"), 9);
}

TEST_F(SavedGamesTest, AnUnreadableFileIsReportedAndKeptAsideBeforeANewOneIsWritten) {
    for (const char* bytes : {"not a property list", "<plist><array/></plist>"}) {
        putFile(path("SavedGame.dict"), bytes);
        EXPECT_NE(SavedGamesFile(folder.string()).read().unreadable, "");
    }
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(SavedGamesFile(folder.string()).store("Vexamor", game("Vexamor", 1), std::nullopt).error);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(err, path("SavedGame.dict") + ": cannot be read (not a dictionary of saved games); kept as " +
                       path("SavedGame.dict.unreadable") + "\n");
    EXPECT_EQ(contentsOf(path("SavedGame.dict.unreadable")), "<plist><array/></plist>");
    EXPECT_EQ(scores(), (std::map<std::string, std::int64_t>{{"Vexamor", 1}}));
}

// Copies quitting at the same moment, each with a game of its own title: all are kept.
TEST_F(SavedGamesTest, CopiesQuittingAtOnceKeepEachOthersGames) {
    constexpr int kCopies = 6, kSaves = 10;
    const auto statuses = statusesOfCopiesAtOnce(kCopies, [&](int c) {
        SavedGamesFile own(folder.string());
        std::optional<Value> seen;
        for (int s = 0; s < kSaves; ++s)
            if (own.store("Game " + std::to_string(c), game("Game", s), seen, &seen).error) return false;
        return true;
    });
    EXPECT_EQ(statuses, std::vector<int>(kCopies, 0));
    const auto all = scores();
    ASSERT_EQ(all.size(), static_cast<std::size_t>(kCopies));
    for (const auto& [title, score] : all) EXPECT_EQ(score, kSaves - 1) << title;
    EXPECT_EQ(names(), std::vector<std::string>{"SavedGame.dict"}) << "no game was replaced";
}

}  // namespace
}  // namespace tolvar
