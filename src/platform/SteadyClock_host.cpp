#include <time.h>

#include <cerrno>

#include "platform/SteadyClock.h"

namespace veltor {

int64_t SteadyNowNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

void SleepUntilNanoseconds(int64_t deadline) {
    timespec target{};
    target.tv_sec = static_cast<time_t>(deadline / 1000000000LL);
    target.tv_nsec = static_cast<long>(deadline % 1000000000LL);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &target, nullptr) == EINTR) {
    }
}

void SleepMilliseconds(int32_t milliseconds) {
    SleepUntilNanoseconds(SteadyNowNanoseconds() + static_cast<int64_t>(milliseconds) * 1000000LL);
}

}  // namespace veltor
