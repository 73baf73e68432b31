// A pass of the output thread must not allocate: this binary counts every global allocation and runs
// passes of the product's wheel on the host twin between two counts.
#include <gtest/gtest.h>

#include "AllocationCounter.h"
#include "FakeWheelDevice.h"
#include "wheel/DirectInputDevice_host.h"
#include "wheel/WheelOutput.h"

namespace veltor {
namespace {

using Objects = DirectInputDevice::Objects;

// Past the warm-up, with damping reading the rim, and after more than two minutes' worth of sends.
TEST(WheelOutputPass, AllocatesNothing) {
    BasicWheelOutput<DirectInputDevice, test::SteppedClock> wheel;
    const DeviceGuid guid;
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    wheel.commandedForce.store(3000);
    wheel.dampingPercent.store(30);
    wheel.outputEnabled.store(true);
    const Objects& objects = wheel.PlatformDevice().PlatformObjects();
    while (objects.sentCount.load() == 0) wheel.RunPass();  // the stepped clock runs through the warm-up
    for (int i = 0; i < 1 << 17; ++i) wheel.PlatformDevice().SetParameters();
    const uint64_t sentBefore = objects.sentCount.load();
    const long before = test::AllocationCount();
    for (int pass = 0; pass < 200; ++pass) wheel.RunPass();
    EXPECT_EQ(test::AllocationCount() - before, 0);
    EXPECT_EQ(objects.sentCount.load() - sentBefore, 200u);
    EXPECT_EQ(objects.SentMagnitudes().size(), Objects::kKeptMagnitudes);
}

}  // namespace
}  // namespace veltor
