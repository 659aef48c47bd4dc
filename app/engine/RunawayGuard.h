// A chain of events that keep queueing one another, so that the queue never runs empty, is a loop
// in the rules: the built-in games settle within 6 events of a move (see docs/writing-games.md), so
// a chain past kMaxChainedEvents is stopped rather than run for ever. Past kShownChainedEvents its
// flashes and falls are no longer held on screen: a real cascade ends before that, and a loop then
// reaches the bound in about a second instead of 0.6 s of flashing per event.
#pragma once

#include <cstddef>

namespace tolvar {

class RunawayGuard {
public:
    static constexpr std::size_t kMaxChainedEvents = 1000;
    static constexpr std::size_t kShownChainedEvents = 12;

    // Counts one event about to run; true when the chain has grown past the bound.
    bool runsAway() { return ++chained_ > kMaxChainedEvents; }
    // The chain is longer than any real game's: its motion is not worth showing.
    bool outrunsRealGames() const { return chained_ > kShownChainedEvents; }
    // The queue ran empty (or was emptied): the next event starts a new chain.
    void queueEmptied() { chained_ = 0; }

private:
    std::size_t chained_ = 0;
};

}  // namespace tolvar
