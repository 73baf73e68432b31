#include <gtest/gtest.h>

#include <cmath>

#include "engine/AbsVibration.h"

namespace veltor {
namespace {

constexpr double kRadiansPerSecond = 219.9115f;  // 35 Hz

// A sine of 3 Nm by default, 20 Nm at most, one value per output: 1/360 s apart, or 1/720 s in the
// interpolated mode, continued across ticks with the phase kept below 2 pi.
TEST(FillAbsVibration, ThirtyFiveHertzSineContinuesAcrossTicks) {
    const struct {
        int32_t percent;
        bool interpolate;
        int outputs;
        double amplitude;
    } cases[] = {{15, false, 6, 3.0}, {15, true, 12, 3.0}, {150, false, 6, 20.0}};
    for (const auto& c : cases) {
        EngineSettings s;
        s.AbsVibration = c.percent;
        TelemetryFrame frame;
        frame.brakeAbsActive = 1;
        const double step = kRadiansPerSecond / (c.interpolate ? 720.0 : 360.0);
        float phase = 0.0f;
        double expected = 0.0;
        for (int tick = 0; tick < 20; ++tick) {
            float vibration[kMaxOutputsPerTick] = {};
            FillAbsVibration(frame, s, c.interpolate, c.outputs, phase, vibration);
            for (int i = 0; i < kMaxOutputsPerTick; ++i) {
                const bool filled = i < c.outputs;
                ASSERT_NEAR(vibration[i], filled ? c.amplitude * std::sin(expected) : 0.0, 3e-3)
                    << c.percent << "% tick " << tick << " output " << i;
                if (filled) expected += step;
            }
            ASSERT_GE(phase, 0.0f);
            ASSERT_LT(phase, 6.2831855f);
        }
    }
}

}  // namespace
}  // namespace veltor
