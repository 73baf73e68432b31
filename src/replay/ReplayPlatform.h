#pragma once
#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"

namespace veltor::replay {

// One store to commandedForce: the record it came from, its index in the burst (-1: steering lock stop).
struct ForceRow {
    int32_t frame;
    int32_t output;
    int32_t force;
};

// The engine's wheel in an offline run: the atomics the engine stores to, and no device; never opened, so
// the programs that run the engine offline link no DirectInput.
struct ReplayWheel {
    std::atomic<int32_t> commandedForce{0};
    std::atomic<int32_t> dampingPercent{0};
    std::atomic<bool> lockDamping{false};
    std::atomic<bool> outputEnabled{false};
    std::atomic<int32_t> lastError{0};
    std::atomic<uint32_t> errorCount{0};
    bool Open(WindowHandle, const DeviceGuid*) { return false; }
    void Close() {}
};

// The engine's platform for an offline run on one thread: a virtual steady clock set per record, waits
// that return at once, and every force store collected into `rows` (reserved ahead, so a tick does not
// allocate).
struct ReplayPlatform {
    using Wheel = ReplayWheel;
    struct Pacer {
        void WaitUntil(int64_t) {}
    };

    static inline int64_t virtualNow = 0;           // ns
    static inline int32_t currentFrame = 0;
    static inline std::vector<ForceRow>* rows = nullptr;

    static int64_t Now() { return virtualNow; }
    static void SleepMilliseconds(int32_t) {}
    static void ForceStored(int32_t outputIndex, int32_t value) {
        if (rows != nullptr) rows->push_back({currentFrame, outputIndex, value});
    }
};

}  // namespace veltor::replay
