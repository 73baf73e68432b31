#pragma once
#include <cstdint>

#if defined(_M_X64) || defined(__x86_64__) || defined(_M_IX86) || defined(__i386__)
#include <immintrin.h>
#endif

// The steady clock every thread paces itself by, in nanoseconds. On Windows it is the
// performance counter; host builds use the monotonic clock.
namespace veltor {

int64_t SteadyNowNanoseconds();
// A plain sleep, for waits whose precision does not matter; paced waits go through a Pacer.
void SleepMilliseconds(int32_t milliseconds);

// The processor's pause hint, issued between readings of a spin wait.
inline void CpuPauseHint() {
#if defined(_M_X64) || defined(__x86_64__) || defined(_M_IX86) || defined(__i386__)
    _mm_pause();
#endif
}

}  // namespace veltor
