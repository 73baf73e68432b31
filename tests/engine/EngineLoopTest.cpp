#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "ForceLog.h"
#include "ScriptedSimulator.h"
#include "engine/EngineLoop.h"
#include "telemetry/SimulatorLink_host.h"

namespace veltor {
namespace {

using test::ForceLog;
using test::OnTrackFrame;
using test::RecordingPlatform;
using test::RecordingWheel;
using test::SteppedPlatform;
using test::ScriptedSimulator;
using test::StoredForce;

constexpr int32_t kSuppression = 655360000;  // 10000 Nm × 65536
constexpr int32_t kRestore = 2621440;        // 40 Nm × 65536

// Polls a condition that another thread brings about; gives up after a generous bound.
template <class Condition>
bool Eventually(Condition condition, std::chrono::milliseconds bound = std::chrono::milliseconds(5000)) {
    const auto end = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::vector<int32_t> Values(const std::vector<StoredForce>& stores, int32_t StoredForce::*field = &StoredForce::value) {
    std::vector<int32_t> values;
    for (const StoredForce& s : stores) values.push_back(s.*field);
    return values;
}

// Output k of a burst is held back to t0 + k × spacing; the non-interpolated mode sleeps 2000 µs first.
void ExpectPacedAt(const std::vector<StoredForce>& stores, int32_t sleepMicroseconds, int32_t spacingMicroseconds) {
    const std::vector<test::RequestedWait> waits = ForceLog::TakeWaits();
    ASSERT_EQ(waits.size() + 1, stores.size());
    for (size_t k = 1; k < stores.size(); ++k) {
        const test::RequestedWait& wait = waits[k - 1];
        EXPECT_EQ(wait.t0, waits[0].t0);
        EXPECT_EQ(wait.sleepMicroseconds, sleepMicroseconds);
        EXPECT_EQ(wait.offsetMicroseconds, spacingMicroseconds * static_cast<int32_t>(k));
        EXPECT_GE(stores[k].time, wait.t0 + wait.offsetMicroseconds * 1000LL);
    }
}

TelemetryFrame OffTrackFrame() {
    TelemetryFrame frame = OnTrackFrame({7.0f, 7.0f, 7.0f, 7.0f, 7.0f, 7.0f});
    frame.isOnTrack = 0;
    return frame;
}

class EngineThread : public ::testing::Test {
protected:
    void SetUp() override {
        hostsim::Withdraw();
        hostsim::SetWaitFailure(false);
        hostsim::ClearBroadcasts();
        RecordingWheel::Reset();
    }
    void TearDown() override {
        engine.Stop();
        hostsim::SetWaitFailure(false);
    }

    template <class Platform = RecordingPlatform>
    void StartEngine(EngineSettings settings = {}) {
        engine.StartWith<Platform>(settings, nullptr, DeviceGuid{});
        ASSERT_TRUE(Eventually([&] { return engine.running.load(); }));
    }

    // Brings the engine to Connected, off track, with the wheel open.
    void Connect() {
        sim.Appear(true);
        ASSERT_TRUE(sim.Sync());
        ASSERT_TRUE(sim.PublishFrame(OffTrackFrame()));
        ASSERT_TRUE(sim.Sync());
        ForceLog::Take();
        ForceLog::TakeWaits();
    }

    RecordingWheel& Wheel() { return *RecordingWheel::current.load(); }

    FfbEngine engine;
    ScriptedSimulator sim;
};

TEST_F(EngineThread, WalksFromSearchingThroughConnectingToOnTrack) {
    StartEngine();
    // Attached: the memory is there but the status bit is clear.
    sim.Appear(false);
    ASSERT_TRUE(sim.Sync());
    EXPECT_FALSE(engine.CopyStatus().connected);
    EXPECT_TRUE(hostsim::Broadcasts().empty());
    EXPECT_EQ(RecordingWheel::opens.load(), 0);

    // Connecting: the suppression goes out once; a wheel that fails to open is retried.
    RecordingWheel::opensToFail.store(1);
    ASSERT_TRUE(sim.SetConnected(true));
    ASSERT_TRUE(sim.Sync());
    EXPECT_EQ(hostsim::Broadcasts(), std::vector<int32_t>{kSuppression});
    EXPECT_EQ(RecordingWheel::opens.load(), 2);
    EXPECT_TRUE(RecordingWheel::isOpen.load());

    // Connected, off track: the status follows the frames, the wheel stays silent.
    ASSERT_TRUE(sim.PublishFrame(OffTrackFrame()));
    ASSERT_TRUE(sim.Sync());
    EngineStatus status = engine.CopyStatus();
    EXPECT_TRUE(status.connected);
    EXPECT_FALSE(status.onTrack);
    EXPECT_EQ(ForceLog::Size(), 0u);
    EXPECT_FALSE(Wheel().outputEnabled.load());

    // On track: six sub-samples become six outputs of force × 250 units (40 Nm full scale).
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f})));
    ASSERT_TRUE(sim.Sync());
    const std::vector<StoredForce> stores = ForceLog::Take();
    EXPECT_EQ(Values(stores), (std::vector<int32_t>{250, 500, 750, 1000, 1250, 1500}));
    ExpectPacedAt(stores, 2000, 2760);
    status = engine.CopyStatus();
    EXPECT_TRUE(status.onTrack);
    EXPECT_EQ(status.onTrackChangeCount, 1u);
    EXPECT_TRUE(Wheel().outputEnabled.load());
    EXPECT_EQ(Wheel().commandedForce.load(), 1500);

    // Leaving the track publishes the stint and silences the wheel.
    ASSERT_TRUE(sim.PublishFrame(OffTrackFrame()));
    ASSERT_TRUE(sim.Sync());
    status = engine.CopyStatus();
    EXPECT_EQ(status.outputReportSamples, 6u);
    EXPECT_EQ(status.onTrackChangeCount, 2u);
    EXPECT_EQ(Wheel().commandedForce.load(), 0);
    EXPECT_FALSE(Wheel().outputEnabled.load());
}

