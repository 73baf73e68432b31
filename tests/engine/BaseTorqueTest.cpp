#include <gtest/gtest.h>

#include "engine/BaseTorque.h"

namespace veltor {
namespace {

TEST(BaseTorque, TakesTheSubSampleRepeatsTheLastAndAppliesGainThenBalance) {
    TelemetryFrame frame;
    frame.torqueSampleCount = 2;
    frame.torqueSamples[0] = 4.0f;
    frame.torqueSamples[1] = -8.0f;
    frame.steeringWheelTorque = 100.0f;
    GripResult grip;
    grip.steeringGain = 0.5f;
    grip.forceBalance = 1.5f;
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 0), 3.0f);
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 1), -6.0f);
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 5), -6.0f);
    frame.torqueSampleCount = 0;
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 3), 75.0f);
}

}  // namespace
}  // namespace veltor
