#include "profiles/AnalyzerAdvice.h"

#include "profiles/IniEncoding.h"
#include "profiles/IniFile.h"
#include "profiles/ProfileText.h"
#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

constexpr wchar_t kSection[] = L"Advice";
constexpr size_t kTextBufferChars = 128;
constexpr float kRadiansToTenthDegrees = 572.9578f;

struct Reader {
    const IniDocument& ini;
    int32_t Int(const wchar_t* key, int32_t fallback) const { return ReadIniInt(ini, kSection, key, fallback); }
    bool Flag(const wchar_t* key, bool fallback) const { return Int(key, fallback ? 1 : 0) != 0; }
    float Scaled(const wchar_t* key, float divisor) const { return static_cast<float>(Int(key, 0)) / divisor; }
};

}  // namespace

bool ParseAdvice(const IniDocument& ini, AnalyzerAdvice& a) {
    const Reader r{ini};
    if (r.Int(L"Version", 0) != 1) return false;
    a = AnalyzerAdvice{};
    a.Profile = TrimText(ini.GetString(kSection, L"Profile", L"", kTextBufferChars));
    a.Car = NormalizeCarPath(ini.GetString(kSection, L"Car", L"", kTextBufferChars));
    a.HasProfileSettings = r.Flag(L"HasProfileSettings", false);
    a.ForceStrength = r.Int(L"ForceStrength", 0);
    a.CarForceBalance = r.Int(L"CarForceBalance", 0);
    a.SuspensionTexture = r.Int(L"SuspensionTexture", 0);
    a.SuspensionImpactTexture = r.Int(L"SuspensionImpactTexture", a.SuspensionTexture);
    a.SuspensionDetailPriority = r.Int(L"SuspensionDetailPriority", 0);
    a.AbsVibration = r.Int(L"AbsVibration", 0);
    a.ApplyForceStrength = r.Flag(L"ApplyForceStrength", true);
    a.ApplyCarForceBalance = r.Flag(L"ApplyCarForceBalance", true);
    a.ApplySuspensionTexture = r.Flag(L"ApplySuspensionTexture", true);
    a.ApplySuspensionImpactTexture = r.Flag(L"ApplySuspensionImpactTexture", true);
    a.ApplySuspensionDetailPriority = r.Flag(L"ApplySuspensionDetailPriority", true);
    a.ApplyAbsVibration = r.Flag(L"ApplyAbsVibration", true);
    a.HasCoefficientAdvice = r.Flag(L"HasCoefficientAdvice", false);
    a.YawRateMultiplier = r.Scaled(L"YawRateMultiplierTenth", 10.0f);
    a.YawSteerGain = r.Scaled(L"YawSteerGainThousand", 1000.0f);
    a.LateralAccelDivisor = r.Scaled(L"LateralAccelDivisor", 1.0f);
    a.ResistanceGain = r.Scaled(L"ResistanceGainHundred", 100.0f);
    a.SteerMarginBias = r.Scaled(L"SteerMarginBiasTenthDeg", kRadiansToTenthDegrees);
    a.ApplyYawRateMultiplier = r.Flag(L"ApplyYawRateMultiplier", true);
    a.ApplyYawSteerGain = r.Flag(L"ApplyYawSteerGain", true);
    a.ApplyLateralAccelDivisor = r.Flag(L"ApplyLateralAccelDivisor", true);
    a.ApplyResistanceGain = r.Flag(L"ApplyResistanceGain", true);
    a.ApplySteerMarginBias = r.Flag(L"ApplySteerMarginBias", true);
    return a.HasProfileSettings || a.HasCoefficientAdvice;
}

bool LoadAdviceFile(const std::wstring& path, AnalyzerAdvice& advice) {
    if (path.empty()) return false;
    std::string bytes;
    IniFileStamp stamp;
    if (ReadIniFile(path, bytes, stamp) != IniFileRead::Read) return false;
    return ParseAdvice(IniDocument::Parse(DecodeIniBytes(bytes)), advice);
}

}  // namespace veltor
