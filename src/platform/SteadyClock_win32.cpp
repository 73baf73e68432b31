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

}  // namespace

int64_t SteadyNowNanoseconds() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    const int64_t frequency = CounterFrequency();
    const int64_t whole = counter.QuadPart / frequency;
    const int64_t rest = counter.QuadPart % frequency;
    return whole * 1000000000LL + rest * 1000000000LL / frequency;
}

void SleepMilliseconds(int32_t milliseconds) { Sleep(static_cast<DWORD>(milliseconds > 0 ? milliseconds : 0)); }

}  // namespace veltor
