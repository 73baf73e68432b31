#include <chrono>
#include <thread>

#include "HarnessWindow.h"

namespace veltor::harness {

WindowHandle CreateHarnessWindow() { return nullptr; }

void DestroyHarnessWindow(WindowHandle) {}

void PumpMessages(int32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

}  // namespace veltor::harness
