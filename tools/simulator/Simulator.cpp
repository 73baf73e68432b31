#include "Simulator.h"

#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

#include "SimulatorPublisher.h"
#include "platform/SteadyClock.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor::sim {
namespace {

constexpr int kBufferCount = 3;
constexpr size_t kSessionInfoCapacity = 512 * 1024;  // bytes, as the simulator reserves
constexpr auto kTearDuration = std::chrono::milliseconds(3);
constexpr auto kTearSpacing = std::chrono::microseconds(20);
constexpr double kForceScale = 65536.0;              // the broadcast's newton metres are 16.16 fixed point

bool ParseNumber(const char* text, double& out) {
    char* end = nullptr;
    out = std::strtod(text, &end);
    return end != text && *end == '\0';
}

}  // namespace

const char* SimulatorUsage() {
    return "simulator [--seconds N] [--ibt FILE] [--identity plain|differing-ids|quoted|crlf]\n"
           "          [--disappear-at S] [--absent-for S] [--torn-every N] [--freeze-at S] [--freeze-for S]\n"
           "          [--freeze-file FILE]\n"
           "          [--swap-identity-at S] [--lap-offset S] [--event-log FILE] [--quiet]\n";
}

bool ParseSimulatorOptions(int argc, const char* const* argv, SimulatorOptions& o, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--quiet") {
            o.quiet = true;
            continue;
        }
        if (i + 1 >= argc) {
            error = "missing value after " + name;
            return false;
        }
        const char* value = argv[++i];
        double number = 0.0;
        const bool numeric = ParseNumber(value, number);
        if (name == "--ibt") {
            o.ibtPath = value;
        } else if (name == "--freeze-file") {
            o.freezeFilePath = value;
        } else if (name == "--event-log") {
            o.eventLogPath = value;
        } else if (name == "--identity") {
            if (!ParseIdentityCase(value, o.identity)) error = "unknown identity case " + std::string(value);
        } else if (!numeric) {
            error = "bad value for " + name + ": " + value;
        } else if (name == "--seconds") {
            o.seconds = number;
        } else if (name == "--disappear-at") {
            o.disappearAt = number;
        } else if (name == "--absent-for") {
            o.absentFor = number;
        } else if (name == "--torn-every") {
            o.tornEvery = static_cast<int32_t>(number);
        } else if (name == "--freeze-at") {
            o.freezeAt = number;
        } else if (name == "--freeze-for") {
            o.freezeFor = number;
        } else if (name == "--swap-identity-at") {
            o.swapIdentityAt = number;
        } else if (name == "--lap-offset") {
            o.lapOffset = number;
            if (number < 0.0) error = "--lap-offset must not be negative";
        } else {
            error = "unknown option " + name;
        }
        if (!error.empty()) return false;
    }
    return true;
}

bool Simulator::Start(const SimulatorOptions& startOptions, std::string& error) {
    Stop();
    options = startOptions;
    step = 0;
    tickCount = 0;
    newest = -1;
    generation = 0;
    lastPhase = nullptr;
    if (!LoadSource(error) || !PublishBlock(error)) return false;
    Log("publishing %s: %zu variables, %d buffers of %d bytes, session info %zu bytes, %.0f ticks/s\n",
        replay ? options.ibtPath.c_str() : "the synthetic drive", layout->Variables().size(), layout->NumBuf(),
        layout->BufLen(), sessionText.size(), tickRate);
    return true;
}

bool Simulator::LoadSource(std::string& error) {
    replay = !options.ibtPath.empty();
    if (replay) {
        if (!ibt.Load(options.ibtPath, error)) {
            error = options.ibtPath + ": " + error;
            return false;
        }
        layout = std::make_unique<TelemetryLayoutWriter>(ibt.Variables(), kBufferCount, kSessionInfoCapacity,
                                                         ibt.BufLen());
        sessionText = ibt.SessionInfo();
        tickRate = ibt.TickRate();
        return true;
    }
    layout = std::make_unique<TelemetryLayoutWriter>(SimulatorVariables(), kBufferCount, kSessionInfoCapacity);
    sessionText = BuildSessionInfo(options.identity, generation);
    tickRate = SyntheticDrive::kTickRate;
    return true;
}

