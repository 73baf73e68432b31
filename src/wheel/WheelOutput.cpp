#include "wheel/WheelOutput.h"

namespace veltor {

bool WheelOutput::Open(WindowHandle windowHandle, const DeviceGuid* deviceGuid) {
    Close();
    lastError.store(0);
    errorCount.store(0);
    window = windowHandle;
    if (deviceGuid != nullptr) device = *deviceGuid;
    open = true;
    return true;
}

void WheelOutput::Close() {
    commandedForce.store(0);
    open = false;
}

}  // namespace veltor
