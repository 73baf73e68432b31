#include <sched.h>
#include <sys/prctl.h>
#include <time.h>

#include <cerrno>

#include "platform/SteadyClock.h"
#include "platform/SystemSleeps.h"

namespace veltor {

// One kind: an absolute clock_nanosleep, which the kernel ends within the thread's timer slack (50 µs
// unless set).
SystemSleeps::SystemSleeps() = default;
SystemSleeps::~SystemSleeps() = default;

bool SystemSleeps::Offers(int kind) const { return kind == 0; }

int64_t SystemSleeps::Now() const { return SteadyNowNanoseconds(); }

int64_t SystemSleeps::Sleep(int kind, int64_t wake) {
    if (kind != 0) return -1;
    if (!slackSet) {
        prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
        slackSet = true;
    }
    timespec target{};
    target.tv_sec = static_cast<time_t>(wake / 1000000000LL);
    target.tv_nsec = static_cast<long>(wake % 1000000000LL);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &target, nullptr) == EINTR) {
    }
    return wake;
}

void SystemSleeps::YieldToReady() { sched_yield(); }
void SystemSleeps::Pause() { CpuPauseHint(); }

}  // namespace veltor
