// Being told when a file changes on disk: written and closed, replaced by a rename, made, removed
// or given other rights, as an editor's save does. The kernel tells (inotify); a thread of the
// watch waits for it and posts an SDL event, so nothing wakes while the file stays as it is.
#pragma once

#include <SDL.h>

#include <memory>
#include <string>

namespace tolvar {

class FileWatch {
public:
    // Watches the folder of path for that name; when path is a symbolic link, the folder of the
    // file it points at too. Check watching() afterwards.
    explicit FileWatch(const std::string& path);
    ~FileWatch();  // stops the thread
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    // False when the kernel cannot watch the file (no folder, the limit of watches reached): the
    // owner then has to look at the file itself from time to time.
    bool watching() const { return static_cast<bool>(waiter_); }

    // The SDL event posted on a change; several changes in a row may come as one event.
    static Uint32 changedEventType();

private:
    struct Waiter;
    std::unique_ptr<Waiter> waiter_;
};

}  // namespace tolvar
