// The game menu from the rules file: first launch, reading back, and files that cannot be read.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "platform/DataFolder.h"
#include "platform/PlistFile.h"
#include "rules/BuiltinGames.h"
#include "rules/GameLibrary.h"

using namespace tolvar;

namespace {

class DataHome : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tolvar-data-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        home_ = pattern;
        const char* old = std::getenv("XDG_DATA_HOME");
        hadOld_ = old != nullptr;
        if (old) old_ = old;
        const char* home = std::getenv("HOME");
        hadHome_ = home != nullptr;
        if (home) oldHome_ = home;
        setenv("XDG_DATA_HOME", (home_ + "/share").c_str(), 1);
    }
    void TearDown() override {
        if (hadOld_)
            setenv("XDG_DATA_HOME", old_.c_str(), 1);
        else
            unsetenv("XDG_DATA_HOME");
        if (hadHome_)
            setenv("HOME", oldHome_.c_str(), 1);
        else
            unsetenv("HOME");
        std::filesystem::remove_all(home_);
    }
    std::string folder() const { return home_ + "/share/Tolvar"; }
    std::string rulesPath() const { return folder() + "/RulesDict.dict"; }
    void writeBytes(const std::string& path, const std::string& bytes) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string readBytes(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    std::string home_;
    std::string old_;
    bool hadOld_ = false;
    std::string oldHome_;
    bool hadHome_ = false;
};

const std::vector<std::string> kBuiltinMenu = {"None", "Vexamor", "Trindle", "Glimmet"};

}  // namespace

TEST_F(DataHome, PathsFollowXdgDataHome) {
    EXPECT_EQ(rulesFilePath(), rulesPath());
    EXPECT_EQ(bestScoresFilePath(), folder() + "/BestScores.dict");
    EXPECT_TRUE(std::filesystem::is_directory(home_ + "/share"));
    setenv("XDG_DATA_HOME", "", 1);
    setenv("HOME", home_.c_str(), 1);
    EXPECT_EQ(applicationSupportDirectory(false), home_ + "/.local/share");
}

TEST_F(DataHome, FirstLaunchWritesTheBuiltinGamesAndTheNextReadsThem) {
    GameLibrary first;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(first.setupGameSelections());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "code: 0");
    EXPECT_EQ(first.gameMenu(), kBuiltinMenu);
    ASSERT_TRUE(std::filesystem::is_regular_file(rulesPath()));

    GameLibrary second;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(second.setupGameSelections());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");  // the folder exists now
    EXPECT_EQ(second.gameMenu(), kBuiltinMenu);
    ASSERT_TRUE(second.allGameRules());
    EXPECT_EQ(*second.allGameRules(), *first.allGameRules());
    EXPECT_EQ(*second.allGameRules()->asDictionary()->find("Glimmet"), createTestGameThree());
}

TEST_F(DataHome, AFolderThatCannotBeMadePrintsItsCodeAndTheGamesStillPlay) {
    writeBytes(home_ + "/share", "a file where the data folder should be");
    GameLibrary library;
    testing::internal::CaptureStdout();
    library.setupGameSelections();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "code: 20");  // not a directory
    EXPECT_EQ(library.gameMenu(), kBuiltinMenu);
}

TEST_F(DataHome, TheMenuFollowsTheFilesOrder) {
    Dictionary games;
    games.set("Zeta", createTestGameTwo());
    games.set("Alpha", createTestGameOne());
    games.set("Mid", Value::dictionary());
    std::filesystem::create_directories(folder());
    ASSERT_TRUE(writePropertyListFile(rulesPath(), Value::dictionary(games)));
    GameLibrary library;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(library.setupGameSelections());
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(library.gameMenu(), (std::vector<std::string>{"None", "Zeta", "Alpha", "Mid"}));
}

