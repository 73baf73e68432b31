#pragma once

namespace veltor {

// The main window, as an opaque handle (an HWND on Windows), so portable code can carry it.
using WindowHandle = void*;

}  // namespace veltor
