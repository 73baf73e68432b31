#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "ScriptedSimulator.h"
#include "TickHarness.h"
#include "telemetry/SimulatorLink_host.h"
#include "wheel/DirectInputDevice_host.h"
#include "wheel/WheelOutput.h"

namespace veltor::test {
namespace {

constexpr int32_t kSuppression = 655360000;  // 10000 Nm × 65536
constexpr int32_t kRestore = 2621440;        // 40 Nm × 65536
constexpr int64_t kMs = 1000000;

// Sub-samples of 4 to 24 Nm, then six of 28 Nm, at 250 units per Nm. One output per sub-sample, 2760 µs
// apart; interpolated, twice as many, 1380 µs apart, each tick starting half way from the last sub-sample
// before it (zero after a reset). A single sub-sample is one output in both modes. Whatever the sleeps'
// lateness, no output goes before its offset from the frame, nor later than the spin's last step after it.
TEST(EngineLoopBurst, SubSamplesBecomeOutputsAtFixedOffsetsFromTheFrame) {
    const std::vector<sim::VariableSpec> single = {{"IsOnTrack", sim::VarType::Bool, 1},
                                                   {"Speed", sim::VarType::Float, 1},
                                                   {"SteeringWheelTorque_ST", sim::VarType::Float, 1}};
    const struct {
        int32_t mode;
        std::vector<sim::VariableSpec> variables;
        std::vector<int32_t> first, second;
        int64_t spacing, lateness;
    } cases[] = {
        {0, sim::StandardVariables(), {1000, 2000, 3000, 4000, 5000, 6000}, std::vector<int32_t>(6, 7000), 2760, 0},
        {0, sim::StandardVariables(), {1000, 2000, 3000, 4000, 5000, 6000}, std::vector<int32_t>(6, 7000), 2760, 700},
        {1, sim::StandardVariables(), {500, 1000, 1500, 2000, 2500, 3000, 3500, 4000, 4500, 5000, 5500, 6000},
         {6500, 7000, 7000, 7000, 7000, 7000, 7000, 7000, 7000, 7000, 7000, 7000}, 1380, 300},
        {0, single, {1000}, {7000}, 0, 0},
        {1, single, {1000}, {7000}, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << ", " << c.first.size() << " outputs, lateness "
                                        << c.lateness << " us");
        SteppedSleeps::Reset();
        SteppedSleeps::lateness[0] = SteppedSleeps::lateness[1] = c.lateness * 1000;
        auto harness = std::make_unique<TickHarness>(c.variables);
        harness->settings.Mode = c.mode;
        SteppedPlatform::now = 5 * kMs;
        harness->Run(OnTrackFrame({4.0f, 8.0f, 12.0f, 16.0f, 20.0f, 24.0f}));
        EXPECT_EQ(StoredValues(), c.first);
        const std::vector<StoredForce>& stores = SteppedPlatform::stores;
        for (size_t k = 0; k < stores.size(); ++k) {
            EXPECT_EQ(stores[k].outputIndex, static_cast<int32_t>(k));
            const int64_t offset = 5 * kMs + c.spacing * 1000 * static_cast<int64_t>(k);
            EXPECT_GE(stores[k].at, offset);
            EXPECT_LE(stores[k].at, offset + SteppedSleeps::kPauseNanoseconds);
        }
        SteppedPlatform::now = 30 * kMs;
        harness->Run(SteadyFrame(28.0f));
        EXPECT_EQ(StoredValues(), c.second);
    }
}

// A simulator that hangs on track with its status bit set: a second without a new frame releases the force
// once and counts a stall, without leaving the track; the next frame brings the force back.
TEST(EngineLoopStall, ASecondOnTrackWithoutANewFrameReleasesTheForceOnce) {
    auto harness = std::make_unique<TickHarness>();
    SteppedPlatform::now = 1000 * kMs;
    harness->Run(SteadyFrame(6.0f));
    const struct {
        int64_t at;
        bool newFrame, enabled;
        uint32_t stalls;
    } steps[] = {{1999, false, true, 0}, {2000, false, false, 1}, {3000, false, false, 1},
                 {3100, true, true, 1},  {4099, false, true, 1},  {4100, false, false, 2}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.at);
        SteppedPlatform::now = step.at * kMs;
        harness->Run(SteadyFrame(6.0f), !step.newFrame);
        const EngineStatus status = harness->engine.CopyStatus();
        EXPECT_EQ(harness->wheel.outputEnabled.load(), step.enabled);
        EXPECT_EQ(harness->wheel.commandedForce.load(), step.enabled ? 1500 : 0);
        EXPECT_EQ(status.telemetryStallCount, step.stalls);
        EXPECT_TRUE(status.onTrack);
        EXPECT_EQ(status.outputReportCount, 0u);  // the stint goes on
    }
}

// The product's wheel on the host twin, which keeps what it was sent when the engine thread lets it go.
struct KeptWheel : WheelOutput {
    KeptWheel() { current.store(this); }
    ~KeptWheel() {
        Close();
        current.store(nullptr);
        sent = PlatformDevice().PlatformObjects().SentMagnitudes();
    }
    static uint64_t SentCount() {
        KeptWheel* wheel = current.load();
        return wheel != nullptr ? wheel->PlatformDevice().PlatformObjects().sentCount.load() : 0;
    }
    static inline std::atomic<KeptWheel*> current{nullptr};
    static inline std::vector<int32_t> sent;
};

struct KeptWheelPlatform : EnginePlatform {
    using Wheel = KeptWheel;
};

// The engine thread and the wheel's output thread together on the product's clock and waits, over the
// in-process link and the virtual wheel: connecting silences the simulator once and opens the wheel, the
// force of frames on track reaches the wheel after its warm-up, and the stop hands the simulator its force
// back.
TEST(EngineThread, DrivesTheWheelFromFramesOnTrackAndHandsTheForceBackOnStop) {
    hostsim::Withdraw();
    hostsim::ClearBroadcasts();
    ScriptedSimulator sim;
    auto engine = std::make_unique<FfbEngine>();
    engine->StartWith<KeptWheelPlatform>(EngineSettings{}, nullptr, DeviceGuid{});
    sim.Appear();
    ASSERT_TRUE(sim.Sync());  // once the engine thread waits on the event
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (KeptWheel::SentCount() < 1000 && std::chrono::steady_clock::now() < deadline) {
        ASSERT_TRUE(sim.PublishFrame(SteadyFrame(12.0f)));
        ASSERT_TRUE(sim.Sync());
        std::this_thread::sleep_for(std::chrono::milliseconds(16));  // the simulator's 60 Hz
    }
    EXPECT_TRUE(engine->CopyStatus().onTrack);
    EXPECT_EQ(engine->CopyStatus().outputFailureCount, 0u);
    engine->Stop();
    EXPECT_EQ(hostsim::Broadcasts(), (std::vector<int32_t>{kSuppression, kRestore}));
    ASSERT_GE(KeptWheel::sent.size(), 1000u);
    EXPECT_GT(*std::max_element(KeptWheel::sent.begin(), KeptWheel::sent.end()), 1000);
    for (const int32_t magnitude : KeptWheel::sent) ASSERT_LE(std::abs(magnitude), 10000);
}

}  // namespace
}  // namespace veltor::test
