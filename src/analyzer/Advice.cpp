#include "analyzer/Advice.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace veltor::analyzer {
namespace {

std::string Text(const char* format, ...) {
    char text[320];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

AdviceRow Row(AdviceKey key, const char* label, double now) {
    AdviceRow row;
    row.key = key;
    row.label = label;
    row.now = now;
    row.proposed = now;
    return row;
}

void Propose(AdviceRow& row, double proposed, std::string reason) {
    row.proposed = proposed;
    row.advised = row.apply = true;
    row.reason = std::move(reason);
}

AdviceRow ForceStrengthRow(const RecordingHeader& header, const Analysis& analysis) {
    const ClippingFindings& c = analysis.clipping;
    AdviceRow row = Row(AdviceKey::ForceStrength, "Force strength", header.ForceStrength);
    if (c.peakTorque < kNoForceTorque) {
        row.reason = Text("no force to measure: the 99.5th percentile is %.1f Nm", c.peakTorque);
        return row;
    }
    const double ideal = kTargetPeakPercent / 100.0 * 2000.0 / c.peakTorque;
    const int proposed = static_cast<int>(std::clamp(std::lround(ideal), static_cast<long>(kForceStrengthLowest),
                                                     static_cast<long>(kForceStrengthHighest)));
    const std::string measured = Text("the 99.5th percentile of the force, %.1f Nm, is %.0f %% of full scale "
                                      "(%.1f Nm), %.1f %% of records clipped",
                                      c.peakTorque, c.peakPercentOfFullScale, c.fullScaleTorque, c.clippedPercent);
    if (std::llabs(static_cast<long long>(proposed) - header.ForceStrength) < kForceStrengthDeadBand) {
        row.reason = measured + ": near enough to 90 %";
        return row;
    }
    const double reached = 100.0 * c.peakTorque / FullScaleTorque(proposed);
    Propose(row, proposed, measured + Text("; %d brings it to %.0f %%", proposed, reached));
    return row;
}

AdviceRow PriorityRow(const RecordingHeader& header, const Analysis& analysis, bool forceAdvised) {
    const TextureFindings& t = analysis.texture;
    const ClippingFindings& c = analysis.clipping;
    const int now = header.SuspensionDetailPriority;
    AdviceRow row = Row(AdviceKey::SuspensionDetailPriority, "Suspension detail priority", now);
    const std::string acted = Text("priority acted on %.1f %% of records", t.priorityActedPercent);
    if (t.priorityActedPercent > kPriorityBusyPercent && now > 0) {
        Propose(row, std::max(0, now - kPriorityStep),
                acted + ": the road detail took force from the car's own torque that often");
        return row;
    }
    // Once the force strength is advised, clipping is its matter, not the texture's.
    const bool clippedTexture = c.clippedPercent >= kClippedPercentForPriority && 2 * t.clippedWithTexture >= c.clippedRecords;
    if (clippedTexture && !forceAdvised && now < 100) {
        Propose(row, std::min(100, now + kPriorityStep),
                Text("%.1f %% of records clipped, most of them with texture on: more priority keeps room for it",
                     c.clippedPercent));
        return row;
    }
    row.reason = acted + ": nothing calls for a change";
    return row;
}

// Both texture sliders scale together: the texture grows with the square of a slider.
void TextureRows(const RecordingHeader& header, const Analysis& analysis, std::vector<AdviceRow>& rows) {
    const TextureFindings& t = analysis.texture;
    AdviceRow road = Row(AdviceKey::SuspensionTexture, "Road texture", header.Bumps);
    AdviceRow impact = Row(AdviceKey::SuspensionImpactTexture, "Impact texture", header.BumpImpacts);
    std::string reason;
    if (header.Bumps <= 0 && header.BumpImpacts <= 0) {
        reason = "texture is switched off";
    } else if (t.movingRecords < kMinimumRecordsForAdvice) {
        reason = "only " + std::to_string(t.movingRecords) + " records above 10 m/s";
    } else if (t.texturePeak < kTextureFloorTorque) {
        reason = "no texture to measure while moving: the telemetry carries little or no shock movement";
    } else {
        reason = Text("texture peaks at %.1f Nm, %.0f %% of the car's torque (%.1f Nm) while moving", t.texturePeak,
                      t.texturePercentOfBase, t.basePeak);
        if (t.texturePercentOfBase > kTextureDominantPercent) {
            const double factor = std::sqrt(kTextureTargetPercent / t.texturePercentOfBase);
            const std::string why = reason + Text(": it drowns the car's feel; this brings it to about %.0f %%",
                                                  kTextureTargetPercent);
            for (AdviceRow* row : {&road, &impact}) {
                const double proposed = std::max(1.0, std::round(row->now * factor));
                if (row->now > 0 && proposed != row->now) Propose(*row, proposed, why);
            }
        } else {
            reason += ": in proportion";
        }
    }
    for (AdviceRow* row : {&road, &impact}) {
        if (row->reason.empty()) row->reason = row->now > 0 ? reason : "switched off";
        rows.push_back(*row);
    }
}

AdviceRow CoefficientRow(AdviceKey key, const char* label, double now, bool fitted, double fitValue,
                         const std::string& refusal, double deadBand, double stepsPerUnit, const Recording& recording,
                         const CoefficientFit& fit) {
    AdviceRow row = Row(key, label, now);
    if (!NamesACar(HeaderText(recording.header.carPath))) {
        row.reason = "the recording names no car to advise";
        return row;
    }
    if (!fitted) {
        row.reason = "not fitted: " + refusal;
        return row;
    }
    const double proposed = std::round(fitValue * stepsPerUnit) / stepsPerUnit;
    const std::string measured = "fit over " + std::to_string(fit.samples) + " records with grip gives " +
                                 FormatAdviceValue(key, proposed) + Text(" (R² %.2f)", fit.rSquared);
    if (std::fabs(proposed - now) < deadBand) {
        row.reason = measured + ": the car's value holds";
        return row;
    }
    Propose(row, proposed, measured);
    return row;
}

}  // namespace

bool NamesACar(const std::string& carPath) {
    std::string folded;
    for (char c : carPath) {
        if (c != ' ' && c != '\t') folded.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
    }
    return !folded.empty() && folded != "generic";
}

std::string FormatAdviceValue(AdviceKey key, double value) {
    return Text(key == AdviceKey::YawRateMultiplier ? "%.1f" : "%.0f", value);
}

Advice BuildAdvice(const Recording& recording, const Analysis& analysis) {
    const RecordingHeader& header = recording.header;
    Advice advice;
    advice.profile = HeaderText(header.profileName);
    advice.car = HeaderText(header.carPath);
    const CoefficientFit& fit = analysis.fit;
    advice.rows.push_back(ForceStrengthRow(header, analysis));
    advice.rows.push_back(PriorityRow(header, analysis, advice.rows.back().advised));
    TextureRows(header, analysis, advice.rows);
    advice.rows.push_back(CoefficientRow(AdviceKey::YawRateMultiplier, "Steering build-up", header.YawRateMultiplier,
                                         fit.yawFitted, fit.yawRateMultiplier, fit.yawRefusal,
                                         kYawRateMultiplierDeadBand, 10.0, recording, fit));
    advice.rows.push_back(CoefficientRow(AdviceKey::LateralAccelDivisor, "Cornering load balance",
                                         header.LateralAccelDivisor, fit.lateralFitted, fit.lateralAccelDivisor,
                                         fit.lateralRefusal, kLateralAccelDivisorDeadBand, 1.0, recording, fit));
    if (analysis.records < kMinimumRecordsForAdvice) {
        for (AdviceRow& row : advice.rows) {
            row = Row(row.key, row.label, row.now);
            row.reason = "only " + std::to_string(analysis.records) + " records: " +
                         std::to_string(kMinimumRecordsForAdvice) + " (10 s) needed for advice";
        }
    }
    return advice;
}

}  // namespace veltor::analyzer
