#include "desktop/FileWatch.h"

#include <limits.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <thread>
#include <vector>

#include "desktop/Descriptor.h"

namespace tolvar {

namespace {

// What an editor's save or a rename over the file does to its folder.
constexpr std::uint32_t kChanges =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_ATTRIB;

// A folder to watch and the name in it that matters.
struct WatchedName {
    std::filesystem::path folder;
    std::string name;
};

std::vector<WatchedName> namesToWatch(const std::string& path) {
    const std::filesystem::path file = std::filesystem::absolute(path);
    std::vector<WatchedName> names{{file.parent_path(), file.filename().string()}};
    std::error_code ec;
    if (std::filesystem::is_symlink(file, ec)) {
        const std::filesystem::path target = std::filesystem::weakly_canonical(file, ec);
        if (!ec && target != file) names.push_back({target.parent_path(), target.filename().string()});
    }
    return names;
}

void postChanged() {
    SDL_Event event{};
    event.type = FileWatch::changedEventType();
    SDL_PushEvent(&event);
}

}  // namespace

struct FileWatch::Waiter {
    Descriptor notify;
    Descriptor stop;  // written to end the thread
    std::vector<std::pair<int, std::string>> watched;  // watch descriptor, name
    std::thread thread;

    Waiter(int notifyFd, int stopFd) : notify(notifyFd), stop(stopFd) {}
    ~Waiter() {
        if (thread.joinable()) {
            // Adding 1 to an event counter that is never read back cannot fail.
            const std::uint64_t one = 1;
            if (::write(stop.get(), &one, sizeof one) < 0) {
            }
            thread.join();
        }
    }
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

    bool concerns(const inotify_event& event) const {
        for (const auto& [wd, name] : watched)
            if (wd == event.wd && (event.len == 0 || name == event.name)) return true;
        return false;
    }

    void wait() {
        alignas(inotify_event) char buffer[sizeof(inotify_event) + NAME_MAX + 1];
        pollfd fds[2] = {{notify.get(), POLLIN, 0}, {stop.get(), POLLIN, 0}};
        for (;;) {
            const int ready = ::poll(fds, 2, -1);
            if (ready < 0 && errno == EINTR) continue;
            if (ready < 0 || fds[1].revents != 0) return;
            const ssize_t got = ::read(notify.get(), buffer, sizeof buffer);
            if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
            if (got <= 0) return;
            bool changed = false;
            for (ssize_t at = 0; at < got;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
                changed = changed || concerns(*event) || (event->mask & IN_Q_OVERFLOW) != 0;
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
            if (changed) postChanged();
        }
    }
};

FileWatch::FileWatch(const std::string& path) {
    const int notifyFd = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    const int stopFd = notifyFd >= 0 ? eventfd(0, EFD_CLOEXEC) : -1;
    auto waiter = std::make_unique<Waiter>(notifyFd, stopFd);
    if (!waiter->notify.valid() || !waiter->stop.valid()) return;
    for (const WatchedName& w : namesToWatch(path)) {
        const int wd = inotify_add_watch(notifyFd, w.folder.c_str(), kChanges);
        if (wd < 0) return;
        waiter->watched.emplace_back(wd, w.name);
    }
    waiter->thread = std::thread([w = waiter.get()] { w->wait(); });
    waiter_ = std::move(waiter);
}

FileWatch::~FileWatch() = default;

Uint32 FileWatch::changedEventType() {
    static const Uint32 type = SDL_RegisterEvents(1);
    return type;
}

}  // namespace tolvar
