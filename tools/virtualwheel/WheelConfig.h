#pragma once
#include <cstdint>

#include "FaultPlan.h"

namespace virtualwheel {

// The virtual wheel's settings, read from the environment each time DirectInput is created:
//   VIRTUALWHEEL_LOG         file that receives the call log
//   VIRTUALWHEEL_WHEELS      wheels in enumeration, 1 (default) or 2
//   VIRTUALWHEEL_HAND        the driver's hand as "amplitudeNm,frequencyHz", a sine on the rim
//   VIRTUALWHEEL_FAULTS      fault spans (FaultPlan), in milliseconds since the device was created; once a
//                            wheel has vanished, enumeration finds none while the faults name a vanishing
//   VIRTUALWHEEL_FAULT_FILE  a file whose fault entries apply while it exists, re-read as it changes
struct WheelConfig {
    int32_t wheelCount = 1;
    float handAmplitude = 0.0f;
    float handFrequency = 0.0f;
    FaultPlan faults;
    wchar_t faultFile[260] = {};
};

WheelConfig ReadWheelConfig();

}  // namespace virtualwheel
