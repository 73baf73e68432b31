#include "ui/WindowTheme.h"

#include <dwmapi.h>

#include "ui/Theme.h"

namespace veltor {
namespace {

// DWMWINDOWATTRIBUTE values that older headers lack.
constexpr DWORD kDwmUseDarkMode = 20;
constexpr DWORD kDwmCaptionColour = 35;
constexpr DWORD kDwmCaptionTextColour = 36;

}  // namespace

void ApplyDarkCaption(HWND window) {
    const BOOL darkMode = TRUE;
    const COLORREF caption = kWindowColour;
    const COLORREF captionText = kPrimaryTextColour;
    DwmSetWindowAttribute(window, kDwmUseDarkMode, &darkMode, sizeof darkMode);
    DwmSetWindowAttribute(window, kDwmCaptionColour, &caption, sizeof caption);
    DwmSetWindowAttribute(window, kDwmCaptionTextColour, &captionText, sizeof captionText);
}

HFONT MakeThemeFont(int32_t height, int32_t weight, bool mono) {
    return CreateFontW(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, mono ? FIXED_PITCH : 0, mono ? L"Cascadia Mono" : L"Segoe UI");
}

}  // namespace veltor
