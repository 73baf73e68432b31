#pragma once
#include <cstdint>

#include "platform/WindowHandle.h"

// The harness's window: the engine hands it to DirectInput as the wheel's cooperative window.
// HarnessWindow_win32.cpp makes a hidden top-level window; the host twin has none and only waits.
namespace veltor::harness {

WindowHandle CreateHarnessWindow();
void DestroyHarnessWindow(WindowHandle window);
// Dispatches the window's messages for about `milliseconds`.
void PumpMessages(int32_t milliseconds);

}  // namespace veltor::harness
