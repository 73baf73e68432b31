#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "engine/FfbEngine.h"
#include "engine/RecordingHook.h"

namespace veltor {
namespace {

struct Tick {
    TelemetryFrame frame;
    GripResult grip;
    float base[6] = {5.0f, 6.0f, 7.0f, 8.0f, 0.0f, 0.0f};
    float texture[6] = {1.0f, -3.0f, 3.0f, 2.0f, 0.0f, 0.0f};  // the first of the two strongest is 1
    float correction[6] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f};
    float vibration[12] = {10.0f, 11.0f, 12.0f, 13.0f, 14.0f, 15.0f, 16.0f, 17.0f};
    EngineSettings settings;

    TickSignals Signals(bool interpolate = false, float crashGain = 1.0f) {
        return TickSignals{frame, grip, base, texture, correction, vibration, 4, interpolate, crashGain, settings};
    }
};

// The strongest texture's sub-sample, mixed as its output would be; the interpolated mode takes the
// vibration of output 2 × peak.
TEST(MakeTickSample, MixesTheSubSampleWithTheStrongestTexture) {
    Tick tick;
    tick.settings.SuspensionDetailPriority = 0;  // plain sum
    tick.grip.resistanceTorque = -1.5f;
    const RecordingSample plain = MakeTickSample(tick.Signals(), 99);
    EXPECT_EQ(plain.baseTorque, 6.0f);
    EXPECT_EQ(plain.textureTorque, -3.0f);
    EXPECT_EQ(plain.correctionTorque, 0.2f);
    EXPECT_EQ(plain.resistanceTorque, -1.5f);
    EXPECT_FLOAT_EQ(plain.mixedTorque, ((6.0f - 1.5f) - 3.0f) + (0.2f + 11.0f));
    EXPECT_EQ(plain.timeMicroseconds, 99u);
    const RecordingSample interpolated = MakeTickSample(tick.Signals(true, 0.5f), 0);
    EXPECT_FLOAT_EQ(interpolated.mixedTorque, (((6.0f - 1.5f) - 3.0f) + (0.2f + 12.0f)) * 0.5f);
    EXPECT_EQ(interpolated.crashGain, 0.5f);
}

TEST(MakeTickSample, CopiesTheFrameAndFlagsClippingPriorityAndAbs) {
    Tick tick;
    TelemetryFrame& f = tick.frame;
    f.tickCount = 4711;
    f.speed = 33.0f;
    f.steeringWheelAngle = 0.3f;
    f.steeringWheelTorque = 7.5f;
    f.velocityX = 32.0f;
    f.velocityY = -1.0f;
    f.longAccel = 2.0f;
    f.latAccel = -4.0f;
    f.yawRate = 0.1f;
    f.brakeAbsActive = 1;
    tick.grip.steerExcess = 0.25f;
    tick.grip.understeerLoad = 0.2f;
    tick.base[1] = 60.0f;  // 15000 units with the texture ducking it: clipped, priority acted
    const RecordingSample s = MakeTickSample(tick.Signals(), 0);
    const float copied[] = {s.speed,    s.steeringWheelAngle, s.steeringWheelTorque, s.velocityX,  s.velocityY,
                            s.longAccel, s.latAccel,         s.yawRate,             s.steerExcess, s.understeerLoad};
    const float expected[] = {33.0f, 0.3f, 7.5f, 32.0f, -1.0f, 2.0f, -4.0f, 0.1f, 0.25f, 0.2f};
    for (size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(copied[i], expected[i]) << i;
    EXPECT_EQ(s.tickCount, 4711);
    EXPECT_EQ(s.fullScaleTorque, 40.0f);
    EXPECT_EQ(s.clipped + s.priorityActed + s.absActive, 3);

    tick.base[1] = 6.0f;
    tick.vibration[1] = -20.0f;  // the texture now pulls along with the force, and no resistance can give way
    f.brakeAbsActive = 0;
    const RecordingSample calm = MakeTickSample(tick.Signals(), 0);
    EXPECT_EQ(calm.clipped + calm.priorityActed + calm.absActive, 0);
}

int64_t gNow = 0;
int64_t SteppedNow() { return gNow; }

TEST(RecordTick, PushesOneSampleTimedFromTheStartWhileRecordingAndNothingOtherwise) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_record_tick.vtrrec";
    auto recorder = std::make_unique<TelemetryRecorder>();
    Tick tick;
    RecordTick(*recorder, tick.Signals(), &SteppedNow);  // not recording yet
    ASSERT_TRUE(recorder->Start(path.wstring(), RecordingHeader{}, 1000000000));
    for (int32_t i = 1; i <= 2; ++i) {
        tick.frame.tickCount = i;
        gNow = 1000000000 + i * 16666667LL;
        RecordTick(*recorder, tick.Signals(), &SteppedNow);
    }
    recorder->Stop();
    RecordTick(*recorder, tick.Signals(), &SteppedNow);

    std::ifstream in(path, std::ios::binary);
    in.seekg(380);
    std::vector<RecordingSample> records(3);
    in.read(reinterpret_cast<char*>(records.data()), 3 * sizeof(RecordingSample));
    const std::streamsize read = in.gcount();
    in.close();
    std::filesystem::remove(path);
    ASSERT_EQ(read, static_cast<std::streamsize>(2 * sizeof(RecordingSample)));
    EXPECT_EQ(records[0].tickCount, 1);
    EXPECT_EQ(records[0].timeMicroseconds, 16666u);
    EXPECT_EQ(records[1].timeMicroseconds, 33333u);
}

TEST(BeginRecording, RefusesUnlessRunningConnectedAndOnTrackAndTouchesNoFile) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_refused.vtrrec";
    std::filesystem::remove(path);
    auto engine = std::make_unique<FfbEngine>();
    const struct {
        bool running, connected, onTrack;
    } refused[] = {{false, true, true}, {true, false, true}, {true, true, false}};
    for (const auto& c : refused) {
        engine->running.store(c.running);
        engine->UpdateStatus(c.connected, c.onTrack, L"rt2000", L"Someone", 1, true);
        EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
    }
    engine->running.store(false);
    EXPECT_FALSE(std::filesystem::exists(path));
}

