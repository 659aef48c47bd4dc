// Being told of a rules file's change: each way an editor or a player changes the file reaches
// the run loop as an event, also through a link to a file in another folder.
#include <SDL.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "desktop/FileWatch.h"

namespace tolvar {
namespace {

namespace fs = std::filesystem;

// Long enough for any loaded machine; the wait ends as soon as the event is there.
constexpr int kLongestWaitMs = 20000;

struct FileWatchTest : ::testing::Test {
    void SetUp() override {
        ASSERT_EQ(SDL_Init(SDL_INIT_EVENTS), 0) << SDL_GetError();
        std::string pattern = (fs::temp_directory_path() / "tolvar-watch-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(folder, ec);
        SDL_Quit();
    }
    static void write(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }
    // Waits for the watch's event; false when none came.
    static bool changeTold() {
        SDL_Event event;
        while (SDL_WaitEventTimeout(&event, kLongestWaitMs))
            if (event.type == FileWatch::changedEventType()) return true;
        return false;
    }
    fs::path folder;
};

struct Change {
    const char* what;
    bool fileThereBefore;
    std::function<void(const fs::path& file)> make;
};

TEST_F(FileWatchTest, EveryWayTheFileChangesIsTold) {
    const Change changes[] = {
        {"written in place", true, [](const fs::path& f) { write(f, "new"); }},
        {"renamed over", true,
         [](const fs::path& f) {
             write(f.parent_path() / ".RulesDict.dict.tmp", "new");
             fs::rename(f.parent_path() / ".RulesDict.dict.tmp", f);
         }},
        {"removed", true, [](const fs::path& f) { fs::remove(f); }},
        {"made where it was missing", false, [](const fs::path& f) { write(f, "new"); }},
        {"given other rights", true, [](const fs::path& f) { fs::permissions(f, fs::perms(0600)); }},
    };
    for (const Change& c : changes) {
        SCOPED_TRACE(c.what);
        const fs::path file = folder / "RulesDict.dict";
        std::error_code ec;
        fs::remove(file, ec);
        if (c.fileThereBefore) write(file, "old");
        SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
        FileWatch watch(file.string());
        ASSERT_TRUE(watch.watching());
        c.make(file);
        EXPECT_TRUE(changeTold());
    }
}

TEST_F(FileWatchTest, ALinkIsFollowedToTheFolderOfItsFile) {
    fs::create_directory(folder / "elsewhere");
    const fs::path target = folder / "elsewhere" / "games.dict";
    write(target, "old");
    const fs::path link = folder / "RulesDict.dict";
    fs::create_symlink(target, link);
    FileWatch watch(link.string());
    ASSERT_TRUE(watch.watching());
    write(target.parent_path() / "games.dict.tmp", "new");
    fs::rename(target.parent_path() / "games.dict.tmp", target);
    EXPECT_TRUE(changeTold());
}

TEST_F(FileWatchTest, AFolderThatIsNotThereCannotBeWatched) {
    const FileWatch watch((folder / "missing" / "RulesDict.dict").string());
    EXPECT_FALSE(watch.watching());
}

}  // namespace
}  // namespace tolvar
