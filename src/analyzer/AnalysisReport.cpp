#include "analyzer/AnalysisReport.h"

#include <cstdarg>
#include <cstdio>

namespace veltor::analyzer {
namespace {

constexpr size_t kStretchesListed = 5;
constexpr uint64_t kLastReportableMs = 253402300799999ull;  // 9999-12-31 23:59:59.999 UTC

std::string FormattedList(const char* format, va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
    return text;
}

std::string Formatted(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormattedList(format, args);
    va_end(args);
    return text;
}

void Line(std::string& text, const char* format, ...) {
    va_list args;
    va_start(args, format);
    text += FormattedList(format, args);
    va_end(args);
    text += '\n';
}

std::string ListStretches(const std::vector<TimeStretch>& stretches) {
    std::string list;
    char item[64];
    for (size_t i = 0; i < stretches.size() && i < kStretchesListed; ++i) {
        std::snprintf(item, sizeof item, "%s%.1f-%.1f s", i == 0 ? "" : ", ", stretches[i].start, stretches[i].end);
        list += item;
    }
    if (stretches.size() > kStretchesListed) list += ", and " + std::to_string(stretches.size() - kStretchesListed) + " more";
    return list;
}

std::string Count(size_t n) { return std::to_string(n); }

void Findings(std::string& text, const Analysis& a) {
    const ClippingFindings& c = a.clipping;
    Line(text, "Clipping");
    Line(text, "  clipped records       %s of %s (%.2f %%)%s%s", Count(c.clippedRecords).c_str(),
         Count(a.records).c_str(), c.clippedPercent, c.stretches.empty() ? "" : ": ",
         ListStretches(c.stretches).c_str());
    Line(text, "  99.5th percentile     %.2f Nm of |mixed torque|, %.0f %% of full scale (%.1f Nm)", c.peakTorque,
         c.peakPercentOfFullScale, c.fullScaleTorque);
    const TextureFindings& t = a.texture;
    Line(text, "Texture and priority");
    Line(text, "  priority acted        %s records (%.2f %%)", Count(t.priorityActedRecords).c_str(),
         t.priorityActedPercent);
    Line(text, "  texture on            %s records, %s of the clipped ones", Count(t.texturedRecords).c_str(),
         Count(t.clippedWithTexture).c_str());
    Line(text, "  while moving          %s records: 95th percentile of |texture| %.2f Nm against %.2f Nm of base "
               "(%.0f %%)",
         Count(t.movingRecords).c_str(), t.texturePeak, t.basePeak, t.texturePercentOfBase);
    Line(text, "Events");
    Line(text, "  ABS                   %s stretches%s%s", Count(a.absStretches.size()).c_str(),
         a.absStretches.empty() ? "" : ": ", ListStretches(a.absStretches).c_str());
    Line(text, "  crash hold            %s stretches%s%s", Count(a.crashHoldStretches.size()).c_str(),
         a.crashHoldStretches.empty() ? "" : ": ", ListStretches(a.crashHoldStretches).c_str());
    Line(text, "  gaps                  %s%s%s", Count(a.gaps.size()).c_str(), a.gaps.empty() ? "" : ": ",
         ListStretches(a.gaps).c_str());
    const CoefficientFit& f = a.fit;
    Line(text, "Car coefficients");
    Line(text, "  records with grip     %s", Count(f.samples).c_str());
    if (f.yawFitted || f.lateralFitted || f.rSquared != 0.0) {
        Line(text, "  least squares         YawRateMultiplier %.1f, LateralAccelDivisor %.1f%s, R² %.3f",
             f.yawRateMultiplier, f.lateralAccelDivisor, f.lateralFitted ? "" : " (held)", f.rSquared);
    }
}

void AdviceTable(std::string& text, const Advice& advice) {
    Line(text, "");
    Line(text, "Advice for profile \"%s\", car \"%s\"", advice.profile.c_str(), advice.car.c_str());
    for (const AdviceRow& row : advice.rows) {
        const std::string now = FormatAdviceValue(row.key, row.now);
        const std::string proposed = row.advised ? FormatAdviceValue(row.key, row.proposed) : "keep";
        Line(text, "  %-28s %6s -> %-6s %s", row.label.c_str(), now.c_str(), proposed.c_str(), row.reason.c_str());
    }
}

}  // namespace

std::string FormatStartTime(uint64_t startTimeMs) {
    if (startTimeMs == 0 || startTimeMs > kLastReportableMs) return "unknown";
    const int64_t seconds = static_cast<int64_t>(startTimeMs / 1000);
    const int64_t days = seconds / 86400;
    const int64_t daySeconds = seconds % 86400;
    // Civil date from days since 1970-01-01 (proleptic Gregorian).
    const int64_t z = days + 719468;
    const int64_t era = z / 146097;
    const int64_t dayOfEra = z - era * 146097;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t mp = (5 * dayOfYear + 2) / 153;
    const int64_t day = dayOfYear - (153 * mp + 2) / 5 + 1;
    const int64_t month = mp < 10 ? mp + 3 : mp - 9;
    const int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d UTC", static_cast<int>(year),
                  static_cast<int>(month), static_cast<int>(day), static_cast<int>(daySeconds / 3600),
                  static_cast<int>(daySeconds / 60 % 60), static_cast<int>(daySeconds % 60));
    return text;
}

