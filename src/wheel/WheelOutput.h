#pragma once
#include "wheel/BasicWheelOutput.h"
#include "wheel/DirectInputDevice.h"
#include "wheel/SteadyWheelClock.h"

namespace veltor {

// The product's wheel: DirectInput on Windows, the virtual wheel on hosts, paced by the steady clock.
using WheelOutput = BasicWheelOutput<DirectInputDevice, SteadyWheelClock>;

}  // namespace veltor
