#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace veltor::analyzer {

// Where a record tells how the car steers: fast, inside the free margin, not sliding, no ABS, no crash hold.
constexpr float kGripMinimumSpeed = 10.0f;      // m/s
constexpr float kGripMaximumSlipRatio = 0.05f;  // |velocityY / velocityX|; beyond it countersteer says nothing
constexpr size_t kMinimumFitSamples = 600;      // 10 s of such driving
constexpr double kMinimumFitRSquared = 0.8;
// Yaw and lateral terms this alike (corners all at one speed) cannot be told apart.
constexpr double kMaximumTermCosine = 0.995;
// What the two sliders can hold.
constexpr double kYawRateMultiplierLowest = 10.0;
constexpr double kYawRateMultiplierHighest = 70.0;
constexpr double kLateralAccelDivisorLowest = 50.0;
constexpr double kLateralAccelDivisorHighest = 130.0;

// The least-squares fit of the steering angle to YawRateMultiplier × boost × yaw rate / speed +
// lateral acceleration / LateralAccelDivisor over the grip records. When the drive cannot separate the two
// terms, the divisor is held at the recording's value and the multiplier fitted alone.
struct CoefficientFit {
    size_t samples = 0;
    double rSquared = 0.0;
    double yawRateMultiplier = 0.0;
    double lateralAccelDivisor = 0.0;
    bool yawFitted = false;
    bool lateralFitted = false;
    std::string yawRefusal;      // why the multiplier is not fitted; empty when it is
    std::string lateralRefusal;  // why the divisor is not fitted; empty when it is
};

bool HadGrip(const RecordingSample& sample);

CoefficientFit FitCarCoefficients(const std::vector<RecordingSample>& samples, const RecordingHeader& header);

}  // namespace veltor::analyzer
