#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
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

TEST(IrsdkClientRead, PicksTheNewestBufferAndTheLowerIndexOnEqualTicks) {
    TestBlock block;
    for (int i = 0; i < 3; ++i) block.layout.SetFloat(block.Buffer(i), "Speed", 10.0f * (i + 1));
    const struct {
        int32_t ticks[3];
        float speed;
    } cases[] = {{{0, 0, 0}, 10.0f}, {{5, 7, 6}, 20.0f}, {{5, 7, 7}, 20.0f}, {{9, 7, 8}, 10.0f}};
    for (const auto& c : cases) {
        for (int i = 0; i < 3; ++i) block.layout.SetTickCount(block.bytes.data(), i, c.ticks[i]);
        TelemetryFrame frame;
        ASSERT_TRUE(block.Read(frame));
        EXPECT_EQ(frame.speed, c.speed) << c.ticks[0] << " " << c.ticks[1] << " " << c.ticks[2];
        EXPECT_EQ(frame.valid, 1);
    }
}

TEST(IrsdkClientRead, DeliversEveryVariableOfTheChosenBuffer) {
    TestBlock block;
    TelemetryFrame f;
    f.speed = 41.5f;
    f.steeringWheelTorque = -3.25f;
    f.steeringWheelAngle = 0.5f;
    f.steeringWheelAngleMax = 9.4f;
    f.velocityX = 40.0f;
    f.velocityY = -1.5f;
    f.longAccel = 2.0f;
    f.latAccel = -7.0f;
    f.yawRate = 0.3f;
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

// A copy torn once is read again from the buffer then newest; torn twice, the read fails and the frame
// keeps its last content.
TEST(IrsdkClientRead, TornCopiesAreReadOnceMoreAndNoMore) {
    const struct {
        int tears;
        int32_t newTick;
        bool read;
        int32_t tick;
        float speed;
    } cases[] = {{1, 8, true, 9, 20.0f}, {1, 3, true, 6, 30.0f}, {2, 100, false, 77, 123.0f}};
    for (const auto& c : cases) {
        TestBlock block;
        for (int i = 0; i < 3; ++i) block.layout.SetFloat(block.Buffer(i), "Speed", 10.0f * (i + 1));
        const int32_t ticks[] = {5, 8, 6};
        for (int i = 0; i < 3; ++i) block.layout.SetTickCount(block.bytes.data(), i, ticks[i]);
        block.client.AttachBlock(block.bytes.data(), block.bytes.size());
        TearingBlock tearing;
        tearing.base = block.bytes.data();
        tearing.size = block.bytes.size();
        tearing.bytes = &block.bytes;
        tearing.tears = c.tears;
        tearing.descriptor = 1;
        tearing.newTick = c.newTick;
        std::vector<uint8_t> snapshot;
        TelemetryFrame frame;
        frame.tickCount = 77;
        frame.speed = 123.0f;
        EXPECT_EQ(ReadFrameFromBlock(tearing, block.client.VarIndex(), snapshot, frame), c.read);
        EXPECT_EQ(tearing.copies, 2);
        EXPECT_EQ(frame.tickCount, c.tick);
        EXPECT_EQ(frame.speed, c.speed);
    }
}

// Absent variables are no error; arrays are capped at six; the shock count is the smaller side, and none
// without both sides; a name of 32 characters needs no terminator.
TEST(IrsdkClientVariables, AbsentArraysAndCapsAndLongNames) {
    TestBlock scalarOnly({{"SteeringWheelTorque", VarType::Float, 1}, {"LFshockDefl_ST", VarType::Float, 6}}, 1);
    scalarOnly.layout.SetFloat(scalarOnly.Buffer(0), "SteeringWheelTorque", 4.5f);
    TelemetryFrame frame;
    ASSERT_TRUE(scalarOnly.Read(frame));
    EXPECT_EQ(frame.torqueSampleCount, 1);
    EXPECT_EQ(frame.torqueSamples[0], 4.5f);
    EXPECT_EQ(frame.shockSampleCount, 0);

    TestBlock wide({{"SteeringWheelTorque_ST", VarType::Float, 8},
                    {"LFshockDefl_ST", VarType::Float, 6},
                    {"RFshockDefl_ST", VarType::Float, 4},
                    {std::string(32, 'Q'), VarType::Float, 1}},
                   1);
    for (int i = 0; i < 8; ++i) wide.layout.SetFloat(wide.Buffer(0), "SteeringWheelTorque_ST", 1.0f + i, i);
    for (int i = 0; i < 4; ++i) wide.layout.SetFloat(wide.Buffer(0), "RFshockDefl_ST", 0.2f * (i + 1), i);
    ASSERT_TRUE(wide.Read(frame));
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.torqueSamples[5], 6.0f);
    EXPECT_EQ(frame.shockSampleCount, 4);
    EXPECT_EQ(frame.rfShockDefl, 0.2f * 4);
    EXPECT_EQ(wide.client.FindVariable((std::string(32, 'Q') + "X").c_str()), 3);  // only 32 bytes take part
    EXPECT_EQ(wide.client.FindVariable("LFshockDefl"), -1);
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

TEST(IrsdkClientRealMemory, ExtractsTheNewestBufferOfTheLiveCopy) {
    std::ifstream in(VELTOR_DATA_DIR "/telemetry/rt2000_live_memory.bin", std::ios::binary);
    const std::vector<uint8_t> memory{std::istreambuf_iterator<char>(in), {}};
    if (memory.empty()) GTEST_SKIP() << "rt2000_live_memory.bin not found under " VELTOR_DATA_DIR;
    IrsdkClient client;
    ASSERT_TRUE(client.AttachBlock(memory.data(), memory.size()));
    const LiveBlock live{memory.data(), memory.size()};
    int newest = 0;
    for (int i = 1; i < 3; ++i) {
        if (live.LoadI32(irsdk::kVarBufOffset + i * 16) > live.LoadI32(irsdk::kVarBufOffset + newest * 16)) newest = i;
    }
    const int32_t bufOffset = live.LoadI32(irsdk::kVarBufOffset + newest * 16 + 4);
    // The value of a variable in the newest buffer, at the offset its header gives.
    const auto valueAt = [&](int var, int element) {
        const int32_t header = live.LoadI32(irsdk::kVarHeaderOffsetOffset) + client.VarIndex()[var] * 144;
        float value;
        std::memcpy(&value, memory.data() + bufOffset + live.LoadI32(header + 4) + element * 4, 4);
        return value;
    };

    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 1934);
    EXPECT_EQ(frame.shockSampleCount, 6);
    for (int v = 0; v < irsdk::kVarCount; ++v) EXPECT_EQ(client.VarIndex()[v] >= 0, v != irsdk::kCFshockDeflST) << v;
    EXPECT_EQ(frame.speed, valueAt(irsdk::kSpeed, 0));
    EXPECT_EQ(frame.steeringWheelTorque, valueAt(irsdk::kSteeringWheelTorque, 0));
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(frame.torqueSamples[i], valueAt(irsdk::kSteeringWheelTorqueST, i));
        EXPECT_EQ(frame.lfShockDeflSamples[i], valueAt(irsdk::kLFshockDeflST, i));
        EXPECT_EQ(frame.rfShockDeflSamples[i], valueAt(irsdk::kRFshockDeflST, i));
    }
}

}  // namespace
}  // namespace veltor
