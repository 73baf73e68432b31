#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkClient.h"

namespace veltor {
namespace {

using sim::TelemetryLayoutWriter;
using sim::VariableSpec;
using sim::VarType;

// A block of the published layout in test-owned memory.
struct TestBlock {
    explicit TestBlock(std::vector<VariableSpec> vars = sim::StandardVariables(true), int numBuf = 3)
        : layout(std::move(vars), numBuf, 256), bytes(layout.BlockSize(), 0) {
        layout.WriteLayout(bytes.data());
    }
    uint8_t* Buffer(int i) { return layout.Buffer(bytes.data(), i); }
    void SetTick(int i, int32_t tick) { layout.SetTickCount(bytes.data(), i, tick); }
    void SetI32(size_t offset, int32_t v) { sim::StoreI32(bytes.data() + offset, v); }
    int32_t VarHeaderAt(int index) const { return layout.VarHeaderOffset() + index * 144; }

    TelemetryLayoutWriter layout;
    std::vector<uint8_t> bytes;
};

// Rewrites descriptors' tick counts right after chosen copies, as a simulator that refills the buffer
// being read would.
struct TearingBlock : LiveBlock {
    std::vector<uint8_t>* bytes = nullptr;
    mutable int copies = 0;
    int tearCopies = 0;          // copies after which the tick moves
    int descriptorToMove = 0;
    int32_t newTick = 0;

    void Copy(uint8_t* destination, size_t offset, size_t length) const {
        LiveBlock::Copy(destination, offset, length);
        if (++copies <= tearCopies) {
            sim::StoreI32(bytes->data() + irsdk::kVarBufOffset + descriptorToMove * irsdk::kVarBufStride,
                          newTick + copies);
        }
    }
};

float SpeedOf(const TelemetryFrame& f) { return f.speed; }

class IrsdkClientRead : public ::testing::Test {
protected:
    void WriteSpeeds(std::initializer_list<float> speeds) {
        int i = 0;
        for (float s : speeds) block.layout.SetFloat(block.Buffer(i++), "Speed", s);
    }
    bool Read(TelemetryFrame& frame) {
        client.AttachBlock(block.bytes.data(), block.bytes.size());
        return client.ReadFrame(frame);
    }
    // A view of the block whose descriptor moves to newTick + n after each of the first `tearCopies` copies.
    TearingBlock Tearing(int tearCopies, int descriptor, int32_t newTick) {
        client.AttachBlock(block.bytes.data(), block.bytes.size());
        TearingBlock tearing;
        tearing.base = block.bytes.data();
        tearing.size = block.bytes.size();
        tearing.bytes = &block.bytes;
        tearing.tearCopies = tearCopies;
        tearing.descriptorToMove = descriptor;
        tearing.newTick = newTick;
        return tearing;
    }

