#pragma once
#include <atomic>
#include <cstdint>

#include "wheel/DeviceGuid.h"

namespace veltor {

// The wheel as the engine sees it: Open/Close and the atomics the output thread reads.
// Until the device and its output thread exist, Open only records that the wheel was taken.
class WheelOutput {
public:
    WheelOutput() = default;
    ~WheelOutput() { Close(); }
    WheelOutput(const WheelOutput&) = delete;
    WheelOutput& operator=(const WheelOutput&) = delete;

    bool Open(WindowHandle window, const DeviceGuid* device);
    void Close();

    // Written by the engine, read by the output thread.
    std::atomic<int32_t> commandedForce{0};
    std::atomic<int32_t> dampingPercent{0};
    std::atomic<bool> lockDamping{false};
    std::atomic<bool> outputEnabled{false};
    // Written by the output thread, read by the engine.
    std::atomic<int32_t> lastError{0};
    std::atomic<uint32_t> errorCount{0};

private:
    bool open = false;
    WindowHandle window = nullptr;
    DeviceGuid device{};
};

}  // namespace veltor
