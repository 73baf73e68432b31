#pragma once
#include <windows.h>

#include <cstdint>

#include "ButtonPlan.h"

namespace virtualwheel {

// The buttons of the process's virtual controllers, as two plans say (ButtonPlan's text):
//   VIRTUALWHEEL_BUTTONS       a plan whose times count from the first reading of any controller
//   VIRTUALWHEEL_BUTTON_FILE   a file whose plan counts from the moment its new text is read: a test or
//                              scripts/run writes "3@0+100" to press the wheel's fourth button now
// Safe from any thread; the file is looked at no more than every 20 ms.

// Sets the bytes of the buttons held now (0x80), for `count` buttons.
void FillButtons(VirtualController controller, BYTE* buttons, size_t count);
bool ControllerUnplugged(VirtualController controller);

}  // namespace virtualwheel
