#include "analyzer/AdviceFile.h"

#include <algorithm>
#include <vector>

#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"
#include "profiles/IniFile.h"
#include "profiles/ProfileText.h"

namespace veltor::analyzer {
namespace {

constexpr int kAdviceVersion = 1;
constexpr wchar_t kSection[] = L"Advice";

// One value key of the file with its Apply key, and the row of ours that advises it, if any: the program
// takes a missing Apply flag as set, so a value this analyzer never advises still gets its flag, as 0.
struct FileKey {
    std::wstring_view value;
    std::wstring_view apply;
    const AdviceRow* row;  // null, or advised
};

const AdviceRow* AdvisedRow(const Advice& advice, AdviceTarget target) {
    for (const AdviceRow& row : advice.rows) {
        const AdviceTarget own = TargetOf(row.key);
        if (row.advised && own.setting == target.setting && own.coefficient == target.coefficient) return &row;
    }
    return nullptr;
}

// The settings that advice may name, in the order of their group in the file.
std::vector<FileKey> ProfileKeys(const Advice& advice) {
    std::vector<FileKey> keys;
    for (int32_t order = 1;; ++order) {
        const auto row = std::find_if(kSettingRows.begin(), kSettingRows.end(),
                                      [&](const SettingRow& r) { return r.adviceOrder == order; });
        if (row == kSettingRows.end()) return keys;
        keys.push_back({row->adviceKey, row->applyKey, AdvisedRow(advice, {&*row, nullptr})});
    }
}

std::vector<FileKey> CoefficientKeys(const Advice& advice) {
    std::vector<FileKey> keys;
    for (const CoefficientRow& row : kCoefficientRows) {
        keys.push_back({row.key, row.applyKey, AdvisedRow(advice, {nullptr, &row})});
    }
    return keys;
}

void WriteGroup(const wchar_t* hasKey, const std::vector<FileKey>& keys, IniDocument& ini) {
    const bool present = std::any_of(keys.begin(), keys.end(), [](const FileKey& key) { return key.row != nullptr; });
    ini.SetString(kSection, hasKey, present ? L"1" : L"0");
    if (!present) return;
    for (const FileKey& key : keys) {
        if (key.row != nullptr) ini.SetString(kSection, key.value, DecimalText(AdviceFileValue(key.row->key, key.row->proposed)));
    }
    for (const FileKey& key : keys) ini.SetString(kSection, key.apply, key.row != nullptr && key.row->apply ? L"1" : L"0");
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
    WriteGroup(L"HasProfileSettings", ProfileKeys(advice), ini);
    WriteGroup(L"HasCoefficientAdvice", CoefficientKeys(advice), ini);
    return ini.Serialize();
}

bool WriteAdviceFile(const std::filesystem::path& path, const Advice& advice, std::string& error) {
    if (ReplaceIniFile(path.wstring(), EncodeIniText(AdviceFileText(advice)))) return true;
    error = "cannot write the advice file";
    return false;
}

}  // namespace veltor::analyzer
