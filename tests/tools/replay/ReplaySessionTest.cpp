// The replay's parts in process: file checks, options, and the run over synthetic telemetry files.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "IbtImage.h"
#include "ReplayOptions.h"
#include "ReplaySession.h"
#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor::replay {
namespace {

// A telemetry file of the simulator's layout: header, variable headers, then one record per frame.
std::vector<uint8_t> MakeFile(const std::vector<TelemetryFrame>& frames) {
    const sim::TelemetryLayoutWriter layout(sim::StandardVariables(), 1, 64);
    std::vector<uint8_t> bytes(layout.BlockSize());
    layout.WriteLayout(bytes.data());
    bytes.resize(static_cast<size_t>(layout.BufferOffset(0)));
    for (const TelemetryFrame& frame : frames) {
        std::vector<uint8_t> record(static_cast<size_t>(layout.BufLen()));
        layout.WriteFrame(record.data(), frame);
        bytes.insert(bytes.end(), record.begin(), record.end());
    }
    return bytes;
}

TelemetryFrame OnTrack(float torque, float latAccel = 0.0f) {
    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.speed = 3.0f;  // grip model neutral, not parked
    frame.velocityX = 3.0f;
    frame.steeringWheelAngleMax = 8.0f;
    frame.latAccel = latAccel;
    for (float& sample : frame.torqueSamples) sample = torque;
    return frame;
}

void StoreI32(std::vector<uint8_t>& bytes, size_t at, int32_t value) { std::memcpy(bytes.data() + at, &value, 4); }

TEST(ParseIbtImage, CountsWholeRecordsFromTheFirstBufferToTheEnd) {
    std::vector<uint8_t> bytes = MakeFile({OnTrack(1.0f), OnTrack(2.0f), OnTrack(3.0f)});
    bytes.resize(bytes.size() - 5);  // a cut last record does not count
    IbtImage image;
    std::string error;
    ASSERT_TRUE(ParseIbtImage(bytes, image, error)) << error;
    EXPECT_EQ(image.recordCount, 2);
}

TEST(ParseIbtImage, RefusesShortAndMalformedFilesWithAReason) {
    const std::vector<uint8_t> good = MakeFile({OnTrack(1.0f)});
    struct Case {
        const char* what;
        size_t offset;
        int32_t value;
    };
    const Case cases[] = {
        {"bufLen zero", irsdk::kBufLenOffset, 0},
        {"bufLen negative", irsdk::kBufLenOffset, -16},
        {"no variables", irsdk::kNumVarsOffset, 0},
        {"variables past the end", irsdk::kNumVarsOffset, 1000000},
        {"variable headers past the end", irsdk::kVarHeaderOffsetOffset, 0x7FFFFF00},
        {"records past the end", irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, 0x7FFFFFF0},
        {"records inside the header", irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, 4},
        {"session info past the end", irsdk::kSessionInfoLenOffset, 0x7FFFFFF0},
        {"record longer than the rest", irsdk::kBufLenOffset, 0x100000},
    };
    for (const Case& c : cases) {
        std::vector<uint8_t> bytes = good;
        StoreI32(bytes, c.offset, c.value);
        IbtImage image;
        std::string error;
        EXPECT_FALSE(ParseIbtImage(bytes, image, error)) << c.what;
        EXPECT_FALSE(error.empty()) << c.what;
        EXPECT_EQ(error.find('\n'), std::string::npos) << c.what;
    }
    IbtImage image;
    std::string error;
    EXPECT_FALSE(ParseIbtImage(std::vector<uint8_t>(good.begin(), good.begin() + 100), image, error));
    EXPECT_FALSE(ParseIbtImage(std::vector<uint8_t>(good.begin(), good.end() - 1), image, error));  // no record
    EXPECT_FALSE(LoadIbtImage("/no/such/file.ibt", image, error));
}

TEST(ReplayOptions, AppliesDefaultsThenModeAndSetsInOrder) {
    const char* argv[] = {"replay", "--ibt", "in.ibt", "--set", "ForceStrength=80", "--mode", "1",
                          "--set", "ForceStrength=-3", "--set", "SimucubeMode=1", "--car", "rt2000",
                          "--csv", "out.csv", "--record", "out.vtrrec"};
    ReplayOptions o;
    std::string error;
    ASSERT_TRUE(ParseReplayArguments(static_cast<int>(std::size(argv)), argv, o, error)) << error;
    EXPECT_EQ(o.ibtPath + " " + o.csvPath + " " + o.recordPath + " " + o.carPath, "in.ibt out.csv out.vtrrec rt2000");
    EXPECT_TRUE(o.hasCar);
    EXPECT_EQ(o.settings.Mode, 1);
    EXPECT_EQ(o.settings.ForceStrength, -3);
    EXPECT_TRUE(o.settings.SimucubeMode);
    EXPECT_EQ(o.settings.Bumps, 20);
}

TEST(ReplayOptions, RefusesUnknownKeysNonIntegersAndMissingFiles) {
    const std::vector<std::vector<const char*>> bad = {
        {"replay", "--ibt", "a", "--csv", "b", "--set", "NoSuchKey=1"},
        {"replay", "--ibt", "a", "--csv", "b", "--set", "Bumps=1.5"},
        {"replay", "--ibt", "a", "--csv", "b", "--set", "Bumps"},
        {"replay", "--ibt", "a", "--csv", "b", "--set", "Bumps=99999999999"},
        {"replay", "--ibt", "a", "--csv", "b", "--mode", "2"},
        {"replay", "--ibt", "a", "--csv", "b", "--frobnicate"},
        {"replay", "--ibt", "a", "--csv"},
        {"replay", "--ibt", "a"},
        {"replay", "--csv", "b"},
    };
    for (const auto& argv : bad) {
        ReplayOptions options;
        std::string error;
        EXPECT_FALSE(ParseReplayArguments(static_cast<int>(argv.size()), argv.data(), options, error)) << argv.back();
        EXPECT_FALSE(error.empty());
    }
}

ReplayResult ReplayFrames(std::vector<TelemetryFrame> frames) {
    IbtImage image;
    std::string error;
    EXPECT_TRUE(ParseIbtImage(MakeFile(frames), image, error)) << error;
    ReplayOptions options;
    ReplayResult result;
    EXPECT_TRUE(RunReplay(options, ScanReplayIdentity(options, image), image, result, error)) << error;
    return result;
}

TEST(RunReplay, VirtualClockTimesTheCrashHoldInRecords) {
    std::vector<TelemetryFrame> frames{OnTrack(4.0f, 100.0f)};
    for (int i = 1; i < 95; ++i) frames.push_back(OnTrack(4.0f));
    const ReplayResult result = ReplayFrames(frames);
    ASSERT_EQ(result.rows.size(), 95u * 6u);
    EXPECT_EQ(result.rows[89 * 6].force, 50);   // 1.5 s = 90 records of 16.67 ms
    EXPECT_EQ(result.rows[90 * 6].force, 1000);
}

// The file's own identity, "generic" and the other defaults without one, --car over the car path; the
// identity line and the CSV as other tooling reads them.
TEST(ScanReplayIdentity, FallsBackOnGenericAndTakesTheCarOption) {
    IbtImage image;
    std::string error;
    ASSERT_TRUE(ParseIbtImage(MakeFile({OnTrack(1.0f)}), image, error)) << error;
    ReplayOptions options;
    EXPECT_EQ(IdentityLine(ScanReplayIdentity(options, image)), "identity car=generic driver=unknown userId=0 known=1");
    options.hasCar = true;
    options.carPath = "J\xC3\xBCrgen \xF0\x9F\x98\x80";
    EXPECT_EQ(ScanReplayIdentity(options, image).carPath, L"J\u00fcrgen \U0001F600");
    EXPECT_EQ(FormatCsv({{0, 0, 12}, {3, -1, -9996}}), "frame,output,force\n0,0,12\n3,-1,-9996\n");
}

}  // namespace
}  // namespace veltor::replay
