// A tick must not allocate: this binary counts every global allocation and runs ticks between two counts.
#include <gtest/gtest.h>

#include <filesystem>

#include "AllocationCounter.h"
#include "TickHarness.h"
#include "recording/RecordingHeader.h"

namespace veltor::test {
namespace {

// A lively frame: every stage has work (texture, ABS, grip, crash hold).
TelemetryFrame BusyFrame(int i) {
    TelemetryFrame frame = SteadyFrame(8.0f + static_cast<float>(i % 7), 35.0f);
    frame.velocityY = 3.0f;
    frame.steeringWheelAngle = 0.6f;
    frame.yawRate = 0.2f;
    frame.latAccel = (i % 50 == 0) ? 80.0f : 12.0f;
    frame.brakeAbsActive = 1;
    for (int k = 0; k < kMaxSubSamples; ++k) {
        frame.lfShockDeflSamples[k] = 0.001f * static_cast<float>((i + k) % 5);
        frame.rfShockDeflSamples[k] = 0.0005f * static_cast<float>((i * k) % 3);
    }
    return frame;
}

// Both modes, and recording. Half way the car changes to one whose path is longer than the status keeps,
// and its row is resolved anew against a list of overrides.
TEST(TickAllocation, TicksAllocateNothingInEitherModeNorWhileRecording) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_tick_allocation.vtrrec";
    for (const auto& [mode, recording] : {std::pair{0, false}, std::pair{1, false}, std::pair{1, true}}) {
        SCOPED_TRACE(testing::Message() << "mode " << mode << (recording ? ", recording" : ""));
        auto harness = std::make_unique<TickHarness>();
        harness->settings.Mode = mode;
        harness->engine.PublishOverrides({CarCoefficients{L"rt2000", 41.0f, 0.0f, 80.0f, 1.2f, 0.0f}});
        if (recording) {
            ASSERT_TRUE(harness->engine.RecordTo(path.wstring(), RecordingHeader{}, 0));
        }
        harness->Run(BusyFrame(0));  // first tick: the frame's snapshot and the force log take their size
        long allocations = 0;
        for (int i = 1; i <= 300; ++i) {
            if (i == 150) harness->loop.AssumeSession(SessionIdentity{std::wstring(kStatusTextCapacity + 45, L'c')});
            const long before = AllocationCount();
            SteppedPlatform::now += 16666667;
            harness->Run(BusyFrame(i));
            allocations += AllocationCount() - before;
        }
        EXPECT_EQ(allocations, 0);
        EXPECT_EQ(SteppedPlatform::stores.size(), mode == 1 ? 12u : 6u);
        if (!recording) continue;
        EXPECT_EQ(harness->engine.EndRecording(), 0u);
        EXPECT_EQ(std::filesystem::file_size(path), 380u + 301u * 88u);
        std::filesystem::remove(path);
    }
}

}  // namespace
}  // namespace veltor::test
