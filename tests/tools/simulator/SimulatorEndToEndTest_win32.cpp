// Our simulator.exe and the engine harness as two processes: the engine finds the named objects, follows
// the session text, and silences and restores the simulator's force through the broadcast.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ChildProcess_win32.h"

namespace {

using veltor::test::Child;
using veltor::test::kStartTimeoutMs;
using veltor::test::ProgramPath;
using veltor::test::TempPath;

size_t Find(const std::string& text, const std::string& what, size_t from = 0) { return text.find(what, from); }

// One simulator and one harness per test; the harness runs until the test writes its stop file.
class SimulatorEndToEnd : public ::testing::Test {
protected:
    void SetUp() override { DeleteFileW(stopFile.c_str()); }
    void TearDown() override { DeleteFileW(stopFile.c_str()); }

    void StartBoth(const std::wstring& simulatorArgs, const std::wstring& harnessArgs) {
        simulator = std::make_unique<Child>(L"\"" + ProgramPath(VELTOR_SIMULATOR_EXE) + L"\" " + simulatorArgs,
                                            TempPath(L"veltor_e2e_simulator.txt"));
        ASSERT_TRUE(simulator->started);
        ASSERT_TRUE(simulator->WaitForOutput("publishing the synthetic drive", kStartTimeoutMs)) << simulator->Output();
        harness = std::make_unique<Child>(L"\"" + ProgramPath(VELTOR_HARNESS_EXE) + L"\" --seconds 0 --stop-file \"" +
                                              stopFile + L"\" " + harnessArgs,
                                          TempPath(L"veltor_e2e_harness.txt"));
        ASSERT_TRUE(harness->started);
    }
    // Stops the harness through its stop file; true once it has exited.
    bool StopHarness() {
        CloseHandle(CreateFileW(stopFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
        return harness->WaitForExit(kStartTimeoutMs);
    }

    const std::wstring stopFile = TempPath(L"veltor_e2e_stop");
    std::unique_ptr<Child> simulator;
    std::unique_ptr<Child> harness;
};

TEST_F(SimulatorEndToEnd, EngineFollowsTheSessionAndSilencesThenRestoresTheSimulatorsForce) {
    StartBoth(L"--seconds 60 --swap-identity-at 7", L"");
    const bool swapped = harness->WaitForOutput("car porsche992rgt3, driver \"Second Driver\"", kStartTimeoutMs);
    ASSERT_TRUE(StopHarness());
    const bool restored = simulator->WaitForOutput("maximum force 2621440", 10000);

    const std::string engine = harness->Output();
    const std::string sim = simulator->Output();
    EXPECT_TRUE(swapped) << engine;
    const size_t connected = Find(engine, "status: connected, ");
    EXPECT_NE(Find(engine, "car bmwm4gt3, driver \"Synthetic Driver\", user id 424242, name known 1"), std::string::npos);
    const size_t onTrack = Find(engine, "status: connected, on track, car bmwm4gt3, driver \"Synthetic Driver\"");
    ASSERT_NE(connected, std::string::npos) << engine;
    ASSERT_NE(onTrack, std::string::npos) << engine;
    EXPECT_LE(connected, onTrack);
    EXPECT_NE(Find(engine, "user id 515151", onTrack), std::string::npos) << engine;
    EXPECT_NE(Find(engine, "engine stopped, running 0"), std::string::npos) << engine;

    // Force strength 50 without the wheelbase mode: 10000 Nm as 16.16, then 40 Nm back after the stop.
    const size_t suppressed = Find(sim, "broadcast: maximum force 655360000");
    ASSERT_NE(suppressed, std::string::npos) << sim;
    EXPECT_TRUE(restored) << sim;
    EXPECT_NE(Find(sim, "broadcast: maximum force 2621440", suppressed), std::string::npos) << sim;
}

// The simulator leaves and comes back while the engine holds its handles: the named objects live on, so
// the engine sees the status bit fall and rise again in the same memory. The session's user id differs
// from the block's, and the wheelbase mode sets the suppression from the force strength.
TEST_F(SimulatorEndToEnd, EngineFollowsTheSimulatorAwayAndBackWithTheWheelbaseSuppression) {
    StartBoth(L"--seconds 60 --identity differing-ids --disappear-at 4 --absent-for 2",
              L"SimucubeMode=1 ForceStrength=40");
    const bool back = harness->WaitForOutput({"status: connected", "status: disconnected", "status: connected"},
                                             kStartTimeoutMs);
    ASSERT_TRUE(StopHarness());
    const std::string engine = harness->Output();
    EXPECT_TRUE(back) << engine << simulator->Output();
    EXPECT_NE(Find(engine, "driver \"Synthetic Driver\", user id 424242, name known 0"), std::string::npos) << engine;
    // 2000 / 40 = 50 Nm as 16.16, once for the whole connection.
    const bool restored = simulator->WaitForOutput("maximum force 2621440", 10000);
    const std::string sim = simulator->Output();
    EXPECT_TRUE(restored) << sim;
    const size_t suppressed = Find(sim, "broadcast: maximum force 3276800");
    ASSERT_NE(suppressed, std::string::npos) << sim;
    EXPECT_EQ(Find(sim, "broadcast: maximum force 3276800", suppressed + 1), std::string::npos) << sim;
}

}  // namespace
