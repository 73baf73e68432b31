#include <unistd.h>

#include <vector>

#include "profiles/ExecutablePath.h"
#include "platform/TextConversion.h"

namespace veltor {

std::wstring ExecutablePath() {
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) return {};
    const std::string narrow(path, static_cast<size_t>(length));
    std::vector<wchar_t> wide(narrow.size() + 1);
    const int units = text::ConvertToWide(text::CodePage::Utf8, narrow, wide.data(), static_cast<int>(wide.size()));
    return units > 0 ? std::wstring(wide.data(), static_cast<size_t>(units - 1)) : std::wstring();
}

}  // namespace veltor
