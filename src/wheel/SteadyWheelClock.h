#pragma once
#include <cstdint>

#include "platform/SteadyClock.h"
#include "platform/SystemSleeps.h"

namespace veltor {

// The output thread's clock in the product: the engine's steady clock, and sleeps that aim their typical
// wake-up at the deadline with the kind of sleep that wakes most reliably here. Output thread only.
struct SteadyWheelClock {
    int64_t Now() const { return SteadyNowNanoseconds(); }
    void SleepUntil(int64_t deadline) { pacer.SleepNear(deadline); }

    Pacer pacer;
};

}  // namespace veltor
