// A chain of events that keep queueing one another, so that the queue never runs empty, is a loop
// in the rules: the built-in games settle within a few dozen events of a move (see
// docs/writing-games.md), so a chain past kMaxChainedEvents is stopped rather than run for ever.
#pragma once

#include <cstddef>

namespace tolvar {

class RunawayGuard {
public:
    static constexpr std::size_t kMaxChainedEvents = 1000;

    // Counts one event about to run; true when the chain has grown past the bound.
    bool runsAway() { return ++chained_ > kMaxChainedEvents; }
    // The queue ran empty (or was emptied): the next event starts a new chain.
    void queueEmptied() { chained_ = 0; }

private:
    std::size_t chained_ = 0;
};

}  // namespace tolvar
