#pragma once
#include <cstdint>

#include "platform/SteadyClock.h"
#include "platform/SystemSleeps.h"
#include "wheel/WheelOutput.h"

namespace veltor {

// What the engine thread needs of time and of the wheel in the product. Tests and the offline replay
// run the same engine code over platforms of their own (a virtual clock, a wheel that records).
struct EnginePlatform {
    using Wheel = WheelOutput;
    using Pacer = veltor::Pacer;  // the burst's waits: learned sleeps, then a spin

    static int64_t Now() { return SteadyNowNanoseconds(); }
    static void SleepMilliseconds(int32_t milliseconds) { veltor::SleepMilliseconds(milliseconds); }

    // Told of each store to commandedForce: the output's index in the burst, or -1 from the lock stop.
    static void ForceStored(int32_t /*outputIndex*/, int32_t /*value*/) {}
};

}  // namespace veltor
