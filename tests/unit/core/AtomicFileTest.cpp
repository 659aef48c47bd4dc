// Whole-file replacement: the old file or the new one, never a cut or empty one, and a clear
// reason when a write is refused.
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>

#include "FileTestHelpers.h"
#include "core/AtomicFile.h"

namespace tolvar {
namespace {

using namespace testing;

using AtomicFile = ScratchFolder;

mode_t modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0);
    return info.st_mode & 07777;
}

TEST_F(AtomicFile, NewAndReplacedFilesHoldTheBytesAndKeepTheirPermissions) {
    const mode_t oldMask = umask(027);
    const std::string file = path("scores.dict");
    EXPECT_EQ(writeFileAtomically(file, "first"), std::nullopt);
    EXPECT_EQ(contentsOf(file), "first");
    EXPECT_EQ(modeOf(file), 0640u);  // 0666 less the umask
    ASSERT_EQ(chmod(file.c_str(), 0604), 0);
    EXPECT_EQ(writeFileAtomically(file, std::string(100000, 'x')), std::nullopt);
    EXPECT_EQ(contentsOf(file), std::string(100000, 'x'));
    EXPECT_EQ(modeOf(file), 0604u);
    EXPECT_EQ(writeFileAtomically(file, ""), std::nullopt);
    EXPECT_EQ(contentsOf(file), "");
    umask(oldMask);
    EXPECT_EQ(names(), std::vector<std::string>{"scores.dict"});  // no temporary file is left
}

// A player who keeps the file elsewhere and links it in keeps the link: the file it points at is
// replaced, also through a relative link, a link to a link, or a link whose file is not there yet.
TEST_F(AtomicFile, ALinkedFileIsWrittenThroughItsLinkWhichStays) {
    std::filesystem::create_directory(folder / "kept");
    const std::string target = path("kept/scores.dict");
    putFile(target, "old");
    std::filesystem::create_symlink("kept/scores.dict", folder / "relative.dict");
    std::filesystem::create_symlink(target, folder / "absolute.dict");
    std::filesystem::create_symlink(folder / "absolute.dict", folder / "twice.dict");
    std::filesystem::create_symlink("kept/new.dict", folder / "dangling.dict");
    for (const char* link : {"relative.dict", "absolute.dict", "twice.dict"}) {
        EXPECT_EQ(writeFileAtomically(path(link), link), std::nullopt);
        EXPECT_TRUE(std::filesystem::is_symlink(folder / link)) << link;
        EXPECT_EQ(contentsOf(target), link);
    }
    EXPECT_EQ(writeFileAtomically(path("dangling.dict"), "new"), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "dangling.dict"));
    EXPECT_EQ(contentsOf(path("kept/new.dict")), "new");
    // A loop of links is written over as a plain file rather than followed for ever.
    std::filesystem::create_symlink("loop.dict", folder / "loop.dict");
    EXPECT_EQ(writeFileAtomically(path("loop.dict"), "plain"), std::nullopt);
    EXPECT_EQ(contentsOf(path("loop.dict")), "plain");
    EXPECT_EQ(names(), (std::vector<std::string>{"absolute.dict", "dangling.dict", "kept", "loop.dict",
                                                 "relative.dict", "twice.dict"}));
}

