#pragma once
#include <windows.h>

#include <cstdint>
#include <string>

namespace veltor {

// Sent to the parent when the user flipped a checkbox: wParam the control id, lParam the checkbox.
inline constexpr UINT CheckboxToggled = WM_APP + 2;

// The state behind one "VeltorCheckbox"; App owns it, the control keeps a pointer in GWLP_USERDATA.
struct CheckboxRow {
    HWND Control = nullptr;
    int32_t Id = 0;
    bool Checked = false;
    bool Hover = false;
    std::wstring Label;  // drawn beside the box; the window's own title stays empty

    // The control's messages, through the trampoline of its class.
    LRESULT Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam);
};

bool RegisterCheckboxClass(HINSTANCE instance, HBRUSH background);
void ToggleCheckbox(CheckboxRow& row);

}  // namespace veltor
