#pragma once
#include <windows.h>

namespace veltor {

// The procedure of "VeltorCommercialWindow": keeps the App pointer of the create parameter in
// GWLP_USERDATA and hands every message to App::WindowProcedure, or to DefWindowProcW before it is there.
LRESULT CALLBACK MainWindowTrampoline(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace veltor
