#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkClient.h"

namespace veltor {
namespace {

using sim::VariableSpec;
using sim::VarType;

// A block of the published layout in test-owned memory, read through a client attached to it.
struct TestBlock {
    explicit TestBlock(std::vector<VariableSpec> vars = sim::StandardVariables(true), int numBuf = 3)
        : layout(std::move(vars), numBuf, 256), bytes(layout.BlockSize(), 0) {
        layout.WriteLayout(bytes.data());
    }
    uint8_t* Buffer(int i) { return layout.Buffer(bytes.data(), i); }
    void SetI32(size_t offset, int32_t v) { sim::StoreI32(bytes.data() + offset, v); }
    size_t VarHeaderAt(int index) const { return static_cast<size_t>(layout.VarHeaderOffset() + index * 144); }
    bool Read(TelemetryFrame& frame) {
        client.AttachBlock(bytes.data(), bytes.size());
        return client.ReadFrame(frame);
    }

    sim::TelemetryLayoutWriter layout;
    std::vector<uint8_t> bytes;  // must not move: the client reads it where AttachBlock saw it
    IrsdkClient client;
};

// Moves a descriptor's tick count right after each of the first `tears` copies, as a simulator that refills
// the buffer being read would.
struct TearingBlock : LiveBlock {
    std::vector<uint8_t>* bytes = nullptr;
    int tears = 0;
    int descriptor = 0;
    int32_t newTick = 0;
    mutable int copies = 0;

