#pragma once
#include <array>

namespace veltor {

// The one version of this build: the window title, the user agent and the update comparison all read it.
inline constexpr std::array<int, 4> ProductVersion{0, 1, 0, 134};

}  // namespace veltor
