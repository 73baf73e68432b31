#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "engine/FfbEngine.h"

namespace veltor {
namespace {

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
        engine->running.store(c.running);
        engine->UpdateStatus(c.connected, c.onTrack, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
        EXPECT_FALSE(engine->BeginRecording(path.wstring(), L"Club"));
        EXPECT_FALSE(std::filesystem::exists(path));
    }
    engine->running.store(true);
    engine->UpdateStatus(true, true, L"mercedesamggt4", L"Sample Driver GT4", 100064, true);
    ASSERT_TRUE(engine->BeginRecording(path.wstring(), L"Club"));
    engine->recorder.Stop();
    engine->running.store(false);

    RecordingHeader h;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&h), sizeof h);
    std::filesystem::remove(path);
    EXPECT_STREQ(h.driverName, "Sample Driver GT4");
    EXPECT_STREQ(h.profileName, "Club");
    EXPECT_EQ(h.LateralAccelDivisor, 71.0f);  // the override's row
}

}  // namespace
}  // namespace veltor
