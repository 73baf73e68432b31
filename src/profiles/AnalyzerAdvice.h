#pragma once
#include <array>
#include <string>

#include "profiles/IniDocument.h"
#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"

namespace veltor {

// What an advice file of the analyzer proposes. Values are taken as the file gives them, without a range
// check: the controls show them clamped. A field stands in for each value the file may advise; whether it
// is to be applied stands beside it, by the field's row in its table (never for a field no advice names).
struct AnalyzerAdvice {
    std::wstring Profile;  // trimmed; empty keeps the selected profile
    std::wstring Car;      // normalized; empty for none
    bool HasProfileSettings = false;
    EngineSettings Settings;
    std::array<bool, kSettingCount> ApplySetting{};
    bool HasCoefficientAdvice = false;
    CarCoefficients Coefficients;
    std::array<bool, kCoefficientCount> ApplyCoefficient{};
};

// Section Advice of a parsed file: false unless Version is 1 and the file proposes settings or
// coefficients. A number that doesn't parse takes its key's default: 0 for a value (or the value it
// follows), set for an Apply switch.
bool ParseAdvice(const IniDocument& ini, AnalyzerAdvice& advice);

// The file at `path`, read whole and parsed; false for an empty path, a file that is missing or can't be
// read, and whatever ParseAdvice refuses.
bool LoadAdviceFile(const std::wstring& path, AnalyzerAdvice& advice);

}  // namespace veltor