// The header carries the status's identity, the settings and the car's row of this moment.
TEST(BeginRecording, WritesTheHeaderOfTheStatusSettingsAndCarRow) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_begin.vtrrec";
    auto engine = std::make_unique<FfbEngine>();
    EngineSettings s;
    s.ForceStrength = 61;
    s.Bumps = 22;
    s.BumpImpacts = 33;
    s.UndersteerResistance = 44;
    s.SuspensionDetailPriority = 55;
    s.CarForceBalance = 120;
    s.AbsVibration = 17;
    s.WheelbaseMaxTorqueTenths = 125;
    engine->PublishSettings(s);
    engine->PublishOverrides({CarCoefficients{L"mercedesamggt4", 41.0f, 0.25f, 71.0f, 0.96f, 0.01f}});
    engine->running.store(true);
    engine->UpdateStatus(true, true, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
    ASSERT_TRUE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->recorder.Stop();
    engine->running.store(false);

    ASSERT_EQ(std::filesystem::file_size(path), 380u);
    RecordingHeader h;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&h), sizeof h);
    EXPECT_STREQ(h.carPath, "mercedesamggt4");
    EXPECT_STREQ(h.driverName, "Sample Driver GT4");
    EXPECT_STREQ(h.profileName, "Club");
    const int32_t settings[] = {h.ForceStrength, h.Bumps, h.BumpImpacts, h.UndersteerResistance,
                                h.SuspensionDetailPriority, h.CarForceBalance, h.AbsVibration};
    EXPECT_EQ(std::vector<int32_t>(std::begin(settings), std::end(settings)),
              (std::vector<int32_t>{61, 22, 33, 44, 55, 120, 17}));
    const float row[] = {h.YawRateMultiplier, h.YawSteerGain, h.LateralAccelDivisor, h.ResistanceGain,
                         h.SteerMarginBias, h.wheelbaseMaxTorque};
    EXPECT_EQ(std::vector<float>(std::begin(row), std::end(row)),
              (std::vector<float>{41.0f, 0.25f, 71.0f, 0.96f, 0.01f, 12.5f}));
    EXPECT_GT(h.startTimeMs, 1600000000000ULL);
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace veltor
