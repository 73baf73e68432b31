#include "app/App.h"

#include <shellapi.h>

#include <cwchar>

#include "app/ControlCatalogue.h"
#include "app/ControlIds.h"
#include "app/StatusReport.h"
#include "platform/SteadyClock.h"

namespace veltor {
namespace {

constexpr wchar_t kRunKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr wchar_t kRunValue[] = L"Veltor";
constexpr DWORD kModulePathChars = 260;

// The user's Run key starts the program, quoted, at log-on. A key that won't open changes nothing, and the
// switch keeps what the user chose.
void WriteRunOnStartup(bool on) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kRunKey, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
    if (on) {
        wchar_t path[kModulePathChars] = {};
        GetModuleFileNameW(nullptr, path, kModulePathChars);
        wchar_t quoted[kModulePathChars + 2] = {};
        std::swprintf(quoted, kModulePathChars + 2, L"\"%ls\"", path);
        const DWORD bytes = static_cast<DWORD>((std::wcslen(quoted) + 1) * sizeof(wchar_t));
        RegSetValueExW(key, kRunValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(quoted), bytes);
    } else {
        RegDeleteValueW(key, kRunValue);
    }
    RegCloseKey(key);
}

void OpenDonationPage(App& app) {
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(app.Window, L"open", kDonationPageUrl, nullptr, nullptr, SW_SHOWNORMAL));
    app.AppendLog(result > 32 ? L"Opened the PayPal donation page." : L"Could not open the donation page.");
}

int32_t Selection(HWND combo) { return static_cast<int32_t>(SendMessageW(combo, CB_GETCURSEL, 0, 0)); }

}  // namespace

LRESULT App::OnCommand(WPARAM wParam, LPARAM lParam) {
    const int32_t id = LOWORD(wParam);
    const UINT notification = HIWORD(wParam);
    switch (id) {
        case kStartButton: StartEngine(); return 0;
        case kStopButton: StopEngine(); return 0;
        case kOutputModeCombo:
            if (notification != CBN_SELCHANGE) break;
            if (Selection(OutputModeCombo) >= 0) Tracking().ChangeSetting(&EngineSettings::Mode, Selection(OutputModeCombo));
            return 0;
        case kProfileCombo:
            if (notification != CBN_SELCHANGE) break;
            Tracking().SelectProfile(Selection(ProfileCombo));
            return 0;
        case kNewButton: Tracking().NewProfile(); return 0;
        case kSaveButton: Tracking().SaveProfile(); return 0;
        case kViewLogButton: ShowLogWindow(); return 0;
        case kRecordButton: StartRecording(); return 0;
        case kStopRecButton: StopRecording(); return 0;
        case kAnalyzerButton: LaunchAnalyzer(); return 0;
        case kUpdateButton: RunUpdate(); return 0;
        case kDonateButton: OpenDonationPage(*this); return 0;
        case kTorqueEdit:
            if (notification != EN_KILLFOCUS) break;
            Tracking().ApplyTorqueField();
            return 0;
        default: break;
    }
    return DefWindowProcW(Window, WM_COMMAND, wParam, lParam);
}

// Every 250 ms, whether the engine runs or not: the car and the driver, the status strip, and the engine's
// reports that the log hasn't shown yet.
void App::OnTimer() {
    const EngineStatus status = Engine.CopyStatus();
    // After the copy: every output of a stint that the status says is over has been counted by now.
    Meter.Take(Engine.TakeOutputFigures(), SteadyNowNanoseconds());
    if (!status.onTrack) Meter.EndStint();
    FollowMeterTimer(status.onTrack && Engine.IsRunning());
    Tracking().PollStatus(status);
    const std::wstring third = L"Driver: " + Tracking().DriverDisplayName(status) + L" | Car: " + status.carPath;
    SetStatusTexts(status.connected ? L"iRacing connected" : L"iRacing disconnected",
                   status.onTrack ? L"On track" : L"Not on track", third);
    LogNewStatusReports(*this, status, Store.CurrentSettings.DebugLogging);
}

// The meter's own repaint, 30 times a second while on track; the status step paints it otherwise.
void App::OnMeterTimer() {
    Meter.Take(Engine.TakeOutputFigures(), SteadyNowNanoseconds());
    RECT client;
    GetClientRect(Window, &client);
    const RECT meter = ForceMeterArea(client);
    InvalidateRect(Window, &meter, FALSE);
}

void App::FollowMeterTimer(bool onTrack) {
    if (onTrack && !MeterTimerOn) MeterTimerOn = SetTimer(Window, kMeterTimerId, kMeterTimerMilliseconds, nullptr) != 0;
    if (!onTrack && MeterTimerOn) {
        KillTimer(Window, kMeterTimerId);
        MeterTimerOn = false;
    }
}

void App::OnSlider(HWND slider, int32_t value) {
    for (SliderRow& row : SliderRows) {
        if (row.Control != slider) continue;
        row.Value = value;
        const int32_t id = GetDlgCtrlID(slider);
        if (const CoefficientRow* coefficient = FindCoefficientRow(id)) {
            Tracking().OnCoefficientSlider(*coefficient, value);
        } else if (const CatalogueEntry* entry = FindTunableControl(id); entry != nullptr && entry->SliderField) {
            Tracking().ChangeSetting(entry->SliderField, value);
        }
        FormatSliderValue(id, value);
        InvalidateRect(slider, nullptr, FALSE);
        return;
    }
}

// The control has flipped its row already.
void App::OnCheckbox(int32_t id) {
    const CatalogueEntry* entry = FindTunableControl(id);
    if (entry == nullptr || entry->CheckField == nullptr) return;
    const CheckboxRow* row = nullptr;
    for (const CheckboxRow& candidate : CheckboxRows) row = candidate.Id == id ? &candidate : row;
    if (row == nullptr) return;
    const bool on = row->Checked;
    if (id == kCarSpecificCheck) {
        Tracking().ToggleCarSpecific(on);
        return;
    }
    if (id == kRunOnStartupCheck) WriteRunOnStartup(on);
    Tracking().ChangeSetting(entry->CheckField, on);
    const SettingRow& setting = SettingRowOf(entry->CheckField);
    AppendLog(std::wstring(on ? setting.onLog : setting.offLog));
}

void App::ApplyAdviceFile(const std::wstring& path) { Tracking().ApplyAdviceFile(path); }

}  // namespace veltor
