#include "RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <algorithm>
#include <cstring>

namespace tolvar {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        if (fd >= 0) ::close(fd);
        fd = other.fd;
        other.fd = -1;
    }
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (fd >= 0) ::close(fd);
}

int FileDescriptor::release() {
    const int out = fd;
    fd = -1;
    return out;
}

namespace {

ReadRefusal systemRefusal(int error) {
    if (error == ENOENT) return {"no such file"};
    return {std::string("cannot be read: ") + std::strerror(error)};
}

// What a file that is not a regular one is, in words.
const char* kindOfNonRegular(mode_t mode) {
    if (S_ISFIFO(mode)) return "a named pipe";
    if (S_ISCHR(mode)) return "a character device";
    if (S_ISBLK(mode)) return "a block device";
    if (S_ISSOCK(mode)) return "a socket";
    return "not a plain file";
}

}  // namespace

std::variant<FileDescriptor, ReadRefusal> openRegularFile(const std::string& path) {
    if (path.empty()) return ReadRefusal{"no file name"};
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file.fd < 0) {
        // A socket cannot be opened at all; say what it is rather than "no such device".
        struct stat info {};
        if (errno == ENXIO && ::stat(path.c_str(), &info) == 0 && S_ISSOCK(info.st_mode))
            return ReadRefusal{"is not a regular file (a socket)"};
        return systemRefusal(errno);
    }
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return systemRefusal(errno);
    if (S_ISDIR(info.st_mode)) return ReadRefusal{"is a folder, not a file"};
    if (!S_ISREG(info.st_mode))
        return ReadRefusal{std::string("is not a regular file (") + kindOfNonRegular(info.st_mode) + ")"};
    const int flags = ::fcntl(file.fd, F_GETFL);
    if (flags < 0 || ::fcntl(file.fd, F_SETFL, flags & ~O_NONBLOCK) != 0) return systemRefusal(errno);
    return file;
}

std::variant<std::string, ReadRefusal> readRegularFile(const std::string& path, std::uintmax_t maxBytes) {
    auto opened = openRegularFile(path);
    if (auto* refusal = std::get_if<ReadRefusal>(&opened)) return std::move(*refusal);
    const FileDescriptor& file = std::get<FileDescriptor>(opened);
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return systemRefusal(errno);
    const auto size = static_cast<std::uintmax_t>(info.st_size);
    if (size > maxBytes)
        return ReadRefusal{"is too large (" + std::to_string(size) + " bytes; at most " + std::to_string(maxBytes) + ")",
                           size};
    std::string bytes;
    bytes.resize(static_cast<std::size_t>(size));
    std::size_t got = 0;
    // The file may grow or shrink while it is read: read up to the limit, until the end.
    for (;;) {
        if (got == bytes.size()) {
            if (bytes.size() >= maxBytes) {
                char probe = 0;
                const ssize_t more = ::read(file.fd, &probe, 1);
                if (more > 0) return ReadRefusal{"is too large (it grew past " + std::to_string(maxBytes) + " bytes)"};
                if (more < 0 && errno == EINTR) continue;
                if (more < 0) return systemRefusal(errno);
                break;
            }
            bytes.resize(std::min<std::uintmax_t>(maxBytes, bytes.size() + 65536));
        }
        const ssize_t n = ::read(file.fd, bytes.data() + got, bytes.size() - got);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return systemRefusal(errno);
        if (n == 0) break;
        got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    return bytes;
}

std::string shownPath(const std::string& path) {
    std::string out;
    out.reserve(path.size());
    for (const char c : path) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '\n') out += "\\n";
        else if (c == '\t') out += "\\t";
        else if (c == '\r') out += "\\r";
        else if (u < 0x20 || u == 0x7F) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02x", u);
            out += buffer;
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace tolvar