    void Copy(uint8_t* destination, size_t offset, size_t length) const {
        LiveBlock::Copy(destination, offset, length);
        if (++copies <= tears) {
            sim::StoreI32(bytes->data() + irsdk::kVarBufOffset + descriptor * irsdk::kVarBufStride, newTick + copies);
        }
    }
};

// Each variable lands in its own field, with a value no other variable has.
TEST(IrsdkClientRead, DeliversEveryVariableOfTheChosenBuffer) {
    TestBlock block;
    TelemetryFrame f;
    float TelemetryFrame::*const scalars[] = {&TelemetryFrame::speed,     &TelemetryFrame::steeringWheelTorque,
                                              &TelemetryFrame::velocityX, &TelemetryFrame::steeringWheelAngle,
                                              &TelemetryFrame::velocityY, &TelemetryFrame::steeringWheelAngleMax,
                                              &TelemetryFrame::longAccel, &TelemetryFrame::latAccel,
                                              &TelemetryFrame::yawRate};
    for (size_t i = 0; i < std::size(scalars); ++i) f.*scalars[i] = 1.5f + static_cast<float>(i);
    f.brakeAbsActive = 1;
    for (int i = 0; i < 6; ++i) {
        f.torqueSamples[i] = i - 2.5f;
        f.lfShockDeflSamples[i] = 0.01f * i;
        f.rfShockDeflSamples[i] = 0.02f * i;
        f.cfShockDeflSamples[i] = 0.03f * i;
    }
    block.layout.WriteFrame(block.Buffer(1), f);
    block.Buffer(1)[block.layout.VarOffset("IsOnTrack")] = 7;  // any non-zero byte is true
    block.layout.SetTickCount(block.bytes.data(), 1, 9);
    TelemetryFrame expected = f;
    expected.valid = 1;
    expected.isOnTrack = 1;
    expected.tickCount = 9;
    expected.torqueSampleCount = expected.shockSampleCount = expected.cfShockSampleCount = 6;
    expected.lfShockDefl = f.lfShockDeflSamples[5];  // a shock's scalar is its newest sample
    expected.rfShockDefl = f.rfShockDeflSamples[5];
    expected.cfShockDefl = f.cfShockDeflSamples[5];
    TelemetryFrame frame;
    ASSERT_TRUE(block.Read(frame));
    EXPECT_TRUE(frame == expected);
}

// The newest buffer by tick count, the lower index on equal ticks. A copy torn once (the simulator moved
// the descriptor's tick count during it) is read again from the buffer then newest; torn twice, the read
// fails and the frame keeps its last content.
TEST(IrsdkClientRead, TakesTheNewestBufferAndReadsATornCopyOnceMoreAndNoMore) {
    const struct {
        int32_t ticks[3];
        int tears;
        int32_t newTick;
        bool read;
        int32_t tick;
        float speed;
    } cases[] = {{{0, 0, 0}, 0, 0, true, 0, 10.0f},   {{5, 7, 6}, 0, 0, true, 7, 20.0f},
                 {{5, 7, 7}, 0, 0, true, 7, 20.0f},   {{9, 7, 8}, 0, 0, true, 9, 10.0f},
                 {{5, 8, 6}, 1, 8, true, 9, 20.0f},   {{5, 8, 6}, 1, 3, true, 6, 30.0f},
                 {{5, 8, 6}, 2, 100, false, 77, 123.0f}};
    for (const auto& c : cases) {
        TestBlock block;
        for (int i = 0; i < 3; ++i) {
            block.layout.SetFloat(block.Buffer(i), "Speed", 10.0f * (i + 1));
            block.layout.SetTickCount(block.bytes.data(), i, c.ticks[i]);
        }
        block.client.AttachBlock(block.bytes.data(), block.bytes.size());
        const TearingBlock tearing{{block.bytes.data(), block.bytes.size()}, &block.bytes, c.tears, 1, c.newTick};
        std::vector<uint8_t> snapshot;
        TelemetryFrame frame;
        frame.tickCount = 77;
        frame.speed = 123.0f;
        EXPECT_EQ(ReadFrameFromBlock(tearing, block.client.VarIndex(), snapshot, frame), c.read) << c.tears;
        EXPECT_EQ(tearing.copies, c.tears == 0 ? 1 : 2);
        EXPECT_EQ(frame.tickCount, c.tick);
        EXPECT_EQ(frame.speed, c.speed);
    }
}

// Hostile header fields: each gives a failed read or a thinner frame, never a read outside the block.
TEST(IrsdkClientHostile, FieldsPointingOutsideTheBlockFailTheReadOrDropTheVariable) {
    const TestBlock plain;
    const int32_t blockSize = static_cast<int32_t>(plain.bytes.size());
    const int32_t bufLen = plain.layout.BufLen();
    const size_t firstBuffer = irsdk::kVarBufOffset + irsdk::kVarBufBufOffset;
    const size_t fifthTick = irsdk::kVarBufOffset + 4 * irsdk::kVarBufStride;  // where session info begins
    const size_t speedOffset = plain.VarHeaderAt(irsdk::kSpeed) + 4;
    const size_t arrayOffset = plain.VarHeaderAt(irsdk::kSteeringWheelTorqueST) + 4;
    const size_t arrayCount = arrayOffset + 4;
    const struct {
        const char* what;
        size_t offset;
        int32_t value;
        bool read;
        float speed;
        int32_t torqueSamples;
    } cases[] = {
        {"buffer at the block's end", firstBuffer, blockSize - 4, false, 0.0f, 0},
        {"buffer before the block", firstBuffer, -64, false, 0.0f, 0},
        {"huge buffer length", irsdk::kBufLenOffset, 0x7FFFFFFF, false, 0.0f, 0},
        {"negative buffer length", irsdk::kBufLenOffset, -1, false, 0.0f, 0},
        {"no buffer length", irsdk::kBufLenOffset, 0, false, 0.0f, 0},
        {"no buffers", irsdk::kNumBufOffset, 0, false, 0.0f, 0},
        {"negative buffer count", irsdk::kNumBufOffset, -3, false, 0.0f, 0},
        {"a thousand buffers: four looked at", irsdk::kNumBufOffset, 1000, true, 12.0f, 6},
        {"variable headers past the end", irsdk::kVarHeaderOffsetOffset, 0x7FFFFF00, true, 0.0f, 1},
        {"huge variable count", irsdk::kNumVarsOffset, 0x7FFFFFFF, true, 12.0f, 6},
        {"negative variable count", irsdk::kNumVarsOffset, -5, true, 0.0f, 1},
        {"variable straddles the buffer's end", speedOffset, bufLen - 2, true, 0.0f, 6},
        {"array count beyond any", arrayCount, 0x7FFFFFFF, true, 12.0f, 6},
        {"negative array count", arrayCount, -4, true, 12.0f, 1},
        {"array runs past the buffer", arrayOffset, bufLen - 8, true, 12.0f, 1},
        {"array before the buffer", arrayOffset, -100, true, 12.0f, 1},
    };
    for (const auto& c : cases) {
        TestBlock block;
        block.layout.SetTickCount(block.bytes.data(), 0, 1);
        block.SetI32(fifthTick, 1000);
        block.layout.SetFloat(block.Buffer(0), "Speed", 12.0f);
        block.SetI32(c.offset, c.value);
        TelemetryFrame frame;
        ASSERT_EQ(block.Read(frame), c.read) << c.what;
        if (!c.read) continue;
        EXPECT_EQ(frame.tickCount, 1) << c.what;
        EXPECT_EQ(frame.speed, c.speed) << c.what;
        EXPECT_EQ(frame.torqueSampleCount, c.torqueSamples) << c.what;
    }
}

TEST(IrsdkClientHostile, ShortBlocksNeverOpenedClientsAndSessionTextOutsideAreRefused) {
    IrsdkClient never;
    TelemetryFrame frame;
    EXPECT_FALSE(never.ReadFrame(frame));
    EXPECT_EQ(never.SessionInfoUpdate(), -1);

    TestBlock block;
    block.layout.SetSessionInfo(block.bytes.data(), "CarPath: x\n", 1);
    std::string text;
    ASSERT_TRUE(block.client.AttachBlock(block.bytes.data(), 40));
    EXPECT_FALSE(block.client.ReadFrame(frame));
    EXPECT_FALSE(block.client.CopySessionInfo(text));
    block.client.AttachBlock(block.bytes.data(), block.bytes.size());
    ASSERT_TRUE(block.client.CopySessionInfo(text));
    EXPECT_EQ(text, "CarPath: x\n");
    block.SetI32(irsdk::kSessionInfoLenOffset, 0x7FFFFFFF);
    EXPECT_FALSE(block.client.CopySessionInfo(text));
    block.SetI32(irsdk::kSessionInfoLenOffset, 10);
    block.SetI32(irsdk::kSessionInfoOffsetOffset, -20);
    EXPECT_FALSE(block.client.CopySessionInfo(text));
}

}  // namespace
}  // namespace veltor
