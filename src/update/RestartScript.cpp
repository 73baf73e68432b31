#include "update/RestartScript.h"

namespace veltor {

std::string RestartScriptText(std::string_view newApp, std::string_view app, std::string_view newAnalyzer,
                              std::string_view analyzer) {
    const auto q = [](std::string_view path) {
        std::string quoted(1, '"');
        quoted.append(path).push_back('"');
        return quoted;
    };
    const std::string lines[] = {
        "@echo off",
        "setlocal EnableDelayedExpansion",
        "set tries=0",
        ":retry_app",
        // Ahead of the first copy too: the closing program needs a moment to let go of its file.
        "ping 127.0.0.1 -n 2 >nul",
        "copy /Y " + q(newApp) + " " + q(app) + " >nul",
        "if errorlevel 1 (",
        "  set /a tries+=1",
        "  if !tries! GEQ 10 exit /b 1",
        "  goto retry_app",
        ")",
        "set tries=0",
        ":retry_analyzer",
        "copy /Y " + q(newAnalyzer) + " " + q(analyzer) + " >nul",
        "if errorlevel 1 (",
        "  set /a tries+=1",
        "  if !tries! GEQ 10 exit /b 1",
        "  ping 127.0.0.1 -n 2 >nul",
        "  goto retry_analyzer",
        ")",
        "del " + q(newApp) + " >nul 2>nul",
        "del " + q(newAnalyzer) + " >nul 2>nul",
        "start \"\" " + q(app),
        "del \"%~f0\"",
    };
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
}

std::wstring RestartScriptPath(std::wstring_view tempFolder, uint32_t tickCount) {
    return std::wstring(tempFolder) + L"Veltor-Commercial-Update-" + std::to_wstring(tickCount) + L".cmd";
}

bool IsScriptSafePath(std::wstring_view path) {
    for (const wchar_t c : path) {
        if (c < 0x20 || c > 0x7E || c == L'%' || c == L'!' || c == L'"') return false;
    }
    return !path.empty();
}

}  // namespace veltor
