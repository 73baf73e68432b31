#pragma once
#include <cstdint>

#include "platform/SteadyClock.h"
#include "wheel/WheelOutput.h"

namespace veltor {

// What the engine thread needs of time and of the wheel in the product. Tests and the offline replay
// run the same engine code over platforms of their own (a virtual clock, a wheel that records).
struct EnginePlatform {
    using Wheel = WheelOutput;

    static int64_t Now() { return SteadyNowNanoseconds(); }
    static void SleepMilliseconds(int32_t milliseconds) { veltor::SleepMilliseconds(milliseconds); }

    // Holds the thread until t0 + offset: an optional sleep that yields the processor, then a spin on the
    // steady clock with the pause hint, so a late output does not push the ones after it.
    static void WaitUntilOffset(int64_t t0, int32_t sleepMicroseconds, int32_t offsetMicroseconds) {
        if (sleepMicroseconds > 0) SleepUntilNanoseconds(SteadyNowNanoseconds() + sleepMicroseconds * 1000LL);
        const int64_t target = t0 + offsetMicroseconds * 1000LL;
        while (SteadyNowNanoseconds() < target) CpuPauseHint();
    }

    // Told of each store to commandedForce: the output's index in the burst, or -1 from the lock stop.
    static void ForceStored(int32_t /*outputIndex*/, int32_t /*value*/) {}
};

}  // namespace veltor
