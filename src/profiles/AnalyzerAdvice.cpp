#include "profiles/AnalyzerAdvice.h"

#include "profiles/IniEncoding.h"
#include "profiles/IniFile.h"
#include "profiles/ProfileText.h"
#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

constexpr wchar_t kSection[] = L"Advice";
constexpr size_t kTextBufferChars = 128;

struct Reader {
    const IniDocument& ini;
    int32_t Int(std::wstring_view key, int32_t fallback) const { return ReadIniInt(ini, kSection, key, fallback); }
    bool Flag(std::wstring_view key, bool fallback) const { return Int(key, fallback ? 1 : 0) != 0; }
};

}  // namespace

bool ParseAdvice(const IniDocument& ini, AnalyzerAdvice& a) {
    const Reader r{ini};
    if (r.Int(L"Version", 0) != 1) return false;
    a = AnalyzerAdvice{};
    a.Profile = TrimText(ini.GetString(kSection, L"Profile", L"", kTextBufferChars));
    a.Car = NormalizeCarPath(ini.GetString(kSection, L"Car", L"", kTextBufferChars));
    a.HasProfileSettings = r.Flag(L"HasProfileSettings", false);
    for (size_t i = 0; i < kSettingCount; ++i) {
        const SettingRow& row = kSettingRows[i];
        if (row.adviceKey.empty()) continue;
        const int32_t fallback = row.follows != nullptr ? a.Settings.*row.follows : 0;
        SetSettingValue(row, a.Settings, r.Int(row.adviceKey, fallback));
        a.ApplySetting[i] = r.Flag(row.applyKey, true);
    }
    a.HasCoefficientAdvice = r.Flag(L"HasCoefficientAdvice", false);
    for (size_t i = 0; i < kCoefficientCount; ++i) {
        const CoefficientRow& row = kCoefficientRows[i];
        a.Coefficients.*row.field = CoefficientFromFile(row, r.Int(row.key, 0));
        a.ApplyCoefficient[i] = r.Flag(row.applyKey, true);
    }
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
