#include "ForceLog.h"

namespace veltor::test {
namespace {

std::mutex& LogLock() {
    static std::mutex lock;
    return lock;
}

std::vector<StoredForce>& Entries() {
    static std::vector<StoredForce> entries;
    return entries;
}

std::vector<RequestedWait>& Waits() {
    static std::vector<RequestedWait> waits;
    return waits;
}

}  // namespace

void ForceLog::AddWait(RequestedWait wait) {
    std::lock_guard guard(LogLock());
    Waits().push_back(wait);
}

std::vector<RequestedWait> ForceLog::TakeWaits() {
    std::lock_guard guard(LogLock());
    std::vector<RequestedWait> taken;
    taken.swap(Waits());
    return taken;
}

void ForceLog::Add(StoredForce entry) {
    std::lock_guard guard(LogLock());
    Entries().push_back(entry);
}

std::vector<StoredForce> ForceLog::Take() {
    std::lock_guard guard(LogLock());
    std::vector<StoredForce> taken;
    taken.swap(Entries());
    return taken;
}

size_t ForceLog::Size() {
    std::lock_guard guard(LogLock());
    return Entries().size();
}

std::atomic<bool> RecordingPlatform::holdInWait{false};
std::atomic<int> RecordingWheel::opensToFail{0};
std::atomic<int> RecordingWheel::opens{0};
std::atomic<int> RecordingWheel::closes{0};
std::atomic<bool> RecordingWheel::isOpen{false};
std::atomic<RecordingWheel*> RecordingWheel::current{nullptr};

bool RecordingWheel::Open(WindowHandle, const DeviceGuid*) {
    Close();
    ++opens;
    if (opensToFail.load() > 0) {
        --opensToFail;
        return false;
    }
    isOpen.store(true);
    current.store(this);
    return true;
}

void RecordingWheel::Close() {
    commandedForce.store(0);
    if (isOpen.exchange(false)) {
        ++closes;
        current.store(nullptr);
    }
}

void RecordingWheel::Reset() {
    opensToFail.store(0);
    opens.store(0);
    closes.store(0);
    isOpen.store(false);
    current.store(nullptr);
    RecordingPlatform::holdInWait.store(false);
    ForceLog::Take();
    ForceLog::TakeWaits();
}

}  // namespace veltor::test
