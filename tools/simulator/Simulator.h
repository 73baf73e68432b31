#pragma once
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "IbtSource.h"
#include "SessionInfoText.h"
#include "SyntheticDrive.h"
#include "TelemetryLayoutWriter.h"

namespace veltor::sim {

// What to publish and which faults to inject. Times are seconds of the simulator's own clock.
struct SimulatorOptions {
    std::string ibtPath;          // empty: the synthetic drive
    double seconds = 0.0;         // 0: until stopped
    IdentityCase identity = IdentityCase::Plain;
    double disappearAt = -1.0;    // below 0: never
    double absentFor = 3.0;
    int32_t tornEvery = 0;        // every Nth frame is rewritten while a reader may be copying it; 0: never
    double freezeAt = -1.0;       // the event keeps coming with the tick count standing still
    double freezeFor = 2.0;
    std::string freezeFilePath;   // the tick count stands still, as above, while this file exists
    double swapIdentityAt = -1.0; // another car and driver, with a new sessionInfoUpdate
    double lapOffset = 0.0;       // the synthetic drive starts this far into its lap
    std::string eventLogPath;     // each new frame's event on the steady clock, "<microseconds> <tickCount>"
    bool quiet = false;
};

// Parses the command line; false with a reason for an unknown option or a bad value.
bool ParseSimulatorOptions(int argc, const char* const* argv, SimulatorOptions& options, std::string& error);
const char* SimulatorUsage();

// Publishes the simulator's memory block and plays one source into it, one step per telemetry tick.
// All members run on one thread: the simulator's loop.
class Simulator {
public:
    explicit Simulator(std::FILE* log) : log(log) {}
    ~Simulator() { Stop(); }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    bool Start(const SimulatorOptions& options, std::string& error);
    // One tick: the fault of the moment or a new frame in the oldest buffer, then the event.
    void Step();
    void Stop();

    double StepSeconds() const { return 1.0 / tickRate; }
    int64_t Steps() const { return step; }
    int32_t TickCount() const { return tickCount; }
    int32_t SessionInfoUpdate() const { return sessionInfoUpdate; }
    // When the last Step set the event for a new frame, in steady-clock nanoseconds; -1 when it set none.
    int64_t FrameEventNanoseconds() const { return frameEventNanoseconds; }
    bool Published() const { return block != nullptr; }
    const TelemetryLayoutWriter& Layout() const { return *layout; }

private:
    bool LoadSource(std::string& error);
    bool PublishBlock(std::string& error);
    void PublishSessionInfo(const std::string& text);
    void WriteSourceFrame(uint8_t* buffer) const;
    void PublishFrame();
    void TearNewestBuffer();
    void FollowSchedule(double now);
    bool Frozen(double now) const;
    void ReportBroadcasts();
    void Log(const char* format, ...);
    int64_t DriveTick() const { return step + static_cast<int64_t>(options.lapOffset * tickRate); }

    std::FILE* log;
    SimulatorOptions options;
    SyntheticDrive drive;
    IbtSource ibt;
    bool replay = false;
    std::string sessionText;
    std::unique_ptr<TelemetryLayoutWriter> layout;
    uint8_t* block = nullptr;      // null while the simulator is away
    double tickRate = SyntheticDrive::kTickRate;
    int64_t step = 0;              // ticks of the simulator's clock since Start
    int32_t tickCount = 0;         // the newest buffer's tick count
    int32_t sessionInfoUpdate = 0;
    int newest = -1;               // index of the newest buffer
    int generation = 0;            // identity of the synthetic session
    const char* lastPhase = nullptr;
    bool frozenLogged = false;
    int64_t frameEventNanoseconds = -1;
};

// The simulator's loop at its tick rate until `seconds` have passed or `stop` is set; prints each
// broadcast it hears. Returns the process's exit code.
int RunSimulator(const SimulatorOptions& options, const std::atomic<bool>& stop, std::FILE* log);

}  // namespace veltor::sim
