#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "IbtSource.h"
#include "SessionInfoText.h"
#include "Simulator.h"
#include "SimulatorPublisher.h"
#include "SyntheticDrive.h"
#include "telemetry/IrsdkClient.h"
#include "telemetry/SessionInfoScanner.h"
#include "telemetry/SimulatorLink_host.h"

namespace veltor::sim {
namespace {

const std::string kIbtPath = VELTOR_DATA_DIR "/telemetry/mercedesamggt4_sample.ibt";

class SimulatorOverLink : public ::testing::Test {
protected:
    void TearDown() override {
        client.Close();
        simulator.Stop();
    }
    void Start(const SimulatorOptions& options = {}) {
        std::string error;
        ASSERT_TRUE(simulator.Start(options, error)) << error;
        ASSERT_TRUE(client.Open());
    }
    SessionIdentity Identity() {
        std::string text;
        SessionIdentity identity;
        EXPECT_TRUE(client.CopySessionInfo(text));
        EXPECT_TRUE(ScanSessionInfo(text.data(), text.size(), identity));
        return identity;
    }
    void StepTo(double seconds) {
        while (simulator.Steps() < static_cast<int64_t>(std::lround(seconds / simulator.StepSeconds()))) simulator.Step();
    }

    Simulator simulator{nullptr};
    IrsdkClient client;
};

TEST_F(SimulatorOverLink, PublishesEveryVariableTheClientReadsAndTheUsersIdentity) {
    Start();
    for (int i = 0; i < irsdk::kVarCount; ++i) EXPECT_GE(client.VarIndex()[i], 0) << irsdk::kVarNames[i];
    EXPECT_GE(client.FindVariable("RPM"), 0);
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, irsdk::kStatusConnected);
    const SessionIdentity identity = Identity();
    EXPECT_EQ(identity.carPath, L"bmwm4gt3");
    EXPECT_EQ(identity.driverName, L"Synthetic Driver");
    EXPECT_EQ(identity.driverUserId, 424242);
    EXPECT_TRUE(identity.driverNameKnown);
}

TEST_F(SimulatorOverLink, RotatesThreeBuffersWithRisingTickCounts) {
    Start();
    TelemetryFrame frame;
    for (int i = 1; i <= 7; ++i) {
        simulator.Step();
        ASSERT_TRUE(client.ReadFrame(frame));
        EXPECT_EQ(frame.tickCount, i);
        EXPECT_EQ(frame.torqueSampleCount, 6);
    }
    // Every buffer was written in turn: all three descriptors carry one of the last three ticks.
    std::vector<int32_t> ticks;
    const uint8_t* base = nullptr;
    size_t size = 0;
    link::Handle mapping = link::OpenTelemetryMapping();
    base = link::MapTelemetryView(mapping, size);
    for (int b = 0; b < 3; ++b) {
        int32_t tick = 0;
        std::memcpy(&tick, base + irsdk::kVarBufOffset + b * irsdk::kVarBufStride, sizeof tick);
        ticks.push_back(tick);
    }
    link::UnmapTelemetryView(base);
    link::CloseLinkHandle(mapping);
    std::sort(ticks.begin(), ticks.end());
    EXPECT_EQ(ticks, (std::vector<int32_t>{5, 6, 7}));
}

TEST_F(SimulatorOverLink, FreezeRepeatsTheTickAndAChangeOfIdentityMovesTheCounter) {
    SimulatorOptions options;
    options.freezeAt = 1.0;
    options.freezeFor = 0.5;
    options.swapIdentityAt = 2.0;
    Start(options);
    TelemetryFrame frame;
    StepTo(1.0);
    ASSERT_TRUE(client.ReadFrame(frame));
    const int32_t frozenTick = frame.tickCount;
    StepTo(1.4);
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, frozenTick);
    StepTo(1.6);
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_GT(frame.tickCount, frozenTick);

    const int32_t before = client.SessionInfoUpdate();
    StepTo(2.1);
    EXPECT_EQ(client.SessionInfoUpdate(), before + 1);
    const SessionIdentity identity = Identity();
    EXPECT_EQ(identity.carPath, L"porsche992rgt3");
    EXPECT_EQ(identity.driverName, L"Second Driver");
}

