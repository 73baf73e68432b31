// The product's wheel on the host twin: its real output thread beside an engine-like writer, and what a
// pass allocates.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "AllocationCounter.h"
#include "FakeWheelDevice.h"
#include "wheel/DirectInputDevice_host.h"
#include "wheel/WheelDevice.h"
#include "wheel/WheelOutput.h"

namespace veltor {
namespace {

using Objects = DirectInputDevice::Objects;

TEST(WheelOutputThread, FollowsTheWriterAfterTheWarmUpAndStopsOnClose) {
    std::vector<WheelDevice> wheels;
    EnumerateWheels(wheels);
    ASSERT_EQ(wheels.size(), 1u);
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    std::atomic<bool> stop{false};
    std::thread engine([&] {
        wheel.outputEnabled.exchange(true);
        wheel.dampingPercent.exchange(20);
        for (int32_t i = 0; !stop.load(); ++i) {
            wheel.commandedForce.exchange(3000 + (i % 7) * 100);
            std::this_thread::sleep_for(std::chrono::microseconds(1380));
        }
    });
    // The first passes come after the 1.2 s warm-up; a loaded machine may take much longer.
    const Objects& objects = wheel.device.PlatformObjects();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (objects.sentCount.load() < 200 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    stop.store(true);
    engine.join();
    wheel.Close();

    const std::vector<int32_t> sent = objects.SentMagnitudes();
    ASSERT_GE(sent.size(), 200u);
    EXPECT_GE(objects.startCount, 1);
    EXPECT_FALSE(objects.effectPlaying);  // Close stopped it
    EXPECT_GT(*std::max_element(sent.begin(), sent.end()), 0);
    for (const int32_t magnitude : sent) EXPECT_LE(std::abs(magnitude), 10000);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

// Past the warm-up, with damping reading the rim, and after more than two minutes' worth of sends.
TEST(WheelOutputPass, AllocatesNothing) {
    BasicWheelOutput<DirectInputDevice, test::SteppedClock> wheel;
    const DeviceGuid guid;
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    wheel.commandedForce.store(3000);
    wheel.dampingPercent.store(30);
    wheel.outputEnabled.store(true);
    const Objects& objects = wheel.device.PlatformObjects();
    while (objects.sentCount.load() == 0) wheel.RunPass();  // the stepped clock runs through the warm-up
    for (int i = 0; i < 1 << 17; ++i) wheel.device.SetParameters();
    const uint64_t sentBefore = objects.sentCount.load();
    const long before = test::AllocationCount();
    for (int pass = 0; pass < 200; ++pass) wheel.RunPass();
    EXPECT_EQ(test::AllocationCount() - before, 0);
    EXPECT_EQ(objects.sentCount.load() - sentBefore, 200u);
    EXPECT_EQ(objects.SentMagnitudes().size(), Objects::kKeptMagnitudes);
}

}  // namespace
}  // namespace veltor
