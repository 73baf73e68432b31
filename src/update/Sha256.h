#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace veltor {

using Sha256Digest = std::array<uint8_t, 32>;

// Windows: CNG (BCrypt); the host twin is a plain implementation of the same function. False when the
// platform could not hash.
bool Sha256(const uint8_t* data, size_t size, Sha256Digest& digest);

// True when `expectedHex` is empty (nothing to check) or names the SHA-256 of `bytes`, in either case of
// hex digits.
bool MatchesSha256(const std::vector<uint8_t>& bytes, const std::wstring& expectedHex);

// 0 to 15 for a hex digit in either case, -1 for any other character.
int HexDigitValue(wchar_t c);

}  // namespace veltor
