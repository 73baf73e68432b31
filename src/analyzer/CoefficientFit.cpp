#include "analyzer/CoefficientFit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace veltor::analyzer {
namespace {

constexpr float kMaximumYawSteerGain = 0.45f;
constexpr float kBoostAngleLimit = 1.5f;  // rad

// One record as the grip model sees it: the two terms that should explain the steering angle.
struct Terms {
    double yaw;      // boost × yaw rate / speed, rad per unit of YawRateMultiplier
    double lateral;  // m/s², rad per unit of 1 / LateralAccelDivisor
    double angle;    // rad
};

Terms TermsOf(const RecordingSample& s, const RecordingHeader& header) {
    const float gain = std::clamp(header.YawSteerGain, 0.0f, kMaximumYawSteerGain);
    const double boost = 1.0 + gain * std::min(kBoostAngleLimit, std::fabs(s.steeringWheelAngle));
    return {boost * s.yawRate / std::max(1.0f, s.speed), s.latAccel, s.steeringWheelAngle};
}

struct Sums {
    size_t n = 0;
    double yy = 0, y = 0, aa = 0, ab = 0, bb = 0, ya = 0, yb = 0;  // a: yaw term, b: lateral term
};

Sums SumGripTerms(const std::vector<RecordingSample>& samples, const RecordingHeader& header) {
    Sums s;
    for (const RecordingSample& sample : samples) {
        if (!HadGrip(sample)) continue;
        const Terms t = TermsOf(sample, header);
        ++s.n;
        s.y += t.angle;
        s.yy += t.angle * t.angle;
        s.aa += t.yaw * t.yaw;
        s.ab += t.yaw * t.lateral;
        s.bb += t.lateral * t.lateral;
        s.ya += t.angle * t.yaw;
        s.yb += t.angle * t.lateral;
    }
    return s;
}

// R² of angle ≈ multiplier × yaw term + inverseDivisor × lateral term, residuals summed afresh for accuracy.
double RSquared(const std::vector<RecordingSample>& samples, const RecordingHeader& header, const Sums& s,
                double multiplier, double inverseDivisor) {
    const double mean = s.y / static_cast<double>(s.n);
    double residual = 0.0;
    double total = 0.0;
    for (const RecordingSample& sample : samples) {
        if (!HadGrip(sample)) continue;
        const Terms t = TermsOf(sample, header);
        const double e = t.angle - multiplier * t.yaw - inverseDivisor * t.lateral;
        residual += e * e;
        total += (t.angle - mean) * (t.angle - mean);
    }
    return total > 0.0 ? 1.0 - residual / total : 0.0;
}

std::string Format(const char* format, double a, double b = 0.0, double c = 0.0) {
    char text[200];
    std::snprintf(text, sizeof text, format, a, b, c);
    return text;
}

bool Within(double value, double lowest, double highest) { return value >= lowest && value <= highest; }

// Both terms at once; false with the reason for the divisor when the drive cannot settle it.
bool FitBoth(const Sums& s, double& multiplier, double& inverseDivisor, std::string& refusal) {
    if (s.aa <= 0.0 || s.bb <= 0.0 || std::fabs(s.ab) / std::sqrt(s.aa * s.bb) >= kMaximumTermCosine) {
        refusal = "the corners were too alike in speed to tell the cornering load from the yaw term";
        return false;
    }
    const double det = s.aa * s.bb - s.ab * s.ab;
    multiplier = (s.ya * s.bb - s.yb * s.ab) / det;
    inverseDivisor = (s.aa * s.yb - s.ab * s.ya) / det;
    if (inverseDivisor <= 0.0) {
        refusal = "the drive shows no steering for the cornering load (the divisor came out negative)";
        return false;
    }
    const double divisor = 1.0 / inverseDivisor;
    if (!Within(divisor, kLateralAccelDivisorLowest, kLateralAccelDivisorHighest)) {
        refusal = Format("the fit gave %.0f, outside %.0f to %.0f", divisor, kLateralAccelDivisorLowest,
                         kLateralAccelDivisorHighest);
        return false;
    }
    if (!Within(multiplier, kYawRateMultiplierLowest, kYawRateMultiplierHighest)) {
        refusal = "the joint fit put the steering build-up out of range";
        return false;
    }
    return true;
}

}  // namespace

bool HadGrip(const RecordingSample& s) {
    return s.speed > kGripMinimumSpeed && s.steerExcess < 0.0f && s.absActive == 0 && s.crashGain >= 1.0f &&
           std::fabs(s.velocityY) <= kGripMaximumSlipRatio * std::fabs(s.velocityX);
}

CoefficientFit FitCarCoefficients(const std::vector<RecordingSample>& samples, const RecordingHeader& header) {
    CoefficientFit fit;
    const Sums s = SumGripTerms(samples, header);
    fit.samples = s.n;
    if (s.n < kMinimumFitSamples) {
        fit.yawRefusal = fit.lateralRefusal =
            Format("only %.0f records with grip (%.0f needed: above 10 m/s, no understeer, no slide, no ABS, "
                   "no crash hold)",
                   static_cast<double>(s.n), static_cast<double>(kMinimumFitSamples));
        return fit;
    }
    if (s.yy - s.y * s.y / static_cast<double>(s.n) <= 1e-9 * static_cast<double>(s.n)) {
        fit.yawRefusal = fit.lateralRefusal = "the steering did not move while the car had grip";
        return fit;
    }
    if (s.aa <= 0.0) {
        fit.yawRefusal = fit.lateralRefusal = "the car did not turn while it had grip";
        return fit;
    }

    double multiplier = 0.0;
    double inverseDivisor = 0.0;
    fit.lateralFitted = FitBoth(s, multiplier, inverseDivisor, fit.lateralRefusal);
    if (!fit.lateralFitted) {
        if (!(header.LateralAccelDivisor > 0.0f)) {
            fit.yawRefusal = "the recording's cornering load balance is not positive, so the yaw term cannot be fitted alone";
            return fit;
        }
        inverseDivisor = 1.0 / header.LateralAccelDivisor;
        multiplier = (s.ya - inverseDivisor * s.ab) / s.aa;
    }
    fit.rSquared = RSquared(samples, header, s, multiplier, inverseDivisor);
    fit.yawRateMultiplier = multiplier;
    fit.lateralAccelDivisor = 1.0 / inverseDivisor;
    if (fit.rSquared < kMinimumFitRSquared) {
        fit.yawRefusal = Format("the fit is too loose: R² %.2f, %.2f needed", fit.rSquared, kMinimumFitRSquared);
        if (fit.lateralFitted) fit.lateralRefusal = fit.yawRefusal;
        fit.yawFitted = fit.lateralFitted = false;
        return fit;
    }
    if (!Within(multiplier, kYawRateMultiplierLowest, kYawRateMultiplierHighest)) {
        fit.yawRefusal = Format("the fit gave %.1f, outside %.0f to %.0f", multiplier, kYawRateMultiplierLowest,
                                kYawRateMultiplierHighest);
        return fit;
    }
    fit.yawFitted = true;
    return fit;
}

}  // namespace veltor::analyzer
