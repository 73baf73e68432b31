#include "app/TorqueField.h"

#include <cwchar>

namespace veltor {

std::wstring TorqueFieldText(int32_t tenths) {
    if (tenths <= 0) return {};
    wchar_t text[32];
    std::swprintf(text, 32, L"%d.%d", tenths / 10, tenths % 10);
    return text;
}

}  // namespace veltor
