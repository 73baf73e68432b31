#include <gtest/gtest.h>

#include <algorithm>

#include "SteppedSleeps.h"
#include "platform/Pacer.h"
#include "platform/SystemSleeps.h"

namespace veltor::test {
namespace {

using SteppedPacer = BasicPacer<SteppedSleeps>;
constexpr int64_t kUs = 1000;
constexpr int64_t kGap = 2760 * kUs;

// Waits one gap after another; checks that each ends on its deadline (unless a wake-up is scripted later
// than the margin) and that no sleep was planned past the deadline minus the margin in force.
void WaitGaps(SteppedPacer& pacer, int gaps, bool onTime = true) {
    for (int i = 0; i < gaps; ++i) {
        const int64_t deadline = SteppedSleeps::now + kGap;
        const int64_t margin = pacer.Margin();
        const int64_t before[] = {SteppedSleeps::sleeps[0], SteppedSleeps::sleeps[1]};
        pacer.WaitUntil(deadline);
        ASSERT_GE(SteppedSleeps::now, deadline);
        if (onTime) {
            ASSERT_LT(SteppedSleeps::now, deadline + SteppedSleeps::kPauseNanoseconds);
        }
        for (int kind = 0; kind < SteppedSleeps::kKinds; ++kind) {
            ASSERT_LE(SteppedSleeps::sleeps[kind] - before[kind], 1);
            if (SteppedSleeps::sleeps[kind] != before[kind]) {
                ASSERT_LE(SteppedSleeps::lastAsked[kind], deadline - margin);
            }
        }
    }
}

class PacerTest : public testing::Test {
protected:
    void SetUp() override {
        SteppedSleeps::Reset();
        SteppedSleeps::now = 1000 * kUs;
        SteppedSleeps::offered[1] = false;
        SteppedSleeps::lateness[0] = 60 * kUs;
    }
    SteppedPacer pacer;
};

// Cautious at first; within a few hundred sleeps down to the wake-ups' percentile and its pad.
TEST_F(PacerTest, MarginStartsCautiousAndNarrowsToTheLearnedLateness) {
    EXPECT_EQ(pacer.Margin(), SteppedPacer::kCautiousMarginNanoseconds);
    WaitGaps(pacer, 300);
    EXPECT_LT(pacer.Margin(), 150 * kUs);
    EXPECT_GE(pacer.Margin(), 60 * kUs + WakeMargin::kPadNanoseconds);
}

// A lone late wake-up leaves the margin; a burst widens it at once; quiet after it narrows it only slowly.
TEST_F(PacerTest, ABurstOfLateWakeUpsWidensAtOnceAndQuietNarrowsSlowly) {
    WaitGaps(pacer, 300);
    const int64_t settled = pacer.Margin();
    SteppedSleeps::lateness[0] = 500 * kUs;
    WaitGaps(pacer, 1, false);
    EXPECT_EQ(pacer.Margin(), settled);
    SteppedSleeps::lateness[0] = 60 * kUs;
    WaitGaps(pacer, static_cast<int>(WakeMargin::kBurstSamples) + 1);
    SteppedSleeps::lateness[0] = 500 * kUs;
    WaitGaps(pacer, 1, false);
    EXPECT_LT(pacer.Margin(), 150 * kUs);
    WaitGaps(pacer, 1, false);
    EXPECT_GE(pacer.Margin(), 500 * kUs + WakeMargin::kPadNanoseconds);
    SteppedSleeps::lateness[0] = 60 * kUs;
    WaitGaps(pacer, 10);
    EXPECT_GT(pacer.Margin(), 400 * kUs);
    WaitGaps(pacer, 1000);
    EXPECT_LT(pacer.Margin(), settled + 10 * kUs);
}

// With less than the margin left, the pacer only spins.
TEST_F(PacerTest, NeverSleepsWhenLessThanTheMarginRemains) {
    pacer.WaitUntil(SteppedSleeps::now + SteppedPacer::kCautiousMarginNanoseconds - 1);
    EXPECT_EQ(SteppedSleeps::sleeps[0], 0);
}

// Of two kinds of sleep, the one that wakes closer to its time is found by trial and then used.
TEST_F(PacerTest, TrialsFindTheKindThatWakesClosest) {
    SteppedSleeps::offered[1] = true;
    SteppedSleeps::lateness[0] = 600 * kUs;
    SteppedSleeps::lateness[1] = 80 * kUs;
    WaitGaps(pacer, 600);
    const int64_t slow = SteppedSleeps::sleeps[0];
    WaitGaps(pacer, 300);
    EXPECT_LT(SteppedSleeps::sleeps[0] - slow, 300 / SteppedPacer::kTrialInterval + 2);
    EXPECT_LT(pacer.Margin(), 150 * kUs);
}

// A pass that sleeps near its time gives way to the next kind when the narrowest cannot sleep so short (whole
// milliseconds for a pass of less than one): it must sleep, not return at once and run the pass early.
TEST_F(PacerTest, SleepNearFallsBackToAKindThatCanSleepSoShort) {
    SteppedSleeps::offered[1] = true;
    SteppedSleeps::lateness[1] = 80 * kUs;
    SteppedSleeps::shortest[0] = 1000 * kUs;
    for (int pass = 1; pass <= 100; ++pass) {
        pacer.SleepNear(SteppedSleeps::now + 900 * kUs);
        ASSERT_EQ(SteppedSleeps::sleeps[1], pass);
    }
    EXPECT_EQ(SteppedSleeps::sleeps[0], 0);
}

// The platform's own sleeps: each kind it offers asks for a wake-up no later than the one wanted, and the
// thread does not come back before it.
TEST(SystemSleeps, EachOfferedKindWakesAfterWhatItAskedFor) {
    SystemSleeps sleeps;
    int offered = 0;
    for (int kind = 0; kind < SystemSleeps::kKinds; ++kind) {
        if (!sleeps.Offers(kind)) continue;
        ++offered;
        const int64_t start = sleeps.Now();
        const int64_t wake = start + 2000 * kUs;
        const int64_t asked = sleeps.Sleep(kind, wake);
        SCOPED_TRACE(kind);
        ASSERT_GE(asked, start);
        EXPECT_LE(asked, wake);
        EXPECT_GE(sleeps.Now(), asked);
    }
    EXPECT_GE(offered, 1);
}

}  // namespace
}  // namespace veltor::test
