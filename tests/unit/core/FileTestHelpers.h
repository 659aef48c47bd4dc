// A scratch folder per test, whole-file reads, and running a check as a player without the
// super-user's rights (so that a read-only folder refuses writes even when tests run as root).
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace tolvar::testing {

struct ScratchFolder : ::testing::Test {
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tolvar-files-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        // Others may pass through, so that a check run without rights reaches the files.
        std::filesystem::permissions(folder, std::filesystem::perms(0755));
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ec);
        std::filesystem::remove_all(folder, ec);
    }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    // The names in the folder, sorted.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            all.push_back(entry.path().filename().string());
        std::sort(all.begin(), all.end());
        return all;
    }
    std::filesystem::path folder;
};

inline std::string contentsOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void putFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// The exit status of a child process once it has ended; -1 when it did not exit by itself.
inline int exitStatusOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Runs check in a child process that, when the tests run as root, first gives up its rights for
// those of "nobody"; returns whether check returned true there.
inline bool trueWithoutRights(const std::function<bool()>& check) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(2);
        _exit(check() ? 0 : 1);
    }
    return exitStatusOf(child) == 0;
}

// Several copies of the game at once: work(copy) in that many child processes, all let go at the
// same moment; the exit status of each (0 when work returned true).
inline std::vector<int> statusesOfCopiesAtOnce(int copies, const std::function<bool(int)>& work) {
    int start[2];
    if (pipe(start) != 0) return {};
    std::vector<pid_t> children;
    for (int c = 0; c < copies; ++c) {
        const pid_t child = fork();
        if (child == 0) {
            close(start[1]);
            char go = 0;
            if (read(start[0], &go, 1) != 0) _exit(3);  // all start when the pipe closes
            _exit(work(c) ? 0 : 1);
        }
        children.push_back(child);
    }
    close(start[0]);
    close(start[1]);
    std::vector<int> statuses;
    for (pid_t child : children) statuses.push_back(exitStatusOf(child));
    return statuses;
}

}  // namespace tolvar::testing
