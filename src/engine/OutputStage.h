#pragma once
#include <cstdint>

#include "settings/EngineSettings.h"

namespace veltor {

constexpr int32_t kHandOverLimit = 9996;     // output units the engine hands to the wheel at most
constexpr float kFullScaleUnits = 10000.0f;   // DirectInput's full scale

// The torque in newton metres that maps to full scale: 40 Nm at the default strength of 50, so
// 2000 / max(ForceStrength, 1).
float FullScaleTorque(int32_t forceStrength);
float FullScaleTorque(const EngineSettings& settings);

// Newton metres to output units, truncated toward zero, not clamped to the hand-over range.
int32_t ToOutputUnits(float force, const EngineSettings& settings);

// Parked reduction or low-force curve on a clamped output value.
int32_t ShapeOutput(int32_t value, bool parked, const EngineSettings& settings);

}  // namespace veltor
