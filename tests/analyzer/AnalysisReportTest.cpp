// The report's dates: the header's start time in UTC, whatever a file holds.
#include <gtest/gtest.h>

#include "analyzer/AnalysisReport.h"

namespace veltor::analyzer {
namespace {

TEST(FormatStartTime, GivesTheUtcDateOrUnknown) {
    const struct {
        uint64_t ms;
        const char* text;
    } cases[] = {
        {0, "unknown"},
        {1, "1970-01-01 00:00:00 UTC"},
        {951782400000ull, "2000-02-29 00:00:00 UTC"},
        {1700000000999ull, "2023-11-14 22:13:20 UTC"},
        {253402300799999ull, "9999-12-31 23:59:59 UTC"},
        {253402300800000ull, "unknown"},
        {UINT64_MAX, "unknown"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatStartTime(c.ms), c.text) << c.ms;
}

}  // namespace
}  // namespace veltor::analyzer
