#include "FaultFile.h"

#include <cwchar>
#include <string_view>

#include "CallLog.h"

namespace virtualwheel {

namespace {
constexpr int64_t kLookMicroseconds = 20000;
constexpr DWORD kMaxFaultText = 1024;  // bytes; sixteen spans fit many times over
}  // namespace

FaultFile::FaultFile(const wchar_t* file) { std::wcsncpy(path, file, MAX_PATH - 1); }

const FaultPlan& FaultFile::Poll(int64_t nowMicroseconds) {
    if (path[0] == L'\0' || (looked && nowMicroseconds - lookedMicroseconds < kLookMicroseconds)) return plan;
    looked = true;
    lookedMicroseconds = nowMicroseconds;
    Read();
    return plan;
}

void FaultFile::Read() {
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (!GetFileAttributesExW(path, GetFileExInfoStandard, &attributes)) {
        if (plan.SpanCount() > 0 || plan.RejectedCount() > 0) LogCall("FaultFile gone");
        plan.Parse({});
        written = {};
        return;
    }
    if (CompareFileTime(&attributes.ftLastWriteTime, &written) == 0) return;
    char text[kMaxFaultText] = {};
    DWORD read = 0;
    HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;  // taken again at the next look
    const bool whole = ReadFile(file, text, kMaxFaultText - 1, &read, nullptr) != 0;
    CloseHandle(file);
    if (!whole) return;
    written = attributes.ftLastWriteTime;
    plan.Parse(std::string_view(text, read));
    LogCall("FaultFile spans=%d rejected=%d", plan.SpanCount(), plan.RejectedCount());
}

}  // namespace virtualwheel
