#include "desktop/RunLoop.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tolvar {

double monotonicSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

Timers::Timers(Clock clock) : clock_(std::move(clock)) {}

Timers::Id Timers::schedule(double intervalSeconds, std::function<void()> action) {
    Timer t;
    t.id = nextId_++;
    t.interval = intervalSeconds > 0.0 ? intervalSeconds : 0.0;
    t.due = clock_() + t.interval;
    t.action = std::move(action);
    timers_.push_back(std::move(t));
    return timers_.back().id;
}

void Timers::invalidate(Id id) {
    if (id == 0) return;
    std::erase_if(timers_, [id](const Timer& t) { return t.id == id; });
}

bool Timers::isValid(Id id) const {
    return id != 0 &&
           std::any_of(timers_.begin(), timers_.end(), [id](const Timer& t) { return t.id == id; });
}

double Timers::secondsUntilNextDue() const {
    if (timers_.empty()) return -1.0;
    double due = timers_.front().due;
    for (const Timer& t : timers_) due = std::min(due, t.due);
    return std::max(0.0, due - clock_());
}

int Timers::fireDue() {
    // Collect the ids first: an action may schedule or invalidate timers.
    std::vector<Id> due;
    const double now = clock_();
    for (const Timer& t : timers_)
        if (t.due <= now) due.push_back(t.id);
    int fired = 0;
    for (Id id : due) {
        auto it = std::find_if(timers_.begin(), timers_.end(), [id](const Timer& t) { return t.id == id; });
        if (it == timers_.end()) continue;  // invalidated by an earlier action
        // Next due one interval after this one; a timer that fell behind (the thread was blocked)
        // resumes one interval from now instead of catching up.
        it->due += it->interval;
        const double after = clock_();
        if (it->due <= now) it->due = after + it->interval;
        std::function<void()> action = it->action;  // the action may invalidate its own timer
        action();
        ++fired;
        // A blocking action pushes every timer past the block, so none fires in a burst after it.
        const double end = clock_();
        if (end - after > 0.0) {
            for (Timer& t : timers_)
                if (t.due < end) t.due = std::max(t.due, end);
        }
    }
    return fired;
}

}  // namespace tolvar