TEST_F(SimulatorOverLink, DisappearsAndComesBackWithANewSessionCounter) {
    SimulatorOptions options;
    options.disappearAt = 0.5;
    options.absentFor = 1.0;
    Start(options);
    const int32_t before = client.SessionInfoUpdate();
    StepTo(0.6);
    EXPECT_FALSE(hostsim::IsPublished());
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, 0);  // the last word before leaving
    StepTo(1.6);
    EXPECT_TRUE(hostsim::IsPublished());
    client.Close();
    ASSERT_TRUE(client.Open());
    EXPECT_EQ(client.SessionInfoUpdate(), before + 1);
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, irsdk::kStatusConnected);
}

TEST_F(SimulatorOverLink, TornFramesNeverReachTheReaderAndTicksKeepRising) {
    SimulatorOptions options;
    options.tornEvery = 2;
    Start(options);
    TelemetryFrame frame;
    int32_t last = 0;
    for (int i = 0; i < 6; ++i) {
        simulator.Step();
        ASSERT_TRUE(client.ReadFrame(frame));  // the rewrite is over: the newest buffer is whole again
        EXPECT_GT(frame.tickCount, last);
        EXPECT_EQ(frame.tickCount, simulator.TickCount());
        last = frame.tickCount;
    }
    EXPECT_GT(simulator.TickCount(), 6);  // rewrites moved the tick count beyond one per step
}

TEST_F(SimulatorOverLink, HearsEachBroadcastOnce) {
    Start();
    ASSERT_TRUE(publisher::StartListening());
    BroadcastMaxForce(655360000);
    BroadcastMaxForce(2621440);
    std::vector<int32_t> heard;
    publisher::TakeBroadcasts(heard);
    EXPECT_EQ(heard, (std::vector<int32_t>{655360000, 2621440}));
    publisher::TakeBroadcasts(heard);
    EXPECT_TRUE(heard.empty());
    publisher::StopListening();
}

TEST(SessionInfoTextCases, EachIdentityCaseScansAsTheProgramExpects) {
    struct Case {
        IdentityCase identityCase;
        bool nameKnown;
    };
    for (const Case c : {Case{IdentityCase::Plain, true}, Case{IdentityCase::DifferingIds, false},
                         Case{IdentityCase::Quoted, true}, Case{IdentityCase::Crlf, true}}) {
        const std::string text = BuildSessionInfo(c.identityCase, 0);
        SessionIdentity identity;
        ASSERT_TRUE(ScanSessionInfo(text.data(), text.size(), identity));
        EXPECT_EQ(identity.carPath, L"bmwm4gt3");
        EXPECT_EQ(identity.driverName, L"Synthetic Driver");
        EXPECT_EQ(identity.driverUserId, 424242);
        EXPECT_EQ(identity.driverNameKnown, c.nameKnown);
    }
    EXPECT_NE(BuildSessionInfo(IdentityCase::Crlf, 0).find("\r\n"), std::string::npos);
}

TEST(SyntheticDriveLap, EveryPartOfTheLapShowsInTheChannels) {
    const SyntheticDrive drive;
    bool offTrackStop = false, abs = false, crash = false, slide = false, kerb = false, understeer = false;
    for (int64_t tick = 0; tick < static_cast<int64_t>(SyntheticDrive::kLapSeconds * SyntheticDrive::kTickRate); ++tick) {
        const DriveSample s = drive.SampleAt(tick);
        const TelemetryFrame& f = s.frame;
        const std::string phase = s.phase;
        offTrackStop |= f.isOnTrack == 0 && f.speed == 0.0f;
        abs |= f.brakeAbsActive != 0 && phase == "braking, ABS";
        crash |= f.longAccel < -50.0f;
        slide |= f.steeringWheelAngle < 0.0f && f.yawRate > 0.3f;  // countersteer against the yaw
        understeer |= phase == "corner, understeer" && f.yawRate * 14.0f * 2.6f < 0.7f * f.speed * f.steeringWheelAngle;
        kerb |= f.lfShockDeflSamples[0] - f.rfShockDeflSamples[0] > 0.008f;
        EXPECT_EQ(f.torqueSampleCount, 6);
        EXPECT_LE(std::fabs(f.steeringWheelAngle), f.steeringWheelAngleMax);
    }
    EXPECT_TRUE(offTrackStop && abs && crash && slide && kerb && understeer)
        << offTrackStop << abs << crash << slide << kerb << understeer;
    // The same tick always gives the same frame.
    const DriveSample once = drive.SampleAt(1234);
    const DriveSample again = drive.SampleAt(1234);
    EXPECT_EQ(std::memcmp(&once.frame, &again.frame, sizeof(TelemetryFrame)), 0);
}

