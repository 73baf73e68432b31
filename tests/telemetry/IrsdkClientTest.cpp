#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkClient.h"
#include "telemetry/SessionInfoScanner.h"

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

bool Scan(const std::string& text, SessionIdentity& identity) {
    return ScanSessionInfo(text.data(), text.size(), identity);
}

std::string Block(int carIdx, const std::string& name, const std::string& path, int userId) {
    return " - CarIdx: " + std::to_string(carIdx) + "\n   UserName: " + name + "\n   UserID: " +
           std::to_string(userId) + "\n   CarPath: " + path + "\n";
}

// Session info as the simulator writes it: the user's car index ahead of the driver blocks.
std::string Session(int driverCarIdx, const std::string& blocks, const std::string& before = "") {
    return "WeekendInfo:\n TrackName: somewhere\nDriverInfo:\n" + before +
           " DriverCarIdx: " + std::to_string(driverCarIdx) + "\n Drivers:\n" + blocks;
}

// The trimmed line's prefix matches case-sensitively; digits are read up to the first other character, and
// numbers beyond 32 bits saturate.
TEST(SessionInfoFields, ParseIntReadsThePrefixedNumberAndSaturates) {
    const std::pair<const char*, int32_t> cases[] = {
        {"  UserID: 42\r", 42},   {"UserID:42", 42},     {"userid: 42", -1},         {"User", -1},
        {"UserID: -7", -7},       {"UserID: +7", 7},     {"UserID: 12ab3", 12},      {"UserID: abc", 0},
        {"UserID: \"17\"", 17},   {"UserID: 2147483647", INT32_MAX},                {"UserID: 2147483648", INT32_MAX},
        {"UserID: 99999999999999999999999999", INT32_MAX}, {"UserID: -2147483648", INT32_MIN},
        {"UserID: -99999999999999999999999999", INT32_MIN}};
    for (const auto& [line, value] : cases) EXPECT_EQ(ParseIntField(line, "UserID:"), value) << line;
}

// Text is UTF-8, cut at a NUL, and nothing at all reads "generic".
TEST(SessionInfoFields, WideTextDecodesUtf8AndFallsBackToGenericForNothing) {
    EXPECT_EQ(ToWideText("J\xC3\xBCrgen \xC3\x85str\xC3\xB6m"), L"J\u00fcrgen \u00c5str\u00f6m");
    EXPECT_EQ(ToWideText(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(ToWideText(""), L"generic");
    EXPECT_EQ(ToWideText(std::string("\0abc", 4)), L"generic");
}

// The user's block is found by the car index given before or after "Drivers:"; nothing after the next
// block line counts. The session's user id wins over the block's unless it is 0; the session's name is
// preferred and makes the name known; without it, differing ids make the name unknown. Where the scan
// fails, the identity stays as it was.
TEST(SessionInfoScan, FindsTheUsersBlockAndTheirIdentity) {
    const std::string blocks = Block(0, "Block Name", "car", 200);
    const struct {
        const char* what;
        std::string text;
        bool found;
        const wchar_t* car = L"kept";  // what a failed scan leaves
        const wchar_t* name = L"unknown";
        int32_t id = 0;
        bool known = true;
    } cases[] = {
        {"the user's block of three",
         Session(5, Block(3, "Three", "car3", 300) + Block(5, "Five", "car5", 500) +
                        " - CarIdx: 6\n   UserName: Six\n   CarPath: car6\n   UserID: 600\n"),
         true, L"car5", L"Five", 500, true},
        {"a car path after the next block line",
         Session(5, Block(5, "Five", "", 500) + " - CarIdx: 6\n   CarPath: late\n"), false},
        {"a car path ahead of Drivers:", "DriverCarIdx: 0\nCarPath: early\nDrivers:\n- CarIdx: 0\nUserName: A\n",
         false},
        {"the user's index after Drivers:",
         "Drivers:\n- CarIdx: 2\nCarPath: skipped\nDriverCarIdx: 2\n- CarIdx: 2\nCarPath: mine\n", true, L"mine"},
        {"Drivers: with more text", "DriverCarIdx: 0\nDrivers: none\n- CarIdx: 0\nCarPath: p\n", false},
        {"plain CarIdx: without blanks", "DriverCarIdx:1\nDrivers:\nCarIdx:1\nCarPath:plain\n", true, L"plain"},
        {"session id", Session(0, blocks, " DriverUserID: 100\n"), true, L"car", L"Block Name", 100, false},
        {"session name and id", Session(0, blocks, " DriverUserName: Session Name\n DriverUserID: 100\n"), true, L"car",
         L"Session Name", 100, true},
        {"empty session name", Session(0, blocks, " DriverUserName: \n DriverUserID: 100\n"), true, L"car",
         L"Block Name", 100, false},
        {"session id 0", Session(0, blocks, " DriverUserID: 0\n"), true, L"car", L"Block Name", 200, true},
        {"block id -1", Session(0, Block(0, "N", "car", -1)), true, L"car", L"N", 0, true},
        {"line ends and quotes",
         "DriverCarIdx: 1\r\nDrivers:\r\n- CarIdx: 1\r\n  UserName: \"Quoted Name\"\r\n"
         "  CarPath: \"porsche 911\"  \"\r\n",
         true, L"porsche 911", L"Quoted Name"},
        {"NUL padding", "DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: padded\n" + std::string(64, '\0'), true,
         L"padded"},
        {"no user index", "Drivers:\n- CarIdx: 0\nCarPath: nouser\n", false},
        {"negative user index", "DriverCarIdx: -1\nDrivers:\n- CarIdx: 0\nCarPath: x\n", false},
        {"no block of the user", Session(4, Block(3, "A", "a", 1)), false},
        {"empty car path", Session(3, Block(3, "A", "", 1)), false},
    };
    for (const auto& c : cases) {
        SessionIdentity id;
        id.carPath = L"kept";
        id.driverUserId = 9;
        ASSERT_EQ(Scan(c.text, id), c.found) << c.what;
        EXPECT_EQ(id.carPath, c.car) << c.what;
        EXPECT_EQ(id.driverUserId, c.found ? c.id : 9) << c.what;
        if (!c.found) continue;
        EXPECT_EQ(id.driverName, c.name) << c.what;
        EXPECT_EQ(id.driverNameKnown, c.known) << c.what;
    }
}

}  // namespace
}  // namespace veltor
