// Where a game's diagnostic lines go ("processing event 8", "Adding action 1 to event 1", ...):
// a stream, standard output unless told otherwise, or nowhere. Each game has its own, so two
// games played side by side write to two places.
#pragma once

#include <cstdio>

namespace tolvar {

class GameOutput {
public:
    GameOutput() = default;  // standard output
    explicit GameOutput(std::FILE* stream) : stream_(stream) {}
    // Lines that go nowhere, and cost no formatting.
    static GameOutput discarded() { return GameOutput(nullptr); }

    bool printing() const { return stream_ != nullptr; }
    std::FILE* stream() const { return stream_; }

    // printf into the stream; nothing when the lines are discarded.
    void print(const char* format, ...) const __attribute__((format(printf, 2, 3)));

private:
    std::FILE* stream_ = stdout;
};

}  // namespace tolvar
