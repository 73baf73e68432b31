#pragma once
#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "engine/EnginePlatform.h"
#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"

namespace veltor::test {

struct StoredForce {
    int32_t outputIndex;
    int32_t value;
    int64_t time;  // steady-clock ns at the store
};

struct RequestedWait {
    int64_t t0;
    int32_t sleepMicroseconds;
    int32_t offsetMicroseconds;
};

// Every store to commandedForce by the engine thread, and every wait between two, in order. Shared across
// threads under a mutex.
class ForceLog {
private:
    template <class F>
    static auto Locked(F f) {
        std::lock_guard guard(lock);
        return f();
    }
    static inline std::mutex lock;
    static inline std::vector<StoredForce> entries;
    static inline std::vector<RequestedWait> waits;

public:
    static void Add(StoredForce entry) { Locked([&] { entries.push_back(entry); }); }
    static void AddWait(RequestedWait wait) { Locked([&] { waits.push_back(wait); }); }
    static std::vector<StoredForce> Take() { return Locked([] { return std::exchange(entries, {}); }); }
    static std::vector<RequestedWait> TakeWaits() { return Locked([] { return std::exchange(waits, {}); }); }
    static size_t Size() { return Locked([] { return entries.size(); }); }
};

// A wheel for engine tests: the engine's side of the seam, with Open failing on demand and a record of
// what it was given.
class RecordingWheel {
public:
    RecordingWheel() = default;
    ~RecordingWheel() { Close(); }

    bool Open(WindowHandle window, const DeviceGuid* device);
    void Close();

    std::atomic<int32_t> commandedForce{0};
    std::atomic<int32_t> dampingPercent{0};
    std::atomic<bool> lockDamping{false};
    std::atomic<bool> outputEnabled{false};
    std::atomic<int32_t> lastError{0};
    std::atomic<uint32_t> errorCount{0};

    // Test controls and observations, shared across threads.
    static std::atomic<int> opensToFail;
    static std::atomic<int> opens;
    static std::atomic<int> closes;
    static std::atomic<bool> isOpen;
    static std::atomic<RecordingWheel*> current;  // the wheel the engine thread holds while open
    static void Reset();
};

// The product's timing with the wheel above and a log of every force store.
struct RecordingPlatform : EnginePlatform {
    using Wheel = RecordingWheel;
    static void ForceStored(int32_t outputIndex, int32_t value) {
        ForceLog::Add({outputIndex, value, EnginePlatform::Now()});
    }
    static void WaitUntilOffset(int64_t t0, int32_t sleepMicroseconds, int32_t offsetMicroseconds) {
        ForceLog::AddWait({t0, sleepMicroseconds, offsetMicroseconds});
        while (holdInWait.load()) EnginePlatform::SleepMilliseconds(1);
        EnginePlatform::WaitUntilOffset(t0, sleepMicroseconds, offsetMicroseconds);
    }
    // While set, the engine thread stays inside its next wait between two outputs.
    static std::atomic<bool> holdInWait;
};

// The same on a clock that the test sets, with waits between outputs that return at once.
struct SteppedPlatform : RecordingPlatform {
    static inline std::atomic<int64_t> now{0};
    static int64_t Now() { return now.load(); }
    static void WaitUntilOffset(int64_t, int32_t, int32_t) {}
};

}  // namespace veltor::test
