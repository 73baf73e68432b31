#include <windows.h>

#include "telemetry/TextConversion.h"

namespace veltor::text {

// Length -1: the input counts up to its NUL, and the result includes the terminator.
int WideLength(CodePage page, const std::string& text) {
    return MultiByteToWideChar(static_cast<UINT>(page), 0, text.c_str(), -1, nullptr, 0);
}

int ConvertToWide(CodePage page, const std::string& text, wchar_t* out, int capacity) {
    return MultiByteToWideChar(static_cast<UINT>(page), 0, text.c_str(), -1, out, capacity);
}

}  // namespace veltor::text
