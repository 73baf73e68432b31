// Start and Stop, the recording, the analyzer and the log window.
#include "app/App.h"

#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <cwchar>

#include "app/RecordingName.h"
#include "app/StatusReport.h"
#include "update/RestartScript.h"

namespace veltor {
namespace {

constexpr DWORD kSaveDialogFlags = 0x802;  // OFN_OVERWRITEPROMPT, OFN_PATHMUSTEXIST
constexpr size_t kRecordingPathChars = 260;
constexpr wchar_t kRecordingFilter[] =
    L"Veltor telemetry recording (*.vtrrec)\0*.vtrrec\0All files (*.*)\0*.*\0";
constexpr DWORD kLogWindowExStyle = 0x40000;    // WS_EX_APPWINDOW
constexpr DWORD kLogWindowStyle = 0x00FF08C4;   // overlapped, both scroll bars, multi-line, read-only
constexpr wchar_t kLogWindowTitle[] = L"Veltor Session Log";
constexpr int kLogWindowWidth = 900;
constexpr int kLogWindowHeight = 520;

void ShowRunningButtons(App& app, bool running) {
    EnableWindow(app.StartButton, !running);
    EnableWindow(app.StopButton, running);
    EnableWindow(app.RecordButton, running);
    EnableWindow(app.StopRecButton, FALSE);
}

// The save dialog's answer, or empty when the user cancelled.
std::wstring AskRecordingPath(HWND owner, const std::wstring& proposed) {
    wchar_t path[kRecordingPathChars] = {};
    proposed.copy(path, kRecordingPathChars - 1);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kRecordingFilter;
    dialog.lpstrFile = path;
    dialog.nMaxFile = kRecordingPathChars;
    dialog.lpstrDefExt = L"vtrrec";
    dialog.Flags = kSaveDialogFlags;
    return GetSaveFileNameW(&dialog) ? std::wstring(path) : std::wstring();
}

}  // namespace

void App::StartEngine() {
    const int32_t device = static_cast<int32_t>(SendMessageW(DeviceCombo, CB_GETCURSEL, 0, 0));
    if (device < 0 || device >= static_cast<int32_t>(Devices.size())) {
        AppendLog(L"Select a force feedback wheel first.");
        return;
    }
    // The list, not the record, says the mode: it shows index 0 until the settings were put on the controls.
    Store.CurrentSettings.Mode = static_cast<int32_t>(SendMessageW(OutputModeCombo, CB_GETCURSEL, 0, 0));
    Engine.Start(Store.CurrentSettings, Window, Devices[static_cast<size_t>(device)].instanceGuid);
    Meter.Reset();
    LastDeviceErrorStamp = 0;
    LastTrackStamp = 0;
    LastReportStamp = 0;
    ShowRunningButtons(*this, true);
    ShowTorqueField(Store.CurrentSettings.WheelbaseMaxTorqueTenths);
    AppendLog(L"FFB engine started.");
    AppendLog(Store.CurrentSettings.SimucubeMode ? L"Simucube mode enabled." : L"iRacing native FFB suppression enabled.");
}

// The recording ends first, then the engine thread, which gives the simulator its force back and releases
// the wheel on its way out.
void App::StopEngine() {
    if (Engine.IsRecording()) StopRecording();
    Engine.Stop();
    Meter.Reset();
    FollowMeterTimer(false);
    ShowRunningButtons(*this, false);
    SetStatusTexts(L"iRacing disconnected", L"Not on track", L"Car: generic");
    LastDeviceErrorStamp = 0;
    LastTrackStamp = 0;
    LastReportStamp = 0;
    AppendLog(L"FFB engine stopped.");
}

void App::StartRecording() {
    if (!Engine.IsRunning()) {
        AppendLog(L"Start the FFB engine before recording telemetry.");
        return;
    }
    Tracking().ApplyTorqueField();  // the header carries the torque that stands in the box
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const LocalTime time{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
    const std::wstring path = AskRecordingPath(Window, ProposedRecordingName(Store.CurrentCarPath, time));
    if (path.empty()) return;
    if (!Engine.BeginRecording(path, Tracking().ReadProfileNameField())) {
        AppendLog(L"Could not start telemetry recording. Enter the track first.");
        return;
    }
    LastRecordingPath = path;
    EnableWindow(RecordButton, FALSE);
    EnableWindow(StopRecButton, TRUE);
    EnableWindow(AnalyzerButton, FALSE);
    SetWindowTextW(RecordButton, L"Recording...");
    AppendLog(L"Telemetry recording started.");
}

void App::StopRecording() {
    if (!Engine.IsRecording()) return;
    const uint32_t dropped = Engine.EndRecording();
    EnableWindow(RecordButton, Engine.IsRunning());
    EnableWindow(StopRecButton, FALSE);
    EnableWindow(AnalyzerButton, TRUE);
    SetWindowTextW(RecordButton, L"Record");
    AppendLog(dropped != 0 ? L"Telemetry recording saved with dropped samples." : L"Telemetry recording saved.");
}

void App::LaunchAnalyzer() {
    const std::wstring analyzer = AnalyzerExePath();
    if (GetFileAttributesW(analyzer.c_str()) == INVALID_FILE_ATTRIBUTES) {
        AppendLog(L"The Veltor Analyzer executable was not found next to the app.");
        return;
    }
    const std::wstring parameters = LastRecordingPath.empty() ? L"" : L"\"" + LastRecordingPath + L"\"";
    ShellExecuteW(Window, L"open", analyzer.c_str(), parameters.empty() ? nullptr : parameters.c_str(), nullptr,
                  SW_SHOWNORMAL);
}

// A top-level edit control with a copy of the whole log; closing it destroys it, and the stale handle
// counts as no window.
void App::ShowLogWindow() {
    if (LogWindow != nullptr && IsWindow(LogWindow)) {
        ShowWindow(LogWindow, SW_SHOWNORMAL);
        SetForegroundWindow(LogWindow);
        return;
    }
    LogWindow = CreateWindowExW(kLogWindowExStyle, L"Edit", kLogWindowTitle, kLogWindowStyle, CW_USEDEFAULT,
                                CW_USEDEFAULT, kLogWindowWidth, kLogWindowHeight, Window, nullptr, Instance, nullptr);
    if (LogWindow == nullptr) return;
    // An edit control keeps the name it was created with as its content; some systems leave the caption
    // empty then. The default procedure sets the caption alone.
    DefWindowProcW(LogWindow, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(kLogWindowTitle));
    SendMessageW(LogWindow, WM_SETFONT, reinterpret_cast<WPARAM>(MonoFont.Get()), TRUE);
    SendMessageW(LogWindow, EM_SETLIMITTEXT, 0, 0);  // no cap of the control's own on a long session
    // Replacing the selection, unlike WM_SETTEXT, leaves the caption alone.
    const std::wstring text = WholeText(LogEdit);
    SendMessageW(LogWindow, EM_SETSEL, 0, -1);
    SendMessageW(LogWindow, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
    ScrollToEnd(LogWindow);
    ShowWindow(LogWindow, SW_SHOWNORMAL);
    SetForegroundWindow(LogWindow);
}

void App::LogClippingReport(const EngineStatus& status) { LogNewClippingReport(*this, status); }

}  // namespace veltor
