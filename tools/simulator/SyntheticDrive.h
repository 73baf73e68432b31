#pragma once
#include <cstdint>

#include "telemetry/TelemetryFrame.h"

namespace veltor::sim {

// One tick of a synthetic drive: the frame the program reads and a few channels it does not.
struct DriveSample {
    TelemetryFrame frame;
    double sessionTime = 0.0;  // seconds
    int32_t gear = 0;
    float rpm = 0.0f;
    float throttle = 0.0f;    // 0 to 1
    float brake = 0.0f;       // 0 to 1
    float lapDistPct = 0.0f;  // 0 to 1
    const char* phase = "";
};

// A 60-second lap of a made-up circuit, repeated: a stop in the pits off track, pit exit, straights,
// a corner with understeer, kerbs, braking with ABS, a slide with countersteer, a bumpy straight, a crash
// spike, recovery and the pit lane. Every value is a function of the tick alone, so runs repeat exactly.
class SyntheticDrive {
public:
    static constexpr double kTickRate = 60.0;     // frames per second
    static constexpr double kLapSeconds = 60.0;

    DriveSample SampleAt(int64_t tick) const;
    // Name of the part of the lap a tick falls in, for the simulator's log.
    static const char* PhaseAt(int64_t tick);
};

}  // namespace veltor::sim