bool Simulator::PublishBlock(std::string& error) {
    uint32_t code = 0;
    block = publisher::Publish(layout->BlockSize(), code);
    if (block == nullptr) {
        error = "cannot create the named mapping (error " + std::to_string(code) + ")";
        return false;
    }
    layout->WriteLayout(block);
    PublishSessionInfo(sessionText);
    layout->SetStatus(block, irsdk::kStatusConnected);
    if (!publisher::Announce(code)) {
        block = nullptr;
        error = "cannot create the data-valid event (error " + std::to_string(code) + ")";
        return false;
    }
    return true;
}

void Simulator::PublishSessionInfo(const std::string& text) {
    sessionText = text;
    layout->SetSessionInfo(block, sessionText, ++sessionInfoUpdate);
}

void Simulator::Stop() {
    if (block == nullptr) return;
    layout->SetStatus(block, 0);
    publisher::Withdraw();
    block = nullptr;
}

void Simulator::WriteSourceFrame(uint8_t* buffer) const {
    if (replay) {
        std::memcpy(buffer, ibt.Record(static_cast<int32_t>(step % ibt.RecordCount())),
                    static_cast<size_t>(ibt.BufLen()));
        return;
    }
    const DriveSample s = drive.SampleAt(DriveTick());
    layout->WriteFrame(buffer, s.frame);
    layout->SetDouble(buffer, "SessionTime", s.sessionTime);
    layout->SetInt(buffer, "Gear", s.gear);
    layout->SetFloat(buffer, "RPM", s.rpm);
    layout->SetFloat(buffer, "Throttle", s.throttle);
    layout->SetFloat(buffer, "Brake", s.brake);
    layout->SetFloat(buffer, "LapDistPct", s.lapDistPct);
}

// The oldest buffer takes the new frame; its tick count moves only once the frame is whole.
void Simulator::PublishFrame() {
    const int next = (newest + 1) % layout->NumBuf();
    WriteSourceFrame(layout->Buffer(block, next));
    layout->SetTickCount(block, next, ++tickCount);
    newest = next;
}

// Rewrites the buffer a reader has just been told about, moving its tick count while the reader may be
// copying it: the reader must notice and never deliver a frame of two ticks.
void Simulator::TearNewestBuffer() {
    const auto until = std::chrono::steady_clock::now() + kTearDuration;
    int rewrites = 0;
    while (std::chrono::steady_clock::now() < until) {
        WriteSourceFrame(layout->Buffer(block, newest));
        layout->SetTickCount(block, newest, ++tickCount);
        ++rewrites;
        std::this_thread::sleep_for(kTearSpacing);
    }
    Log("torn: buffer %d rewritten %d times during the read, tick now %d\n", newest, rewrites, tickCount);
}

void Simulator::FollowSchedule(double now) {
    const bool away = options.disappearAt >= 0.0 && now >= options.disappearAt &&
                      now < options.disappearAt + options.absentFor;
    if (away && block != nullptr) {
        Stop();
        Log("disappears for %.1f s\n", options.absentFor);
    } else if (!away && block == nullptr) {
        std::string error;
        if (PublishBlock(error)) {
            Log("comes back, sessionInfoUpdate %d\n", sessionInfoUpdate);
        }
    }
    if (block != nullptr && options.swapIdentityAt >= 0.0 && generation == 0 && now >= options.swapIdentityAt) {
        generation = 1;
        PublishSessionInfo(BuildSessionInfo(options.identity, generation));
        const SessionIdentityText user = SyntheticUser(generation);
        Log("identity changes: car %s, driver %s, sessionInfoUpdate %d\n", user.carPath.c_str(),
            user.driverName.c_str(), sessionInfoUpdate);
    }
}

