#pragma once
#include <cstdint>

namespace veltor::test {

// A pacer's platform on a clock that moves only when it sleeps, yields or pauses: each kind of sleep
// wakes its scripted lateness after the wake-up it was asked for, or refuses a sleep shorter than its
// scripted shortest. Allocates nothing, like the real one.
struct SteppedSleeps {
    static constexpr int kKinds = 2;
    static constexpr int64_t kPauseNanoseconds = 1000;
    static constexpr int64_t kYieldNanoseconds = 2000;

    static inline int64_t now = 0;
    static inline int64_t lateness[kKinds] = {};
    static inline bool offered[kKinds] = {true, true};
    static inline int64_t shortest[kKinds] = {};   // a kind asked for a shorter sleep cannot sleep
    static inline int64_t sleeps[kKinds] = {};     // how many, by kind
    static inline int64_t lastAsked[kKinds] = {};  // the wake-up the last one was asked for

    static void Reset() {
        for (int kind = 0; kind < kKinds; ++kind) {
            lateness[kind] = 0;
            offered[kind] = true;
            shortest[kind] = 0;
            sleeps[kind] = lastAsked[kind] = 0;
        }
    }

    bool Offers(int kind) const { return offered[kind]; }
    int64_t Now() const { return now; }
    int64_t Sleep(int kind, int64_t wake) {
        if (wake - now < shortest[kind]) return -1;
        ++sleeps[kind];
        lastAsked[kind] = wake;
        now = wake + lateness[kind];
        return wake;
    }
    void YieldToReady() { now += kYieldNanoseconds; }
    void Pause() { now += kPauseNanoseconds; }
};

}  // namespace veltor::test
