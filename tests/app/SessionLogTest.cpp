#include <gtest/gtest.h>

#include <string>

#include "app/SessionLog.h"

namespace veltor {
namespace {

std::wstring Line(uint64_t n) { return L"line " + std::to_wstring(n) + L"\r\n"; }

// The panel as the window keeps it: each line appended, the oldest cut once the plan says so. Marks taken along
// the way must keep finding the lines said after them, in order, however often the panel was cut since.
TEST(SessionLog, TrimmedPanelKeepsTheNewestLinesAndEveryMarkStillFindsWhatCameAfter) {
    std::wstring panel;
    uint64_t said = 0;
    for (int round = 0; round < 3500; ++round) {
        const uint64_t mark = LogLineCount(panel);
        ASSERT_EQ(mark, said);
        panel += Line(said++);
        if (const auto trim = PlanLogTrim(panel)) panel.replace(0, trim->cutChars, trim->notice);
        const uint64_t dropped = DroppedLines(panel);
        ASSERT_LE(said - dropped, kKeptLogLines + kLogTrimBatch);
        if (said > kKeptLogLines + kLogTrimBatch) {
            ASSERT_GE(said - dropped, kKeptLogLines);
        }
        ASSERT_EQ(panel.substr(LineOffset(panel, mark)), Line(mark)) << "round " << round;
        ASSERT_EQ(panel.substr(LineOffset(panel, dropped), Line(dropped).size()), Line(dropped));
    }
    EXPECT_TRUE(panel.starts_with(DroppedLinesNotice(DroppedLines(panel))));
    EXPECT_TRUE(panel.ends_with(Line(3499)));
}

// Only a whole notice at the very start counts; a line still being written is no line.
TEST(SessionLog, OnlyAWholeNoticeAtTheStartCountsAsDroppedLines) {
    const struct {
        std::wstring panel;
        uint64_t dropped, said;
    } cases[] = {
        {L"", 0, 0},
        {L"(12 earlier lines not kept)\r\nA\r\n", 12, 13},
        {L"(12x earlier lines not kept)\r\nA\r\n", 0, 2},
        {L"( earlier lines not kept)\r\n", 0, 1},
        {L"A\r\n(12 earlier lines not kept)\r\n", 0, 2},
        {L"(99999999999999999999999 earlier lines not kept)\r\n", 0, 1},
        {L"A\r\nB", 0, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(DroppedLines(c.panel), c.dropped) << c.panel.size();
        EXPECT_EQ(LogLineCount(c.panel), c.said) << c.panel.size();
        EXPECT_EQ(LineOffset(c.panel, c.said + 5), c.panel.size());
    }
}

}  // namespace
}  // namespace veltor
