#include "core/AtomicFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>

namespace tolvar {

namespace {

constexpr std::size_t kNoFailure = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> failAfterBytes{kNoFailure};
std::atomic<int> failureErrno{0};

// Closes the descriptor, and removes the file it was opened for unless kept.
class OpenFile {
public:
    OpenFile(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
    ~OpenFile() {
        if (fd_ >= 0) ::close(fd_);
        if (!kept_ && !path_.empty()) ::unlink(path_.c_str());
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int fd() const { return fd_; }
    // Closes the descriptor and keeps the file; returns the errno of a failed close, or 0.
    int closeAndKeep() {
        const int result = ::close(fd_);
        fd_ = -1;
        if (result != 0) return errno;
        kept_ = true;
        return 0;
    }

private:
    int fd_;
    std::string path_;
    bool kept_ = false;
};

// Writes all of bytes; returns 0 or the errno of the failure.
int writeAll(int fd, std::string_view bytes) {
    const std::size_t limit = failAfterBytes.load();
    std::size_t done = 0;
    while (done < bytes.size()) {
        std::size_t chunk = bytes.size() - done;
        if (limit != kNoFailure) {
            if (done >= limit) return failureErrno.load();
            chunk = std::min(chunk, limit - done);
        }
        const ssize_t n = ::write(fd, bytes.data() + done, chunk);
        if (n < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        done += static_cast<std::size_t>(n);
    }
    return 0;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

FileWriteError failure(const std::string& path, int errorNumber) {
    return FileWriteError{path, std::strerror(errorNumber)};
}

// Creates a file that did not exist, with the permissions 0666 less the umask.
int createNew(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

bool allDigits(const std::string& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of("0123456789") == std::string::npos;
}

// Removes the temporary files beside path that writers killed before their rename left behind:
// named ".<name>.<process>.<n>", their process is gone and nothing has written to them for a minute.
void removeLeftTemporaries(const std::string& path) {
    const std::string folder = folderOf(path), prefix = "." + nameOf(path) + ".";
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) return;
    const std::time_t now = std::time(nullptr);
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0) continue;
        const std::size_t dot = name.find('.', prefix.size());
        if (dot == std::string::npos) continue;
        const std::string process = name.substr(prefix.size(), dot - prefix.size());
        if (!allDigits(process) || !allDigits(name.substr(dot + 1))) continue;
        const pid_t writer = static_cast<pid_t>(std::stol(process));
        if (writer == ::getpid() || ::kill(writer, 0) == 0 || errno != ESRCH) continue;
        const std::string left = folder + "/" + name;
        struct stat info {};
        if (::lstat(left.c_str(), &info) == 0 && S_ISREG(info.st_mode) && now - info.st_mtime >= 60)
            ::unlink(left.c_str());
    }
    ::closedir(dir);
}

// Creates a new hidden file beside path, so that the rename stays within one file system, and
// returns its descriptor (or -1 with errno set) and its name.
int createTemporaryBeside(const std::string& path, std::string& name) {
    static std::atomic<unsigned> counter{0};
    removeLeftTemporaries(path);
    const std::string stem = folderOf(path) + "/." + nameOf(path) + "." + std::to_string(::getpid());
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = stem + "." + std::to_string(counter++);
        const int fd = createNew(name);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;  // errno is still EEXIST
}

// The file a path names once its symbolic links are followed (a link to a link too), so that a
// player's link stays a link and the file it points at is the one replaced. A path that is no
// link, or a loop of links, is itself.
std::string throughLinks(const std::string& path) {
    constexpr int kMaxLinks = 40;  // as the system follows them
    std::string at = path;
    for (int hop = 0; hop < kMaxLinks; ++hop) {
        std::error_code ec;
        const std::filesystem::path to = std::filesystem::read_symlink(at, ec);
        if (ec) return at;
        at = to.is_absolute() ? to.string() : folderOf(at) + "/" + to.string();
    }
    return path;
}

}  // namespace

std::optional<FileWriteError> writeFileAtomically(const std::string& path, std::string_view bytes) {
    const std::string replaced = throughLinks(path);  // messages name the path the game uses
    struct stat old {};
    const bool replacing = ::stat(replaced.c_str(), &old) == 0;
    if (replacing && S_ISDIR(old.st_mode)) return FileWriteError{path, "Is a directory"};

    std::string temporary;
    const int fd = createTemporaryBeside(replaced, temporary);
    if (fd < 0) return failure(path, errno);
    OpenFile file(fd, temporary);

    if (replacing && S_ISREG(old.st_mode) && ::fchmod(file.fd(), old.st_mode & 07777) != 0)
        return failure(path, errno);
    if (const int error = writeAll(file.fd(), bytes)) return failure(path, error);
    if (::fsync(file.fd()) != 0) return failure(path, errno);
    if (const int error = file.closeAndKeep()) return failure(path, error);
    if (::rename(temporary.c_str(), replaced.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        return failure(path, error);
    }
    // The rename itself reaches the disk with the folder.
    const int folder = ::open(folderOf(replaced).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return std::nullopt;
}

std::optional<FileWriteError> writeNewFile(const std::string& path, std::string_view bytes) {
    // Written whole beside it first, then linked in under its name: the link fails when anything
    // is there already, and a copy cut short by a crash never appears under the name.
    std::string temporary;
    const int fd = createTemporaryBeside(path, temporary);
    if (fd < 0) return failure(path, errno);
    OpenFile file(fd, temporary);
    if (const int error = writeAll(file.fd(), bytes)) return failure(path, error);
    if (::fsync(file.fd()) != 0) return failure(path, errno);
    if (::link(temporary.c_str(), path.c_str()) != 0) return failure(path, errno);
    // The temporary name goes with the descriptor; the file stays under path.
    return std::nullopt;
}

ScopedWriteFailure::ScopedWriteFailure(std::size_t bytesBeforeFailure, int errorNumber) {
    failureErrno = errorNumber;
    failAfterBytes = bytesBeforeFailure;
}

ScopedWriteFailure::~ScopedWriteFailure() { failAfterBytes = kNoFailure; }

}  // namespace tolvar
