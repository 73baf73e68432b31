#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "CallLog.h"
#include "platform/SteadyClock.h"

namespace virtualwheel {

namespace {
struct LogFile {
    std::mutex lock;
    FILE* file = nullptr;
    bool opened = false;
};

LogFile& TheLog() {
    static LogFile log;
    return log;
}

FILE* OpenFromEnvironment() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return nullptr;
    return _wfopen(path, L"ab");
}
}  // namespace

int64_t NowMicroseconds() { return veltor::SteadyNowNanoseconds() / 1000; }

void LogCall(const char* format, ...) {
    const int64_t now = NowMicroseconds();
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    LogFile& log = TheLog();
    std::lock_guard guard(log.lock);
    if (!log.opened) {
        log.file = OpenFromEnvironment();
        log.opened = true;
    }
    if (log.file == nullptr) return;
    std::fprintf(log.file, "%lld %s\n", static_cast<long long>(now), text);
    std::fflush(log.file);
}

}  // namespace virtualwheel
