#include "profiles/ProfileStore.h"
#include "profiles/ProfileText.h"
#include "profiles/SettingsSection.h"
#include "settings/CarCatalogue.h"

namespace veltor {
namespace {

constexpr size_t kCarBufferChars = 128;

// A key missing from a Coefficient section stands for the car-independent number.
int32_t IndependentFileValue(const CoefficientRow& row) {
    return CoefficientFileValue(row, CarCoefficients::FromRow(L"", kCarIndependentRow).*row.field);
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
        for (const CoefficientRow& row : kCoefficientRows) {
            entry.*row.field = CoefficientFromFile(row, ReadIniInt(ini, section, row.key, IndependentFileValue(row)));
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
        for (const CoefficientRow& row : kCoefficientRows) {
            ini.SetString(section, row.key, DecimalText(CoefficientFileValue(row, entry.*row.field)));
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
