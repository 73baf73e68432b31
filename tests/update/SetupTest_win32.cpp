// The setup as a driver meets it: scripts/installer.nsi built at build time into two setups, the release
// (this build's Gripline.exe and analyzer, 0.1.0.134) and a newer one (gripline_loopback_next as
// Gripline.exe, 0.1.0.135), each run silently under Wine for the current user; the installed program
// started from its folder; the uninstaller that the system's list of programs names.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "ProgramWindow_win32.h"

namespace veltor::test {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kSetupDeadlineMs = 120000;  // a cold prefix; a refused setup waits 10 s for the files first
constexpr wchar_t kUninstallKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Gripline";
constexpr wchar_t kAnalyzer[] = L"Veltor Commercial Analyzer.exe";

fs::path KnownFolder(REFKNOWNFOLDERID id) {
    wchar_t* path = nullptr;
    fs::path folder;
    if (SHGetKnownFolderPath(id, 0, nullptr, &path) == S_OK) folder = path;
    CoTaskMemFree(path);
    return folder;
}

const fs::path kInstallFolder = KnownFolder(FOLDERID_LocalAppData) / L"Programs" / L"Gripline";
const fs::path kShortcut = KnownFolder(FOLDERID_Programs) / L"Gripline.lnk";

// A text value of the uninstall key, or "(none)".
std::wstring UninstallValue(const wchar_t* name) {
    wchar_t text[1024] = {};
    DWORD size = sizeof text;
    const bool found = RegGetValueW(HKEY_CURRENT_USER, kUninstallKey, name, RRF_RT_REG_SZ, nullptr, text, &size) ==
                       ERROR_SUCCESS;
    return found ? text : L"(none)";
}

DWORD UninstallNumber(const wchar_t* name) {
    DWORD value = 0;
    DWORD size = sizeof value;
    RegGetValueW(HKEY_CURRENT_USER, kUninstallKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return value;
}

bool UninstallKeyExists() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kUninstallKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

std::set<std::wstring> FolderFiles() {
    std::set<std::wstring> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(kInstallFolder, missing)) names.insert(entry.path().filename());
    return names;
}

long RunSilently(const std::wstring& exe) { return Process(exe, L"/S").WaitForExit(kSetupDeadlineMs); }

// What an earlier run that died left behind goes first.
void RemoveInstallation() {
    std::error_code ignored;
    fs::remove_all(kInstallFolder, ignored);
    fs::remove(kShortcut, ignored);
    RegDeleteTreeW(HKEY_CURRENT_USER, kUninstallKey);
}

// The driver's own files, which the setup must never touch: profiles that the program loads (and writes
// back when it closes) and a recording.
constexpr char kDriverProfiles[] = "[Profiles]\r\nCount=1\r\nSelected=0\r\n[Profile0]\r\nName=Setup Driver\r\n"
                                   "ForceStrength=73\r\n";
constexpr wchar_t kRecording[] = L"Lap 1.vtrrec";

TEST(Setup, InstallsForTheUserUpgradesOverTheRunningProgramAndUninstallsKeepingTheDriversFiles) {
    RemoveInstallation();
    const fs::path app = kInstallFolder / L"Gripline.exe";
    const fs::path analyzer = kInstallFolder / kAnalyzer;
    const std::string releaseApp = ReadAll(ProgramPath(VELTOR_RELEASE_APP_EXE));
    const std::string releaseAnalyzer = ReadAll(ProgramPath(VELTOR_RELEASE_ANALYZER_EXE));

    // The release, silently: both programs, the uninstaller, the shortcut and the system's entry.
    ASSERT_EQ(RunSilently(ProgramPath(VELTOR_SETUP_EXE)), 0);
    EXPECT_EQ(FolderFiles(), (std::set<std::wstring>{L"Gripline.exe", kAnalyzer, L"Uninstall.exe"}));
    EXPECT_TRUE(ReadAll(app) == releaseApp) << "Gripline.exe is not the release's";
    EXPECT_TRUE(ReadAll(analyzer) == releaseAnalyzer) << "the analyzer is not the release's";
    EXPECT_TRUE(fs::exists(kShortcut)) << kShortcut;
    const std::wstring uninstaller = (kInstallFolder / L"Uninstall.exe").wstring();
    const struct {
        const wchar_t* name;
        std::wstring value;
    } entries[] = {
        {L"DisplayName", L"Gripline"},
        {L"DisplayVersion", L"0.1.0.134"},
        {L"Publisher", L"Gripline"},
        {L"InstallLocation", kInstallFolder.wstring()},
        {L"UninstallString", L"\"" + uninstaller + L"\""},
        {L"QuietUninstallString", L"\"" + uninstaller + L"\" /S"},
    };
    for (const auto& entry : entries) EXPECT_EQ(UninstallValue(entry.name), entry.value) << entry.name;
    const uintmax_t programBytes = fs::file_size(app) + fs::file_size(analyzer) + fs::file_size(uninstaller);
    EXPECT_EQ(UninstallNumber(L"EstimatedSize"), programBytes / 1024);

    // A program file in use without a window (held as a running program holds it): the newer setup waits,
    // then gives up with exit code 2 and changes nothing.
    {
        HANDLE held =
            CreateFileW(analyzer.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        EXPECT_EQ(RunSilently(ProgramPath(VELTOR_NEXT_SETUP_EXE)), 2);
        CloseHandle(held);
    }
    EXPECT_TRUE(ReadAll(app) == releaseApp) << "Gripline.exe was replaced while the analyzer was in use";
    EXPECT_EQ(UninstallValue(L"DisplayVersion"), L"0.1.0.134");

    // Between the two installs the driver has profiles and a recording, and Gripline runs.
    std::ofstream(kInstallFolder / L"Veltor_profiles.ini", std::ios::binary) << kDriverProfiles;
    std::ofstream(kInstallFolder / kRecording, std::ios::binary) << "VTRREC1 a lap";
    {
        Process running(app.wstring(), L"");
        const HWND window = WaitForPaintedWindow(L"VeltorCommercialWindow", running.info.dwProcessId, L"v0.1.0.134");
        ASSERT_NE(window, nullptr) << "the installed program showed no window";

        // The newer setup asks it to close, as its close box does (it saves the profiles), then upgrades.
        EXPECT_EQ(RunSilently(ProgramPath(VELTOR_NEXT_SETUP_EXE)), 0);
        EXPECT_EQ(running.WaitForExit(), 0) << "Gripline did not close by itself";
    }
    EXPECT_TRUE(ReadAll(app) == ReadAll(ProgramPath(VELTOR_NEXT_APP_EXE))) << "Gripline.exe was not upgraded";
    EXPECT_TRUE(ReadAll(analyzer) == releaseAnalyzer);
    EXPECT_EQ(UninstallValue(L"DisplayVersion"), L"0.1.0.135");
    const std::string profiles = ReadAll(kInstallFolder / L"Veltor_profiles.ini");
    const std::wstring profileText(reinterpret_cast<const wchar_t*>(profiles.data()), profiles.size() / 2);  // UTF-16
    EXPECT_NE(profileText.find(L"Name=Setup Driver\r\n"), std::wstring::npos) << "the driver's profiles are gone";
    EXPECT_NE(profileText.find(L"ForceStrength=73\r\n"), std::wstring::npos);

    // Uninstalled as the system's list of programs does it: the uninstaller runs on from a copy of itself,
    // so the test waits for its work rather than its process.
    const std::wstring uninstallCommand = UninstallValue(L"UninstallString");
    ASSERT_EQ(Process(uninstallCommand.substr(1, uninstallCommand.size() - 2), L"/S").WaitForExit(kSetupDeadlineMs), 0);
    const std::set<std::wstring> driversFiles = {L"Veltor_profiles.ini", kRecording};
    EXPECT_TRUE(WaitUntil([&] { return FolderFiles() == driversFiles && !UninstallKeyExists(); }, kSetupDeadlineMs))
        << FolderFiles().size() << " files left";
    EXPECT_TRUE(ReadAll(kInstallFolder / L"Veltor_profiles.ini") == profiles) << "the uninstaller changed the profiles";
    EXPECT_FALSE(fs::exists(kShortcut));
    RemoveInstallation();
}

}  // namespace
}  // namespace veltor::test
