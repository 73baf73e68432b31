#pragma once
#include <windows.h>

#include <cstdint>

namespace veltor {

// Sent to the parent when the user changed a slider: wParam the new value, lParam the slider.
inline constexpr UINT SliderValueChanged = WM_APP + 1;

// The state behind one "VeltorSlider"; App owns it, the control keeps a pointer in GWLP_USERDATA.
struct SliderRow {
    HWND Control = nullptr;
    HWND ValueLabel = nullptr;
    int32_t Minimum = 0;
    int32_t Maximum = 0;
    int32_t Value = 0;
    bool Hover = false;
    bool Dragging = false;

    // The control's messages, through the trampoline of its class.
    LRESULT Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam);
};

bool RegisterSliderClass(HINSTANCE instance, HBRUSH background);
void SetSliderValueClamped(SliderRow& row, int32_t newValue);
void SetSliderFromPoint(SliderRow& row, LPARAM point);

}  // namespace veltor
