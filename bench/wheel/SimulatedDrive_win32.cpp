#include <windows.h>

#include "SimulatedDrive_win32.h"

#include <cmath>

#include "TelemetryLayoutWriter.h"
#include "platform/SteadyClock.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor::test {

namespace {
constexpr int64_t kFrameMicroseconds = 16667;
constexpr int kBuffers = 3;
constexpr size_t kSessionInfoCapacity = 4096;

const sim::TelemetryLayoutWriter& Layout() {
    static const sim::TelemetryLayoutWriter layout(sim::StandardVariables(), kBuffers, kSessionInfoCapacity);
    return layout;
}

// On track at 40 m/s, the wheel near the centre, a torque that swings slowly enough for every output to
// reach the wheel within the slew limit, and changes from one sub-sample to the next.
TelemetryFrame DriveFrame(int32_t tick) {
    TelemetryFrame f;
    f.isOnTrack = 1;
    f.speed = 40.0f;
    f.velocityX = 40.0f;
    f.steeringWheelAngleMax = 9.0f;
    for (int i = 0; i < kMaxSubSamples; ++i) {
        f.torqueSamples[i] = static_cast<float>(12.0 * std::sin((tick * 6 + i) / 90.0) + 0.02 * i);
    }
    f.torqueSampleCount = kMaxSubSamples;
    f.steeringWheelTorque = f.torqueSamples[5];
    return f;
}
}  // namespace

int64_t CounterMicroseconds() { return SteadyNowNanoseconds() / 1000; }

SimulatedDrive::SimulatedDrive(size_t maxTicks) : eventTimes(maxTicks + 1, 0) {}

SimulatedDrive::~SimulatedDrive() {
    Stop();
    if (view != nullptr) UnmapViewOfFile(view);
    if (mapping != nullptr) CloseHandle(mapping);
    if (event != nullptr) CloseHandle(event);
}

bool SimulatedDrive::Start() {
    const size_t size = Layout().BlockSize();
    mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size),
                                 L"Local\\IRSDKMemMapFileName");
    event = CreateEventW(nullptr, FALSE, FALSE, L"Local\\IRSDKDataValidEvent");
    if (mapping == nullptr || event == nullptr) return false;
    view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, size));
    if (view == nullptr) return false;
    Layout().WriteLayout(view);
    Layout().SetSessionInfo(view, "WeekendInfo:\n", 1);
    Layout().SetStatus(view, irsdk::kStatusConnected);
    drive = std::thread([this] { Run(); });
    return true;
}

void SimulatedDrive::Stop() {
    stop.store(true);
    if (drive.joinable()) drive.join();
}

int64_t SimulatedDrive::EventMicroseconds(int32_t tick) const {
    return tick > 0 && static_cast<size_t>(tick) < eventTimes.size() ? eventTimes[static_cast<size_t>(tick)] : 0;
}

void SimulatedDrive::Run() {
    const sim::TelemetryLayoutWriter& layout = Layout();
    int64_t next = CounterMicroseconds();
    for (int32_t tick = 1; !stop.load() && static_cast<size_t>(tick) < eventTimes.size(); ++tick) {
        const int index = tick % kBuffers;
        layout.WriteFrame(layout.Buffer(view, index), DriveFrame(tick));
        layout.SetTickCount(view, index, tick);
        eventTimes[static_cast<size_t>(tick)] = CounterMicroseconds();
        ticks.store(tick);
        SetEvent(event);
        next += kFrameMicroseconds;
        const int64_t wait = next - CounterMicroseconds();
        if (wait > 0) Sleep(static_cast<DWORD>(wait / 1000));
    }
}

}  // namespace veltor::test
