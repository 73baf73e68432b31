#include "analyzer/Advice.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "platform/TextConversion.h"

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

// A coefficient's file unit (tenths, hundredths) as decimals; settings are whole numbers.
int Decimals(AdviceKey key) {
    const CoefficientRow* row = TargetOf(key).coefficient;
    int decimals = 0;
    for (float scale = row != nullptr ? row->scale : 1.0f; scale >= 10.0f; scale /= 10.0f) ++decimals;
    return decimals;
}

std::string LabelOf(AdviceKey key) {
    const AdviceTarget target = TargetOf(key);
    return WideToUtf8(target.setting != nullptr ? target.setting->label : target.coefficient->label);
}

AdviceRow Row(AdviceKey key, double now) {
    AdviceRow row;
    row.key = key;
    row.label = LabelOf(key);
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
    AdviceRow row = Row(AdviceKey::ForceStrength, header.ForceStrength);
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
    AdviceRow row = Row(AdviceKey::SuspensionDetailPriority, now);
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
    AdviceRow road = Row(AdviceKey::SuspensionTexture, header.Bumps);
    AdviceRow impact = Row(AdviceKey::SuspensionImpactTexture, header.BumpImpacts);
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

AdviceRow FittedRow(AdviceKey key, double now, bool fitted, double fitValue, const std::string& refusal,
                    double deadBand, const Recording& recording, const CoefficientFit& fit) {
    AdviceRow row = Row(key, now);
    if (!NamesACar(HeaderText(recording.header.carPath))) {
        row.reason = "the recording names no car to advise";
        return row;
    }
    if (!fitted) {
        row.reason = "not fitted: " + refusal;
        return row;
    }
    const double stepsPerUnit = TargetOf(key).coefficient->scale;
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

AdviceTarget TargetOf(AdviceKey key) {
    switch (key) {
        case AdviceKey::ForceStrength: return {&SettingRowOf(&EngineSettings::ForceStrength), nullptr};
        case AdviceKey::SuspensionDetailPriority:
            return {&SettingRowOf(&EngineSettings::SuspensionDetailPriority), nullptr};
        case AdviceKey::SuspensionTexture: return {&SettingRowOf(&EngineSettings::Bumps), nullptr};
        case AdviceKey::SuspensionImpactTexture: return {&SettingRowOf(&EngineSettings::BumpImpacts), nullptr};
        case AdviceKey::YawRateMultiplier: return {nullptr, &CoefficientRowOf(&CarCoefficients::YawRateMultiplier)};
        case AdviceKey::LateralAccelDivisor:
            return {nullptr, &CoefficientRowOf(&CarCoefficients::LateralAccelDivisor)};
    }
    return {};
}

std::string FormatAdviceValue(AdviceKey key, double value) { return Text("%.*f", Decimals(key), value); }

long long AdviceFileValue(AdviceKey key, double value) {
    const CoefficientRow* row = TargetOf(key).coefficient;
    return std::llround(value * (row != nullptr ? static_cast<double>(row->scale) : 1.0));
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
    advice.rows.push_back(FittedRow(AdviceKey::YawRateMultiplier, header.YawRateMultiplier, fit.yawFitted,
                                    fit.yawRateMultiplier, fit.yawRefusal, kYawRateMultiplierDeadBand, recording, fit));
    advice.rows.push_back(FittedRow(AdviceKey::LateralAccelDivisor, header.LateralAccelDivisor, fit.lateralFitted,
                                    fit.lateralAccelDivisor, fit.lateralRefusal, kLateralAccelDivisorDeadBand,
                                    recording, fit));
    if (analysis.records < kMinimumRecordsForAdvice) {
        for (AdviceRow& row : advice.rows) {
            row = Row(row.key, row.now);
            row.reason = "only " + std::to_string(analysis.records) + " records: " +
                         std::to_string(kMinimumRecordsForAdvice) + " (10 s) needed for advice";
        }
    }
    return advice;
}

}  // namespace veltor::analyzer