TEST_F(EngineThread, InterpolatedModeStartsHalfWayFromZeroAfterAReset) {
    EngineSettings settings;
    settings.Mode = 1;
    StartEngine(settings);
    Connect();
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({4.0f, 8.0f, 12.0f, 16.0f, 20.0f, 24.0f})));
    ASSERT_TRUE(sim.Sync());
    std::vector<StoredForce> stores = ForceLog::Take();
    // Twelve outputs: halfway points between sub-samples, the first halfway from the zero of the reset.
    EXPECT_EQ(Values(stores), (std::vector<int32_t>{500, 1000, 1500, 2000, 2500, 3000, 3500, 4000, 4500, 5000,
                                                    5500, 6000}));
    EXPECT_EQ(Values(stores, &StoredForce::outputIndex), (std::vector<int32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    ExpectPacedAt(stores, 0, 1380);

    // The next tick starts halfway from the last sub-sample of this one.
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({28.0f, 28.0f, 28.0f, 28.0f, 28.0f, 28.0f})));
    ASSERT_TRUE(sim.Sync());
    stores = ForceLog::Take();
    ASSERT_EQ(stores.size(), 12u);
    EXPECT_EQ(stores[0].value, 6500);
    EXPECT_EQ(stores[11].value, 7000);
}

TEST_F(EngineThread, OneSubSampleGivesOneOutputInBothModes) {
    ScriptedSimulator single({{"IsOnTrack", sim::VarType::Bool, 1},
                              {"Speed", sim::VarType::Float, 1},
                              {"SteeringWheelTorque", sim::VarType::Float, 1},
                              {"SteeringWheelTorque_ST", sim::VarType::Float, 1}});
    EngineSettings settings;
    settings.Mode = 1;
    StartEngine(settings);
    single.Appear(true);
    ASSERT_TRUE(single.Sync());
    ASSERT_TRUE(single.PublishFrame(OnTrackFrame({8.0f})));
    ASSERT_TRUE(single.Sync());
    EXPECT_EQ(Values(ForceLog::Take()), std::vector<int32_t>{2000});
    settings.Mode = 0;
    engine.PublishSettings(settings);
    ASSERT_TRUE(single.PublishFrame(OnTrackFrame({-8.0f})));
    ASSERT_TRUE(single.Sync());
    EXPECT_EQ(Values(ForceLog::Take()), std::vector<int32_t>{-2000});
}

