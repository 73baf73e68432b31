#include "telemetry/SimulatorLink_host.h"

#include <condition_variable>
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

#include "telemetry/SimulatorLink.h"

namespace veltor {
namespace {

struct EventState {
    bool signalled = false;
    bool editing = false;
    int waiters = 0;
};

struct Registry {
    std::mutex lock;
    std::condition_variable changed;
    // The simulator's own references. Like kernel objects, the block and the event live on by name while
    // any handle holds them, so a simulator that comes back while the engine still holds its handles
    // finds the same objects again.
    std::shared_ptr<std::vector<uint8_t>> block;  // null when the simulator has withdrawn
    std::shared_ptr<EventState> event;
    std::weak_ptr<std::vector<uint8_t>> namedBlock;
    std::weak_ptr<EventState> namedEvent;
    std::map<const uint8_t*, std::shared_ptr<std::vector<uint8_t>>> views;
    bool waitFailure = false;
    uint64_t waitsBegun = 0;
    std::vector<int32_t> broadcasts;
};

Registry& Link() {
    static Registry registry;
    return registry;
}

// A handle owns a reference to the object it opened, as a kernel handle would.
struct HostHandle {
    std::shared_ptr<std::vector<uint8_t>> block;
    std::shared_ptr<EventState> event;
};

}  // namespace

namespace link {

Handle OpenDataValidEvent() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    std::shared_ptr<EventState> event = r.namedEvent.lock();
    if (!event) return nullptr;
    return new HostHandle{nullptr, event};
}

Handle OpenTelemetryMapping() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    std::shared_ptr<std::vector<uint8_t>> block = r.namedBlock.lock();
    if (!block) return nullptr;
    return new HostHandle{block, nullptr};
}

const uint8_t* MapTelemetryView(Handle mapping, size_t& size) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    auto* handle = static_cast<HostHandle*>(mapping);
    if (handle == nullptr || !handle->block) return nullptr;
    const uint8_t* base = handle->block->data();
    r.views[base] = handle->block;
    size = handle->block->size();
    return base;
}

void UnmapTelemetryView(const uint8_t* base) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    r.views.erase(base);
}

void CloseLinkHandle(Handle handle) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    delete static_cast<HostHandle*>(handle);
}

WaitResult WaitForEvent(Handle eventHandle, uint32_t timeoutMilliseconds) {
    Registry& r = Link();
    std::unique_lock guard(r.lock);
    auto* handle = static_cast<HostHandle*>(eventHandle);
    ++r.waitsBegun;
    if (handle == nullptr || !handle->event || r.waitFailure) return WaitResult::Failed;
    EventState& event = *handle->event;
    ++event.waiters;
    r.changed.notify_all();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    bool timedOut = false;
    while (!event.signalled && !r.waitFailure) {
        if (event.editing) {
            r.changed.wait(guard);  // a script is writing the block: no time-out until it ends the edit
        } else if (std::chrono::steady_clock::now() < deadline) {
            r.changed.wait_until(guard, deadline);
        } else {
            timedOut = true;
            break;
        }
    }
    --event.waiters;
    if (event.signalled) {
        event.signalled = false;
        return WaitResult::Signalled;
    }
    return timedOut ? WaitResult::TimedOut : WaitResult::Failed;
}

}  // namespace link

void BroadcastMaxForce(int32_t force16_16) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    r.broadcasts.push_back(force16_16);
}

namespace hostsim {

uint8_t* Publish(size_t size, std::span<const uint8_t> initialContent) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    std::shared_ptr<std::vector<uint8_t>> existing = r.namedBlock.lock();
    r.block = existing && existing->size() >= size ? existing : std::make_shared<std::vector<uint8_t>>(size, uint8_t{0});
    r.namedBlock = r.block;
    std::copy_n(initialContent.begin(), std::min(initialContent.size(), r.block->size()), r.block->begin());
    std::shared_ptr<EventState> event = r.namedEvent.lock();
    r.event = event ? event : std::make_shared<EventState>();
    r.namedEvent = r.event;
    return r.block->data();
}

void Withdraw() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    r.block.reset();
    r.event.reset();
    r.changed.notify_all();
}

bool IsPublished() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    return r.block != nullptr;
}

void SignalDataValid() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    if (r.event) r.event->signalled = true;
    r.changed.notify_all();
}

void SetWaitFailure(bool fail) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    r.waitFailure = fail;
    r.changed.notify_all();
}

bool BeginEdit(std::chrono::milliseconds timeout) {
    Registry& r = Link();
    std::unique_lock guard(r.lock);
    if (!r.event) return false;
    std::shared_ptr<EventState> event = r.event;
    event->editing = true;
    if (!r.changed.wait_for(guard, timeout, [&] { return event->waiters > 0 && !event->signalled; })) {
        event->editing = false;
        return false;
    }
    return true;
}

bool Sync(std::chrono::milliseconds timeout) {
    Registry& r = Link();
    std::unique_lock guard(r.lock);
    if (!r.event) return false;
    std::shared_ptr<EventState> event = r.event;
    const auto idle = [&] { return event->waiters > 0 && !event->signalled; };
    if (!r.changed.wait_for(guard, timeout, idle)) return false;
    const uint64_t before = r.waitsBegun;
    event->signalled = true;
    r.changed.notify_all();
    return r.changed.wait_for(guard, timeout, [&] { return r.waitsBegun > before && idle(); });
}

void EndEdit(bool signal) {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    if (r.event) {
        r.event->editing = false;
        if (signal) r.event->signalled = true;
    }
    r.changed.notify_all();
}

std::vector<int32_t> Broadcasts() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    return r.broadcasts;
}

void ClearBroadcasts() {
    Registry& r = Link();
    std::lock_guard guard(r.lock);
    r.broadcasts.clear();
}

}  // namespace hostsim
}  // namespace veltor
