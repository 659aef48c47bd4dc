#include "core/DataFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tolvar {

std::string applicationSupportDirectory(bool create) {
    std::string dir;
    // A relative path is not one: the base-directory rule says to ignore it, as if unset.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && dataHome[0] == '/') {
        dir = dataHome;
    } else {
        const char* home = std::getenv("HOME");
        dir = std::string(home ? home : "") + "/.local/share";
    }
    if (create) {
        std::error_code ec;  // a folder that cannot be made shows later, when a file is written
        std::filesystem::create_directories(dir, ec);
    }
    return dir;
}

std::string tolvarFolderPath() { return applicationSupportDirectory(true) + "/Tolvar"; }

std::string rulesFilePath() { return tolvarFolderPath() + "/RulesDict.dict"; }

}  // namespace tolvar
