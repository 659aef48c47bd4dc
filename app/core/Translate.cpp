#include "core/Translate.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace tolvar {

std::string localeFolder() {
    if (const char* chosen = std::getenv("TOLVAR_LOCALEDIR"); chosen && chosen[0] != '\0') return chosen;
    std::error_code ec;
    const fs::path program = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    // A folder, as /usr/bin/locale is a program.
    const fs::path beside = program.parent_path() / "locale";
    if (fs::is_directory(beside, ec)) return beside.string();
    return (program.parent_path() / ".." / "share" / "locale").lexically_normal().string();
}

void startInPlayersLanguage() {
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
    const std::string folder = localeFolder();
    if (!folder.empty()) bindtextdomain(kTextDomain, folder.c_str());
    // The terminal and the windows take UTF-8 whatever the locale's own character set.
    bind_textdomain_codeset(kTextDomain, "UTF-8");
}

std::string messagesLocale() {
    const char* name = std::setlocale(LC_MESSAGES, nullptr);
    return name ? name : "C";
}

}  // namespace tolvar
