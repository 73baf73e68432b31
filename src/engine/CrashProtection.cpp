#include "engine/CrashProtection.h"

#include <algorithm>
#include <cmath>

namespace veltor {
namespace {

constexpr float kStandardGravity = 9.80665f;              // m/s² per g
constexpr int64_t kNanosecondsPerTenthSecond = 100LL * 1000000LL;
constexpr float kMaxReduction = 0.99f;                    // the gain never falls below 0.01

bool AtOrAboveLimit(float acceleration, int32_t limitTenthsG) {
    const float limit = static_cast<float>(limitTenthsG) / 10.0f;
    return limit > 0.0f && std::fabs(acceleration) / kStandardGravity >= limit;
}

}  // namespace

float ComputeCrashGain(const TelemetryFrame& frame, const EngineSettings& settings, int64_t now,
                       int64_t& crashHoldUntil) {
    if (settings.CrashReduction <= 0 || settings.CrashDurationTenths <= 0) return 1.0f;
    const bool longHit = AtOrAboveLimit(frame.longAccel, settings.CrashLongG);
    const bool latHit = AtOrAboveLimit(frame.latAccel, settings.CrashLatG);
    // Each hit starts the hold anew: it ends one duration after the last tick above the limit.
    if (longHit || latHit) crashHoldUntil = now + settings.CrashDurationTenths * kNanosecondsPerTenthSecond;
    if (now >= crashHoldUntil) return 1.0f;
    const float r = std::clamp(static_cast<float>(settings.CrashReduction) / 100.0f, 0.0f, kMaxReduction);
    return 1.0f - r;
}

}  // namespace veltor
