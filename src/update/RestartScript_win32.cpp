#include <windows.h>
#include <shellapi.h>
#include <shlwapi.h>

#include "update/RestartScript.h"
#include "update/Utf8Text.h"
#include "update/WriteBytes.h"

namespace veltor {

bool WriteRestartScript(void* parentWindow, const std::wstring& newApp, const std::wstring& app,
                        const std::wstring& newAnalyzer, const std::wstring& analyzer, std::wstring& error) {
    wchar_t tempFolder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, tempFolder);
    if (length == 0 || length >= MAX_PATH) {
        error = kScriptTempPathError;
        return false;
    }
    const std::wstring scriptPath = RestartScriptPath(tempFolder, GetTickCount());
    const std::string text = RestartScriptText(WideToUtf8(newApp), WideToUtf8(app), WideToUtf8(newAnalyzer),
                                               WideToUtf8(analyzer));
    if (!WriteText(scriptPath, text)) {
        error = kScriptWriteError;
        return false;
    }
    const std::wstring parameters = L"/c \"" + scriptPath + L"\"";
    const HINSTANCE started = ShellExecuteW(static_cast<HWND>(parentWindow), L"open", L"cmd.exe", parameters.c_str(),
                                            nullptr, SW_HIDE);
    // ShellExecuteW reports success as a value above 32.
    if (reinterpret_cast<INT_PTR>(started) <= 32) {
        DeleteFileW(scriptPath.c_str());
        error = kScriptStartError;
        return false;
    }
    return true;
}

std::wstring AnalyzerExePath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    PathRemoveFileSpecW(path);
    return std::wstring(path) + L"\\" + kAnalyzerFileName;
}

}  // namespace veltor
