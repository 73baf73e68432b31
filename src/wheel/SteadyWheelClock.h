#pragma once
#include <cstdint>

#include "platform/SteadyClock.h"

namespace veltor {

// The output thread's clock in the product: the engine's steady clock.
struct SteadyWheelClock {
    int64_t Now() const { return SteadyNowNanoseconds(); }
    void SleepUntil(int64_t deadline) const { SleepUntilNanoseconds(deadline); }
};

}  // namespace veltor
