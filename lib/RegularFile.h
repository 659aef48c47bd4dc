// Reading a whole file that the game or a tool was told to open, without ever waiting on it: a
// named pipe, a device or a socket given in place of a file is refused with what it is, instead
// of blocking the program until someone writes to it (or reading forever from /dev/zero).
#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace tolvar {

struct FileDescriptor {
    explicit FileDescriptor(int fd = -1) : fd(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&& other) noexcept : fd(other.fd) { other.fd = -1; }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();
    // Hands the descriptor over (to fdopen, say); this object no longer closes it.
    int release();
    int fd;
};

struct ReadRefusal {
    // "no such file", "is not a regular file (a named pipe)", "is a folder, not a file",
    // "is too large (N bytes; at most M)", "cannot be read: <system reason>"
    std::string reason;
    std::uintmax_t tooLargeSize = 0;  // the file's size when that is the reason
};

// Opens path for reading with O_NONBLOCK (so a FIFO without a writer does not wait), checks on
// the open descriptor that it is a regular file, then makes reads blocking again.
std::variant<FileDescriptor, ReadRefusal> openRegularFile(const std::string& path);

// The whole contents of the regular file at path, refused past maxBytes.
std::variant<std::string, ReadRefusal> readRegularFile(const std::string& path, std::uintmax_t maxBytes);

// path as it can be shown in a message on one line: control characters (a newline, a tab, an
// escape) become \n, \t, \x1b; everything else is kept as it is.
std::string shownPath(const std::string& path);

}  // namespace tolvar
