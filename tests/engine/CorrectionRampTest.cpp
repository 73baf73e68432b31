#include <gtest/gtest.h>

#include "engine/CorrectionRamp.h"

namespace veltor {
namespace {

// Across a tick the correction glides from the last tick's torque to this one's, along the running sum of
// the weights, in either direction.
TEST(FillCorrectionRamp, GlidesFromTheLastTicksTorqueAlongTheRunningSumOfTheWeights) {
    const float rising[6] = {1.295867f, 3.607303f, 6.189812f, 8.113748f, 9.270466f, 10.0f};
    float ramp[6] = {};
    float correction[6] = {};
    FillCorrectionRamp(ramp, 10.0f, correction);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], rising[i], 1e-5f) << i;
    FillCorrectionRamp(ramp, 0.0f, correction);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], 10.0f - rising[i], 1e-5f) << i;
}

}  // namespace
}  // namespace veltor
