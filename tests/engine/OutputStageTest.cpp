#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TickHarness.h"
#include "engine/OutputStage.h"

namespace veltor::test {
namespace {

// Full scale of each strength maps to 10000; truncation toward zero, no clamp; zero for no strength or NaN.
TEST(ToOutputUnits, TruncatesTowardZeroAtTheStrengthsFullScale) {
    struct Case {
        float torque;
        int32_t strength;
        int32_t units;
    };
    const Case cases[] = {{20.0f, 100, 10000}, {40.0f, 50, 10000},  {80.0f, 25, 10000},    {-40.0f, 50, -10000},
                          {1.23f, 50, 307},    {-1.23f, 50, -307},  {-0.00399f, 50, 0},    {60.0f, 50, 15000},
                          {35.0f, 0, 0},       {35.0f, -5, 0},      {std::numeric_limits<float>::quiet_NaN(), 50, 0}};
    EngineSettings s;
    for (const Case& c : cases) {
        s.ForceStrength = c.strength;
        EXPECT_EQ(ToOutputUnits(c.torque, s), c.units) << c.torque << " Nm at strength " << c.strength;
    }
    s.ForceStrength = 0;
    EXPECT_FLOAT_EQ(FullScaleTorque(s), 2000.0f);  // as for strength 1
    EXPECT_GT(ToOutputUnits(1e30f, EngineSettings{}), 9996);
    EXPECT_LT(ToOutputUnits(-1e30f, EngineSettings{}), -9996);
}

// Parked reduction quarters toward zero and skips the curve; the curve raises small forces up to the knee.
TEST(ShapeOutput, ParkedReductionAndLowForceCurve) {
    struct Case {
        int32_t value;
        bool parked;
        int32_t minForce;
        bool reduceWhenParked;
        int32_t shaped;
    };
    const Case cases[] = {
        {9996, true, 20, true, 2499}, {-3, true, 20, true, 0},    {-7, true, 20, true, -1},
        {1, true, 20, true, 0},  // the curve would have made it 3
        {1, true, 20, false, 3},      {9996, true, 0, false, 9996}, {1, false, 20, true, 3},
        {-1, false, 20, true, -3},    {4000, false, 20, true, 4000},  // at the knee
        {1000, false, 10, true, 1250},                                // t = 0.5, k = 2: h = 0.625
        {500, false, 5, true, 563},                                   // 562.5 rounds away from zero
        {-500, false, 5, true, -563}, {0, false, 20, true, 0},      {1234, false, 0, true, 1234}};
    for (const Case& c : cases) {
        EngineSettings s;
        s.MinForce = c.minForce;
        s.ReduceForceWhenParked = c.reduceWhenParked;
        EXPECT_EQ(ShapeOutput(c.value, c.parked, s), c.shaped) << c.value << (c.parked ? " parked" : " ") << c.minForce;
    }
}

// The smallest torque whose scaled value at the default strength is `units` output units.
float TorqueForUnits(int32_t units) {
    float torque = static_cast<float>(units) / 250.0f;
    const EngineSettings defaults;
    while (ToOutputUnits(torque, defaults) < units) torque = std::nextafter(torque, 1000.0f);
    while (ToOutputUnits(std::nextafter(torque, 0.0f), defaults) >= units) torque = std::nextafter(torque, 0.0f);
    return torque;
}

// A stint's reports at the first frame off track. 9996 is handed over unclipped, anything beyond it is
// clipped and counted, before the parked quarter and the low-force curve; a strength of 0 still reports its
// samples.
TEST(EmitForce, AStintReportsItsClippedShareSamplesAndPeak) {
    const struct {
        const char* what;
        std::vector<int32_t> ticks;  // output units of each tick's six outputs
        float speed;
        int32_t strength;
        float clipped;
        uint32_t samples, nonZero;
        int32_t peak;
    } cases[] = {
        {"9996 unclipped, 9997 clipped", {9996, 9997}, 3.0f, 50, 50.0f, 12, 12, 9996},
        {"clipped against the force", {-20000}, 3.0f, 50, 100.0f, 6, 6, 9996},
        {"one clipped tick in four", {12000, 250, 250, 250}, 3.0f, 50, 25.0f, 24, 24, 9996},
        {"parked: clipped, a quarter handed over", {12000}, 1.0f, 50, 100.0f, 6, 6, 2499},
        {"strength 0", {4000, 4000}, 3.0f, 0, 0.0f, 12, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto harness = std::make_unique<TickHarness>();
        harness->settings.ForceStrength = c.strength;
        for (const int32_t units : c.ticks) {
            harness->Run(SteadyFrame(units < 0 ? -TorqueForUnits(-units) : TorqueForUnits(units), c.speed));
        }
        harness->Run(TelemetryFrame{});
        const EngineStatus status = harness->engine.CopyStatus();
        EXPECT_EQ(status.clipReportCount, 1u);
        EXPECT_FLOAT_EQ(status.clippedPercent, c.clipped);
        EXPECT_EQ(status.outputReportSamples, c.samples);
        EXPECT_EQ(status.outputReportNonZero, c.nonZero);
        EXPECT_EQ(status.outputReportPeak, c.peak);
        EXPECT_EQ(harness->wheel.commandedForce.load(), 0);
    }
}

// A repeated tick neither stores nor counts. Past the lock a single stop force is stored at index -1,
// counted in no statistic, and no crash hold begins: the next tick's force is what it would have been.
TEST(EmitForce, RepeatsAndTheLockStopStayOutOfTheStatistics) {
    TelemetryFrame pastLock = SteadyFrame(5.0f, 30.0f);
    pastLock.steeringWheelAngle = 5.0f;  // past half of 8 rad by more than 15 degrees
    pastLock.latAccel = 100.0f;          // a crash hit now would start a hold
    int32_t lastForce[2] = {};
    for (const bool lockStop : {false, true}) {
        auto harness = std::make_unique<TickHarness>();
        harness->settings.Damping = 40;
        harness->Run(SteadyFrame(5.0f));
        harness->Run(SteadyFrame(9.0f), true);
        EXPECT_TRUE(SteppedPlatform::stores.empty());
        if (lockStop) {
            harness->Run(pastLock);
            const std::vector<StoredForce>& stores = SteppedPlatform::stores;
            ASSERT_EQ(stores.size(), 1u);
            EXPECT_EQ(stores[0].outputIndex, -1);
            EXPECT_EQ(stores[0].value, -9996);
            EXPECT_EQ(harness->wheel.dampingPercent.load(), 40);
            EXPECT_TRUE(harness->wheel.lockDamping.load());
        }
        harness->Run(SteadyFrame(5.0f, 30.0f));
        lastForce[lockStop] = SteppedPlatform::stores.back().value;
        harness->Run(TelemetryFrame{});
        const EngineStatus status = harness->engine.CopyStatus();
        EXPECT_EQ(status.outputReportSamples, 12u);
        EXPECT_FLOAT_EQ(status.clippedPercent, 0.0f);
    }
    EXPECT_EQ(lastForce[1], lastForce[0]);
}

}  // namespace
}  // namespace veltor::test
