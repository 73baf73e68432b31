#include <sys/resource.h>
#include <unistd.h>

#include "platform/ThreadControl.h"

namespace veltor {

// Raising a thread needs privileges an ordinary user lacks; without them the default priority stays.
void SetCurrentThreadPriorityHighest() { setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), -10); }
// Lowering needs none: the writer yields to everything else, as on Windows.
void SetCurrentThreadPriorityBelowNormal() { setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 5); }
// Host timers are already fine-grained.
void BeginSystemTimerPeriod() {}
void EndSystemTimerPeriod() {}

}  // namespace veltor
