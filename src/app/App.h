#pragma once
#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/DriverTracking.h"
#include "app/ForceMeter.h"
#include "app/WheelButtons.h"
#include "app/WheelButtonsDialog.h"
#include "engine/FfbEngine.h"
#include "profiles/ProfileStore.h"
#include "ui/CheckboxControl.h"
#include "ui/GdiObject.h"
#include "ui/GdiplusFlat.h"
#include "ui/SliderControl.h"
#include "wheel/GameControllers.h"
#include "wheel/WheelDevice.h"

namespace veltor {

inline constexpr wchar_t kSingleInstanceMutex[] = L"Local\\Veltor.Commercial.SingleInstance";
// dwData of the hand-off: "QKVT" as it stands in memory, first letter in the lowest byte.
inline constexpr ULONG_PTR kHandOffTag = 'Q' | 'K' << 8 | 'V' << 16 | static_cast<ULONG_PTR>('T') << 24;
inline constexpr wchar_t kDonationPageUrl[] = L"https://donate.gripline.invalid/";
inline constexpr UINT_PTR kStatusTimerId = 1;
inline constexpr UINT kStatusTimerMilliseconds = 250;
inline constexpr UINT_PTR kMeterTimerId = 2;  // the force meter's repaint, while on track
inline constexpr UINT kMeterTimerMilliseconds = 33;
inline constexpr UINT_PTR kButtonTimerId = 3;  // the wheel buttons' reading, while any is bound or Bind listens
inline constexpr UINT kButtonTimerMilliseconds = 50;

// The force meter's place in the status strip of a client rectangle: right of the texts, ending 16 px before
// the right edge, below the strip's rule.
RECT ForceMeterArea(const RECT& client);

// The text of an edit control.
std::wstring WholeText(HWND edit);
// The caret after an edit control's last character, and the view on it.
void ScrollToEnd(HWND edit);

// Everything the process owns, by value: the window and its resources, the settings, the wheels and the
// engine. One automatic object of the entry routine; the GUI thread alone touches it, except for what
// FfbEngine shares with its own threads.
class App {
public:
    App() = default;
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    // Start-up and the message loop (AppRun_win32.cpp).
    int AppRun(HINSTANCE instance, int showCommand, const std::wstring& advicePath);

    // The window and its controls (MainWindow_win32.cpp).
    bool CreateMainWindow(int showCommand);
    void CreateControls();
    void CreateSliderRow(int32_t id, const wchar_t* name, int32_t x, int32_t y, int32_t minimum, int32_t maximum,
                         int32_t value);
    CheckboxRow* CreateCheckboxRow(int32_t id, const wchar_t* label, int32_t y, bool checked);
    void FormatSliderValue(int32_t id, int32_t value);
    void AppendLog(const std::wstring& text);
    SliderRow* FindSliderRow(int32_t id);

    // Painting and theme (Painting_win32.cpp).
    void CreateBrushesAndFonts();
    void PaintBackground(HDC dc);
    void PaintForeground(HDC dc);
    void SetStatusTexts(const std::wstring& first, const std::wstring& second, const std::wstring& third);

    // The main window's procedure, through the trampoline of its class, and its teardown
    // (WindowProcedure_win32.cpp).
    LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Teardown();

    // What the window does with commands, the timer, the custom controls and a hand-off
    // (CommandHandlers_win32.cpp).
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam);
    void OnTimer();
    void OnSlider(HWND slider, int32_t value);
    void OnCheckbox(int32_t id);
    void ApplyAdviceFile(const std::wstring& path);

    // The engine, the recording, the analyzer and the log window (EngineCommands_win32.cpp).
    void StartEngine();
    void StopEngine();
    void StartRecording();
    void StopRecording();
    void LaunchAnalyzer();
    void ShowLogWindow();
    void LogClippingReport(const EngineStatus& status);

    // The force meter in the status strip (CommandHandlers_win32.cpp, Painting_win32.cpp).
    void OnMeterTimer();
    void FollowMeterTimer(bool onTrack);
    void PaintForceMeter(HDC dc, const RECT& area);

