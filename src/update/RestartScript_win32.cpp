#include <windows.h>
#include <shellapi.h>
#include <shlwapi.h>

#include "platform/TextConversion.h"
#include "update/RestartScript.h"
#include "update/WriteBytes.h"

namespace veltor {
namespace {

// The path as the script can carry it: itself, or else its short name. A file that does not exist yet
// (an analyzer that the update adds) goes in by its folder's short name.
bool ScriptPathFor(const std::wstring& path, std::wstring& usable) {
    if (IsScriptSafePath(path)) {
        usable = path;
        return true;
    }
    wchar_t shortPath[MAX_PATH] = {};
    DWORD length = GetShortPathNameW(path.c_str(), shortPath, MAX_PATH);
    if (length > 0 && length < MAX_PATH) {
        usable = shortPath;
    } else {
        const size_t slash = path.find_last_of(L"\\/");
        if (slash == std::wstring::npos) return false;
        length = GetShortPathNameW(path.substr(0, slash).c_str(), shortPath, MAX_PATH);
        if (length == 0 || length >= MAX_PATH) return false;
        usable = std::wstring(shortPath) + path.substr(slash);
    }
    return IsScriptSafePath(usable);
}

}  // namespace

bool WriteRestartScript(void* parentWindow, const std::wstring& newApp, const std::wstring& app,
                        const std::wstring& newAnalyzer, const std::wstring& analyzer, std::wstring& error) {
    wchar_t tempFolder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, tempFolder);
    if (length == 0 || length >= MAX_PATH) {
        error = kScriptTempPathError;
        return false;
    }
    const std::wstring scriptPath = RestartScriptPath(tempFolder, GetTickCount());
    // A script that cmd.exe would misread could not replace the program once it has closed: better to
    // keep it running in its old version.
    std::wstring paths[4];
    const bool usable = ScriptPathFor(newApp, paths[0]) && ScriptPathFor(app, paths[1]) &&
                        ScriptPathFor(newAnalyzer, paths[2]) && ScriptPathFor(analyzer, paths[3]);
    const std::string text = RestartScriptText(WideToUtf8(paths[0]), WideToUtf8(paths[1]), WideToUtf8(paths[2]),
                                               WideToUtf8(paths[3]));
    if (!usable || !WriteText(scriptPath, text)) {
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
