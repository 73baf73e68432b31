#include <windows.h>
#include <timeapi.h>

#include "platform/ThreadControl.h"

namespace veltor {

void SetCurrentThreadPriorityHighest() { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST); }
void SetCurrentThreadPriorityBelowNormal() { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL); }
void BeginSystemTimerPeriod() { timeBeginPeriod(1); }
void EndSystemTimerPeriod() { timeEndPeriod(1); }

}  // namespace veltor
