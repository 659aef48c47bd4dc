#include "desktop/PageOpener.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>

#include "desktop/Descriptor.h"

extern char** environ;

namespace tolvar {

namespace {

// A descriptor of the process that becomes readable when it ends (Linux 5.3), asked of the kernel
// directly: the C library's own declaration is not usable from C++ everywhere.
int processDescriptor(pid_t pid) { return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)); }

void postEnded(Sint32 code) {
    SDL_Event event{};
    event.type = PageOpener::endedEventType();
    event.user.code = code;
    SDL_PushEvent(&event);
}

}  // namespace

// A started command, watched by a thread of its own until it ends (then reaped and told through
// an SDL event) or until the watch is stopped.
struct PageOpener::Watch {
    const pid_t pid;
    const Descriptor process;  // readable once the command has ended
    const Descriptor stop;     // written to stop watching
    std::atomic<bool> ended{false};
    std::thread thread;

    Watch(pid_t commandPid, int processFd, int stopFd) : pid(commandPid), process(processFd), stop(stopFd) {
        thread = std::thread([this] { watch(); });
    }
    ~Watch() {
        // Adding 1 to an event counter that is never read back cannot fail.
        const std::uint64_t one = 1;
        if (!ended && ::write(stop.get(), &one, sizeof one) < 0) {
        }
        thread.join();
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    void watch() {
        pollfd fds[2] = {{process.get(), POLLIN, 0}, {stop.get(), POLLIN, 0}};
        for (;;) {
            const int ready = ::poll(fds, 2, -1);
            if (ready < 0 && errno == EINTR) continue;
            if (ready < 0 || fds[1].revents != 0) return;
            if (fds[0].revents != 0) break;
        }
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        ended = true;
        postEnded(WIFEXITED(status) ? WEXITSTATUS(status) : kKilled);
    }
};

PageOpener::PageOpener(std::string command) : command_(std::move(command)) {}

PageOpener::~PageOpener() = default;

Uint32 PageOpener::endedEventType() {
    static const Uint32 type = SDL_RegisterEvents(1);
    return type;
}

std::string PageOpener::open(const std::string& path) {
    forgetEnded();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::string command = command_, file = path;
    char* argv[] = {command.data(), file.data(), nullptr};
    pid_t pid = 0;
    const int failed = posix_spawnp(&pid, command_.c_str(), &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed == ENOENT) return command_ + " is not installed";
    if (failed != 0) return command_ + " cannot be started: " + std::strerror(failed);
    // Without a process descriptor (a kernel older than 5.3) the command is not watched: it is
    // taken as having opened the page.
    const int processFd = processDescriptor(pid);
    const int stopFd = processFd >= 0 ? eventfd(0, EFD_CLOEXEC) : -1;
    if (stopFd < 0) {
        if (processFd >= 0) ::close(processFd);
        return {};
    }
    watches_.push_back(std::make_unique<Watch>(pid, processFd, stopFd));
    return {};
}

void PageOpener::forgetEnded() {
    std::erase_if(watches_, [](const std::unique_ptr<Watch>& w) { return w->ended.load(); });
}

}  // namespace tolvar
