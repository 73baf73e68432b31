#include "settings/ValueText.h"

#include <cwchar>

#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"

namespace veltor {

std::wstring FormatValueText(ValueText rule, int32_t value) {
    constexpr size_t kTextChars = 32;
    wchar_t text[kTextChars];
    const int32_t q10 = value / 10;
    const int32_t r10 = value % 10;
    switch (rule) {
        case ValueText::Whole: std::swprintf(text, kTextChars, L"%d", value); break;
        case ValueText::Percent: std::swprintf(text, kTextChars, L"%d%%", value); break;
        case ValueText::TenthsOfG: std::swprintf(text, kTextChars, L"%d.%d g", q10, r10); break;
        case ValueText::TenthsOfSecond: std::swprintf(text, kTextChars, L"%d.%d sec", q10, r10); break;
        case ValueText::Tenths: std::swprintf(text, kTextChars, L"%d.%d", q10, r10); break;
        case ValueText::Hundredths:
            std::swprintf(text, kTextChars, L"%d.%02d", value / 100, value - value / 100 * 100);
            break;
        case ValueText::Thousandths:
            std::swprintf(text, kTextChars, L"%d.%03d", value / 1000, value - value / 1000 * 1000);
            break;
        case ValueText::TenthDegrees: std::swprintf(text, kTextChars, L"%+.1f deg", value / 10.0); break;
    }
    return text;
}

std::wstring SliderValueText(int32_t id, int32_t value) {
    if (const CoefficientRow* row = FindCoefficientRow(id)) return FormatValueText(row->text, value - row->sliderOffset);
    const SettingRow* row = FindSettingRow(id);
    return FormatValueText(row != nullptr ? row->text : ValueText::Whole, value);
}

}  // namespace veltor
