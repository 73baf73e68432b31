#include "analyzer/AdviceFile.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"
#include "profiles/IniFile.h"
#include "profiles/ProfileText.h"

namespace veltor::analyzer {
namespace {

constexpr int kAdviceVersion = 1;
constexpr wchar_t kSection[] = L"Advice";

// The two groups of the file in its order: each value key with its Apply flag, and the row of ours that
// may advise it (none for the values this analyzer never advises; their flags are still written as 0).
struct GroupKey {
    const wchar_t* valueKey;
    const wchar_t* applyKey;
    std::optional<AdviceKey> row;
    double factor;  // value in the file = proposed × factor, rounded
};

constexpr GroupKey kProfileKeys[] = {
    {L"ForceStrength", L"ApplyForceStrength", AdviceKey::ForceStrength, 1.0},
    {L"CarForceBalance", L"ApplyCarForceBalance", std::nullopt, 1.0},
    {L"SuspensionTexture", L"ApplySuspensionTexture", AdviceKey::SuspensionTexture, 1.0},
    {L"SuspensionImpactTexture", L"ApplySuspensionImpactTexture", AdviceKey::SuspensionImpactTexture, 1.0},
    {L"SuspensionDetailPriority", L"ApplySuspensionDetailPriority", AdviceKey::SuspensionDetailPriority, 1.0},
    {L"AbsVibration", L"ApplyAbsVibration", std::nullopt, 1.0},
};

constexpr GroupKey kCoefficientKeys[] = {
    {L"YawRateMultiplierTenth", L"ApplyYawRateMultiplier", AdviceKey::YawRateMultiplier, 10.0},
    {L"YawSteerGainThousand", L"ApplyYawSteerGain", std::nullopt, 1000.0},
    {L"LateralAccelDivisor", L"ApplyLateralAccelDivisor", AdviceKey::LateralAccelDivisor, 1.0},
    {L"ResistanceGainHundred", L"ApplyResistanceGain", std::nullopt, 100.0},
    {L"SteerMarginBiasTenthDeg", L"ApplySteerMarginBias", std::nullopt, 572.9578},
};

const AdviceRow* AdvisedRow(const Advice& advice, const GroupKey& key) {
    for (const AdviceRow& row : advice.rows) {
        if (key.row == row.key && row.advised) return &row;
    }
    return nullptr;
}

template <size_t N>
void WriteGroup(const Advice& advice, const wchar_t* hasKey, const GroupKey (&keys)[N], IniDocument& ini) {
    const bool present = std::any_of(std::begin(keys), std::end(keys),
                                     [&](const GroupKey& key) { return AdvisedRow(advice, key) != nullptr; });
    ini.SetString(kSection, hasKey, present ? L"1" : L"0");
    if (!present) return;
    for (const GroupKey& key : keys) {
        if (const AdviceRow* row = AdvisedRow(advice, key)) {
            ini.SetString(kSection, key.valueKey, DecimalText(std::llround(row->proposed * key.factor)));
        }
    }
    for (const GroupKey& key : keys) {
        const AdviceRow* row = AdvisedRow(advice, key);
        ini.SetString(kSection, key.applyKey, row != nullptr && row->apply ? L"1" : L"0");
    }
}

}  // namespace

bool HasAdviceToApply(const Advice& advice) {
    return std::any_of(advice.rows.begin(), advice.rows.end(),
                       [](const AdviceRow& row) { return row.advised && row.apply; });
}

std::wstring AdviceFileText(const Advice& advice) {
    IniDocument ini;
    ini.SetString(kSection, L"Version", DecimalText(kAdviceVersion));
    ini.SetString(kSection, L"Profile", DecodeIniBytes(advice.profile));
    ini.SetString(kSection, L"Car", DecodeIniBytes(advice.car));
    WriteGroup(advice, L"HasProfileSettings", kProfileKeys, ini);
    WriteGroup(advice, L"HasCoefficientAdvice", kCoefficientKeys, ini);
    return ini.Serialize();
}

bool WriteAdviceFile(const std::filesystem::path& path, const Advice& advice, std::string& error) {
    if (ReplaceIniFile(path.wstring(), EncodeIniText(AdviceFileText(advice)))) return true;
    error = "cannot write the advice file";
    return false;
}

}  // namespace veltor::analyzer
