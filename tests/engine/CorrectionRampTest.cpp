#include <gtest/gtest.h>

#include "engine/CorrectionRamp.h"

namespace veltor {
namespace {

TEST(FillCorrectionRamp, RisesAlongTheRunningSumOfTheWeights) {
    float ramp[6] = {};
    float correction[6] = {};
    FillCorrectionRamp(ramp, 10.0f, correction);
    const float rising[6] = {1.295867f, 3.607303f, 6.189812f, 8.113748f, 9.270466f, 10.0f};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], rising[i], 1e-5f) << i;

    FillCorrectionRamp(ramp, 0.0f, correction);  // and back down from the full old value
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], 10.0f - rising[i], 1e-5f) << i;
}

TEST(FillCorrectionRamp, AShortTickStopsPartWayAndTheNextStartsFromTheNewValue) {
    float ramp[6] = {};
    float correction[6] = {};
    FillCorrectionRamp(ramp, 10.0f, correction);
    FillCorrectionRamp(ramp, 20.0f, correction);
    EXPECT_NEAR(correction[0], 10.0f + 1.295867f, 1e-5f);
    EXPECT_NEAR(correction[5], 20.0f, 1e-5f);
}

}  // namespace
}  // namespace veltor
