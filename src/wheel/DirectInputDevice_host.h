#pragma once
#include <cstdint>
#include <vector>

#include "wheel/DirectInputDevice.h"
#include "wheel/VirtualWheelModel.h"

namespace veltor {

// The host twin's side of the device: a virtual wheel that turns under the played force and remembers
// every magnitude it was sent. Output thread while the wheel is open; readers look after Close.
struct DirectInputDevice::Objects {
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
    std::vector<int32_t> sentMagnitudes;  // every SetParameters, in order
    int32_t startCount = 0;
    int32_t stopCount = 0;
};

}  // namespace veltor
