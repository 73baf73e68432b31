#include "ButtonSchedule.h"

#include <algorithm>
#include <mutex>
#include <string>

#include "CallLog.h"

namespace virtualwheel {

namespace {

constexpr int64_t kFileLookMicroseconds = 20000;
constexpr DWORD kMaxPlanText = 4096;
constexpr BYTE kHeld = 0x80;

std::string Narrow(const wchar_t* text) {
    std::string narrow;
    for (; *text != L'\0'; ++text) narrow.push_back(*text < 128 ? static_cast<char>(*text) : '?');
    return narrow;
}

// The file's whole text; false when it can't be read now.
bool ReadText(const wchar_t* path, std::string& text) {
    HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    text.assign(kMaxPlanText, '\0');
    DWORD read = 0;
    const bool whole = ReadFile(file, text.data(), kMaxPlanText, &read, nullptr) != 0;
    CloseHandle(file);
    text.resize(read);
    return whole;
}

class Schedule {
public:
    Schedule() {
        wchar_t value[kMaxPlanText];
        const DWORD length = GetEnvironmentVariableW(L"VIRTUALWHEEL_BUTTONS", value, kMaxPlanText);
        if (length > 0 && length < kMaxPlanText) fixed.Parse(Narrow(value));
        const DWORD pathLength = GetEnvironmentVariableW(L"VIRTUALWHEEL_BUTTON_FILE", path, MAX_PATH);
        if (pathLength >= MAX_PATH) path[0] = L'\0';
    }

    // What either plan says at this moment, asked of each under the lock.
    template <class Question>
    void Ask(Question question) {
        const int64_t now = NowMicroseconds();
        std::lock_guard guard(lock);
        if (fixedStart < 0) fixedStart = now;
        LookAtFile(now);
        question(fixed, (now - fixedStart) / 1000);
        if (fileStart >= 0) question(switched, (now - fileStart) / 1000);
    }

private:
    // A new text restarts the file's plan; a file that went away ends it.
    void LookAtFile(int64_t now) {
        if (path[0] == L'\0' || (lookedAt >= 0 && now - lookedAt < kFileLookMicroseconds)) return;
        lookedAt = now;
        std::string read;
        if (GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) {
            text.clear();
            fileStart = -1;
            return;
        }
        if (!ReadText(path, read) || read == text) return;
        text = read;
        switched.Parse(text);
        fileStart = now;
        LogCall("ButtonFile spans=%d rejected=%d", switched.SpanCount(), switched.RejectedCount());
    }

    std::mutex lock;
    ButtonPlan fixed;
    int64_t fixedStart = -1;
    wchar_t path[MAX_PATH] = {};
    std::string text;
    ButtonPlan switched;
    int64_t fileStart = -1;
    int64_t lookedAt = -1;
};

Schedule& TheSchedule() {
    static Schedule schedule;
    return schedule;
}

}  // namespace

void FillButtons(VirtualController controller, BYTE* buttons, size_t count) {
    const size_t known = std::min(count, static_cast<size_t>(ButtonPlan::kButtons));
    std::fill(buttons, buttons + count, BYTE{0});
    TheSchedule().Ask([&](const ButtonPlan& plan, int64_t ms) {
        for (size_t i = 0; i < known; ++i) {
            if (plan.Held(controller, static_cast<int32_t>(i), ms)) buttons[i] = kHeld;
        }
    });
}

bool ControllerUnplugged(VirtualController controller) {
    bool unplugged = false;
    TheSchedule().Ask([&](const ButtonPlan& plan, int64_t ms) { unplugged = unplugged || plan.Unplugged(controller, ms); });
    return unplugged;
}

}  // namespace virtualwheel
