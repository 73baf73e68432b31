#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace veltor {

// Creates or overwrites the file with exactly these bytes; true only when all were written. Windows:
// CreateFileW and one WriteFile; the host twin writes over POSIX.
bool WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes);
bool WriteText(const std::wstring& path, std::string_view text);

}  // namespace veltor
