#include "core/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace tolvar {

FolderLock::FolderLock(const std::string& folder)
    : fd_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_ >= 0) {
        while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
}

FolderLock::~FolderLock() {
    if (fd_ >= 0) ::close(fd_);
}

}  // namespace tolvar
