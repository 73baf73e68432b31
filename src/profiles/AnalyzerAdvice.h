#pragma once
#include <cstdint>
#include <string>

#include "profiles/IniDocument.h"

namespace veltor {

// What an advice file of the analyzer proposes. Values are taken as the file gives them, without a range
// check: the controls show them clamped.
struct AnalyzerAdvice {
    std::wstring Profile;  // trimmed; empty keeps the selected profile
    std::wstring Car;      // normalized; empty for none
    bool HasProfileSettings = false;
    int32_t ForceStrength = 0;
    int32_t CarForceBalance = 0;
    int32_t SuspensionTexture = 0;        // for Bumps
    int32_t SuspensionImpactTexture = 0;  // for BumpImpacts
    int32_t SuspensionDetailPriority = 0;
    int32_t AbsVibration = 0;
    bool ApplyForceStrength = true;
    bool ApplyCarForceBalance = true;
    bool ApplySuspensionTexture = true;
    bool ApplySuspensionImpactTexture = true;
    bool ApplySuspensionDetailPriority = true;
    bool ApplyAbsVibration = true;
    bool HasCoefficientAdvice = false;
    float YawRateMultiplier = 0.0f;
    float YawSteerGain = 0.0f;
    float LateralAccelDivisor = 0.0f;
    float ResistanceGain = 0.0f;
    float SteerMarginBias = 0.0f;  // radians
    bool ApplyYawRateMultiplier = true;
    bool ApplyYawSteerGain = true;
    bool ApplyLateralAccelDivisor = true;
    bool ApplyResistanceGain = true;
    bool ApplySteerMarginBias = true;
};

// Section Advice of a parsed file: false unless Version is 1 and the file proposes settings or
// coefficients. A number that doesn't parse takes its key's default.
bool ParseAdvice(const IniDocument& ini, AnalyzerAdvice& advice);

// The file at `path`, read whole and parsed; false for an empty path, a file that is missing or can't be
// read, and whatever ParseAdvice refuses.
bool LoadAdviceFile(const std::wstring& path, AnalyzerAdvice& advice);

}  // namespace veltor
