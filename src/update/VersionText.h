#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace veltor {

using VersionNumbers = std::array<int32_t, 4>;

// Four dotted decimal numbers, most significant first; a fifth part and what follows are ignored.
// `parts` is written only on success.
bool ParseVersion(std::wstring_view text, VersionNumbers& parts);
// "%d.%d.%d.%d" of ProductVersion.
std::wstring CurrentVersionText();
// True only when `offered` is strictly higher, part by part as signed numbers.
bool IsNewerVersion(const VersionNumbers& current, const VersionNumbers& offered);

}  // namespace veltor
