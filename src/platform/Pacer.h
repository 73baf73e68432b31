#pragma once
#include <concepts>
#include <cstdint>

#include "platform/WakeMargin.h"

namespace veltor {

// Holds a thread until a deadline on the steady clock without spinning a whole core: it sleeps until the
// deadline minus a learned margin, then spins the rest, yielding the core while a yield can still return
// in time. Each kind of sleep the platform offers keeps its own lateness; the one with the narrowest
// margin is used, and the others are tried now and then, each within its own margin, so a kind that
// serves better later (or on another machine) is found. Allocates nothing. One thread only.
//
// The sleeps a platform offers a pacer; tests give it a stepped clock.
template <class Sleeps>
concept PacerSleeps = requires(Sleeps sleeps, const Sleeps& constSleeps, int kind, int64_t wake) {
    { Sleeps::kKinds } -> std::convertible_to<int>;           // kinds numbered from 0
    { constSleeps.Offers(kind) } -> std::same_as<bool>;       // this system has that kind
    { constSleeps.Now() } -> std::same_as<int64_t>;            // steady nanoseconds
    { sleeps.Sleep(kind, wake) } -> std::same_as<int64_t>;     // the wake-up asked for, at most `wake`;
                                                               // -1 when the kind cannot sleep so short
    sleeps.YieldToReady();                                     // the core to another ready thread, if any
    sleeps.Pause();                                            // the processor's pause hint
};

template <PacerSleeps Sleeps>
class BasicPacer {
public:
    // What a 2000 µs sleep left of a 2760 µs gap: the margin before anything is learned.
    static constexpr int64_t kCautiousMarginNanoseconds = 760000;
    // A yield of a few microseconds, until yields are measured.
    static constexpr int64_t kFirstYieldMarginNanoseconds = 30000;
    // Shorter sleeps are not worth their system call.
    static constexpr int64_t kShortestSleepNanoseconds = 50000;
    // Every so many waits, another kind is tried.
    static constexpr uint32_t kTrialInterval = 8;

    BasicPacer() {
        for (WakeMargin& margin : margins) margin = WakeMargin(kCautiousMarginNanoseconds);
    }

    // Sleep, then spin, until `deadline`.
    void WaitUntil(int64_t deadline) {
        SleepBefore(deadline);
        SpinUntil(deadline);
    }

    // Sleep only, aiming the typical wake-up at `deadline`: for a pass whose pace matters on average. The
    // narrowest kind that can sleep so short (whole milliseconds cannot sleep less than one).
    void SleepNear(int64_t deadline) {
        int order[Sleeps::kKinds];
        const int offered = KindsByMargin(order);
        for (int i = 0; i < offered; ++i) {
            if (Sleep(order[i], deadline - margins[order[i]].Quantile(500))) return;
        }
    }

    // The margin of the kind in use now, in nanoseconds.
    int64_t Margin() const { return margins[Narrowest()].Margin(); }
    Sleeps& Platform() { return sleeps; }

private:
    // The narrowest kind first; one that cannot sleep so short gives way to the next. When none could
    // sleep, the wait was quiet for every kind whose margin left too little time.
    void SleepBefore(int64_t deadline) {
        if (++waitCount % kTrialInterval == 0) {
            trialKind = (trialKind + 1) % Sleeps::kKinds;
            if (sleeps.Offers(trialKind) && SleepWithin(trialKind, deadline)) return;
        }
        int order[Sleeps::kKinds];
        const int offered = KindsByMargin(order);
        for (int i = 0; i < offered; ++i) {
            if (SleepWithin(order[i], deadline)) return;
        }
        const int64_t now = sleeps.Now();
        if (deadline - now <= kShortestSleepNanoseconds) return;
        for (int i = 0; i < offered; ++i) {
            if (deadline - margins[order[i]].Margin() - now < kShortestSleepNanoseconds) margins[order[i]].Quiet();
        }
    }

    // Sleeps with `kind` until `deadline` minus its margin; false when there was too little time for it, or
    // the kind cannot sleep so short.
    bool SleepWithin(int kind, int64_t deadline) { return Sleep(kind, deadline - margins[kind].Margin()); }

    bool Sleep(int kind, int64_t wake) {
        if (wake - sleeps.Now() < kShortestSleepNanoseconds) return false;
        const int64_t asked = sleeps.Sleep(kind, wake);
        if (asked < 0) return false;
        margins[kind].Record(sleeps.Now() - asked);
        return true;
    }

    // A yield that came back late (another thread kept the core) widens the yield's own margin; a spin too
    // short for any yield is quiet for it.
    void SpinUntil(int64_t deadline) {
        bool yielded = false;
        for (int64_t now = sleeps.Now(); now < deadline; now = sleeps.Now()) {
            if (deadline - now > yieldMargin.Margin()) {
                sleeps.YieldToReady();
                yieldMargin.Record(sleeps.Now() - now);
                yielded = true;
            } else {
                sleeps.Pause();
            }
        }
        if (!yielded) yieldMargin.Quiet();
    }

    int Narrowest() const {
        int order[Sleeps::kKinds];
        return KindsByMargin(order) > 0 ? order[0] : 0;
    }

    // The offered kinds, narrowest margin first (ties by the platform's order); returns how many.
    int KindsByMargin(int (&order)[Sleeps::kKinds]) const {
        int count = 0;
        for (int kind = 0; kind < Sleeps::kKinds; ++kind) {
            if (!sleeps.Offers(kind)) continue;
            int at = count++;
            for (; at > 0 && margins[order[at - 1]].Margin() > margins[kind].Margin(); --at) order[at] = order[at - 1];
            order[at] = kind;
        }
        return count;
    }

    Sleeps sleeps;
    WakeMargin margins[Sleeps::kKinds];
    WakeMargin yieldMargin{kFirstYieldMarginNanoseconds};
    uint32_t waitCount = 0;
    int trialKind = 0;
};

}  // namespace veltor
