// Where the game's documentation pages are: share/doc/tolvar/ beside the installed programs
// (<prefix>/bin/../share/doc/tolvar/), or the source tree's docs/ for a program run from the
// build tree.
#pragma once

#include <string>

namespace tolvar {

struct DocumentPlaces {
    std::string programFolder;       // the folder of the running program
    std::string buildProgramFolder;  // where the build puts its programs
    std::string sourceDocsFolder;    // the source tree's docs/
};

struct DocumentPage {
    std::string path;           // the page found, or empty
    std::string installedPath;  // where an installed game keeps it
};

// The page named file: the installed one, else (for a program of the build tree only) the
// source tree's.
DocumentPage findDocumentPage(const std::string& file, const DocumentPlaces& places);

}  // namespace tolvar
