// The rules file the main window reports on. When the data folder's file cannot be made (a full
// disk, a read-only folder), the window gives the reason standard error gives, not "no such file".
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "desktop/RulesWatch.h"

namespace tolvar {
namespace {

TEST(RulesWatch, AFileThatCannotBeMadeIsReportedWithTheRealReason) {
    std::string home = (std::filesystem::temp_directory_path() / "tolvar-watch-XXXXXX").string();
    ASSERT_NE(mkdtemp(home.data()), nullptr);
    // A file where the data folder should be: neither the folder nor the rules file can be made.
    std::ofstream(home + "/share") << "not a folder";
    setenv("XDG_DATA_HOME", (home + "/share").c_str(), 1);
    RulesWatch watch;
    GameLibrary library;
    testing::internal::CaptureStdout();  // "code: 20"
    testing::internal::CaptureStderr();
    watch.load(library);
    const std::string err = testing::internal::GetCapturedStderr();
    testing::internal::GetCapturedStdout();
    std::filesystem::remove_all(home);

    EXPECT_NE(err.find("cannot be written (Not a directory)"), std::string::npos) << err;
    const checker::CheckReport& report = watch.report();
    ASSERT_FALSE(report.problems.empty());
    EXPECT_EQ(report.problems.front().message, library.rulesNotWritten());
    EXPECT_NE(library.rulesNotWritten().find("cannot be written (Not a directory)"), std::string::npos);
    for (const checker::Problem& p : report.problems) EXPECT_EQ(p.message.find("no such file"), std::string::npos);
    // The built-in games are offered, and none is refused.
    ASSERT_EQ(library.gameMenu().size(), 4u);
    for (const std::string& title : library.gameMenu()) EXPECT_FALSE(watch.refuses(title)) << title;
}

}  // namespace
}  // namespace tolvar
