#include "app/DarkCaption.h"

#include <dwmapi.h>

#include "app/Theme.h"

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

}  // namespace veltor