    TestBlock block;
    IrsdkClient client;
};

TEST_F(IrsdkClientRead, PicksTheNewestBufferAndTheLowerIndexOnEqualTicks) {
    WriteSpeeds({10.0f, 20.0f, 30.0f});
    TelemetryFrame frame;
    ASSERT_TRUE(Read(frame));  // all ticks zero: buffer 0
    EXPECT_EQ(frame.tickCount, 0);
    EXPECT_EQ(SpeedOf(frame), 10.0f);

    block.SetTick(0, 5);
    block.SetTick(1, 7);
    block.SetTick(2, 6);
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(frame.tickCount, 7);
    EXPECT_EQ(SpeedOf(frame), 20.0f);
    EXPECT_EQ(frame.valid, 1);

    block.SetTick(2, 7);
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(SpeedOf(frame), 20.0f);
}

TEST_F(IrsdkClientRead, DeliversEveryVariableFromTheChosenBuffer) {
    TelemetryFrame f;
    f.isOnTrack = 1;
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
    block.SetTick(1, 9);
    TelemetryFrame frame;
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(frame.isOnTrack, 1);
    EXPECT_EQ(frame.speed, 41.5f);
    EXPECT_EQ(frame.steeringWheelTorque, -3.25f);
    EXPECT_EQ(frame.steeringWheelAngleMax, 9.4f);
    EXPECT_EQ(frame.velocityY, -1.5f);
    EXPECT_EQ(frame.latAccel, -7.0f);
    EXPECT_EQ(frame.yawRate, 0.3f);
    EXPECT_EQ(frame.brakeAbsActive, 1);
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.torqueSamples[5], 2.5f);
    EXPECT_EQ(frame.shockSampleCount, 6);
    EXPECT_EQ(frame.lfShockDefl, f.lfShockDeflSamples[5]);
    EXPECT_EQ(frame.rfShockDefl, f.rfShockDeflSamples[5]);
    EXPECT_EQ(frame.cfShockSampleCount, 6);
    EXPECT_EQ(frame.cfShockDefl, f.cfShockDeflSamples[5]);
}

TEST_F(IrsdkClientRead, TornFirstPassRereadsFromTheBufferChosenAgain) {
    WriteSpeeds({10.0f, 20.0f, 30.0f});
    block.SetTick(0, 5);
    block.SetTick(1, 8);
    block.SetTick(2, 6);
    // During the first copy the simulator starts to rewrite buffer 1, whose tick moves on to 9; the second
    // pass chooses buffer 1 again and this time its copy is whole.
    TearingBlock tearing = Tearing(1, 1, 8);
    std::vector<uint8_t> snapshot;
    TelemetryFrame frame;
    ASSERT_TRUE(ReadFrameFromBlock(tearing, client.VarIndex(), snapshot, frame));
    EXPECT_EQ(tearing.copies, 2);
    EXPECT_EQ(frame.tickCount, 9);
    EXPECT_EQ(SpeedOf(frame), 20.0f);

    // A tear that makes another buffer the newest: the second pass picks that one.
    block.SetTick(1, 8);
    tearing = Tearing(1, 1, 3);  // buffer 1 drops to tick 4, so buffer 2 (tick 6) wins the second pass
    ASSERT_TRUE(ReadFrameFromBlock(tearing, client.VarIndex(), snapshot, frame));
    EXPECT_EQ(frame.tickCount, 6);
    EXPECT_EQ(SpeedOf(frame), 30.0f);
}

TEST_F(IrsdkClientRead, TornOnBothPassesFailsAndLeavesTheFrameUntouched) {
    block.SetTick(0, 5);
    TearingBlock tearing = Tearing(2, 0, 100);
    std::vector<uint8_t> snapshot;
    TelemetryFrame frame;
    frame.speed = 123.0f;
    frame.tickCount = 77;
    EXPECT_FALSE(ReadFrameFromBlock(tearing, client.VarIndex(), snapshot, frame));
    EXPECT_EQ(tearing.copies, 2);  // no third attempt
    EXPECT_EQ(frame.speed, 123.0f);
    EXPECT_EQ(frame.tickCount, 77);
}

TEST(IrsdkClientVariables, MissingTorqueArrayFallsBackToTheScalar) {
    std::vector<VariableSpec> vars{{"SteeringWheelTorque", VarType::Float, 1}, {"Speed", VarType::Float, 1}};
    TestBlock block(vars, 1);
    block.layout.SetFloat(block.Buffer(0), "SteeringWheelTorque", 4.5f);
    IrsdkClient client;
    client.AttachBlock(block.bytes.data(), block.bytes.size());
    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.torqueSampleCount, 1);
    EXPECT_EQ(frame.torqueSamples[0], 4.5f);
    EXPECT_EQ(frame.shockSampleCount, 0);
    EXPECT_EQ(frame.isOnTrack, 0);
}

