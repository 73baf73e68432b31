#include <time.h>

#include <cerrno>

#include "platform/SteadyClock.h"

namespace veltor {

int64_t SteadyNowNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

void SleepMilliseconds(int32_t milliseconds) {
    timespec duration{};
    duration.tv_sec = milliseconds / 1000;
    duration.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
    while (milliseconds > 0 && nanosleep(&duration, &duration) == EINTR) {
    }
}

}  // namespace veltor
