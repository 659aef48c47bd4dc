#include "core/DocumentPages.h"

#include <filesystem>
#include <system_error>

namespace tolvar {

namespace fs = std::filesystem;

namespace {

bool sameFolder(const std::string& a, const std::string& b) {
    std::error_code ec;
    return !a.empty() && !b.empty() && fs::equivalent(a, b, ec);
}

}  // namespace

DocumentPage findDocumentPage(const std::string& file, const DocumentPlaces& places) {
    DocumentPage page;
    if (places.programFolder.empty()) return page;
    const fs::path installed = (fs::path(places.programFolder) / ".." / "share" / "doc" / "tolvar" / file).lexically_normal();
    page.installedPath = installed.string();
    std::error_code ec;
    if (fs::is_regular_file(installed, ec)) {
        page.path = installed.string();
    } else if (sameFolder(places.programFolder, places.buildProgramFolder)) {
        const fs::path source = fs::path(places.sourceDocsFolder) / file;
        if (fs::is_regular_file(source, ec)) page.path = source.string();
    }
    return page;
}

}  // namespace tolvar