TEST_F(EngineThread, SimucubeSuppressionFollowsForceStrengthOncePerConnection) {
    EngineSettings settings;
    settings.SimucubeMode = true;
    settings.ForceStrength = 40;
    StartEngine(settings);
    Connect();
    settings.ForceStrength = 80;  // no new broadcast during the connection
    engine.PublishSettings(settings);
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({1.0f})));
    ASSERT_TRUE(sim.Sync());
    EXPECT_EQ(hostsim::Broadcasts(), std::vector<int32_t>{static_cast<int32_t>(2000.0f / 40.0f * 65536.0f)});
    engine.Stop();
    EXPECT_EQ(hostsim::Broadcasts(), (std::vector<int32_t>{3276800, kRestore}));
    const EngineStatus status = engine.CopyStatus();
    EXPECT_FALSE(status.connected);
    EXPECT_EQ(status.carPath, L"generic");
    EXPECT_FALSE(engine.running.load());
    EXPECT_FALSE(RecordingWheel::isOpen.load());
}

TEST_F(EngineThread, WaitFailureRestoresTheSimulatorAndReconnects) {
    StartEngine();
    Connect();
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({2.0f, 2.0f, 2.0f, 2.0f, 2.0f, 2.0f})));
    ASSERT_TRUE(sim.Sync());
    const int closesBefore = RecordingWheel::closes.load();

    hostsim::SetWaitFailure(true);
    ASSERT_TRUE(Eventually([] { return hostsim::Broadcasts().size() >= 3; }));
    hostsim::SetWaitFailure(false);
    ASSERT_TRUE(sim.Sync());

    // Each failed wait hands the force back and closes the wheel; the next pass connects anew.
    const std::vector<int32_t> broadcasts = hostsim::Broadcasts();
    for (size_t i = 0; i < broadcasts.size(); ++i) EXPECT_EQ(broadcasts[i], i % 2 == 0 ? kSuppression : kRestore);
    EXPECT_EQ(broadcasts.back(), kSuppression);
    EXPECT_GT(RecordingWheel::closes.load(), closesBefore);
    EXPECT_TRUE(RecordingWheel::isOpen.load());
    // The stint survives a failed wait: its statistics are not published yet.
    EXPECT_EQ(engine.CopyStatus().outputReportCount, 0u);
    EXPECT_TRUE(engine.CopyStatus().connected);
}

TEST_F(EngineThread, SimulatorGoingAwayEndsTheStintAndReleasesTheWheel) {
    StartEngine();
    Connect();
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({2.0f, 2.0f, 2.0f, 2.0f, 2.0f, 2.0f})));
    ASSERT_TRUE(sim.Sync());

    // The simulator clears its status bit: the engine stays attached with the wheel open.
    ASSERT_TRUE(sim.SetConnected(false));
    ASSERT_TRUE(sim.Sync());  // the pass that sees the bit clear publishes after its wait: one more pass
    ASSERT_TRUE(sim.Sync());
    EXPECT_FALSE(engine.CopyStatus().connected);
    EXPECT_TRUE(RecordingWheel::isOpen.load());

    // Then its memory goes: the wait fails, the force is handed back, the client cannot reopen.
    sim.Disappear();
    hostsim::SetWaitFailure(true);
    ASSERT_TRUE(Eventually([&] { return engine.CopyStatus().outputReportCount == 1; }));
    hostsim::SetWaitFailure(false);
    EXPECT_EQ(hostsim::Broadcasts(), (std::vector<int32_t>{kSuppression, kRestore}));
    EXPECT_FALSE(RecordingWheel::isOpen.load());
    const EngineStatus status = engine.CopyStatus();
    EXPECT_FALSE(status.connected);
    EXPECT_FALSE(status.onTrack);
    EXPECT_EQ(status.outputReportSamples, 6u);

    // It comes back: a new connection sends the suppression again.
    sim.Appear(true);
    ASSERT_TRUE(sim.Sync());
    EXPECT_EQ(hostsim::Broadcasts(), (std::vector<int32_t>{kSuppression, kRestore, kSuppression}));
}

