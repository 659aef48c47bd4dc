// Writing a whole file so that a reader only ever sees the old contents or the new ones: the
// bytes go to a temporary file in the same folder, are flushed to the disk, and the temporary
// file is renamed over the old one. A write that fails leaves the old file as it was. Each write
// first removes the temporary files that writers killed before their rename left beside the file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tolvar {

struct FileWriteError {
    std::string path;    // the file that was to be written
    std::string reason;  // why it was not: "Permission denied", "No space left on device", ...

    // "<path>: <reason>", for standard error and alerts.
    std::string message() const { return path + ": " + reason; }
};

// Replaces the file at path by bytes. Returns the error when the file could not be written; the
// temporary file is then removed and the old file, if any, is untouched. A new file gets the
// permissions 0666 less the umask; a replaced file keeps its own. A path that is a symbolic link
// is written through: the file it points at is replaced (beside it), and the link stays.
std::optional<FileWriteError> writeFileAtomically(const std::string& path, std::string_view bytes);

// Writes bytes to a new file at path, failing with "File exists" when anything is there already.
// Used to copy a file aside without ever writing over an earlier copy.
std::optional<FileWriteError> writeNewFile(const std::string& path, std::string_view bytes);

// For tests: while one is alive, writes of this process fail with errorNumber (an errno value)
// once bytesBeforeFailure bytes of a file have been written, as a full disk would.
class ScopedWriteFailure {
public:
    ScopedWriteFailure(std::size_t bytesBeforeFailure, int errorNumber);
    ~ScopedWriteFailure();
    ScopedWriteFailure(const ScopedWriteFailure&) = delete;
    ScopedWriteFailure& operator=(const ScopedWriteFailure&) = delete;
};

}  // namespace tolvar
