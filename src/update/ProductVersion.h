#pragma once
#include <array>

namespace veltor {

// The release's version; scripts/package reads this line, and the project's version in CMakeLists.txt
// (the resources' version block) must agree with it.
inline constexpr std::array<int, 4> kReleaseVersion{0, 1, 0, 134};

// The version this program reports: the window title, the user agent and the update comparison all read
// it. The release's (ProductVersion.cpp); a test build standing in for another release links its own.
extern const std::array<int, 4> ProductVersion;

}  // namespace veltor