// A stop while a burst waits still emits the burst's last output; the interpolated mode first waits for its
// place, the full count of the loop.
TEST_F(EngineThread, StopDuringABurstStillEmitsTheLastOutput) {
    struct Case {
        int32_t mode;
        std::vector<int32_t> indices;
        std::vector<int32_t> offsets;
    };
    for (const Case& c : {Case{0, {0, 5}, {2760}}, Case{1, {0, 1, 11}, {1380, 11 * 1380}}}) {
        SCOPED_TRACE(c.mode);
        EngineSettings settings;
        settings.Mode = c.mode;
        StartEngine(settings);
        Connect();
        RecordingPlatform::holdInWait.store(true);
        ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({4.0f, 8.0f, 12.0f, 16.0f, 20.0f, 24.0f})));
        ASSERT_TRUE(Eventually([] { return ForceLog::Size() >= 1; }));  // held in the wait after output 0
        engine.stopRequested.store(true);
        RecordingPlatform::holdInWait.store(false);
        engine.Stop();
        const std::vector<StoredForce> stores = ForceLog::Take();
        EXPECT_EQ(Values(stores, &StoredForce::outputIndex), c.indices);
        EXPECT_EQ(stores.back().value, 6000);
        std::vector<int32_t> offsets;
        for (const test::RequestedWait& wait : ForceLog::TakeWaits()) offsets.push_back(wait.offsetMicroseconds);
        EXPECT_EQ(offsets, c.offsets);
        EXPECT_EQ(hostsim::Broadcasts().back(), kRestore);
        EXPECT_FALSE(engine.running.load());
        hostsim::Withdraw();
        hostsim::ClearBroadcasts();
        RecordingWheel::Reset();
    }
}

// A simulator that hangs on track with its status bit set: a second without a new frame releases the force
// once and counts a stall, without leaving the track; the next frame brings the force back.
TEST_F(EngineThread, ASecondOnTrackWithoutANewFrameReleasesTheForceOnce) {
    constexpr int64_t kMs = 1000000;
    SteppedPlatform::now = 1000 * kMs;
    StartEngine<SteppedPlatform>();
    Connect();
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({6.0f, 6.0f, 6.0f, 6.0f, 6.0f, 6.0f})));
    ASSERT_TRUE(sim.Sync());
    const struct {
        int64_t at;
        bool newFrame;
        bool enabled;
        uint32_t stalls;
    } steps[] = {{1999, false, true, 0}, {2000, false, false, 1}, {3000, false, false, 1},
                 {3100, true, true, 1},  {4099, false, true, 1},  {4100, false, false, 2}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.at);
        SteppedPlatform::now = step.at * kMs;
        ASSERT_TRUE(step.newFrame ? sim.PublishFrame(OnTrackFrame({6.0f, 6.0f, 6.0f, 6.0f, 6.0f, 6.0f})) : sim.RepeatFrame());
        ASSERT_TRUE(sim.Sync());
        const EngineStatus status = engine.CopyStatus();
        EXPECT_EQ(Wheel().outputEnabled.load(), step.enabled);
        EXPECT_EQ(Wheel().commandedForce.load(), step.enabled ? 1500 : 0);
        EXPECT_EQ(status.telemetryStallCount, step.stalls);
        EXPECT_TRUE(status.onTrack);
    }
    EXPECT_EQ(engine.CopyStatus().outputReportCount, 0u);  // the stint goes on
}

TEST_F(EngineThread, RestartKeepsACrashHoldAndReportsTheOpenStint) {
    StartEngine();
    Connect();
    ASSERT_TRUE(sim.PublishFrame(OnTrackFrame({2.0f})));
    ASSERT_TRUE(sim.Sync());
    engine.crashHoldUntil = 0x7000000000000000LL;  // stands for a hold that began before the stop
    StartEngine();  // Start stops the running engine first
    EXPECT_EQ(engine.CopyStatus().outputReportCount, 1u);
    EXPECT_EQ(engine.crashHoldUntil, 0x7000000000000000LL);
    const std::vector<int32_t> broadcasts = hostsim::Broadcasts();
    ASSERT_GE(broadcasts.size(), 2u);
    EXPECT_EQ(broadcasts[0], kSuppression);
    EXPECT_EQ(broadcasts[1], kRestore);  // the old thread handed the force back before the new one began
}

}  // namespace
}  // namespace veltor
