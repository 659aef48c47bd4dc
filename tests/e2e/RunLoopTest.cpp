// The game's timers: intervals, stopping from inside an action, and no burst of missed ticks
// after the thread was blocked (an alert, the removal flash, a falling piece).
#include <gtest/gtest.h>

#include "platform/RunLoop.h"

namespace tolvar {
namespace {

struct FakeClock {
    double now = 100.0;
};

TEST(Timers, FireOncePerIntervalAndReportTheNextDueTime) {
    FakeClock clock;
    Timers timers([&] { return clock.now; });
    EXPECT_LT(timers.secondsUntilNextDue(), 0.0) << "no timer: the loop may sleep until an event";
    int ticks = 0;
    timers.schedule(0.033, [&] { ++ticks; });
    EXPECT_NEAR(timers.secondsUntilNextDue(), 0.033, 1e-9);
    EXPECT_EQ(timers.fireDue(), 0);
    clock.now += 0.020;
    EXPECT_EQ(timers.fireDue(), 0);
    EXPECT_NEAR(timers.secondsUntilNextDue(), 0.013, 1e-9);
    clock.now += 0.013;
    EXPECT_EQ(timers.fireDue(), 1);
    EXPECT_EQ(ticks, 1);
    // Ten intervals of steady running give ten ticks.
    for (int i = 0; i < 10; ++i) {
        clock.now += 0.033;
        timers.fireDue();
    }
    EXPECT_EQ(ticks, 11);
}

TEST(Timers, ABlockedThreadResumesWithoutABurstOfMissedTicks) {
    FakeClock clock;
    Timers timers([&] { return clock.now; });
    int eventTicks = 0, scoreTicks = 0;
    bool block = true;
    timers.schedule(0.033, [&] {
        ++eventTicks;
        if (block) {  // an alert stays up for two seconds
            clock.now += 2.0;
            block = false;
        }
    });
    timers.schedule(0.033, [&] { ++scoreTicks; });
    clock.now += 0.033;
    timers.fireDue();
    EXPECT_EQ(eventTicks, 1);
    // The other timer was due when the alert went up: it fires once, not sixty times.
    const int scoresAfterBlock = scoreTicks;
    EXPECT_LE(scoresAfterBlock, 1);
    int fired = 0;
    for (int i = 0; i < 5; ++i) fired += timers.fireDue();
    EXPECT_LE(fired, 2) << "missed ticks must not be fired in a burst";
    EXPECT_LE(eventTicks + scoreTicks, 4);
    // And each timer is next due within one interval.
    EXPECT_LE(timers.secondsUntilNextDue(), 0.033 + 1e-9);
}

TEST(Timers, AnActionMayStopItselfOrAnotherTimer) {
    FakeClock clock;
    Timers timers([&] { return clock.now; });
    int a = 0, b = 0;
    Timers::Id idB = 0;
    Timers::Id idA = timers.schedule(0.01, [&] {
        ++a;
        timers.invalidate(idB);
    });
    idB = timers.schedule(0.01, [&] { ++b; });
    EXPECT_TRUE(timers.isValid(idA));
    EXPECT_TRUE(timers.isValid(idB));
    clock.now += 0.01;
    timers.fireDue();
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 0) << "stopped before its turn in the same pass";
    EXPECT_FALSE(timers.isValid(idB));

    Timers::Id self = 0;
    int c = 0;
    self = timers.schedule(0.01, [&] {
        ++c;
        timers.invalidate(self);
    });
    clock.now += 0.01;
    timers.fireDue();
    clock.now += 0.01;
    timers.fireDue();
    EXPECT_EQ(c, 1);
    EXPECT_FALSE(timers.isValid(self));
    timers.invalidate(0);      // no timer: ignored
    timers.invalidate(12345);  // unknown: ignored
    EXPECT_TRUE(timers.isValid(idA));
}

TEST(Timers, ATimerScheduledFromAnActionWaitsAWholeInterval) {
    FakeClock clock;
    Timers timers([&] { return clock.now; });
    int scores = 0;
    bool started = false;
    timers.schedule(0.033, [&] {
        if (!started) {
            started = true;
            timers.schedule(0.033, [&] { ++scores; });
        }
    });
    clock.now += 0.033;
    timers.fireDue();
    EXPECT_EQ(scores, 0);
    clock.now += 0.033;
    timers.fireDue();
    EXPECT_EQ(scores, 1);
}

}  // namespace
}  // namespace tolvar
