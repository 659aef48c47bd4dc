// Whole-file reads and the lookup of the game's bundled resources.
#include "FileIO.h"

#include "RegularFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <variant>

namespace fs = std::filesystem;

namespace {

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

}  // namespace

FileData getFileData(const char* path) {
    FileData data;
    const char* shown = path != nullptr ? path : "";
    std::error_code ec;
    if (path == nullptr || path[0] == '\0' || !fs::exists(path, ec)) {
        printf("No file exists at %s\n", shown);
        return data;
    }
    if (fs::is_directory(path, ec)) {
        fprintf(stderr, "%s: is a folder, not a file\n", shown);
        return data;
    }
    // A named pipe or a device in place of a model is refused instead of waited on or read forever.
    auto opened = tolvar::openRegularFile(path);
    if (const auto* refusal = std::get_if<tolvar::ReadRefusal>(&opened)) {
        fprintf(stderr, "%s: %s\n", tolvar::shownPath(shown).c_str(), refusal->reason.c_str());
        return data;
    }
    std::unique_ptr<std::FILE, FileCloser> file(fdopen(std::get<tolvar::FileDescriptor>(opened).fd, "rb"));
    if (!file) {
        fprintf(stderr, "%s: cannot be opened: %s\n", tolvar::shownPath(shown).c_str(), std::strerror(errno));
        return data;
    }
    std::get<tolvar::FileDescriptor>(opened).release();
    try {
        char chunk[65536];
        for (;;) {
            const std::size_t got = std::fread(chunk, 1, sizeof chunk, file.get());
            data.bytes.insert(data.bytes.end(), chunk, chunk + got);
            if (got < sizeof chunk) break;
        }
    } catch (const std::bad_alloc&) {
        fprintf(stderr, "%s: too large to read into memory\n", shown);
        data.bytes.clear();
        return data;
    }
    if (std::ferror(file.get())) {
        fprintf(stderr, "%s: cannot be read: %s\n", shown, std::strerror(errno));
        data.bytes.clear();
        return data;
    }
    data.ok = true;
    return data;
}

std::string programFolder() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    return exe.parent_path().string();
}

namespace {

// Where the resources may be: beside the program in the build tree, or the installed share.
std::vector<fs::path> resourceFolders() {
    const fs::path folder = programFolder();
    if (folder.empty()) return {};
    return {folder / "resources", (folder / ".." / "share" / "tolvar").lexically_normal()};
}

}  // namespace

std::string resourceFolder() {
    std::error_code ec;
    for (const fs::path& folder : resourceFolders())
        if (fs::is_directory(folder, ec)) return folder.string();
    return {};
}

void getResourcePath(const char* name, const char* type, char* path) {
    if (path == nullptr) return;
    path[0] = '\0';
    if (name != nullptr && type != nullptr && name[0] != '\0') {
        const std::string file = std::string(name) + "." + type;
        std::error_code ec;
        for (const fs::path& folder : resourceFolders()) {
            const fs::path candidate = folder / file;
            if (fs::is_regular_file(candidate, ec)) {
                const std::string found = candidate.string();
                if (found.size() < 4096) std::memcpy(path, found.c_str(), found.size() + 1);
                break;
            }
        }
    }
    printf("resource: %s\n", path);
}
