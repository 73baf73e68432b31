#include <windows.h>

#include <cstring>
#include <future>
#include <mutex>
#include <thread>

#include "SimulatorPublisher.h"

namespace veltor::sim::publisher {
namespace {

constexpr WORD kForceFeedbackCommand = 11;  // low word of the broadcast's first parameter
constexpr wchar_t kListenerClass[] = L"VeltorSimulatorListener";

HANDLE gMapping = nullptr;  // simulator loop only, like the view and the event
HANDLE gEvent = nullptr;
void* gView = nullptr;

struct Listener {
    std::mutex lock;                // guards values
    std::vector<int32_t> values;    // window thread appends, simulator loop takes
    UINT message = 0;               // set before the window exists
    DWORD threadId = 0;             // window thread's id, for its WM_QUIT
    std::thread thread;             // simulator loop starts and joins it
};
Listener gListener;

LRESULT CALLBACK ListenerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != 0 && message == gListener.message) {
        if (LOWORD(wParam) == kForceFeedbackCommand) {
            std::lock_guard guard(gListener.lock);
            gListener.values.push_back(static_cast<int32_t>(lParam));
        }
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// A broadcast reaches top-level windows only, so the listener is a hidden top-level window (a
// message-only window would never hear it), with its own thread to pump messages.
void ListenerThread(std::promise<bool>* ready) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = ListenerProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kListenerClass;
    RegisterClassW(&windowClass);
    HWND window = CreateWindowExW(0, kListenerClass, L"Veltor simulator", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                  nullptr, nullptr, windowClass.hInstance, nullptr);
    gListener.threadId = GetCurrentThreadId();
    ready->set_value(window != nullptr);
    if (window == nullptr) return;
    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0) DispatchMessageW(&msg);
    DestroyWindow(window);
}

}  // namespace

uint8_t* Publish(size_t size, uint32_t& error) {
    Withdraw();
    const auto size64 = static_cast<uint64_t>(size);
    gMapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, static_cast<DWORD>(size64 >> 32),
                                  static_cast<DWORD>(size64), L"Local\\IRSDKMemMapFileName");
    if (gMapping != nullptr) gView = MapViewOfFile(gMapping, FILE_MAP_ALL_ACCESS, 0, 0, size);
    if (gMapping == nullptr || gView == nullptr) {
        error = GetLastError();
        Withdraw();
        return nullptr;
    }
    error = 0;
    // A reader that kept the old object open hands it back to us with its old contents.
    std::memset(gView, 0, size);
    return static_cast<uint8_t*>(gView);
}

bool Announce(uint32_t& error) {
    // Auto-reset: each set wakes one waiter, as the simulator's own event does.
    gEvent = CreateEventW(nullptr, FALSE, FALSE, L"Local\\IRSDKDataValidEvent");
    error = gEvent != nullptr ? 0 : GetLastError();
    if (gEvent == nullptr) Withdraw();
    return gEvent != nullptr;
}

void Withdraw() {
    if (gView != nullptr) UnmapViewOfFile(gView);
    if (gMapping != nullptr) CloseHandle(gMapping);
    if (gEvent != nullptr) CloseHandle(gEvent);
    gView = nullptr;
    gMapping = nullptr;
    gEvent = nullptr;
}

void SignalDataValid() {
    if (gEvent != nullptr) SetEvent(gEvent);
}

bool StartListening() {
    StopListening();
    gListener.message = RegisterWindowMessageW(L"IRSDK_BROADCASTMSG");
    if (gListener.message == 0) return false;
    std::promise<bool> ready;
    std::future<bool> made = ready.get_future();
    gListener.thread = std::thread(ListenerThread, &ready);
    if (made.get()) return true;
    gListener.thread.join();
    return false;
}

void StopListening() {
    if (!gListener.thread.joinable()) return;
    PostThreadMessageW(gListener.threadId, WM_QUIT, 0, 0);
    gListener.thread.join();
}

void TakeBroadcasts(std::vector<int32_t>& values) {
    std::lock_guard guard(gListener.lock);
    values.swap(gListener.values);
    gListener.values.clear();
}

}  // namespace veltor::sim::publisher
