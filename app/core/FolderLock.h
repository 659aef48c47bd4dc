// An exclusive lock on a folder, held while alive: the copies of the game that read, merge and
// write a file of the data folder (the best scores, the saved games) take turns under it.
#pragma once

#include <string>

namespace tolvar {

class FolderLock {
public:
    // A folder that cannot be opened is not locked; the write that follows then fails and says why.
    explicit FolderLock(const std::string& folder);
    ~FolderLock();  // closing releases the lock
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int fd_;
};

}  // namespace tolvar
