// The client over real named kernel objects: this test process plays the simulator's side.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkClient.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor {
namespace {

// The simulator's side: a named mapping of `size` bytes and a named auto-reset event.
class PublishedMapping {
public:
    explicit PublishedMapping(size_t size) {
        mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size),
                                     L"Local\\IRSDKMemMapFileName");
        event = CreateEventW(nullptr, FALSE, FALSE, L"Local\\IRSDKDataValidEvent");
        if (mapping != nullptr) view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, size));
    }
    ~PublishedMapping() {
        if (view != nullptr) UnmapViewOfFile(view);
        if (mapping != nullptr) CloseHandle(mapping);
        if (event != nullptr) CloseHandle(event);
    }
    bool Ready() const { return view != nullptr && event != nullptr; }

    HANDLE mapping = nullptr;
    HANDLE event = nullptr;
    uint8_t* view = nullptr;
};

TEST(IrsdkClientMapping, OpenFailsWithoutTheSimulatorAndLeavesNothingOpen) {
    IrsdkClient client;
    EXPECT_FALSE(client.Open());
    EXPECT_FALSE(client.IsOpen());
    EXPECT_EQ(client.DataValidEvent(), nullptr);
    for (int32_t index : client.VarIndex()) EXPECT_EQ(index, -1);
}

TEST(IrsdkClientMapping, ReadsFramesAndWaitsThroughTheRealNamedObjects) {
    sim::TelemetryLayoutWriter layout(sim::StandardVariables(), 3, 4096);
    PublishedMapping published(layout.BlockSize());
    ASSERT_TRUE(published.Ready());
    layout.WriteLayout(published.view);
    layout.SetStatus(published.view, irsdk::kStatusConnected);
    layout.SetSessionInfo(published.view, "WeekendInfo:\n", 3);
    TelemetryFrame written;
    written.isOnTrack = 1;
    written.speed = 51.25f;
    for (int i = 0; i < 6; ++i) written.torqueSamples[i] = 1.5f * i;
    layout.WriteFrame(layout.Buffer(published.view, 2), written);
    layout.SetTickCount(published.view, 2, 42);

    IrsdkClient client;
    ASSERT_TRUE(client.Open());
    EXPECT_TRUE(client.Open());  // already open
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, irsdk::kStatusConnected);
    EXPECT_EQ(client.SessionInfoUpdate(), 3);
    std::string text;
    ASSERT_TRUE(client.CopySessionInfo(text));
    EXPECT_EQ(text, "WeekendInfo:\n");

    EXPECT_EQ(link::WaitForEvent(client.DataValidEvent(), 0), link::WaitResult::TimedOut);
    SetEvent(published.event);
    EXPECT_EQ(link::WaitForEvent(client.DataValidEvent(), 100), link::WaitResult::Signalled);

    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 42);
    EXPECT_EQ(frame.isOnTrack, 1);
    EXPECT_EQ(frame.speed, 51.25f);
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.torqueSamples[5], 7.5f);

    // The simulator writes on: the next read follows the newer buffer.
    written.speed = 60.0f;
    layout.WriteFrame(layout.Buffer(published.view, 0), written);
    layout.SetTickCount(published.view, 0, 43);
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 43);
    EXPECT_EQ(frame.speed, 60.0f);

    client.Close();
    EXPECT_FALSE(client.IsOpen());
    EXPECT_EQ(link::WaitForEvent(nullptr, 0), link::WaitResult::Failed);
}

TEST(IrsdkClientMapping, ExtractsTheLiveMemoryCopyThroughARealView) {
    std::ifstream in(VELTOR_DATA_DIR "/telemetry/rt2000_live_memory.bin", std::ios::binary);
    const std::vector<char> memory{std::istreambuf_iterator<char>(in), {}};
    if (memory.empty()) GTEST_SKIP() << "rt2000_live_memory.bin not found under " VELTOR_DATA_DIR;
    PublishedMapping published(memory.size());
    ASSERT_TRUE(published.Ready());
    std::memcpy(published.view, memory.data(), memory.size());

    IrsdkClient client;
    ASSERT_TRUE(client.Open());
    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 1934);
    EXPECT_EQ(frame.torqueSampleCount, 6);
    EXPECT_EQ(frame.shockSampleCount, 6);
    EXPECT_NE(frame.torqueSamples[0], 0.0f);

    // The same extraction from the file's bytes directly gives the same frame, field for field.
    IrsdkClient direct;
    direct.AttachBlock(reinterpret_cast<const uint8_t*>(memory.data()), memory.size());
    TelemetryFrame expected;
    ASSERT_TRUE(direct.ReadFrame(expected));
    EXPECT_EQ(frame, expected);
}

}  // namespace
}  // namespace veltor