std::vector<ReportFact> RecordingFacts(const ReportSource& source, const Recording& recording,
                                       const Analysis& analysis) {
    const RecordingHeader& h = recording.header;
    return {
        {"Recording", source.fileName +
                          (source.fromTelemetry ? " (made now from the telemetry file with the profile's settings)" : "")},
        {"Car", HeaderText(h.carPath)},
        {"Driver", HeaderText(h.driverName)},
        {"Profile", HeaderText(h.profileName)},
        {"Started", FormatStartTime(h.startTimeMs)},
        {"Duration", Formatted("%.1f s, %s records, %s gaps over %.1f s", analysis.durationSeconds,
                               Count(analysis.records).c_str(), Count(analysis.gaps.size()).c_str(), kGapSeconds)},
        {"Settings", Formatted("ForceStrength %d, Bumps %d, BumpImpacts %d, UndersteerResistance %d, "
                               "SuspensionDetailPriority %d, CarForceBalance %d, AbsVibration %d, wheelbase %.1f Nm",
                               h.ForceStrength, h.Bumps, h.BumpImpacts, h.UndersteerResistance,
                               h.SuspensionDetailPriority, h.CarForceBalance, h.AbsVibration, h.wheelbaseMaxTorque)},
        {"Coefficients", Formatted("YawRateMultiplier %.1f, YawSteerGain %.3f, LateralAccelDivisor %.1f, "
                                   "ResistanceGain %.2f, SteerMarginBias %.4f rad",
                                   h.YawRateMultiplier, h.YawSteerGain, h.LateralAccelDivisor, h.ResistanceGain,
                                   h.SteerMarginBias)},
    };
}

std::string FormatFindings(const Analysis& analysis) {
    std::string text;
    Findings(text, analysis);
    return text;
}

std::string FormatReport(const ReportSource& source, const Recording& recording, const Analysis& analysis,
                         const Advice& advice) {
    std::string text;
    for (const ReportFact& fact : RecordingFacts(source, recording, analysis)) {
        Line(text, "%-12s %s", fact.label.c_str(), fact.value.c_str());
    }
    Line(text, "");
    Findings(text, analysis);
    AdviceTable(text, advice);
    const std::vector<std::string> warnings = ReadingWarnings(recording);
    if (!warnings.empty()) {
        Line(text, "");
        for (const std::string& warning : warnings) Line(text, "Warning: %s", warning.c_str());
    }
    return text;
}

}  // namespace veltor::analyzer
