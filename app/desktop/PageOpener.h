// Opens a file in the desktop's viewer with xdg-open, without waiting for it: the run loop goes
// on, and once xdg-open has ended an SDL event tells how it went.
#pragma once

#include <SDL.h>

#include <memory>
#include <string>
#include <vector>

namespace tolvar {

class PageOpener {
public:
    explicit PageOpener(std::string command = "xdg-open");
    // Stops watching; a viewer that is still open stays open.
    ~PageOpener();
    PageOpener(const PageOpener&) = delete;
    PageOpener& operator=(const PageOpener&) = delete;

    // Starts the command on path. Returns an empty text, or why it could not start ("xdg-open
    // is not installed").
    std::string open(const std::string& path);

    // The SDL event posted when a started command has ended: user.code is its exit status, or
    // kKilled when a signal ended it.
    static Uint32 endedEventType();
    static constexpr Sint32 kKilled = -1;
    // On that event: forgets the commands that have ended.
    void forgetEnded();

private:
    struct Watch;
    std::string command_;
    std::vector<std::unique_ptr<Watch>> watches_;
};

}  // namespace tolvar
