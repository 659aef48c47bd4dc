// Where the game finds its documentation pages: installed beside the program, or, for a program
// of the build tree only, in the source tree.
#include <filesystem>

#include "FileTestHelpers.h"
#include "core/DocumentPages.h"

namespace tolvar {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using DocumentPages = ScratchFolder;

TEST_F(DocumentPages, InstalledPageFirstThenTheSourceTreeForTheBuildTreeOnly) {
    // prefix/bin and prefix/share/doc/tolvar; build/bin; source/docs.
    for (const char* dir : {"prefix/bin", "prefix/share/doc/tolvar", "bare/bin", "build/bin", "source/docs"})
        fs::create_directories(folder / dir);
    putFile(path("prefix/share/doc/tolvar/writing-games.md"), "installed");
    putFile(path("source/docs/writing-games.md"), "source");
    const std::string installed = path("prefix/share/doc/tolvar/writing-games.md");
    const std::string source = path("source/docs/writing-games.md");
    struct Case {
        const char* what;
        std::string program, build, page, found, installedPath;
    } cases[] = {
        {"an installed program", path("prefix/bin"), path("build/bin"), "writing-games.md", installed, installed},
        {"installed where the build puts its programs", path("prefix/bin"), path("prefix/bin"), "writing-games.md",
         installed, installed},
        {"a program of the build tree", path("build/bin"), path("build/bin"), "writing-games.md", source,
         path("build/share/doc/tolvar/writing-games.md")},
        {"the build tree named another way", path("build/bin"), path("build/../build/bin/"), "writing-games.md",
         source, path("build/share/doc/tolvar/writing-games.md")},
        {"an install without the page, beside a source tree", path("bare/bin"), path("build/bin"),
         "writing-games.md", "", path("bare/share/doc/tolvar/writing-games.md")},
        {"a page the source tree lacks", path("build/bin"), path("build/bin"), "missing.md", "",
         path("build/share/doc/tolvar/missing.md")},
        {"a program whose folder is unknown", "", path("build/bin"), "writing-games.md", "", ""},
    };
    for (const Case& c : cases) {
        const DocumentPage page = findDocumentPage(c.page, {c.program, c.build, path("source/docs")});
        EXPECT_EQ(page.path, c.found) << c.what;
        EXPECT_EQ(page.installedPath, c.installedPath) << c.what;
    }
}

}  // namespace
}  // namespace tolvar
