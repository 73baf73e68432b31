#include <cmath>

#include "profiles/CarCatalogue.h"
#include "profiles/ProfileStore.h"
#include "profiles/ProfileText.h"
#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

constexpr size_t kCarBufferChars = 128;
constexpr float kRadiansToTenthDegrees = 572.9578f;

// One stored number of a Coefficient%d section: its key, the factor from the float and the default.
struct CoefficientKey {
    std::wstring_view name;
    float CarCoefficients::*field;
    float factor;
    int32_t fallback;
};

constexpr CoefficientKey kCoefficientKeys[] = {
    {L"YawRateMultiplierTenth", &CarCoefficients::YawRateMultiplier, 10.0f, 440},
    {L"YawSteerGainThousand", &CarCoefficients::YawSteerGain, 1000.0f, 0},
    {L"LateralAccelDivisor", &CarCoefficients::LateralAccelDivisor, 1.0f, 110},
    {L"ResistanceGainHundred", &CarCoefficients::ResistanceGain, 100.0f, 100},
    {L"SteerMarginBiasTenthDeg", &CarCoefficients::SteerMarginBias, kRadiansToTenthDegrees, 0},
};

// Half away from zero; a value beyond 32 bits saturates and a NaN, which no slider or file gives, stores 0.
int32_t StoredInteger(float value, float factor) {
    const float scaled = value * factor;
    if (std::isnan(scaled)) return 0;
    if (scaled >= 2147483647.0f) return INT32_MAX;
    if (scaled <= -2147483648.0f) return INT32_MIN;
    return static_cast<int32_t>(std::round(scaled));
}

}  // namespace

void ProfileStore::LoadCoefficients() {
    const IniDocument& ini = File();
    LoadMissedTheFile = LoadMissedTheFile || IniReadFailed;
    CoefficientOverrides.clear();
    const int32_t count = ReadSectionCount(ini, L"Coefficients", L"Coefficient");
    for (int32_t i = 0; i < count; ++i) {
        const std::wstring section = L"Coefficient" + DecimalText(i);
        CarCoefficients entry;
        entry.CarPath = NormalizeCarPath(ini.GetString(section, L"Car", L"", kCarBufferChars));
        if (entry.CarPath.empty()) continue;
        for (const CoefficientKey& key : kCoefficientKeys) {
            entry.*key.field = static_cast<float>(ReadIniInt(ini, section, key.name, key.fallback)) / key.factor;
        }
        CoefficientOverrides.push_back(std::move(entry));
    }
}

void ProfileStore::WriteCoefficients(IniDocument& ini) const {
    ini.SetString(L"Coefficients", L"Count", DecimalText(CoefficientOverrides.size()));
    for (size_t i = 0; i < CoefficientOverrides.size(); ++i) {
        const CarCoefficients& entry = CoefficientOverrides[i];
        const std::wstring section = L"Coefficient" + DecimalText(i);
        ini.SetString(section, L"Car", entry.CarPath);
        for (const CoefficientKey& key : kCoefficientKeys) {
            ini.SetString(section, key.name, DecimalText(StoredInteger(entry.*key.field, key.factor)));
        }
    }
}

int32_t ProfileStore::FindCoefficients(std::wstring_view normalizedCarPath) const {
    for (size_t i = 0; i < CoefficientOverrides.size(); ++i) {
        if (EqualsFoldingAscii(CoefficientOverrides[i].CarPath, normalizedCarPath)) return static_cast<int32_t>(i);
    }
    return -1;
}

CarCoefficients ProfileStore::GetCoefficients(std::wstring_view carPath) const {
    std::wstring path = NormalizeCarPath(carPath);
    if (path.empty()) path = L"generic";
    const int32_t found = FindCoefficients(path);
    if (found >= 0) return CoefficientOverrides[static_cast<size_t>(found)];
    if (const CarCatalogueRow* row = FindCatalogueRow(path)) return CarCoefficients::FromRow(path, row->Coefficients);
    return CarCoefficients::FromRow(path, kUnmatchedCarRow);
}

void ProfileStore::PutCoefficients(const CarCoefficients& coefficients) {
    CarCoefficients entry = coefficients;
    entry.CarPath = NormalizeCarPath(coefficients.CarPath);
    if (entry.CarPath.empty()) return;  // the generic set is never stored
    const int32_t found = FindCoefficients(entry.CarPath);
    if (found >= 0) {
        CoefficientOverrides[static_cast<size_t>(found)] = std::move(entry);
    } else {
        CoefficientOverrides.push_back(std::move(entry));
    }
}

bool ProfileStore::IsKnownCar(std::wstring_view carPath) const {
    const std::wstring path = NormalizeCarPath(carPath);
    return !path.empty() && (FindCoefficients(path) >= 0 || IsCatalogueCar(path));
}

}  // namespace veltor
