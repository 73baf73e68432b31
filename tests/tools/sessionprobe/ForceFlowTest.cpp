// The soak's figures of how the force flowed, from the simulator's event log and the wheel's call log.
#include <gtest/gtest.h>

#include <string>

#include "ForceFlow.h"

namespace veltor::probe {
namespace {

std::string Update(long long at, int magnitude, const char* hr = "0x00000000") {
    return std::to_string(at) + " SetParameters magnitude=" + std::to_string(magnitude) + " flags=0x40000100 hr=" +
           hr + "\n";
}

TEST(ForceFlow, OnlyWholeLinesOfSuccessfulUpdatesAndEventsAreRead) {
    FlowLogs logs;
    const std::string wheel = Update(100, 5) + Update(200, 6, "0x8007001E") + "300 Start iterations=1 hr=0x00000000\n" +
                              "garbage\n" + Update(400, -7) + "500 SetParameters magnitude=9";
    EXPECT_EQ(ReadWheelLines(wheel, logs), wheel.rfind('\n') + 1) << "the line being written waits";
    ASSERT_EQ(logs.updates.size(), 2u);
    EXPECT_EQ(logs.updates[1].microseconds, 400);
    EXPECT_EQ(logs.updates[1].magnitude, -7);

    const std::string events = "1000 1\nx\n2000 2\n150\n3000 3\n30";
    EXPECT_EQ(ReadEventLines(events, logs), events.rfind('\n') + 1);
    EXPECT_EQ(logs.events, (std::vector<int64_t>{1000, 2000, 3000})) << "a cut line of a killed simulator";
}

TEST(ForceFlow, LatencyRunsFromEachEventToTheFirstNewValueBeforeTheNextEvent) {
    struct Case {
        const char* name;
        std::vector<ForceUpdate> updates;
        int64_t samples;
        int64_t p99;
    };
    // Events at 10 ms, 30 ms and 50 ms; the last one only closes the stretch of the one before.
    const Case cases[] = {
        {"a new value after the event", {{9000, 5}, {10500, 5}, {12000, 8}, {31000, 9}}, 2, 2000},
        {"no value before the event to differ from", {{12000, 8}, {31000, 9}}, 1, 1000},
        {"the value held until the next event", {{9000, 5}, {20000, 5}, {30500, 6}}, 1, 500},
        {"a new value only after the next event", {{9000, 5}, {31000, 5}, {52000, 6}}, 0, -1},
    };
    for (const Case& c : cases) {
        const FlowFigures f = MeasureFlow({{10000, 30000, 50000}, c.updates});
        EXPECT_EQ(f.latencySamples, c.samples) << c.name;
        EXPECT_EQ(f.latencyP99, c.p99) << c.name;
    }
}

TEST(ForceFlow, TheRateCountsOnlySecondsWithUpdates) {
    FlowLogs logs;
    for (int i = 0; i < 600; ++i) logs.updates.push_back({1000000 + i * 1000, i});  // 1 s at 600 a second
    for (int i = 0; i < 400; ++i) logs.updates.push_back({9000000 + i * 2500, i});  // 1 s at 400, 7 s later
    const FlowFigures f = MeasureFlow(logs);
    EXPECT_EQ(f.updates, 1000);
    EXPECT_EQ(f.activeSeconds, 2);
    EXPECT_DOUBLE_EQ(f.updatesPerSecond, 500.0);
    EXPECT_EQ(f.latencySamples, 0);
}

}  // namespace
}  // namespace veltor::probe
