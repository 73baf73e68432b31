#pragma once
#include <windows.h>

namespace veltor {

// The caption in the theme's colours, in dark mode; where the system can't, it stays as it was.
void ApplyDarkCaption(HWND window);

}  // namespace veltor
