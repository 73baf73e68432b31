#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "analyzer/Advice.h"

namespace veltor::analyzer {

// Where the recording came from, for the report's first lines.
struct ReportSource {
    std::string fileName;       // UTF-8
    bool fromTelemetry = false;  // made on the spot from a telemetry file
};

// The header's facts as label and value, in the report's order: where the recording came from, car,
// driver, profile, start, duration, settings and car coefficients.
struct ReportFact {
    std::string label;
    std::string value;
};
std::vector<ReportFact> RecordingFacts(const ReportSource& source, const Recording& recording,
                                       const Analysis& analysis);

// Each finding with the numbers behind it: clipping, texture and priority, events, the coefficient fit.
std::string FormatFindings(const Analysis& analysis);

// The analysis as text: the header's facts, each finding with its numbers, the advice table and any
// warnings of the reading. Lines end in '\n'; UTF-8.
std::string FormatReport(const ReportSource& source, const Recording& recording, const Analysis& analysis,
                         const Advice& advice);

// "YYYY-MM-DD HH:MM:SS UTC" for milliseconds since 1970, or "unknown" for 0 or a time past the year 9999.
std::string FormatStartTime(uint64_t startTimeMs);

}  // namespace veltor::analyzer
