// The product's wheel on the host twin, with its real output thread beside an engine-like writer.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "wheel/DirectInputDevice_host.h"
#include "wheel/WheelDevice.h"
#include "wheel/WheelOutput.h"

namespace veltor {
namespace {

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
    std::this_thread::sleep_for(std::chrono::milliseconds(1700));
    stop.store(true);
    engine.join();
    wheel.Close();

    const auto& objects = wheel.device.PlatformObjects();
    const std::vector<int32_t>& sent = objects.sentMagnitudes;
    ASSERT_FALSE(sent.empty());
    EXPECT_GE(objects.startCount, 1);
    EXPECT_FALSE(objects.effectPlaying);  // Close stopped it
    EXPECT_GT(*std::max_element(sent.begin(), sent.end()), 0);
    for (size_t i = 1; i < sent.size(); ++i) EXPECT_LE(std::abs(sent[i]), 10000);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

TEST(WheelOutputThread, CloseDuringWarmUpSendsNothing) {
    WheelOutput wheel;
    DeviceGuid guid;
    ASSERT_TRUE(wheel.Open(nullptr, &guid));
    wheel.outputEnabled.exchange(true);
    wheel.commandedForce.exchange(5000);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    wheel.Close();
    EXPECT_TRUE(wheel.device.PlatformObjects().sentMagnitudes.empty());
    EXPECT_FALSE(wheel.device.HasDevice());
}

}  // namespace
}  // namespace veltor
