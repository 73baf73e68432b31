#pragma once
#include <windows.h>

#include <string>

// The probe's commands for the wheel buttons (WheelButtonsProbe_win32.cpp).
namespace sessionprobe {

// "bind BIND_ID BUTTON_FILE PRESS": opens "Wheel buttons..." from the window's system menu, presses the Bind
// button BIND_ID and then, through the virtual wheel's button file, the button PRESS ("3" on the wheel,
// "box:2" on the button box); prints the binding the dialog shows and closes it. 1 when nothing was bound.
int BindWheelButton(HWND window, int bindId, const std::wstring& buttonFile, const std::string& press);

}  // namespace sessionprobe
