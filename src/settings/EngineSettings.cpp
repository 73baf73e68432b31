#include "settings/EngineSettings.h"

#include <charconv>
#include <cstdlib>

namespace veltor {
namespace {

bool KeyIs(std::wstring_view key, std::string_view ascii) {
    if (key.size() != ascii.size()) return false;
    for (size_t i = 0; i < key.size(); ++i) {
        if (key[i] != static_cast<wchar_t>(static_cast<unsigned char>(ascii[i]))) return false;
    }
    return true;
}

}  // namespace

// A field without a row is a mistake in this folder, found the first time the row is asked for.
void NoSettingRow() { std::abort(); }

bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value) {
    for (const SettingRow& row : kSettingRows) {
        if (!KeyIs(row.key, key)) continue;
        SetSettingValue(row, settings, value);
        return true;
    }
    return false;
}

bool ParseSettingInteger(std::string_view text, int32_t& value) {
    // One sign at most: "+-5" is no number.
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return false;
    }
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    return !text.empty() && failure == std::errc() && stop == end;
}

}  // namespace veltor