TEST_F(AtomicFile, RefusedWritesNameTheFileAndTheReasonAndLeaveTheOldFile) {
    putFile(path("old.dict"), "old table");
    putFile(path("plain"), "a file where a folder should be");
    std::filesystem::create_directory(folder / "folder.dict");
    struct Case {
        const char* what;
        std::string target;
        std::size_t failAfter;  // bytes written before a full disk; SIZE_MAX for none
        std::string reason;
    };
    const Case cases[] = {
        {"disk full half-way", path("old.dict"), 4096, "No space left on device"},
        {"disk full at once", path("old.dict"), 0, "No space left on device"},
        {"a file in the folder's place", path("plain/new.dict"), SIZE_MAX, "Not a directory"},
        {"no such folder", path("none/new.dict"), SIZE_MAX, "No such file or directory"},
        {"a folder in the file's place", path("folder.dict"), SIZE_MAX, "Is a directory"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::optional<FileWriteError> error;
        if (c.failAfter == SIZE_MAX) {
            error = writeFileAtomically(c.target, std::string(10000, 'n'));
        } else {
            ScopedWriteFailure full(c.failAfter, ENOSPC);
            error = writeFileAtomically(c.target, std::string(10000, 'n'));
        }
        ASSERT_TRUE(error);
        EXPECT_EQ(error->message(), c.target + ": " + c.reason);
        EXPECT_EQ(contentsOf(path("old.dict")), "old table");
        EXPECT_EQ(names(), (std::vector<std::string>{"folder.dict", "old.dict", "plain"}));
    }
}

TEST_F(AtomicFile, AReadOnlyFolderRefusesWithoutRights) {
    putFile(path("old.dict"), "old table");
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const std::string target = path("old.dict");
    EXPECT_TRUE(trueWithoutRights([&] {
        const auto error = writeFileAtomically(target, "new");
        return error && error->message() == target + ": Permission denied";
    }));
    EXPECT_EQ(contentsOf(target), "old table");
}

TEST_F(AtomicFile, ANewFileNeverReplacesAnEarlierOne) {
    EXPECT_EQ(writeNewFile(path("aside"), "first"), std::nullopt);
    const auto error = writeNewFile(path("aside"), "second");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason, "File exists");
    EXPECT_EQ(contentsOf(path("aside")), "first");
    ScopedWriteFailure full(3, ENOSPC);
    EXPECT_TRUE(writeNewFile(path("cut"), "12345"));
    EXPECT_EQ(names(), (std::vector<std::string>{"aside"}));  // a cut copy is not left behind
}

// A writer killed at any moment leaves one whole version: it writes two large versions in turn
// and reports each finished write; it is killed right after a report, in the middle of the next.
TEST_F(AtomicFile, AWriterKilledMidWriteLeavesTheOldOrTheNewFile) {
    const std::string file = path("table.dict");
    const std::string versions[] = {std::string(3 << 20, 'a'), std::string(2 << 20, 'b')};
    for (int kills = 0; kills < 5; ++kills) {
        int reports[2];
        ASSERT_EQ(pipe(reports), 0);
        const pid_t writer = fork();
        if (writer == 0) {
            close(reports[0]);
            for (unsigned n = 0;; ++n) {
                if (writeFileAtomically(file, versions[n % 2])) _exit(1);
                if (write(reports[1], "w", 1) != 1) _exit(1);
            }
        }
        close(reports[1]);
        char report = 0;
        for (int i = 0; i <= kills; ++i) ASSERT_EQ(read(reports[0], &report, 1), 1);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        close(reports[0]);
        const std::string left = contentsOf(file);
        EXPECT_TRUE(left == versions[0] || left == versions[1]) << "a file of " << left.size() << " bytes";
    }
}

// A write clears the temporary files of writers that are gone, once nobody has written to them for
// a minute; a file of a live writer, one written just now, and any other name stay.
TEST_F(AtomicFile, WhatKilledWritersLeftIsClearedOnceItHasLainAMinute) {
    auto goneProcess = [] {
        const pid_t child = fork();
        if (child == 0) _exit(0);
        waitpid(child, nullptr, 0);
        return std::to_string(child);
    };
    const std::string gone = goneProcess(), goneToo = goneProcess(), ours = std::to_string(getpid());
    const std::string stale = ".table.dict." + gone + ".0", fresh = ".table.dict." + goneToo + ".3";
    const std::vector<std::string> aged = {stale, ".table.dict." + ours + ".999", ".table.dict.backup",
                                           ".other.dict." + gone + ".0"};
    const struct timeval twoMinutesAgo[2] = {{time(nullptr) - 120, 0}, {time(nullptr) - 120, 0}};
    for (const std::string& name : aged) {
        putFile(path(name), "left by a writer");
        ASSERT_EQ(utimes(path(name).c_str(), twoMinutesAgo), 0);
    }
    putFile(path(fresh), "a writer that was just writing");
    EXPECT_EQ(writeFileAtomically(path("table.dict"), "whole"), std::nullopt);
    std::vector<std::string> kept = {aged[1], aged[2], aged[3], fresh, "table.dict"};
    std::sort(kept.begin(), kept.end());
    EXPECT_EQ(names(), kept);
}

}  // namespace
}  // namespace tolvar
