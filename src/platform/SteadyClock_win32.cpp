#include <windows.h>

#include "platform/SteadyClock.h"

namespace veltor {
namespace {

int64_t CounterFrequency() {
    static const int64_t frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return static_cast<int64_t>(f.QuadPart);
    }();
    return frequency;
}

#ifndef CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
#define CREATE_WAITABLE_TIMER_HIGH_RESOLUTION 0x00000002
#endif

// One high-resolution waitable timer per thread; where the system lacks them, a plain Sleep of whole
// milliseconds, rounded down so the spin that follows still lands on time.
HANDLE ThreadTimer() {
    thread_local struct Timer {
        HANDLE handle = CreateWaitableTimerExW(nullptr, nullptr, CREATE_WAITABLE_TIMER_HIGH_RESOLUTION,
                                               TIMER_ALL_ACCESS);
        ~Timer() {
            if (handle != nullptr) CloseHandle(handle);
        }
    } timer;
    return timer.handle;
}

}  // namespace

int64_t SteadyNowNanoseconds() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    const int64_t frequency = CounterFrequency();
    const int64_t whole = counter.QuadPart / frequency;
    const int64_t rest = counter.QuadPart % frequency;
    return whole * 1000000000LL + rest * 1000000000LL / frequency;
}

void SleepUntilNanoseconds(int64_t deadline) {
    const int64_t remaining = deadline - SteadyNowNanoseconds();
    if (remaining <= 0) return;
    HANDLE timer = ThreadTimer();
    if (timer != nullptr) {
        LARGE_INTEGER due;
        due.QuadPart = -(remaining / 100);  // relative, in 100 ns units
        if (SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE)) {
            WaitForSingleObject(timer, INFINITE);
            return;
        }
    }
    const DWORD milliseconds = static_cast<DWORD>(remaining / 1000000LL);
    Sleep(milliseconds > 0 ? milliseconds : 0);
}

void SleepMilliseconds(int32_t milliseconds) { Sleep(static_cast<DWORD>(milliseconds > 0 ? milliseconds : 0)); }

}  // namespace veltor
