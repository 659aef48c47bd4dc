// The game's timers: intervals, stopping from inside an action, and no burst of missed ticks
// after the thread was blocked (an alert, the removal flash, a falling piece).
#include <gtest/gtest.h>

#include <utility>

#include "desktop/RunLoop.h"

namespace tolvar {
namespace {

struct TimersTest : ::testing::Test {
    double now = 100.0;
    Timers timers{[this] { return now; }};
    int fireAfter(double seconds) {
        now += seconds;
        return timers.fireDue();
    }
};

TEST_F(TimersTest, FireOncePerIntervalAndReportTheNextDueTime) {
    EXPECT_LT(timers.secondsUntilNextDue(), 0.0) << "no timer: the loop may sleep until an event";
    int ticks = 0;
    timers.schedule(0.033, [&] { ++ticks; });
    EXPECT_NEAR(timers.secondsUntilNextDue(), 0.033, 1e-9);
    EXPECT_EQ(fireAfter(0.020), 0);
    EXPECT_NEAR(timers.secondsUntilNextDue(), 0.013, 1e-9);
    EXPECT_EQ(fireAfter(0.013), 1);
    for (int i = 0; i < 10; ++i) fireAfter(0.033);
    EXPECT_EQ(ticks, 11) << "ten intervals of steady running give ten ticks";
}

TEST_F(TimersTest, ABlockedThreadResumesWithoutABurstOfMissedTicks) {
    int eventTicks = 0, scoreTicks = 0;
    timers.schedule(0.033, [&] {
        if (++eventTicks == 1) now += 2.0;  // an alert stays up for two seconds
    });
    timers.schedule(0.033, [&] { ++scoreTicks; });
    fireAfter(0.033);
    EXPECT_EQ(eventTicks, 1);
    EXPECT_LE(scoreTicks, 1) << "due when the alert went up: it fires once, not sixty times";
    int fired = 0;
    for (int i = 0; i < 5; ++i) fired += timers.fireDue();
    EXPECT_LE(fired, 2) << "missed ticks must not be fired in a burst";
    EXPECT_LE(timers.secondsUntilNextDue(), 0.033 + 1e-9) << "each timer is next due within one interval";
}

TEST_F(TimersTest, ActionsMayStopTimersAndStartNewOnesThatWaitAWholeInterval) {
    int a = 0, b = 0, self = 0, started = 0;
    Timers::Id idB = 0, idSelf = 0;
    const Timers::Id idA = timers.schedule(0.01, [&] {
        if (++a == 1) timers.schedule(0.01, [&] { ++started; });
        timers.invalidate(idB);
    });
    idB = timers.schedule(0.01, [&] { ++b; });
    idSelf = timers.schedule(0.01, [&] {
        ++self;
        timers.invalidate(idSelf);
    });
    fireAfter(0.01);
    EXPECT_EQ(b, 0) << "stopped before its turn in the same pass";
    EXPECT_FALSE(timers.isValid(idB));
    EXPECT_EQ(started, 0) << "a timer started by an action is not due in the same pass";
    fireAfter(0.01);
    EXPECT_EQ(a, 2);
    EXPECT_EQ(self, 1) << "a timer that stopped itself";
    EXPECT_FALSE(timers.isValid(idSelf));
    EXPECT_EQ(started, 1);
    timers.invalidate(0);      // no timer: ignored
    timers.invalidate(12345);  // unknown: ignored
    EXPECT_TRUE(timers.isValid(idA));
}

}  // namespace
}  // namespace tolvar