TEST(IrsdkClientVariables, ArraysAreCappedAtSixAndShockCountIsTheSmallerSide) {
    std::vector<VariableSpec> vars{{"SteeringWheelTorque_ST", VarType::Float, 8},
                                   {"LFshockDefl_ST", VarType::Float, 6},
                                   {"RFshockDefl_ST", VarType::Float, 4}};
    TestBlock block(vars, 1);
    for (int i = 0; i < 8; ++i) block.layout.SetFloat(block.Buffer(0), "SteeringWheelTorque_ST", 1.0f + i, i);
    for (int i = 0; i < 6; ++i) block.layout.SetFloat(block.Buffer(0), "LFshockDefl_ST", 0.1f * (i + 1), i);
    for (int i = 0; i < 4; ++i) block.layout.SetFloat(block.Buffer(0), "RFshockDefl_ST", 0.2f * (i + 1), i);
    IrsdkClient client;
    client.AttachBlock(block.bytes.data(), block.bytes.size());
    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.torqueSamples[5], 6.0f);
    EXPECT_EQ(frame.shockSampleCount, 4);
    EXPECT_EQ(frame.lfShockDefl, frame.lfShockDeflSamples[3]);
    EXPECT_EQ(frame.lfShockDeflSamples[5], 0.1f * 6);
    EXPECT_EQ(frame.rfShockDefl, 0.2f * 4);
}

TEST(IrsdkClientVariables, LeftShockAloneGivesNoShockCount) {
    std::vector<VariableSpec> vars{{"LFshockDefl_ST", VarType::Float, 6}};
    TestBlock block(vars, 1);
    block.layout.SetFloat(block.Buffer(0), "LFshockDefl_ST", 0.5f, 5);
    IrsdkClient client;
    client.AttachBlock(block.bytes.data(), block.bytes.size());
    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.lfShockDeflSamples[5], 0.5f);
    EXPECT_EQ(frame.shockSampleCount, 0);
    EXPECT_EQ(frame.lfShockDefl, 0.0f);
    EXPECT_EQ(frame.rfShockDefl, 0.0f);
}

TEST(IrsdkClientVariables, NameOfThirtyTwoCharactersMatchesWithoutTerminator) {
    const std::string longName(32, 'Q');
    std::vector<VariableSpec> vars{{"Speed", VarType::Float, 1}, {longName, VarType::Float, 1}};
    TestBlock block(vars, 1);
    IrsdkClient client;
    client.AttachBlock(block.bytes.data(), block.bytes.size());
    EXPECT_EQ(client.FindVariable(longName.c_str()), 1);
    EXPECT_EQ(client.FindVariable((longName + "X").c_str()), 1);  // only 32 bytes take part
    EXPECT_EQ(client.FindVariable("Spee"), -1);
    EXPECT_EQ(client.FindVariable("SpeedX"), -1);
}

TEST(IrsdkClientLifecycle, CloseOfANeverOpenedClientLeavesEveryIndexAbsent) {
    IrsdkClient client;
    client.Close();
    EXPECT_FALSE(client.IsOpen());
    for (int32_t index : client.VarIndex()) EXPECT_EQ(index, -1);
    TelemetryFrame frame;
    EXPECT_FALSE(client.ReadFrame(frame));
    EXPECT_EQ(client.SessionInfoUpdate(), -1);
}

// Hostile blocks: each must give a failed read or a thinner frame, never a read outside the block.
class IrsdkClientHostile : public ::testing::Test {
protected:
    IrsdkClientHostile() { block.SetTick(0, 1); }
    bool Read(TelemetryFrame& frame) {
        client.AttachBlock(block.bytes.data(), block.bytes.size());
        return client.ReadFrame(frame);
    }
    TestBlock block;
    IrsdkClient client;
};

TEST_F(IrsdkClientHostile, BufferOutsideTheBlockFailsTheRead) {
    TelemetryFrame frame;
    block.SetI32(irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, static_cast<int32_t>(block.bytes.size()) - 4);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, -64);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, block.layout.BufferOffset(0));
    block.SetI32(irsdk::kBufLenOffset, 0x7FFFFFFF);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kBufLenOffset, -1);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kBufLenOffset, 0);
    EXPECT_FALSE(Read(frame));
}

