#pragma once
#include <windows.h>

namespace veltor {

// The procedure of every window class whose windows each belong to one object: the object comes as the
// create parameter and is kept in GWLP_USERDATA; every message goes to its Procedure, or to DefWindowProcW
// before it is there.
template <class Owner>
LRESULT CALLBACK WindowTrampoline(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* owner = reinterpret_cast<Owner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return owner != nullptr ? owner->Procedure(window, message, wParam, lParam)
                            : DefWindowProcW(window, message, wParam, lParam);
}

// A class of custom controls whose rows take their messages through the trampoline; the hand cursor.
template <class Row>
bool RegisterControlClass(HINSTANCE instance, HBRUSH background, const wchar_t* name) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowTrampoline<Row>;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_HAND);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = name;
    return RegisterClassExW(&windowClass) != 0;
}

// The mouse came over a control: asks for the leave message once, and says whether the hover just began.
inline bool BeginHover(HWND control, bool& hover) {
    if (hover) return false;
    hover = true;
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, control, 0};
    TrackMouseEvent(&track);
    return true;
}

}  // namespace veltor
