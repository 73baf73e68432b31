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

}  // namespace veltor
