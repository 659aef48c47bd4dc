// The best-score file: a placed score is saved or the reason is given, nothing the player had is
// written over, broken tables are kept aside under new names, and two games running at once keep
// each other's scores.
#include <variant>

#include "FileTestHelpers.h"
#include "core/BestScoresFile.h"
#include "core/MemoryScoreStore.h"
#include "core/PlistFile.h"

namespace tolvar {
namespace {

using namespace testing;

Value entry(std::int64_t score) {
    Dictionary d;
    d.set("Score", Value::integer(score));
    return Value::dictionary(std::move(d));
}

Value table(std::initializer_list<std::int64_t> scores) {
    Array a;
    for (std::int64_t s : scores) a.push_back(entry(s));
    return Value::array(std::move(a));
}

std::vector<std::int64_t> scoresOf(const Value* list) {
    std::vector<std::int64_t> scores;
    if (!list || !list->asArray()) return scores;
    for (const Value& e : *list->asArray()) scores.push_back(*e.asDictionary()->find("Score")->asInteger());
    return scores;
}

struct BestScores : ScratchFolder {
    void SetUp() override {
        ScratchFolder::SetUp();
        store = std::make_unique<BestScoresFile>(folder.string());
    }
    // Enters score at the end of the game's table; returns what the store answered.
    EnteredScore append(const std::string& game, std::int64_t score, BestScoresFile* into = nullptr) {
        return (into ? *into : *store).enterScore(game, [score](Array& t) {
            t.push_back(entry(score));
            return static_cast<int>(t.size()) - 1;
        });
    }
    // The stored tables by game, or an empty dictionary when the file does not read.
    Value stored() const {
        auto read = readPropertyListFile(store->path());
        return std::holds_alternative<Value>(read) ? std::get<Value>(read) : Value::dictionary();
    }
    std::vector<std::int64_t> storedScores(const std::string& game) const {
        return scoresOf(stored().asDictionary()->find(game));
    }
    void plant(const Value& games) { ASSERT_FALSE(writePropertyListFile(store->path(), games)); }
    std::unique_ptr<BestScoresFile> store;
};

Value games(std::initializer_list<std::pair<const char*, Value>> tables) {
    Dictionary d;
    for (const auto& [name, t] : tables) d.set(name, t);
    return Value::dictionary(std::move(d));
}

TEST_F(BestScores, AScoreThatDoesNotPlaceWritesNothing) {
    plant(games({{"Vexamor", table({5})}, {"Broken", Value::string("x")}}));
    const std::string before = contentsOf(store->path());
    const EnteredScore entered = store->enterScore("Vexamor", [](Array&) { return -1; });
    EXPECT_EQ(entered.place, -1);
    EXPECT_EQ(scoresOf(&entered.table), (std::vector<std::int64_t>{5}));
    EXPECT_EQ(contentsOf(store->path()), before);
    EXPECT_EQ(names(), std::vector<std::string>{"BestScores.dict"});
}

// Why a write fails is the whole-file writer's to tell (its own tests go through the reasons); here,
// a failed save still shows the new table, says where and why, and leaves the old file; a folder
// that cannot even be locked (a file in its place) fails the same way.
TEST_F(BestScores, FailedSavesLeaveTheOldTableAndSayWhereAndWhy) {
    plant(games({{"Vexamor", table({5})}}));
    const std::string before = contentsOf(store->path());
    {
        ScopedWriteFailure full(64, ENOSPC);
        const EnteredScore entered = append("Vexamor", 9);
        ASSERT_TRUE(entered.saveError);
        EXPECT_EQ(entered.saveError->message(), store->path() + ": No space left on device");
        EXPECT_EQ(entered.place, 1);
        EXPECT_EQ(scoresOf(&entered.table), (std::vector<std::int64_t>{5, 9}));  // still shown
    }
    putFile(path("Tolvar"), "a file where the folder should be");
    BestScoresFile underAFile(path("Tolvar"));
    const EnteredScore entered = append("Vexamor", 9, &underAFile);
    ASSERT_TRUE(entered.saveError);
    EXPECT_EQ(entered.saveError->message(), path("Tolvar") + "/BestScores.dict: Not a directory");
    EXPECT_EQ(scoresOf(&entered.table), (std::vector<std::int64_t>{9}));
    EXPECT_EQ(contentsOf(store->path()), before);
    EXPECT_EQ(names(), (std::vector<std::string>{"BestScores.dict", "Tolvar"}));
}

TEST_F(BestScores, EachUnreadableFileIsKeptAsideUnderANewName) {
    const std::string broken[] = {"not a property list", std::string("bplist00\x01", 9), "<plist><array/></plist>"};
    for (const std::string& bytes : broken) {
        putFile(store->path(), bytes);
        const std::string aside = freeAsideName(store->path());
        ::testing::internal::CaptureStderr();
        const EnteredScore entered = append("Vexamor", 7);
        const std::string err = ::testing::internal::GetCapturedStderr();
        EXPECT_FALSE(entered.saveError);
        EXPECT_EQ(storedScores("Vexamor"), std::vector<std::int64_t>{7});
        EXPECT_NE(err.find("kept as " + aside + ", a new table"), std::string::npos) << err;
    }
    EXPECT_EQ(names(), (std::vector<std::string>{"BestScores.dict", "BestScores.dict.unreadable",
                                                  "BestScores.dict.unreadable.1", "BestScores.dict.unreadable.2"}));
    EXPECT_EQ(contentsOf(store->path() + ".unreadable"), broken[0]);
    EXPECT_EQ(contentsOf(store->path() + ".unreadable.1"), broken[1]);
    EXPECT_EQ(contentsOf(store->path() + ".unreadable.2"), broken[2]);
}

TEST_F(BestScores, OneBrokenTableIsDroppedTheOthersKeptAndTheWholeFileCopiedAside) {
    putFile(store->path() + ".unreadable", "an earlier copy");
    plant(games({{"Vexamor", table({3, 4})}, {"Glimmet", Value::string("not a list")},
                 {"Trindle", table({8})}, {"Mine", Value::integer(2)}}));
    const std::string before = contentsOf(store->path());
    ::testing::internal::CaptureStderr();
    const EnteredScore entered = append("Trindle", 9);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_FALSE(entered.saveError);
    EXPECT_EQ(err, store->path() + ": the scores of \"Glimmet\", \"Mine\" are not a list and are dropped; the "
                                   "whole file is kept as " + store->path() + ".unreadable.1\n");
    EXPECT_EQ(contentsOf(store->path() + ".unreadable.1"), before);
    EXPECT_EQ(contentsOf(store->path() + ".unreadable"), "an earlier copy");
    EXPECT_EQ(stored(), games({{"Vexamor", table({3, 4})}, {"Trindle", table({8, 9})}}));
}

TEST_F(BestScores, ALongTableIsReadAsItsBestTwentyAndSavedSo) {
    Array many;
    for (int i = 0; i < 5000; ++i) many.push_back(entry(i));
    plant(games({{"Vexamor", Value::array(many)}, {"Other", Value::array(many)}}));
    std::size_t seen = 0;
    const EnteredScore entered = store->enterScore("Vexamor", [&](Array& t) {
        seen = t.size();
        t.insert(t.begin(), entry(-1));
        return 0;
    });
    EXPECT_EQ(seen, 20u);
    EXPECT_EQ(entered.table.asArray()->size(), 20u);
    std::vector<std::int64_t> best{-1};
    for (int i = 0; i < 19; ++i) best.push_back(i);
    EXPECT_EQ(storedScores("Vexamor"), best);
    EXPECT_EQ(storedScores("Other").size(), 20u);
}

// The bots' store in memory keeps what the file keeps: the best twenty, and a shown table is a copy.
TEST_F(BestScores, TheStoreInMemoryKeepsTheTablesTheFileKeeps) {
    MemoryScoreStore memory;
    for (int n = 0; n < 25; ++n) {
        const auto first = [n](Array& t) { return t.insert(t.begin(), entry(n)), 0; };
        EnteredScore inMemory = memory.enterScore("Vexamor", first);
        const EnteredScore inFile = store->enterScore("Vexamor", first);
        ASSERT_EQ(scoresOf(&inMemory.table), scoresOf(&inFile.table)) << n;
        inMemory.table.asArray()->clear();  // what was shown is the viewer's, not the store's
    }
    EXPECT_EQ(storedScores("Vexamor").size(), kBestScoresKept);
}

// Several copies of the game finish games at the same moment, each in a game of its own; with
// the file read, merged and written under one lock, every entry of every copy is there after.
TEST_F(BestScores, GamesRunningAtOnceKeepEachOthersScores) {
    constexpr int kCopies = 4, kEntries = 15;
    const auto statuses = statusesOfCopiesAtOnce(kCopies, [&](int c) {
        BestScoresFile own(folder.string());
        for (int e = 0; e < kEntries; ++e)
            if (append("Game " + std::to_string(c), e, &own).saveError) return false;
        return true;
    });
    EXPECT_EQ(statuses, std::vector<int>(kCopies, 0));
    std::vector<std::int64_t> all;
    for (int e = 0; e < kEntries; ++e) all.push_back(e);
    for (int c = 0; c < kCopies; ++c) EXPECT_EQ(storedScores("Game " + std::to_string(c)), all) << c;
}

}  // namespace
}  // namespace tolvar
