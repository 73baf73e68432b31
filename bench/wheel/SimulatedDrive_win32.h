#pragma once
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace veltor::test {

// The simulator's side in this process: the named telemetry mapping and data-valid event, and a thread
// that publishes a steady synthetic drive at 60 Hz. It remembers when it set the event for each tick, in
// performance-counter microseconds (the virtual wheel's log clock).
class SimulatedDrive {
public:
    explicit SimulatedDrive(size_t maxTicks);
    ~SimulatedDrive();
    SimulatedDrive(const SimulatedDrive&) = delete;
    SimulatedDrive& operator=(const SimulatedDrive&) = delete;

    bool Start();  // false when the named objects could not be made
    void Stop();

    // After Stop: the time the event was set for tick i (ticks count from 1), or 0.
    int64_t EventMicroseconds(int32_t tick) const;
    int32_t TickCount() const { return ticks.load(); }

private:
    void Run();

    void* mapping = nullptr;
    void* event = nullptr;
    uint8_t* view = nullptr;
    std::vector<int64_t> eventTimes;  // written by the drive thread, read after Stop
    std::atomic<int32_t> ticks{0};
    std::atomic<bool> stop{false};
    std::thread drive;
};

// Steady-clock microseconds (the performance counter), as the virtual wheel stamps its log.
int64_t CounterMicroseconds();

}  // namespace veltor::test
