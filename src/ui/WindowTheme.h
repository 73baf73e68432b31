#pragma once
#include <windows.h>

#include <cstdint>

namespace veltor {

// The caption in the theme's colours, in dark mode; where the system can't, it stays as it was.
void ApplyDarkCaption(HWND window);

// The theme's fonts: "Segoe UI" at this pixel height and weight, or "Cascadia Mono" for the mono ones.
HFONT MakeThemeFont(int32_t height, int32_t weight, bool mono = false);

}  // namespace veltor
