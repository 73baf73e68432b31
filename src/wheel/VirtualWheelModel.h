#pragma once
#include <cstdint>

namespace veltor {

// A steering wheel that exists only in software: a rim of some inertia on a centring spring and a damper,
// turned by the played force and, optionally, by the driver's hand. Shared by the host twin of the
// DirectInput device and by the virtual wheel DLL, so both move alike.
class VirtualWheelModel {
public:
    // Moves the rim on by `seconds` under a constant-force magnitude (-10000 to 10000) and a hand torque in
    // newton metres. Steps of at most kStepSeconds keep the integration stable whatever the caller's pace.
    void Advance(float seconds, int32_t magnitude, float handTorque);
    // The rim angle as DirectInput's lX: 0 to 65535, centre 32767.
    int32_t AxisPosition() const;

    float angle = 0.0f;     // radians, positive with positive force
    float velocity = 0.0f;  // radians per second

    static constexpr float kStepSeconds = 0.00025f;
    static constexpr float kFullScaleTorque = 8.0f;          // Nm at magnitude 10000
    static constexpr float kInertia = 0.04f;                 // kg m²
    static constexpr float kCentringStiffness = 3.0f;        // Nm per radian
    static constexpr float kDamping = 0.35f;                 // Nm per radian per second
    static constexpr float kHalfRangeRadians = 7.853982f;    // 900 degrees lock to lock
};

// The scripted driver's hand: a sine of the given amplitude (Nm) and frequency (Hz) at time t (s).
float ScriptedHandTorque(float amplitude, float frequency, double seconds);

}  // namespace veltor
