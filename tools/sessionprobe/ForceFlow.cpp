#include "ForceFlow.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace veltor::probe {
namespace {

constexpr int64_t kMicrosecondsPerSecond = 1000000;
constexpr std::string_view kSucceeded = "hr=0x00000000";

bool ParseInteger(std::string_view text, int64_t& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end != text.data();
}

// Calls `take` with each whole line; returns the bytes that the whole lines took.
template <class Take>
size_t ForEachLine(std::string_view text, Take take) {
    size_t used = 0;
    for (size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', used)) {
        take(text.substr(used, end - used));
        used = end + 1;
    }
    return used;
}

// Nearest rank: the smallest value that at least `fraction` of the values do not exceed.
int64_t Percentile(const std::vector<int64_t>& sorted, double fraction) {
    const auto rank = static_cast<size_t>(std::ceil(fraction * static_cast<double>(sorted.size())));
    return sorted[std::max<size_t>(rank, 1) - 1];
}

}  // namespace

// A simulator killed while writing leaves a cut line, which the next one's first line may continue: an event
// that is not later than the one before is no event.
size_t ReadEventLines(std::string_view text, FlowLogs& logs) {
    return ForEachLine(text, [&](std::string_view line) {
        int64_t at = 0;
        if (ParseInteger(line, at) && (logs.events.empty() || at > logs.events.back())) logs.events.push_back(at);
    });
}

// "<us> SetParameters magnitude=N flags=0x... hr=0x..."
size_t ReadWheelLines(std::string_view text, FlowLogs& logs) {
    return ForEachLine(text, [&](std::string_view line) {
        const size_t space = line.find(' ');
        const size_t magnitude = line.find(" magnitude=");
        int64_t at = 0, value = 0;
        if (space == std::string_view::npos || line.substr(space + 1, 14) != "SetParameters " ||
            line.find(kSucceeded) == std::string_view::npos || magnitude == std::string_view::npos ||
            !ParseInteger(line.substr(0, space), at) || !ParseInteger(line.substr(magnitude + 11), value)) {
            return;
        }
        logs.updates.push_back({at, static_cast<int32_t>(value)});
    });
}

FlowFigures MeasureFlow(const FlowLogs& logs) {
    FlowFigures figures;
    figures.updates = static_cast<int64_t>(logs.updates.size());
    int64_t lastSecond = INT64_MIN;
    for (const ForceUpdate& update : logs.updates) {
        const int64_t second = update.microseconds / kMicrosecondsPerSecond;
        if (second != lastSecond) ++figures.activeSeconds;
        lastSecond = second;
    }
    if (figures.activeSeconds > 0) {
        figures.updatesPerSecond = static_cast<double>(figures.updates) / static_cast<double>(figures.activeSeconds);
    }

    // The last event's stretch may still be being written: only events with a successor count.
    std::vector<int64_t> latencies;
    size_t next = 0;
    for (size_t e = 0; e + 1 < logs.events.size(); ++e) {
        const int64_t event = logs.events[e];
        while (next < logs.updates.size() && logs.updates[next].microseconds < event) ++next;
        if (next == 0) continue;  // nothing before the event to differ from
        const int32_t before = logs.updates[next - 1].magnitude;
        for (size_t u = next; u < logs.updates.size() && logs.updates[u].microseconds < logs.events[e + 1]; ++u) {
            if (logs.updates[u].magnitude != before) {
                latencies.push_back(logs.updates[u].microseconds - event);
                break;
            }
        }
    }
    figures.latencySamples = static_cast<int64_t>(latencies.size());
    if (!latencies.empty()) {
        std::sort(latencies.begin(), latencies.end());
        figures.latencyP50 = Percentile(latencies, 0.50);
        figures.latencyP99 = Percentile(latencies, 0.99);
        figures.latencyMax = latencies.back();
    }
    return figures;
}

}  // namespace veltor::probe
