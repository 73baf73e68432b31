#include <gtest/gtest.h>

#include <cmath>

#include "engine/AbsVibration.h"

namespace veltor {
namespace {

TelemetryFrame AbsFrame(bool active) {
    TelemetryFrame frame;
    frame.brakeAbsActive = active ? 1 : 0;
    return frame;
}

// A 35 Hz sine of 3 Nm by default, filling only the tick's outputs, continued across ticks below 2 pi.
TEST(FillAbsVibration, ThirtyFiveHertzSineContinuesAcrossTicksAndWrapsBelowTwoPi) {
    float phase = 0.0f;
    float vibration[12] = {};
    double expected = 0.0;
    const double step = 219.9115f / 360.0f;
    for (int tick = 0; tick < 20; ++tick) {
        FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, vibration);
        for (int i = 0; i < 6; ++i) {
            ASSERT_NEAR(vibration[i], 3.0 * std::sin(expected), tick == 0 ? 1e-5 : 2e-4) << tick << " " << i;
            expected += step;
        }
        ASSERT_EQ(vibration[6], 0.0f);
        if (tick == 0) {
            ASSERT_NEAR(phase, 6 * step, 1e-5);
        }
        ASSERT_GE(phase, 0.0f);
        ASSERT_LT(phase, 6.2831855f);
    }
}

TEST(FillAbsVibration, InterpolatedModeStepsAtHalfTheAngle) {
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, true, 12, phase, vibration);
    const double step = 219.9115 / 720.0;
    for (int i = 0; i < 12; ++i) EXPECT_NEAR(vibration[i], 3.0 * std::sin(i * step), 1e-5) << i;
}

TEST(FillAbsVibration, RestartsFromPhaseZeroWhenAbsGoesOffAndOn) {
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, vibration);
    float off[12] = {};
    FillAbsVibration(AbsFrame(false), EngineSettings{}, false, 6, phase, off);
    EXPECT_EQ(phase, 0.0f);
    for (const float v : off) EXPECT_EQ(v, 0.0f);
    float again[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, again);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(again[i], vibration[i]);
}

TEST(FillAbsVibration, AmplitudeIsCappedAtTwentyAndOffAtZero) {
    EngineSettings s;
    s.AbsVibration = 150;
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), s, false, 6, phase, vibration);
    EXPECT_NEAR(vibration[3], 20.0 * std::sin(3 * 219.9115 / 360.0), 1e-4);
    s.AbsVibration = 0;
    float none[12] = {};
    FillAbsVibration(AbsFrame(true), s, false, 6, phase, none);
    EXPECT_EQ(none[3], 0.0f);
    EXPECT_EQ(phase, 0.0f);
}

}  // namespace
}  // namespace veltor
