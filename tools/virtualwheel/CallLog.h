#pragma once
#include <cstdint>

namespace virtualwheel {

// Microseconds on the engine's steady clock (the performance counter): the clock the program under test
// reads, so a test can line the log up with its own times.
int64_t NowMicroseconds();

// One line per call that matters, "<microseconds> <text>", to the file named by VIRTUALWHEEL_LOG (nothing
// when it is unset). Safe from any thread; each line is flushed so a reader sees it at once.
void LogCall(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(gnu_printf, 1, 2)))
#endif
    ;

}  // namespace virtualwheel
