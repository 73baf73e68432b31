#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "IbtSource.h"
#include "Simulator.h"
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
        EXPECT_TRUE(client.CopySessionInfo(text) && ScanSessionInfo(text.data(), text.size(), identity));
        return identity;
    }
    int32_t TickAt(double seconds) {
        while (simulator.Steps() < std::lround(seconds / simulator.StepSeconds())) simulator.Step();
        TelemetryFrame frame;
        EXPECT_TRUE(client.ReadFrame(frame));
        return frame.tickCount;
    }

    Simulator simulator{nullptr};
    IrsdkClient client;
};

TEST_F(SimulatorOverLink, PublishesEveryVariableTheUsersIdentityAndRisingTicks) {
    Start();
    for (int i = 0; i < irsdk::kVarCount; ++i) EXPECT_GE(client.VarIndex()[i], 0) << irsdk::kVarNames[i];
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, irsdk::kStatusConnected);
    const SessionIdentity identity = Identity();
    EXPECT_EQ(identity.carPath, L"bmwm4gt3");
    EXPECT_EQ(identity.driverName, L"Synthetic Driver");
    EXPECT_EQ(identity.driverUserId, 424242);
    for (int32_t tick = 1; tick <= 7; ++tick) EXPECT_EQ(TickAt(tick * simulator.StepSeconds()), tick);
}

// The freeze repeats the tick with the event still coming; a new identity moves the session counter; the
// simulator leaves and comes back with a new counter; torn frames never reach the reader.
TEST_F(SimulatorOverLink, FaultsAsScheduled) {
    SimulatorOptions options;
    options.freezeAt = 1.0;
    options.freezeFor = 0.5;
    options.swapIdentityAt = 2.0;
    options.disappearAt = 3.0;
    options.absentFor = 1.0;
    options.tornEvery = 2;
    Start(options);
    const int32_t frozen = TickAt(1.0);
    EXPECT_EQ(TickAt(1.4), frozen);
    EXPECT_GT(TickAt(1.6), frozen);
    const int32_t update = client.SessionInfoUpdate();
    TickAt(2.1);
    EXPECT_EQ(client.SessionInfoUpdate(), update + 1);
    EXPECT_EQ(Identity().carPath, L"porsche992rgt3");
    EXPECT_EQ(simulator.TickCount(), TickAt(2.2));  // the rewrite is over: the newest buffer is whole again
    while (simulator.Steps() < std::lround(3.1 / simulator.StepSeconds())) simulator.Step();
    EXPECT_FALSE(hostsim::IsPublished());
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, 0);  // the last word before leaving
    while (simulator.Steps() < std::lround(4.1 / simulator.StepSeconds())) simulator.Step();
    client.Close();
    ASSERT_TRUE(client.Open());
    EXPECT_EQ(client.SessionInfoUpdate(), update + 2);
}

TEST_F(SimulatorOverLink, ReplaysAnIbtFileWithItsOwnVariablesAndText) {
    IbtSource file;
    std::string error;
    if (!file.Load(kIbtPath, error)) GTEST_SKIP() << "mercedesamggt4_sample.ibt not found under " VELTOR_DATA_DIR;
    EXPECT_EQ(file.RecordCount(), 3371);
    EXPECT_EQ(file.SkippedVariables(), 0);
    SimulatorOptions options;
    options.ibtPath = kIbtPath;
    Start(options);
    EXPECT_EQ(Identity().carPath, L"mercedesamggt4");
    const int32_t speedOffset = simulator.Layout().VarOffset("Speed");
    for (int32_t record = 0; record < 3; ++record) {
        simulator.Step();
        TelemetryFrame frame;
        ASSERT_TRUE(client.ReadFrame(frame));
        float expected = 0.0f;
        std::memcpy(&expected, file.Record(record) + speedOffset, sizeof expected);
        EXPECT_EQ(frame.speed, expected);
    }
}

TEST(IbtSourceHostile, BrokenFilesAreRefusedWithAReasonAndNeverRead) {
    IbtSource source;
    std::string error;
    EXPECT_FALSE(source.Load("/nonexistent/file.ibt", error));
    EXPECT_FALSE(source.Parse(std::vector<uint8_t>(100, 0), error));
    EXPECT_EQ(error, "shorter than its headers");
    std::ifstream in(kIbtPath, std::ios::binary);
    const std::vector<uint8_t> real{std::istreambuf_iterator<char>(in), {}};
    if (real.empty()) GTEST_SKIP() << "mercedesamggt4_sample.ibt not found under " VELTOR_DATA_DIR;
    EXPECT_FALSE(source.Parse(std::vector<uint8_t>(real.begin(), real.begin() + 40000), error));
    EXPECT_EQ(error, "no whole record in the file");
    // Random corruption of the headers: a defined result, and the address sanitizer sees no stray read.
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::vector<uint8_t> bytes(real.begin(), real.begin() + 60000);
        for (int k = 0; k < 8; ++k) bytes[random() % 144] = static_cast<uint8_t>(random());
        bytes[52 + random() % 4] = static_cast<uint8_t>(random());
        if (!source.Parse(bytes, error)) continue;
        for (int32_t r = 0; r < source.RecordCount(); ++r) ASSERT_NE(source.Record(r), nullptr);
        for (const VariableSpec& v : source.Variables()) ASSERT_LE(v.offset + v.count, source.BufLen());
    }
}

TEST(SimulatorOptionsParse, AcceptsEveryOptionAndRefusesBadOnes) {
    const char* good[] = {"sim", "--seconds", "5", "--identity", "crlf", "--torn-every", "10", "--freeze-at", "2",
                          "--disappear-at", "3", "--swap-identity-at", "4", "--quiet"};
    SimulatorOptions o;
    std::string error;
    ASSERT_TRUE(ParseSimulatorOptions(static_cast<int>(std::size(good)), good, o, error)) << error;
    EXPECT_EQ(o.identity, IdentityCase::Crlf);
    EXPECT_EQ(o.tornEvery, 10);
    EXPECT_TRUE(o.quiet);
    for (const std::vector<const char*>& bad : {std::vector<const char*>{"sim", "--warp", "9"},
                                               {"sim", "--seconds", "ten"}, {"sim", "--ibt"},
                                               {"sim", "--identity", "weird"}}) {
        EXPECT_FALSE(ParseSimulatorOptions(static_cast<int>(bad.size()), bad.data(), o, error)) << bad[1];
    }
}

}  // namespace
}  // namespace veltor::sim
