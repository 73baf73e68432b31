#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace veltor::probe {

// One successful SetParameters of the virtual wheel's call log.
struct ForceUpdate {
    int64_t microseconds = 0;
    int32_t magnitude = 0;
};

// The two logs of a stretch of a session, both stamped with the same steady clock in microseconds: the
// simulator's event for each new frame ("<us> <tick>") and the wheel's calls ("<us> <call> ...").
struct FlowLogs {
    std::vector<int64_t> events;
    std::vector<ForceUpdate> updates;
};

// How the force flowed over a stretch.
struct FlowFigures {
    int64_t updates = 0;
    int64_t activeSeconds = 0;  // whole seconds of the clock with at least one update
    double updatesPerSecond = 0.0;  // over the active seconds
    // Event -> the first update whose magnitude differs from the one before the event, for the events where
    // one came before the next event; none are counted for events that brought no new value.
    int64_t latencySamples = 0;
    int64_t latencyP50 = -1;  // microseconds; -1 without samples
    int64_t latencyP99 = -1;
    int64_t latencyMax = -1;
};

// Adds the whole lines of `text` to `logs`; returns how many bytes those lines took, so that a line still
// being written is read next time. Lines of other calls, failed calls and malformed lines are skipped.
size_t ReadEventLines(std::string_view text, FlowLogs& logs);
size_t ReadWheelLines(std::string_view text, FlowLogs& logs);

FlowFigures MeasureFlow(const FlowLogs& logs);

}  // namespace veltor::probe
