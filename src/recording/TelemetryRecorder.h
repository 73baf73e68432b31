#pragma once
#include <atomic>

namespace veltor {

// Placeholder until the recorder lands: never active, so the engine's recording hook never pushes.
class TelemetryRecorder {
public:
    bool IsActive() const { return active.load(); }
    void Stop() { active.store(false); }

private:
    std::atomic<bool> active{false};
};

}  // namespace veltor
