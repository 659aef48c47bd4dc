// The game's repeating timers on the one thread of the application.
//
// The run loop sleeps until the next timer is due, the next step of what the game window plays
// is due, or an event arrives. No action waits inside the loop: the removal flash, a falling
// piece and an alert are steps the window plays afterwards. A timer that comes round late (a
// busy machine) fires once: the ticks it missed are dropped, never fired in a burst afterwards.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace tolvar {

class Timers {
public:
    using Id = int;
    using Clock = std::function<double()>;  // seconds, monotonic

    explicit Timers(Clock clock);

    // A repeating timer, first due one interval from now. Returns its id (never 0).
    Id schedule(double intervalSeconds, std::function<void()> action);
    // Stops a timer (also from inside its own action); unknown or 0 ids are ignored.
    void invalidate(Id id);
    bool isValid(Id id) const;

    // Seconds until the next timer is due (0 when one is overdue), or a negative value when no
    // timer runs.
    double secondsUntilNextDue() const;
    // Fires every timer that is due now, each at most once. Returns how many fired.
    int fireDue();

private:
    struct Timer {
        Id id = 0;
        double interval = 0.0;
        double due = 0.0;
        std::function<void()> action;
    };
    Clock clock_;
    std::vector<Timer> timers_;
    Id nextId_ = 1;
};

// Seconds on the monotonic clock.
double monotonicSeconds();

}  // namespace tolvar