TEST_F(IrsdkClientHostile, BufferCountOutsideOneToFourIsHandled) {
    TelemetryFrame frame;
    block.SetI32(irsdk::kNumBufOffset, 0);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kNumBufOffset, -3);
    EXPECT_FALSE(Read(frame));
    block.SetI32(irsdk::kNumBufOffset, 1000);
    // The fifth descriptor would sit at 112, where the session-info text begins: only four are looked at.
    block.SetI32(irsdk::kVarBufOffset + 4 * irsdk::kVarBufStride, 1000);
    EXPECT_TRUE(Read(frame));
    EXPECT_EQ(frame.tickCount, 1);
}

TEST_F(IrsdkClientHostile, VariableHeadersOutsideTheBlockCountAsAbsent) {
    block.SetI32(irsdk::kVarHeaderOffsetOffset, static_cast<int32_t>(block.bytes.size()) - 100);
    TelemetryFrame frame;
    ASSERT_TRUE(Read(frame));
    for (int32_t index : client.VarIndex()) EXPECT_EQ(index, -1);
    EXPECT_EQ(frame.torqueSampleCount, 1);

    block.SetI32(irsdk::kVarHeaderOffsetOffset, block.layout.VarHeaderOffset());
    block.SetI32(irsdk::kNumVarsOffset, 0x7FFFFFFF);
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(client.VarIndex()[irsdk::kSpeed], 1);  // the real headers still match
    block.SetI32(irsdk::kNumVarsOffset, -5);
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(client.VarIndex()[irsdk::kSpeed], -1);
}

TEST_F(IrsdkClientHostile, VariableOffsetsAndCountsThatLeaveTheBufferCountAsAbsent) {
    block.layout.SetFloat(block.Buffer(0), "Speed", 12.0f);
    block.layout.SetFloat(block.Buffer(0), "SteeringWheelTorque", 2.0f);
    block.SetI32(block.VarHeaderAt(irsdk::kSpeed) + 4, block.layout.BufLen() - 2);  // straddles the end
    block.SetI32(block.VarHeaderAt(irsdk::kSteeringWheelTorqueST) + 8, 0x7FFFFFFF);  // capped at 6
    block.SetI32(block.VarHeaderAt(irsdk::kLFshockDeflST) + 8, -4);
    block.SetI32(block.VarHeaderAt(irsdk::kRFshockDeflST) + 4, -100);
    block.SetI32(block.VarHeaderAt(irsdk::kYawRate) + 4, 0x7FFFFFF0);
    TelemetryFrame frame;
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(frame.speed, 0.0f);
    EXPECT_EQ(frame.yawRate, 0.0f);
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.shockSampleCount, 0);

    // An array whose six elements would run past the buffer's end counts as absent.
    block.SetI32(block.VarHeaderAt(irsdk::kSteeringWheelTorqueST) + 4, block.layout.BufLen() - 8);
    ASSERT_TRUE(Read(frame));
    EXPECT_EQ(frame.torqueSampleCount, 1);
    EXPECT_EQ(frame.torqueSamples[0], 2.0f);
}

TEST_F(IrsdkClientHostile, BlockShorterThanTheHeaderIsNeverRead) {
    TelemetryFrame frame;
    frame.speed = 5.0f;
    ASSERT_TRUE(client.AttachBlock(block.bytes.data(), 40));
    EXPECT_FALSE(client.ReadFrame(frame));
    EXPECT_EQ(client.SessionInfoUpdate(), -1);
    EXPECT_EQ(frame.speed, 5.0f);
    std::string text;
    EXPECT_FALSE(client.CopySessionInfo(text));
}

TEST_F(IrsdkClientHostile, SessionInfoOutsideTheBlockIsNotCopied) {
    block.layout.SetSessionInfo(block.bytes.data(), "CarPath: x\n", 1);
    client.AttachBlock(block.bytes.data(), block.bytes.size());
    std::string text;
    ASSERT_TRUE(client.CopySessionInfo(text));
    EXPECT_EQ(text, "CarPath: x\n");
    block.SetI32(irsdk::kSessionInfoLenOffset, 0x7FFFFFFF);
    EXPECT_FALSE(client.CopySessionInfo(text));
    block.SetI32(irsdk::kSessionInfoLenOffset, 10);
    block.SetI32(irsdk::kSessionInfoOffsetOffset, -20);
    EXPECT_FALSE(client.CopySessionInfo(text));
}

