#pragma once

// Thread priority and the system timer period, which only Windows lets a program set.
namespace veltor {

void SetCurrentThreadPriorityHighest();      // THREAD_PRIORITY_HIGHEST
void SetCurrentThreadPriorityBelowNormal();  // THREAD_PRIORITY_BELOW_NORMAL
void BeginSystemTimerPeriod();               // timeBeginPeriod(1)
void EndSystemTimerPeriod();                 // timeEndPeriod(1)

}  // namespace veltor