void Simulator::Step() {
    const double now = static_cast<double>(step) / tickRate;
    FollowSchedule(now);
    frameEventNanoseconds = -1;
    if (block != nullptr) {
        const bool frozen = Frozen(now);
        if (frozen && !frozenLogged) Log("frozen at tick %d\n", tickCount);
        if (!frozen && frozenLogged) Log("moves on from tick %d\n", tickCount);
        frozenLogged = frozen;
        if (!frozen) PublishFrame();
        publisher::SignalDataValid();
        if (!frozen) frameEventNanoseconds = SteadyNowNanoseconds();
        if (!frozen && options.tornEvery > 0 && (step + 1) % options.tornEvery == 0) TearNewestBuffer();
    }
    if (!replay && block != nullptr) {
        const char* phase = SyntheticDrive::PhaseAt(DriveTick());
        if (phase != lastPhase) Log("%s\n", phase);
        lastPhase = phase;
    }
    ReportBroadcasts();
    ++step;
}

bool Simulator::Frozen(double now) const {
    if (options.freezeAt >= 0.0 && now >= options.freezeAt && now < options.freezeAt + options.freezeFor) return true;
    std::error_code unknown;
    return !options.freezeFilePath.empty() && std::filesystem::exists(options.freezeFilePath, unknown);
}

void Simulator::ReportBroadcasts() {
    std::vector<int32_t> values;
    publisher::TakeBroadcasts(values);
    for (int32_t v : values) Log("broadcast: maximum force %d (%.2f Nm)\n", v, v / kForceScale);
}

void Simulator::Log(const char* format, ...) {
    if (log == nullptr) return;
    std::fprintf(log, "%8.2f s  ", static_cast<double>(step) / tickRate);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(log, format, arguments);
    va_end(arguments);
    std::fflush(log);
}

int RunSimulator(const SimulatorOptions& options, const std::atomic<bool>& stop, std::FILE* log) {
    std::FILE* events = options.eventLogPath.empty() ? nullptr : std::fopen(options.eventLogPath.c_str(), "ab");
    if (!options.eventLogPath.empty() && events == nullptr) {
        std::fprintf(stderr, "simulator: cannot write %s\n", options.eventLogPath.c_str());
        return 1;
    }
    // The listener comes first: a program that finds the simulator may broadcast at once.
    if (!publisher::StartListening() && log != nullptr) std::fprintf(log, "cannot hear the broadcast\n");
    Simulator simulator(options.quiet ? nullptr : log);
    std::string error;
    if (!simulator.Start(options, error)) {
        std::fprintf(stderr, "simulator: %s\n", error.c_str());
        publisher::StopListening();
        if (events != nullptr) std::fclose(events);
        return 1;
    }
    const auto period = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(simulator.StepSeconds()));
    const auto limit = static_cast<int64_t>(options.seconds / simulator.StepSeconds());
    auto next = std::chrono::steady_clock::now();
    while (!stop.load() && (options.seconds <= 0.0 || simulator.Steps() < limit)) {
        simulator.Step();
        if (events != nullptr && simulator.FrameEventNanoseconds() >= 0) {
            // Flushed at once: whoever reads it may kill this process at any moment.
            std::fprintf(events, "%lld %d\n", static_cast<long long>(simulator.FrameEventNanoseconds() / 1000),
                         simulator.TickCount());
            std::fflush(events);
        }
        next += period;
        std::this_thread::sleep_until(next);
    }
    simulator.Stop();
    publisher::StopListening();
    if (events != nullptr) std::fclose(events);
    if (log != nullptr && !options.quiet) std::fprintf(log, "stopped after %lld ticks\n", static_cast<long long>(simulator.Steps()));
    return 0;
}

}  // namespace veltor::sim
