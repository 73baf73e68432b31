#include "platform/TextConversion.h"

namespace veltor {

std::wstring Utf8ToWide(const std::string& text) {
    const int units = text::WideLength(text::CodePage::Utf8, text);
    if (units < 2) return {};
    std::wstring wide(static_cast<size_t>(units), L'\0');
    if (text::ConvertToWide(text::CodePage::Utf8, text, wide.data(), units) < 2) return {};
    wide.resize(static_cast<size_t>(units - 1));
    return wide;
}

}  // namespace veltor
