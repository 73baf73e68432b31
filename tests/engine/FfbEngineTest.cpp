#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "TickHarness.h"
#include "engine/FfbEngine.h"

namespace veltor {
namespace {

// The row of each tick: an override whatever the case of its letters, else the set for an unknown car (the
// catalogue's rows reach the replay over real telemetry), and the car-independent set while car-specific
// settings are off. The tick resolves the row once per change, yet a published change of the overrides acts
// on the very next tick. The row moves the force through the resistance alone: 0.75 x 40 Nm x its gain per
// radian of steering beyond what 9 m/s² of lateral acceleration over its divisor and 10 degrees explain.
TEST(FfbEngine_ResolveCarRow, EachTickTakesTheRowOfItsCarAndTheOverridesPublishedLast) {
    auto harness = std::make_unique<test::TickHarness>();
    harness->loop.AssumeSession(SessionIdentity{L"testcar"});
    TelemetryFrame frame = test::SteadyFrame(0.0f, 20.0f);
    frame.steeringWheelAngle = 0.5f;
    frame.latAccel = 9.0f;
    const auto lastStore = [&](bool carSpecific) {
        harness->settings.UseCarSpecificSettings = carSpecific;
        harness->Run(frame);
        return test::SteppedPlatform::stores.back().value;
    };
    EXPECT_EQ(lastStore(true), -1687);  // 6.75 Nm: 0.5 - 9 / 90 - 0.175
    harness->engine.PublishOverrides({CarCoefficients{L"TESTCAR", 40.0f, 0.0f, 90.0f, 2.0f, 0.0f}});
    EXPECT_EQ(lastStore(true), -3375);
    EXPECT_EQ(lastStore(false), -1823);  // 7.30 Nm: 0.5 - 9 / 110 - 0.175
    EXPECT_EQ(lastStore(true), -3375);
    harness->engine.PublishOverrides({});
    EXPECT_EQ(lastStore(true), -1687);
}

// Only a running engine, connected and on track, records; the header then carries the status's identity
// and the car's row of this moment, and a refusal touches no file.
TEST(BeginRecording, StartsOnlyOnTrackWithTheHeaderOfTheStatusAndCarRow) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_begin.vtrrec";
    std::filesystem::remove(path);
    auto engine = std::make_unique<FfbEngine>();
    engine->PublishOverrides({CarCoefficients{L"mercedesamggt4", 41.0f, 0.25f, 71.0f, 0.96f, 0.01f}});
    const struct {
        bool running, connected, onTrack;
    } refused[] = {{false, true, true}, {true, false, true}, {true, true, false}};
    for (const auto& c : refused) {
        engine->MarkRunning(c.running);
        engine->UpdateStatus(c.connected, c.onTrack, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
        EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
        EXPECT_FALSE(std::filesystem::exists(path));
    }
    engine->MarkRunning(true);
    engine->UpdateStatus(true, true, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
    ASSERT_TRUE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->EndRecording();
    engine->MarkRunning(false);

    RecordingHeader h;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&h), sizeof h);
    std::filesystem::remove(path);
    EXPECT_STREQ(h.driverName, "Sample Driver GT4");
    EXPECT_STREQ(h.profileName, "Club");
    EXPECT_EQ(h.LateralAccelDivisor, 71.0f);  // the override's row
}

}  // namespace
}  // namespace veltor
