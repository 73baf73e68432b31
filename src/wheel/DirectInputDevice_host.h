#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "wheel/DirectInputDevice.h"
#include "wheel/VirtualWheelModel.h"

namespace veltor {

// The host twin's side of the device: a virtual wheel that turns under the played force and remembers the
// newest magnitudes it was sent, in room of its own so a pass never allocates. Output thread while the wheel
// is open; readers look after Close, except at sentCount.
struct DirectInputDevice::Objects {
    static constexpr size_t kKeptMagnitudes = 4096;  // about four seconds of passes

    // The kept magnitudes, oldest first.
    std::vector<int32_t> SentMagnitudes() const;

    bool interfaceCreated = false;
    bool deviceCreated = false;
    bool acquired = false;
    bool effectCreated = false;
    bool effectPlaying = false;
    bool eventCreated = false;
    int32_t magnitude = 0;          // the magnitude the next SetParameters sends
    int32_t playedMagnitude = 0;    // what the rim feels: the last one sent while playing
    int32_t lastAxisPosition = 32767;
    int64_t lastAdvance = 0;        // steady-clock ns of the model's last step; 0 before the first
    VirtualWheelModel model;
    std::array<int32_t, kKeptMagnitudes> keptMagnitudes{};  // a ring, the newest at sentCount - 1
    std::atomic<uint64_t> sentCount{0};                      // every SetParameters so far; any thread
    int32_t startCount = 0;
    int32_t stopCount = 0;
};

}  // namespace veltor
