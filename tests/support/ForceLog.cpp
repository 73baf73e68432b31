#include "ForceLog.h"

namespace veltor::test {

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
