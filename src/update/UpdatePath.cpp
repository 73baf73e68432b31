#include "update/UpdatePath.h"

namespace veltor {

std::wstring AddVersionQuery(std::wstring_view path, std::wstring_view version) {
    std::wstring result(path);
    if (version.empty()) return result;
    result += path.find(L'?') == std::wstring_view::npos ? L"?v=" : L"&v=";
    result += version;
    return result;
}

std::wstring UrlFileName(std::wstring_view path) {
    path = path.substr(0, path.find_first_of(L"?#"));
    const size_t slash = path.find_last_of(L"/\\");
    return std::wstring(slash == std::wstring_view::npos ? path : path.substr(slash + 1));
}

}  // namespace veltor
