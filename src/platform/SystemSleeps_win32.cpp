#include <windows.h>

#include "platform/SteadyClock.h"
#include "platform/SystemSleeps.h"

namespace veltor {
namespace {

#ifndef CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
#define CREATE_WAITABLE_TIMER_HIGH_RESOLUTION 0x00000002
#endif

enum Kind { kHighResolutionTimer = 0, kDelayExecution = 1, kWholeMilliseconds = 2 };
constexpr int64_t kNanosecondsPerTick = 100;  // the unit of due times and delays
constexpr int64_t kNanosecondsPerMillisecond = 1000000;

using DelayExecutionFunction = LONG(WINAPI*)(BOOLEAN alertable, const LARGE_INTEGER* interval);

// ntdll's relative delay: not in the SDK's import libraries, so found at run time.
DelayExecutionFunction DelayExecution() {
    static const DelayExecutionFunction function = [] {
        HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        return ntdll != nullptr ? reinterpret_cast<DelayExecutionFunction>(
                                      reinterpret_cast<void*>(GetProcAddress(ntdll, "NtDelayExecution")))
                                : nullptr;
    }();
    return function;
}

}  // namespace

SystemSleeps::SystemSleeps()
    : timer(CreateWaitableTimerExW(nullptr, nullptr, CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, TIMER_ALL_ACCESS)) {}

SystemSleeps::~SystemSleeps() {
    if (timer != nullptr) CloseHandle(timer);
}

bool SystemSleeps::Offers(int kind) const {
    switch (kind) {
        case kHighResolutionTimer: return timer != nullptr;
        case kDelayExecution: return DelayExecution() != nullptr;
        case kWholeMilliseconds: return true;
        default: return false;
    }
}

int64_t SystemSleeps::Now() const { return SteadyNowNanoseconds(); }

int64_t SystemSleeps::Sleep(int kind, int64_t wake) {
    const int64_t now = SteadyNowNanoseconds();
    LARGE_INTEGER relative;
    relative.QuadPart = -((wake - now) / kNanosecondsPerTick);
    switch (kind) {
        case kHighResolutionTimer:
            if (timer == nullptr || !SetWaitableTimer(timer, &relative, 0, nullptr, nullptr, FALSE)) return -1;
            WaitForSingleObject(timer, INFINITE);
            return now - relative.QuadPart * kNanosecondsPerTick;
        case kDelayExecution:
            if (DelayExecution() == nullptr || DelayExecution()(FALSE, &relative) < 0) return -1;
            return now - relative.QuadPart * kNanosecondsPerTick;
        case kWholeMilliseconds: {
            const int64_t milliseconds = (wake - now) / kNanosecondsPerMillisecond;
            if (milliseconds <= 0) return -1;
            ::Sleep(static_cast<DWORD>(milliseconds));
            return now + milliseconds * kNanosecondsPerMillisecond;
        }
        default: return -1;
    }
}

void SystemSleeps::YieldToReady() { SwitchToThread(); }
void SystemSleeps::Pause() { CpuPauseHint(); }

}  // namespace veltor
