#pragma once
#include <cstdint>

namespace veltor {

// The flat record of tuning that a profile, a car entry, the live record and the engine each hold by value.
// Field names are the INI keys. Numbers are signed 32-bit, switches one byte.
struct EngineSettings {
    int32_t Mode = 0;  // 0: 360 Hz telemetry, 1: 360 Hz interpolated
    bool UseCarSpecificSettings = true;
    bool ReduceForceWhenParked = true;
    bool StartMinimized = false;
    bool RunOnStartup = false;
    bool SimucubeMode = false;
    bool DebugLogging = false;
    int32_t MinForce = 0;
    int32_t ForceStrength = 50;
    int32_t Bumps = 20;
    int32_t BumpImpacts = 20;
    int32_t Damping = 0;
    int32_t AbsVibration = 15;
    int32_t Understeer = 0;
    int32_t SuspensionDetailPriority = 50;
    int32_t CarForceBalance = 100;
    int32_t UndersteerLighten = 0;
    int32_t UndersteerResistance = 75;
    int32_t OversteerCorrection = 50;
    int32_t OversteerOffset = 0;        // tenths of a degree
    int32_t CrashLongG = 60;            // tenths of a g
    int32_t CrashLatG = 60;             // tenths of a g
    int32_t CrashDurationTenths = 15;   // tenths of a second
    int32_t CrashReduction = 95;        // percent
    int32_t WheelbaseMaxTorqueTenths = 0;  // tenths of a newton metre; never enters the force
};

}  // namespace veltor
