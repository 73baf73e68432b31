#include "app/App.h"
#include "update/UpdateFlow.h"

namespace veltor {
namespace {

// What the update flow needs of the running program.
class WindowDesk {
public:
    explicit WindowDesk(App& app) : app(app) {}

    HttpResult Get(const std::wstring& host, const std::wstring& pathAndQuery) { return HttpsGet(host, pathAndQuery); }
    void Log(const std::wstring& text) { app.AppendLog(text); }
    bool NoticeCanShow() { return IsWindowVisible(app.Window) && !IsIconic(app.Window); }
    void Inform(const std::wstring& text) { MessageBoxW(app.Window, text.c_str(), L"Gripline", MB_OK | MB_ICONINFORMATION); }
    bool Ask(const std::wstring& text) {
        return MessageBoxW(app.Window, text.c_str(), L"Gripline", MB_YESNO | MB_ICONQUESTION) == IDYES;
    }
    std::wstring AppPath() {
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        return path;
    }
    std::wstring AnalyzerPath() { return AnalyzerExePath(); }
    bool TempFolder(std::wstring& folder) {
        wchar_t path[MAX_PATH] = {};
        const DWORD length = GetTempPathW(MAX_PATH, path);
        if (length == 0 || length >= MAX_PATH) return false;
        folder = path;
        return true;
    }
    bool StartRestartScript(const std::wstring& newApp, const std::wstring& appPath, const std::wstring& newAnalyzer,
                            const std::wstring& analyzer, std::wstring& error) {
        return WriteRestartScript(app.Window, newApp, appPath, newAnalyzer, analyzer, error);
    }
    // Posted, not sent: the close runs the normal teardown once the flow has returned to the loop.
    void Close() { PostMessageW(app.Window, WM_CLOSE, 0, 0); }

private:
    App& app;
};

}  // namespace

void App::NotifyUpdateAtStart() {
    WindowDesk desk(*this);
    veltor::NotifyUpdateAtStart(desk);
}

void App::RunUpdate() {
    WindowDesk desk(*this);
    veltor::RunUpdate(desk);
}

}  // namespace veltor
