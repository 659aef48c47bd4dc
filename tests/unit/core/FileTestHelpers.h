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

// Runs check in a child process that, when the tests run as root, first gives up its rights for
// those of "nobody"; returns whether check returned true there.
inline bool trueWithoutRights(const std::function<bool()>& check) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(2);
        _exit(check() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace tolvar::testing
