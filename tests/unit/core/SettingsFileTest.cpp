// The settings file: a choice is there in the next run, two copies of the game keep each other's
// choices, and a file that cannot be read is kept aside instead of written over.
#include "FileTestHelpers.h"
#include "core/SettingsFile.h"

namespace tolvar {
namespace {

using namespace testing;

struct Settings : ScratchFolder {
    SettingsFile open() const { return SettingsFile(folder.string()); }
};

Dictionary boardSize(std::int64_t width, std::int64_t height) {
    Dictionary d;
    d.set("BoardWidth", Value::integer(width));
    d.set("BoardHeight", Value::integer(height));
    return d;
}

std::int64_t numberIn(const Dictionary& d, const std::string& key) {
    const Value* v = d.find(key);
    return v && v->asInteger() ? *v->asInteger() : -1;
}

TEST_F(Settings, ChoicesAreThereInTheNextRun) {
    {
        SettingsFile settings = open();
        EXPECT_TRUE(settings.flag("Sound", true));
        EXPECT_TRUE(settings.gameSettings("Vexamor").empty());
        ASSERT_FALSE(settings.setFlag("Sound", false));
        ASSERT_FALSE(settings.setGameSettings("Vexamor", boardSize(12, 10)));
        EXPECT_FALSE(settings.flag("Sound", true));
    }
    const SettingsFile again = open();
    EXPECT_FALSE(again.flag("Sound", true));
    EXPECT_FALSE(again.flag("Symbols", false));
    EXPECT_EQ(numberIn(again.gameSettings("Vexamor"), "BoardWidth"), 12);
    EXPECT_EQ(numberIn(again.gameSettings("Vexamor"), "BoardHeight"), 10);
    EXPECT_TRUE(again.gameSettings("Glimmet").empty());
}

TEST_F(Settings, EmptyGameSettingsForgetTheGame) {
    SettingsFile settings = open();
    ASSERT_FALSE(settings.setGameSettings("Vexamor", boardSize(12, 10)));
    ASSERT_FALSE(settings.setGameSettings("Vexamor", Dictionary{}));
    EXPECT_TRUE(open().gameSettings("Vexamor").empty());
    EXPECT_EQ(contentsOf(path("Settings.dict")).find("Vexamor"), std::string::npos);
}

TEST_F(Settings, TwoCopiesKeepEachOthersChoices) {
    SettingsFile first = open();
    SettingsFile second = open();
    ASSERT_FALSE(first.setFlag("Sound", false));
    ASSERT_FALSE(second.setGameSettings("Glimmet", boardSize(6, 7)));
    ASSERT_FALSE(first.setGameSettings("Vexamor", boardSize(9, 9)));
    const SettingsFile later = open();
    EXPECT_FALSE(later.flag("Sound", true));
    EXPECT_EQ(numberIn(later.gameSettings("Glimmet"), "BoardWidth"), 6);
    EXPECT_EQ(numberIn(later.gameSettings("Vexamor"), "BoardWidth"), 9);
}

// What is found in place of the file, and whether it reads as no settings at all.
struct UnusableFile {
    const char* what;
    std::string bytes;
};

TEST_F(Settings, AFileThatCannotBeReadIsKeptAsideNotWrittenOver) {
    const UnusableFile cases[] = {
        {"not a property list", "settings, please"},
        {"a truncated list", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Sound</key>"},
        {"a list that is not a dictionary", "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"},
    };
    for (const UnusableFile& c : cases) {
        SCOPED_TRACE(c.what);
        putFile(path("Settings.dict"), c.bytes);
        SettingsFile settings = open();
        EXPECT_TRUE(settings.flag("Sound", true));
        ASSERT_FALSE(settings.setFlag("Sound", false));
        EXPECT_FALSE(open().flag("Sound", true));
        const std::vector<std::string> kept = names();
        ASSERT_FALSE(kept.empty());
        const std::string aside = path(kept.back());
        EXPECT_NE(kept.back(), "Settings.dict");
        EXPECT_EQ(contentsOf(aside), c.bytes);
        std::filesystem::remove(aside);
    }
}

TEST_F(Settings, AFolderThatRefusesWritesGivesTheReasonAndKeepsTheChoiceForTheRun) {
    std::filesystem::permissions(folder, std::filesystem::perms(0555));
    EXPECT_TRUE(trueWithoutRights([&] {
        SettingsFile settings = open();
        const std::optional<FileWriteError> error = settings.setFlag("Sound", false);
        return error && error->path == path("Settings.dict") && !error->reason.empty() &&
               !settings.flag("Sound", true);
    }));
}

}  // namespace
}  // namespace tolvar