    // Wheel buttons: the system menu's dialog, Bind and Clear, and the 20 Hz reading of the bound buttons
    // (WheelButtonCommands_win32.cpp).
    void AddWheelButtonsMenuItem();
    void ShowWheelButtonsDialog();
    void BeginButtonCapture(size_t action);
    void CancelButtonCapture();
    void ClearButtonBinding(size_t action);
    std::wstring BindingText(size_t action);
    void OnButtonTimer();
    void RunButtonAction(size_t action);
    void FollowButtonTimer();

    // The profile store's state on the controls and in the engine: the view of DriverTracking
    // (SettingsView_win32.cpp).
    DriverTracking<App> Tracking() { return {Store, *this}; }
    void ShowSettings(const EngineSettings& settings);
    void SetSliderValue(int32_t id, int32_t value);
    void ShowCarPanel(std::wstring_view label, const std::array<int32_t, kCoefficientCount>& sliderValues);
    void ShowProfileList(const std::vector<DriverProfile>& profiles, int32_t selected);
    void ShowCarSpecificCheck(bool checked);
    void ShowTorqueField(int32_t tenths);
    std::wstring ReadProfileNameText() const;
    std::wstring ReadTorqueText() const;
    void PublishSettings(const EngineSettings& settings) { Engine.PublishSettings(settings); }
    void PublishOverrides(const std::vector<CarCoefficients>& overrides) { Engine.PublishOverrides(overrides); }

    // The update notice at start and the "Update" button (UpdateFlow_win32.cpp).
    void NotifyUpdateAtStart();
    void RunUpdate();

    HINSTANCE Instance = nullptr;
    HWND Window = nullptr;
    HWND DeviceCombo = nullptr;
    HWND OutputModeCombo = nullptr;
    HWND ProfileCombo = nullptr;
    HWND StartButton = nullptr;
    HWND StopButton = nullptr;
    HWND CarLabel = nullptr;
    CheckboxRow* CarSpecificCheck = nullptr;
    HWND RecordButton = nullptr;
    HWND StopRecButton = nullptr;
    HWND AnalyzerButton = nullptr;
    HWND TorqueEdit = nullptr;
    HWND LogEdit = nullptr;
    HWND LogWindow = nullptr;
    size_t LogPanelLines = 0;  // lines appended since the panel was last trimmed, or since start
    std::wstring LastRecordingPath;
    std::wstring ConnectionText = L"iRacing disconnected";
    std::wstring TrackText = L"Not on track";
    std::wstring CarText = L"Car: generic";
    uint32_t LastClipStamp = 0;
    uint32_t LastDeviceErrorStamp = 0;
    uint32_t LastTrackStamp = 0;
    uint32_t LastReportStamp = 0;
    uint32_t LastStallStamp = 0;  // telemetryStallCount; never cleared: each stall is told once
    GdiObject<HFONT> BodyFont;
    GdiObject<HFONT> TitleFont;
    GdiObject<HFONT> SectionFont;
    GdiObject<HFONT> MonoFont;
    GdiObject<HBRUSH> WindowBrush;
    GdiObject<HBRUSH> PanelBrush;
    GdiObject<HBRUSH> HeaderBrush;
    GdiObject<HBRUSH> FieldBrush;
    GdiObject<HBRUSH> AccentBrush;
    HICON AppIcon = nullptr;
    ULONG_PTR GdiplusToken = 0;
    Gdiplus::GpBitmap* LogoBitmap = nullptr;  // reads from LogoStream for as long as it lives
    IStream* LogoStream = nullptr;
    ProfileStore Store;
    std::vector<SliderRow> SliderRows;  // never reallocated: the controls point into them
    std::vector<CheckboxRow> CheckboxRows;
    std::vector<WheelDevice> Devices;  // an entry's position is its position in DeviceCombo
    FfbEngine Engine;
    ForceMeter Meter;
    bool MeterTimerOn = false;
    GameControllers Controllers;
    WheelButtons Buttons{Controllers};
    ButtonCapture Capture;
    size_t CaptureAction = 0;  // the action Bind listens for, while Capture is active
    bool ButtonTimerOn = false;
    WheelButtonsDialog ButtonsDialog;
};

}  // namespace veltor
