// The client over real named kernel objects: this test process plays the simulator's side.
#include <windows.h>

#include <gtest/gtest.h>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkClient.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor {
namespace {

TEST(IrsdkClientMapping, OpenFailsWithoutTheSimulatorAndLeavesNothingOpen) {
    IrsdkClient client;
    EXPECT_FALSE(client.Open());
    EXPECT_FALSE(client.IsOpen());
    EXPECT_EQ(client.DataValidEvent(), nullptr);
    EXPECT_EQ(link::WaitForEvent(nullptr, 0), link::WaitResult::Failed);
}

TEST(IrsdkClientMapping, ReadsFramesAndWaitsThroughTheRealNamedObjects) {
    sim::TelemetryLayoutWriter layout(sim::StandardVariables(), 3, 4096);
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                        static_cast<DWORD>(layout.BlockSize()), L"Local\\IRSDKMemMapFileName");
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, L"Local\\IRSDKDataValidEvent");
    ASSERT_TRUE(mapping != nullptr && event != nullptr);
    auto* view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, layout.BlockSize()));
    ASSERT_NE(view, nullptr);
    layout.WriteLayout(view);
    layout.SetStatus(view, irsdk::kStatusConnected);
    layout.SetSessionInfo(view, "WeekendInfo:\n", 3);
    TelemetryFrame written;
    written.isOnTrack = 1;
    written.speed = 51.25f;
    layout.WriteFrame(layout.Buffer(view, 2), written);
    layout.SetTickCount(view, 2, 42);

    IrsdkClient client;
    ASSERT_TRUE(client.Open());
    EXPECT_EQ(client.Status() & irsdk::kStatusConnected, irsdk::kStatusConnected);
    EXPECT_EQ(client.SessionInfoUpdate(), 3);
    std::string text;
    ASSERT_TRUE(client.CopySessionInfo(text));
    EXPECT_EQ(text, "WeekendInfo:\n");
    EXPECT_EQ(link::WaitForEvent(client.DataValidEvent(), 0), link::WaitResult::TimedOut);
    SetEvent(event);
    EXPECT_EQ(link::WaitForEvent(client.DataValidEvent(), 100), link::WaitResult::Signalled);
    TelemetryFrame frame;
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.tickCount, 42);
    EXPECT_EQ(frame.speed, 51.25f);

    // The simulator writes on: the next read follows the newer buffer.
    written.speed = 60.0f;
    layout.WriteFrame(layout.Buffer(view, 0), written);
    layout.SetTickCount(view, 0, 43);
    ASSERT_TRUE(client.ReadFrame(frame));
    EXPECT_EQ(frame.speed, 60.0f);
    client.Close();
    EXPECT_FALSE(client.IsOpen());
    UnmapViewOfFile(view);
    CloseHandle(mapping);
    CloseHandle(event);
}

}  // namespace
}  // namespace veltor
