#pragma once
#include <string>
#include <vector>

#include "analyzer/RecordingAnalysis.h"
#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"

namespace veltor::analyzer {

constexpr size_t kMinimumRecordsForAdvice = 600;  // 10 s of driving
constexpr float kNoForceTorque = 0.5f;            // Nm; a peak below this measures nothing
constexpr double kTargetPeakPercent = 90.0;       // of full scale, for the 99.5th percentile of the force
constexpr int kForceStrengthLowest = 1;
constexpr int kForceStrengthHighest = 100;
constexpr int kForceStrengthDeadBand = 3;         // a smaller change is not worth proposing
constexpr double kPriorityBusyPercent = 20.0;     // of records; priority acting this often reshapes the force
constexpr double kClippedPercentForPriority = 1.0;
constexpr int kPriorityStep = 25;
constexpr double kTextureDominantPercent = 50.0;  // texture peaks above half the car's torque drown it
constexpr double kTextureTargetPercent = 25.0;
constexpr double kYawRateMultiplierDeadBand = 1.0;
constexpr double kLateralAccelDivisorDeadBand = 2.0;

// The values the analyzer may advise, in the order of its table.
enum class AdviceKey {
    ForceStrength,
    SuspensionDetailPriority,
    SuspensionTexture,
    SuspensionImpactTexture,
    YawRateMultiplier,
    LateralAccelDivisor,
};

// The program's field that a row of advice proposes a value for: a setting or a car's coefficient.
struct AdviceTarget {
    const SettingRow* setting = nullptr;
    const CoefficientRow* coefficient = nullptr;
};
AdviceTarget TargetOf(AdviceKey key);

// One line of the advice: value now → proposed, and why (or why not).
struct AdviceRow {
    AdviceKey key = AdviceKey::ForceStrength;
    std::string label;       // the slider's label in the program
    double now = 0.0;
    double proposed = 0.0;   // equals `now` when nothing is proposed
    bool advised = false;    // a change is proposed
    bool apply = false;      // the user's choice, starting as `advised`; only advised rows can apply
    std::string reason;
};

struct Advice {
    std::string profile;  // from the recording's header
    std::string car;
    std::vector<AdviceRow> rows;
};

Advice BuildAdvice(const Recording& recording, const Analysis& analysis);

// The value with as many decimals as its field's unit in the program's file holds: whole numbers for the
// settings, one decimal for the steering build-up (tenths).
std::string FormatAdviceValue(AdviceKey key, double value);

// The value as the advice file stores it: in the file's unit, rounded.
long long AdviceFileValue(AdviceKey key, double value);

// True when the recording names a car that coefficient advice can go to.
bool NamesACar(const std::string& carPath);

}  // namespace veltor::analyzer