TEST_F(DataHome, ChoosingAGameShowsItsDescriptionAndNoneKeepsIt) {
    GameLibrary library;
    testing::internal::CaptureStdout();
    library.setupGameSelections();
    testing::internal::GetCapturedStdout();
    library.selectGame("Trindle");
    ASSERT_TRUE(library.currentRules());
    EXPECT_EQ(*library.currentRules(), createTestGameTwo());
    const std::string trindleText = library.descriptionText();
    EXPECT_EQ(trindleText.rfind("Swap any two different", 0), 0u);
    library.selectGame("Vexamor");
    EXPECT_EQ(library.descriptionText().rfind("Select any number", 0), 0u);
    library.selectGame("None");
    EXPECT_EQ(library.currentRules(), nullptr);
    EXPECT_EQ(library.selectedTitle(), "None");
    EXPECT_EQ(library.descriptionText().rfind("Select any number", 0), 0u);
    library.selectGame("No such game");
    EXPECT_EQ(library.currentRules(), nullptr);
}

TEST_F(DataHome, GamesOfUnexpectedKindsPlayWithEveryDefault) {
    Dictionary games;
    games.set("Number", Value::integer(5));
    games.set("Listless", Value::array());
    std::filesystem::create_directories(folder());
    ASSERT_TRUE(writePropertyListFile(rulesPath(), Value::dictionary(games)));
    GameLibrary library;
    EXPECT_TRUE(library.setupGameSelections());
    EXPECT_EQ(library.gameMenu(), (std::vector<std::string>{"None", "Number", "Listless"}));
    library.selectGame("Number");
    ASSERT_TRUE(library.currentRules());
    EXPECT_EQ(*library.currentRules(), Value::dictionary());
    EXPECT_EQ(library.descriptionText(), "Unknown");
}

// Files that cannot be used: the menu stays as it was, one line names the file and the
// problem, and the file is left exactly as it was.
class UnreadableRules : public DataHome, public ::testing::WithParamInterface<std::pair<const char*, std::string>> {};

TEST_P(UnreadableRules, KeepTheMenuTheFileAndSayWhy) {
    GameLibrary library;
    testing::internal::CaptureStdout();
    ASSERT_TRUE(library.setupGameSelections());  // a good file first: the menu has the games
    testing::internal::GetCapturedStdout();
    const std::string bytes = GetParam().second;
    writeBytes(rulesPath(), bytes);

    testing::internal::CaptureStderr();
    EXPECT_FALSE(library.setupGameSelections());
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(library.allGameRules(), nullptr);
    EXPECT_EQ(library.gameMenu(), kBuiltinMenu);
    EXPECT_NE(err.find(rulesPath()), std::string::npos) << err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
    EXPECT_EQ(readBytes(rulesPath()), bytes);

    library.selectGame("Vexamor");
    EXPECT_EQ(library.currentRules(), nullptr);
}

namespace {
std::string builtinXml() {
    return toXmlPropertyList(Value::dictionary([] {
        Dictionary d;
        d.set("Vexamor", createTestGameOne());
        return d;
    }()));
}
}  // namespace

INSTANTIATE_TEST_SUITE_P(
    Files, UnreadableRules,
    ::testing::Values(std::make_pair("NotAPropertyList", std::string("Tolvar rules, handwritten\n")),
                      std::make_pair("Empty", std::string()),
                      std::make_pair("Truncated", builtinXml().substr(0, builtinXml().size() * 2 / 3)),
                      std::make_pair("RootIsAnArray", toXmlPropertyList(Value::array({createTestGameOne()}))),
                      std::make_pair("RootIsAString", toXmlPropertyList(Value::string("Vexamor"))),
                      std::make_pair("BinaryGarbage", std::string("bplist00\xff\xff\xff\x00\x01", 13))),
    [](const auto& info) { return std::string(info.param.first); });

TEST_F(DataHome, AMissingOrFolderRulesPathIsReportedAndNeverCreated) {
    GameLibrary library;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(library.loadRulesFromFile(home_ + "/elsewhere.dict"));
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("elsewhere.dict"), std::string::npos);
    EXPECT_NE(err.find("no such file"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(home_ + "/elsewhere.dict"));
    EXPECT_TRUE(library.gameMenu().empty());

    std::filesystem::create_directories(rulesPath());  // a folder where the file should be
    testing::internal::CaptureStderr();
    EXPECT_FALSE(library.setupGameSelections());
    EXPECT_NE(testing::internal::GetCapturedStderr().find(rulesPath()), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_directory(rulesPath()));
}
