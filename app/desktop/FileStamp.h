// What tells whether a file changed on disk: whether it is there, which file it is, its size and
// when it was written. An editor that writes in place or renames over the old file changes it.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <ctime>
#include <string>

namespace tolvar {

struct FileStamp {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};

    static FileStamp of(const std::string& path) {
        FileStamp s;
        struct stat info {};
        if (::stat(path.c_str(), &info) != 0) return s;
        s.exists = true;
        s.device = info.st_dev;
        s.inode = info.st_ino;
        s.size = info.st_size;
        s.modified = info.st_mtim;
        return s;
    }
    bool operator==(const FileStamp& o) const {
        return exists == o.exists && device == o.device && inode == o.inode && size == o.size &&
               modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec;
    }
};

}  // namespace tolvar