std::vector<uint8_t> ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST_F(SimulatorOverLink, ReplaysAnIbtFileWithItsOwnVariablesAndText) {
    IbtSource file;
    std::string error;
    if (!file.Load(kIbtPath, error)) GTEST_SKIP() << "mercedesamggt4_sample.ibt not found under " VELTOR_DATA_DIR;
    EXPECT_EQ(file.RecordCount(), 3371);
    EXPECT_EQ(file.TickRate(), 60);
    EXPECT_EQ(file.SkippedVariables(), 0);

    SimulatorOptions options;
    options.ibtPath = kIbtPath;
    Start(options);
    EXPECT_EQ(Identity().carPath, L"mercedesamggt4");
    EXPECT_LT(client.VarIndex()[irsdk::kLFshockDeflST], 0);  // the file has scalar shocks only
    const int32_t speedOffset = simulator.Layout().VarOffset("Speed");
    ASSERT_GE(speedOffset, 0);
    TelemetryFrame frame;
    for (int32_t record = 0; record < 3; ++record) {
        simulator.Step();
        ASSERT_TRUE(client.ReadFrame(frame));
        float expected = 0.0f;
        std::memcpy(&expected, file.Record(record) + speedOffset, sizeof expected);
        EXPECT_EQ(frame.speed, expected);
        EXPECT_EQ(frame.torqueSampleCount, 6);
    }
}

TEST(IbtSourceHostile, BrokenFilesAreRefusedWithAReasonAndNeverRead) {
    IbtSource source;
    std::string error;
    EXPECT_FALSE(source.Load("/nonexistent/file.ibt", error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(source.Parse(std::vector<uint8_t>(100, 0), error));
    EXPECT_EQ(error, "shorter than its headers");

    std::vector<uint8_t> real = ReadFile(kIbtPath);
    if (real.empty()) GTEST_SKIP() << "mercedesamggt4_sample.ibt not found under " VELTOR_DATA_DIR;
    std::vector<uint8_t> truncated(real.begin(), real.begin() + 40000);  // headers whole, no record
    EXPECT_FALSE(source.Parse(truncated, error));
    EXPECT_EQ(error, "no whole record in the file");

    // Random corruption of the headers: parsing ends in a defined result, and ASan sees no stray read.
    std::mt19937 random(7);
    std::vector<uint8_t> head(real.begin(), real.begin() + 60000);
    for (int round = 0; round < 300; ++round) {
        std::vector<uint8_t> bytes = head;
        for (int k = 0; k < 8; ++k) bytes[random() % 144] = static_cast<uint8_t>(random());
        bytes[52 + random() % 4] = static_cast<uint8_t>(random());
        if (source.Parse(bytes, error)) {
            for (int32_t r = 0; r < source.RecordCount(); ++r) ASSERT_NE(source.Record(r), nullptr);
            for (const VariableSpec& v : source.Variables()) ASSERT_LE(v.offset + v.count, source.BufLen());
        }
    }
}

TEST(SimulatorOptionsParse, AcceptsEveryOptionAndRefusesBadOnes) {
    const char* good[] = {"sim", "--seconds", "5", "--identity", "crlf", "--torn-every", "10", "--freeze-at", "2",
                          "--disappear-at", "3", "--swap-identity-at", "4", "--quiet"};
    SimulatorOptions o;
    std::string error;
    ASSERT_TRUE(ParseSimulatorOptions(static_cast<int>(std::size(good)), good, o, error)) << error;
    EXPECT_EQ(o.seconds, 5.0);
    EXPECT_EQ(o.identity, IdentityCase::Crlf);
    EXPECT_EQ(o.tornEvery, 10);
    EXPECT_TRUE(o.quiet);
    const char* unknown[] = {"sim", "--warp", "9"};
    EXPECT_FALSE(ParseSimulatorOptions(3, unknown, o, error));
    const char* badNumber[] = {"sim", "--seconds", "ten"};
    EXPECT_FALSE(ParseSimulatorOptions(3, badNumber, o, error));
    const char* missing[] = {"sim", "--ibt"};
    EXPECT_FALSE(ParseSimulatorOptions(2, missing, o, error));
    const char* badCase[] = {"sim", "--identity", "weird"};
    EXPECT_FALSE(ParseSimulatorOptions(3, badCase, o, error));
}

}  // namespace
}  // namespace veltor::sim
