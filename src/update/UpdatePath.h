#pragma once
#include <string>
#include <string_view>

namespace veltor {

// The path with "?v=" (or "&v=" behind an existing query) and the version, unencoded; unchanged for an
// empty version.
std::wstring AddVersionQuery(std::wstring_view path, std::wstring_view version);
// The last component of a server path, without its query or fragment.
std::wstring UrlFileName(std::wstring_view path);

}  // namespace veltor
