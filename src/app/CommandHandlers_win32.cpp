#include "app/App.h"

namespace veltor {

// The window keeps its rows and value texts current; the commands behind the controls come with the
// engine's controls, the profiles and the advice.
LRESULT App::OnCommand(WPARAM wParam, LPARAM lParam) {
    switch (LOWORD(wParam)) {
        case 1127: RunUpdate(); return 0;
        default: return DefWindowProcW(Window, WM_COMMAND, wParam, lParam);
    }
}

void App::OnTimer() {}

void App::OnSlider(HWND slider, int32_t value) {
    for (SliderRow& row : SliderRows) {
        if (row.Control != slider) continue;
        row.Value = value;
        FormatSliderValue(GetDlgCtrlID(slider), value);
        InvalidateRect(slider, nullptr, FALSE);
        return;
    }
}

// The control has flipped its row already.
void App::OnCheckbox(int32_t /*id*/) {}

void App::ReceiveAdvicePath(const std::wstring& path) { AppendLog(L"Advice file received: " + path); }

}  // namespace veltor
