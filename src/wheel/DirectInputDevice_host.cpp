#include "wheel/DirectInputDevice_host.h"

#include "platform/SteadyClock.h"

namespace veltor {

namespace {
constexpr int32_t kOk = 0;
constexpr int32_t kNotAcquired = static_cast<int32_t>(0x8007000Cu);  // DIERR_NOTACQUIRED
constexpr int32_t kNoObject = static_cast<int32_t>(0x80004003u);     // E_POINTER
constexpr float kNanosecondsPerSecond = 1e9f;
}  // namespace

DirectInputDevice::DirectInputDevice() : objects(std::make_unique<Objects>()) {}

std::vector<int32_t> DirectInputDevice::Objects::SentMagnitudes() const {
    const uint64_t sent = sentCount.load(std::memory_order_acquire);
    const uint64_t kept = sent < kKeptMagnitudes ? sent : kKeptMagnitudes;
    std::vector<int32_t> magnitudes;
    for (uint64_t i = sent - kept; i < sent; ++i) magnitudes.push_back(keptMagnitudes[i % kKeptMagnitudes]);
    return magnitudes;
}
DirectInputDevice::~DirectInputDevice() = default;

bool DirectInputDevice::CreateDeviceEvent() {
    objects->eventCreated = true;
    return true;
}

int32_t DirectInputDevice::CreateInterface() {
    objects->interfaceCreated = true;
    return kOk;
}

// The host has one wheel, and whatever instance is asked for is it.
int32_t DirectInputDevice::CreateDevice(const DeviceGuid&) {
    if (!objects->interfaceCreated) return kNoObject;
    objects->deviceCreated = true;
    return kOk;
}

void DirectInputDevice::SetJoystickFormat() {}
void DirectInputDevice::SetCooperativeLevel(WindowHandle) {}
void DirectInputDevice::DisableAutocenter() {}
void DirectInputDevice::SetEventNotification() {}

int32_t DirectInputDevice::Acquire() {
    if (!objects->deviceCreated) return kNoObject;
    objects->acquired = true;
    return kOk;
}

void DirectInputDevice::Unacquire() { objects->acquired = false; }

bool DirectInputDevice::HasEvent() const { return objects->eventCreated; }
bool DirectInputDevice::HasDevice() const { return objects->deviceCreated; }
bool DirectInputDevice::HasEffect() const { return objects->effectCreated; }

int32_t DirectInputDevice::CreateConstantForceEffect() {
    if (!objects->deviceCreated) return kNoObject;
    objects->magnitude = 0;
    objects->effectCreated = true;
    return kOk;
}

void DirectInputDevice::SetMagnitude(int32_t magnitude) { objects->magnitude = magnitude; }
int32_t DirectInputDevice::Magnitude() const { return objects->magnitude; }

int32_t DirectInputDevice::SetParameters() {
    if (!objects->effectCreated) return kNoObject;
    if (!objects->acquired) return kNotAcquired;
    const uint64_t sent = objects->sentCount.load(std::memory_order_relaxed);
    objects->keptMagnitudes[sent % Objects::kKeptMagnitudes] = objects->magnitude;
    objects->sentCount.store(sent + 1, std::memory_order_release);
    if (objects->effectPlaying) objects->playedMagnitude = objects->magnitude;
    return kOk;
}

int32_t DirectInputDevice::Start() {
    if (!objects->effectCreated) return kNoObject;
    if (!objects->acquired) return kNotAcquired;
    objects->effectPlaying = true;
    objects->playedMagnitude = objects->magnitude;
    ++objects->startCount;
    return kOk;
}

void DirectInputDevice::Stop() {
    objects->effectPlaying = false;
    objects->playedMagnitude = 0;
    ++objects->stopCount;
}

// The device's event: the rim moves on in real time, and a change of lX is what signals.
bool DirectInputDevice::WaitForPositionEvent(uint32_t timeoutMilliseconds) {
    SleepMilliseconds(static_cast<int32_t>(timeoutMilliseconds));
    const int64_t now = SteadyNowNanoseconds();
    if (objects->lastAdvance != 0) {
        const float seconds = static_cast<float>(now - objects->lastAdvance) / kNanosecondsPerSecond;
        objects->model.Advance(seconds, objects->playedMagnitude, 0.0f);
    }
    objects->lastAdvance = now;
    const int32_t position = objects->model.AxisPosition();
    const bool moved = position != objects->lastAxisPosition;
    objects->lastAxisPosition = position;
    return moved;
}

int32_t DirectInputDevice::ReadPosition(int32_t& position) {
    if (!objects->deviceCreated) return kNoObject;
    if (!objects->acquired) return kNotAcquired;
    position = objects->model.AxisPosition();
    return kOk;
}

void DirectInputDevice::ReleaseEffect() {
    if (!objects->effectCreated) return;
    Stop();
    objects->effectCreated = false;
}

void DirectInputDevice::ReleaseDevice() {
    objects->acquired = false;
    objects->deviceCreated = false;
}

void DirectInputDevice::ReleaseInterface() { objects->interfaceCreated = false; }
void DirectInputDevice::CloseDeviceEvent() { objects->eventCreated = false; }

}  // namespace veltor