// Random corruption of a valid block: under the address sanitizer any read outside it would abort.
TEST_F(IrsdkClientHostile, RandomCorruptionNeverReadsOutsideTheBlock) {
    std::mt19937 random(1234);
    const std::vector<uint8_t> pristine = block.bytes;
    const size_t headerSpan = static_cast<size_t>(block.layout.VarHeaderOffset()) + 15 * 144;
    int delivered = 0;
    for (int round = 0; round < 20000; ++round) {
        block.bytes = pristine;
        // The vector may not move: the client reads the block where AttachBlock saw it.
        for (int k = 0; k < 4; ++k) {
            const size_t at = random() % (k < 2 ? irsdk::kHeaderSize : headerSpan) & ~size_t{3};
            const int32_t choices[] = {0, -1, 1, 4, 6, 0x7FFFFFFF, static_cast<int32_t>(0x80000000),
                                       static_cast<int32_t>(random()), static_cast<int32_t>(block.bytes.size())};
            block.SetI32(at, choices[random() % std::size(choices)]);
        }
        TelemetryFrame frame;
        if (Read(frame)) {
            ++delivered;
            EXPECT_GE(frame.torqueSampleCount, 1);
            EXPECT_LE(frame.torqueSampleCount, 6);
            EXPECT_GE(frame.shockSampleCount, 0);
            EXPECT_LE(frame.shockSampleCount, 6);
        }
    }
    EXPECT_GT(delivered, 0);
}

std::vector<uint8_t> LoadLiveMemory() {
    std::ifstream in(VELTOR_DATA_DIR "/telemetry/rt2000_live_memory.bin", std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

TEST(IrsdkClientRealMemory, ExtractsTheNewestBufferOfTheLiveCopy) {
    const std::vector<uint8_t> memory = LoadLiveMemory();
    if (memory.empty()) GTEST_SKIP() << "rt2000_live_memory.bin not found under " VELTOR_DATA_DIR;
    IrsdkClient client;
    ASSERT_TRUE(client.AttachBlock(memory.data(), memory.size()));
    const LiveBlock live{memory.data(), memory.size()};
    ASSERT_EQ(live.LoadI32(irsdk::kNumBufOffset), 3);

    int newest = 0;
    for (int i = 1; i < 3; ++i) {
        if (live.LoadI32(irsdk::kVarBufOffset + i * 16) > live.LoadI32(irsdk::kVarBufOffset + newest * 16)) newest = i;
    }
    const int32_t bufOffset = live.LoadI32(irsdk::kVarBufOffset + newest * 16 + 4);

    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 1934);
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.shockSampleCount, 6);
    for (int v = 0; v < irsdk::kVarCount; ++v) {
        if (v != irsdk::kCFshockDeflST) {
            EXPECT_GE(client.VarIndex()[v], 0) << irsdk::kVarNames[v];
        }
    }
    // The frame's values are those of the newest buffer, at the offsets its variable headers give.
    const auto valueAt = [&](int var, int element) {
        const int32_t header = live.LoadI32(irsdk::kVarHeaderOffsetOffset) + client.VarIndex()[var] * 144;
        float value;
        std::memcpy(&value, memory.data() + bufOffset + live.LoadI32(header + 4) + element * 4, 4);
        return value;
    };
    EXPECT_EQ(frame.speed, valueAt(irsdk::kSpeed, 0));
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(frame.torqueSamples[i], valueAt(irsdk::kSteeringWheelTorqueST, i));
        EXPECT_EQ(frame.lfShockDeflSamples[i], valueAt(irsdk::kLFshockDeflST, i));
        EXPECT_EQ(frame.rfShockDeflSamples[i], valueAt(irsdk::kRFshockDeflST, i));
    }
    EXPECT_EQ(frame.steeringWheelTorque, valueAt(irsdk::kSteeringWheelTorque, 0));
    EXPECT_EQ(frame.lfShockDefl, frame.lfShockDeflSamples[5]);
}

}  // namespace
}  // namespace veltor
