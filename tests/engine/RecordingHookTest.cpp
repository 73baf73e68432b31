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
    float texture[6] = {1.0f, -3.0f, 3.0f, 2.0f, 0.0f, 0.0f};
    float correction[6] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f};
    float vibration[12] = {10.0f, 11.0f, 12.0f, 13.0f, 14.0f, 15.0f, 16.0f, 17.0f};
    EngineSettings settings;

    TickSignals Signals(int n, bool interpolate, float crashGain) {
        return TickSignals{frame, grip, base, texture, correction, vibration, n, interpolate, crashGain, settings};
    }
};

TEST(MakeTickSample, KeepsTheFirstSubSampleWithTheStrongestTexture) {
    Tick tick;
    tick.settings.SuspensionDetailPriority = 0;  // plain sum
    tick.grip.resistanceTorque = -1.5f;
    const RecordingSample sample = MakeTickSample(tick.Signals(4, false, 1.0f), 99);
    EXPECT_EQ(sample.baseTorque, 6.0f);
    EXPECT_EQ(sample.textureTorque, -3.0f);
    EXPECT_EQ(sample.correctionTorque, 0.2f);
    EXPECT_FLOAT_EQ(sample.mixedTorque, ((6.0f - 1.5f) - 3.0f) + (0.2f + 11.0f));
    EXPECT_EQ(sample.timeMicroseconds, 99u);
}

TEST(MakeTickSample, InterpolatedModeTakesTheVibrationOfTwiceThePeak) {
    Tick tick;
    tick.settings.SuspensionDetailPriority = 0;
    const RecordingSample sample = MakeTickSample(tick.Signals(4, true, 0.5f), 0);
    EXPECT_FLOAT_EQ(sample.mixedTorque, (((6.0f + 0.0f) - 3.0f) + (0.2f + 12.0f)) * 0.5f);
    EXPECT_EQ(sample.crashGain, 0.5f);
}

TEST(MakeTickSample, CopiesTheFrameAndFlagsClippingPriorityAndAbs) {
    Tick tick;
    tick.frame.tickCount = 4711;
    tick.frame.speed = 33.0f;
    tick.frame.steeringWheelAngle = 0.3f;
    tick.frame.steeringWheelTorque = 7.5f;
    tick.frame.velocityX = 32.0f;
    tick.frame.velocityY = -1.0f;
    tick.frame.longAccel = 2.0f;
    tick.frame.latAccel = -4.0f;
    tick.frame.yawRate = 0.1f;
    tick.frame.brakeAbsActive = 1;
    tick.grip.steerExcess = 0.25f;
    tick.grip.understeerLoad = 0.2f;
    tick.base[1] = 60.0f;  // 15000 units with the texture ducking it: clipped, priority acted
    const RecordingSample sample = MakeTickSample(tick.Signals(4, false, 1.0f), 0);
    EXPECT_EQ(sample.tickCount, 4711);
    EXPECT_EQ(sample.speed, 33.0f);
    EXPECT_EQ(sample.steeringWheelAngle, 0.3f);
    EXPECT_EQ(sample.steeringWheelTorque, 7.5f);
    EXPECT_EQ(sample.velocityX, 32.0f);
    EXPECT_EQ(sample.velocityY, -1.0f);
    EXPECT_EQ(sample.longAccel, 2.0f);
    EXPECT_EQ(sample.latAccel, -4.0f);
    EXPECT_EQ(sample.yawRate, 0.1f);
    EXPECT_EQ(sample.steerExcess, 0.25f);
    EXPECT_EQ(sample.understeerLoad, 0.2f);
    EXPECT_EQ(sample.fullScaleTorque, 40.0f);
    EXPECT_EQ(sample.clipped, 1);
    EXPECT_EQ(sample.priorityActed, 1);
    EXPECT_EQ(sample.absActive, 1);
    const uint8_t zero[5] = {};
    EXPECT_EQ(std::memcmp(sample.reserved, zero, 5), 0);

    tick.base[1] = 6.0f;
    tick.vibration[1] = -20.0f;  // the texture now pulls along with the force, and no resistance can give way
    tick.frame.brakeAbsActive = 0;
    const RecordingSample calm = MakeTickSample(tick.Signals(4, false, 1.0f), 0);
    EXPECT_EQ(calm.clipped, 0);
    EXPECT_EQ(calm.priorityActed, 0);
    EXPECT_EQ(calm.absActive, 0);
}

std::vector<RecordingSample> ReadRecords(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    in.seekg(380);
    std::vector<RecordingSample> records;
    RecordingSample sample;
    while (in.read(reinterpret_cast<char*>(&sample), sizeof sample)) records.push_back(sample);
    return records;
}

TEST(RecordTick, PushesOneTimedSampleWhileRecordingAndNothingOtherwise) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_record_tick.vtrrec";
    auto recorder = std::make_unique<TelemetryRecorder>();
    Tick tick;
    RecordTick(*recorder, tick.Signals(4, false, 1.0f), 1000000);  // not recording yet
    ASSERT_TRUE(recorder->Start(path.wstring(), RecordingHeader{}, 1000000000));
    tick.frame.tickCount = 1;
    RecordTick(*recorder, tick.Signals(4, false, 1.0f), 1016666667);
    tick.frame.tickCount = 2;
    RecordTick(*recorder, tick.Signals(4, false, 1.0f), 1033333334);
    recorder->Stop();
    RecordTick(*recorder, tick.Signals(4, false, 1.0f), 1050000000);
    const std::vector<RecordingSample> records = ReadRecords(path);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].tickCount, 1);
    EXPECT_EQ(records[0].timeMicroseconds, 16666u);
    EXPECT_EQ(records[1].timeMicroseconds, 33333u);
    std::filesystem::remove(path);
}

TEST(BeginRecording, RefusesUnlessRunningConnectedAndOnTrackAndTouchesNoFile) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_refused.vtrrec";
    std::filesystem::remove(path);
    auto engine = std::make_unique<FfbEngine>();
    EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->running.store(true);
    engine->UpdateStatus(true, false, L"rt2000", L"Someone", 1, true);
    EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->running.store(false);
    engine->UpdateStatus(true, true, L"rt2000", L"Someone", 1, true);
    EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(BeginRecording, WritesTheHeaderOfTheStatusSettingsAndCarRow) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_begin.vtrrec";
    auto engine = std::make_unique<FfbEngine>();
    EngineSettings s;
    s.ForceStrength = 70;
    s.WheelbaseMaxTorqueTenths = 125;
    engine->PublishSettings(s);
    engine->running.store(true);
    engine->UpdateStatus(true, true, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
    ASSERT_TRUE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->recorder.Stop();
    engine->running.store(false);

    ASSERT_EQ(std::filesystem::file_size(path), 380u);
    RecordingHeader header;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    EXPECT_STREQ(header.carPath, "mercedesamggt4");
    EXPECT_STREQ(header.driverName, "Sample Driver GT4");
    EXPECT_STREQ(header.profileName, "Club");
    EXPECT_EQ(header.ForceStrength, 70);
    EXPECT_EQ(header.wheelbaseMaxTorque, 12.5f);
    const CarRow row = engine->ResolveCarRow(L"mercedesamggt4", true);
    EXPECT_EQ(header.YawRateMultiplier, row.YawRateMultiplier);
    EXPECT_EQ(header.LateralAccelDivisor, row.LateralAccelDivisor);
    EXPECT_EQ(header.ResistanceGain, row.ResistanceGain);
    EXPECT_EQ(header.LateralAccelDivisor, 70.0f);
    EXPECT_GT(header.startTimeMs, 1600000000000ULL);
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace veltor
