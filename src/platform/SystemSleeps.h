#pragma once
#include <cstdint>

#include "platform/Pacer.h"

namespace veltor {

// The sleeps this platform offers a pacer, on the steady clock. On Windows: a high-resolution waitable
// timer, a relative NtDelayExecution and Sleep of whole milliseconds, whose lateness differs from one
// system to the next (under Wine the timer is the worst of them, on Windows 10 and 11 the best); on hosts,
// clock_nanosleep on the monotonic clock with the thread's timer slack at 1 ns. One thread per object.
class SystemSleeps {
public:
    static constexpr int kKinds = 3;  // as many as any platform offers

    SystemSleeps();
    ~SystemSleeps();
    SystemSleeps(const SystemSleeps&) = delete;
    SystemSleeps& operator=(const SystemSleeps&) = delete;

    bool Offers(int kind) const;
    int64_t Now() const;
    // Sleeps towards `wake`; returns the wake-up asked of the system, or -1 when this kind cannot sleep
    // so short (or at all here).
    int64_t Sleep(int kind, int64_t wake);
    void YieldToReady();
    void Pause();

private:
    [[maybe_unused]] void* timer = nullptr;  // Windows: the high-resolution waitable timer, if the system has one
    [[maybe_unused]] bool slackSet = false;  // hosts: the timer slack is set on the sleeping thread's first sleep
};

using Pacer = BasicPacer<SystemSleeps>;

}  // namespace veltor
