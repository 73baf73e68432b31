#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/RecordingName.h"
#include "app/StatusReport.h"

namespace veltor {
namespace {

// What the timer step needs of the window: the stamps and the session log.
struct LogWindow {
    uint32_t LastClipStamp = 0;
    uint32_t LastDeviceErrorStamp = 0;
    uint32_t LastTrackStamp = 0;
    uint32_t LastReportStamp = 0;
    uint32_t LastStallStamp = 0;
    std::vector<std::wstring> lines;
    void AppendLog(const std::wstring& line) { lines.push_back(line); }
};

// The session test sees these lines come from a running engine; here are the edges it cannot reach: the
// debug switch holding reports back, the clipping hint's threshold, an output report with no force.
TEST(StatusReport, EachNewReportReachesTheLogOnceAndDebugReportsWaitForTheSwitch) {
    EngineStatus s;
    s.onTrack = true;
    s.onTrackChangeCount = 1;
    s.outputReportCount = 1;
    s.outputReportSamples = 360;
    s.outputReportPeak = -12;
    s.clipReportCount = 1;
    s.clippedPercent = 2.5f;
    s.outputFailureCount = 2;
    s.outputFailureCode = 0x80040205u;
    s.telemetryStallCount = 1;

    LogWindow w;
    LogNewStatusReports(w, s, false);
    EXPECT_EQ(w.lines, (std::vector<std::wstring>{L"2.50% of samples were clipped",
                                                   L"DirectInput FFB error: 0x80040205 (DIERR_NOTEXCLUSIVEACQUIRED)",
                                                   L"Telemetry stalled: force released."}));
    w.lines.clear();
    LogNewStatusReports(w, s, true);
    EXPECT_EQ(w.lines, (std::vector<std::wstring>{
                           L"Telemetry: On track.", L"FFB output report: 360 samples, 0 non-zero, max magnitude -12.",
                           L"No non-zero FFB was sent. Check iRacing telemetry On track status."}));
    w.lines.clear();
    LogNewStatusReports(w, s, true);
    EXPECT_TRUE(w.lines.empty());

    s.clipReportCount = 2;
    s.clippedPercent = 2.51f;
    LogNewStatusReports(w, s, false);
    EXPECT_EQ(w.lines, (std::vector<std::wstring>{L"2.51% of samples were clipped",
                                                   L"Consider lowering Force strength to reduce clipping."}));
}

// The names themselves reach the log in the session test (and above); here the code beyond the table.
TEST(StatusReport, DirectInputFailuresOutsideTheTableAreUnknown) {
    EXPECT_EQ(DirectInputErrorLine(0x80004005u), L"DirectInput FFB error: 0x80004005 (unknown)");
    EXPECT_EQ(DirectInputErrorLine(0x1Eu), L"DirectInput FFB error: 0x0000001E (unknown)");
}

TEST(RecordingName, CarPathGoesInAsItStandsAndTheNameFitsTheDialogsBuffer) {
    const LocalTime time{2024, 3, 7, 9, 5, 1};
    EXPECT_EQ(ProposedRecordingName(L"mx5 mx52016", time), L"Veltor_mx5 mx52016_20240307_090501.vtrrec");
    EXPECT_EQ(ProposedRecordingName(L"", time), L"Veltor_generic_20240307_090501.vtrrec");
    EXPECT_EQ(ProposedRecordingName(std::wstring(300, L'x'), time).size(), 159u);
}

}  // namespace
}  // namespace veltor
