#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace veltor {

// The update files wait in the temporary folder under fixed names; a later run overwrites them.
inline constexpr wchar_t kNewAppFileName[] = L"Veltor_Commercial.update.exe";
inline constexpr wchar_t kNewAnalyzerFileName[] = L"Veltor_Commercial_Analyzer.update.exe";
inline constexpr wchar_t kAnalyzerFileName[] = L"Veltor Commercial Analyzer.exe";

inline constexpr wchar_t kScriptTempPathError[] = L"Could not resolve a temporary path for the updater.";
inline constexpr wchar_t kScriptWriteError[] = L"Could not write the updater restart script.";
inline constexpr wchar_t kScriptStartError[] = L"Could not start the updater restart script.";

// The batch script that replaces the program and its analyzer once the program has ended: CR LF lines,
// no byte order mark, the four paths as UTF-8.
std::string RestartScriptText(std::string_view newApp, std::string_view app, std::string_view newAnalyzer,
                              std::string_view analyzer);
// "<temporary folder>Veltor-Commercial-Update-<tick>.cmd"; the folder ends in its backslash.
std::wstring RestartScriptPath(std::wstring_view tempFolder, uint32_t tickCount);
// True when cmd.exe reads the path back from the script as it was written: printable ASCII only (cmd
// decodes a script in the console's code page, not as UTF-8), and no "%" or "!", which it would expand.
bool IsScriptSafePath(std::wstring_view path);

// Windows only. Writes the script for these four paths to the temporary folder and starts it hidden
// through cmd.exe; `parentWindow` is the HWND that owns the start. A path that is not script-safe goes in
// by its short name; where that is not safe either, nothing is written or started. On failure `error`
// holds the reason.
bool WriteRestartScript(void* parentWindow, const std::wstring& newApp, const std::wstring& app,
                        const std::wstring& newAnalyzer, const std::wstring& analyzer, std::wstring& error);
// The analyzer's executable beside this program's.
std::wstring AnalyzerExePath();

}  // namespace veltor
