#include "app/App.h"

#include <algorithm>
#include <optional>
#include <string>

#include "app/ControlCatalogue.h"
#include "app/ControlIds.h"
#include "app/SessionLog.h"
#include "app/TorqueField.h"
#include "settings/ValueText.h"
#include "ui/Theme.h"
#include "ui/WindowTheme.h"

namespace veltor {
namespace {

// The lists must not move their elements once a control points into them.
constexpr size_t kSliderRowCapacity = 24;
constexpr size_t kCheckboxRowCapacity = 6;

constexpr size_t kLogLineChars = 512;

HWND CreateChild(const App& app, ControlKind kind, int32_t id, const wchar_t* text, ControlRect rect,
                 void* createParameter = nullptr) {
    return CreateWindowExW(ControlExStyle(kind), ControlClassName(kind).data(), text, ControlStyle(kind), rect.X,
                           rect.Y, rect.Width, rect.Height, app.Window,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), app.Instance, createParameter);
}

void SetFont(HWND control, HFONT font) {
    if (control != nullptr && font != nullptr) SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

// The App field that keeps a standard control's handle, by its id; null for controls App doesn't name.
HWND* HandleField(App& app, int32_t id) {
    switch (id) {
        case kDeviceCombo: return &app.DeviceCombo;
        case kStartButton: return &app.StartButton;
        case kStopButton: return &app.StopButton;
        case kOutputModeCombo: return &app.OutputModeCombo;
        case kProfileCombo: return &app.ProfileCombo;
        case kRecordButton: return &app.RecordButton;
        case kStopRecButton: return &app.StopRecButton;
        case kAnalyzerButton: return &app.AnalyzerButton;
        case kTorqueEdit: return &app.TorqueEdit;
        default: return nullptr;
    }
}

HFONT FontFor(const App& app, ControlFont font) {
    switch (font) {
        case ControlFont::Body: return app.BodyFont;
        case ControlFont::Section: return app.SectionFont;
        case ControlFont::Mono: return app.MonoFont;
        case ControlFont::None: return nullptr;
    }
    return nullptr;
}

// A car slider shows the car-independent number until the car panel is filled.
int32_t CarSliderBeforeAnyCar(const CatalogueEntry& entry) {
    const CarCoefficients independent = CarCoefficients::FromRow(L"", kCarIndependentRow);
    return CarSliderValue(*entry.Coefficient, independent.*entry.Coefficient->field);
}

void AppendTo(HWND edit, const wchar_t* line) {
    if (edit == nullptr || !IsWindow(edit)) return;
    const int end = GetWindowTextLengthW(edit);
    SendMessageW(edit, EM_SETSEL, end, end);
    SendMessageW(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(line));
    SendMessageW(edit, EM_SCROLLCARET, 0, 0);
}

// Replaces the oldest lines with the notice; without undo, so that the control lets go of them.
void TrimStart(HWND edit, const LogTrim& trim) {
    if (edit == nullptr || !IsWindow(edit)) return;
    SendMessageW(edit, EM_SETSEL, 0, static_cast<LPARAM>(trim.cutChars));
    SendMessageW(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(trim.notice.c_str()));
    ScrollToEnd(edit);
}

}  // namespace

bool App::CreateMainWindow(int showCommand) {
    Window = CreateWindowExW(0, kMainWindowClass, MainWindowTitle().c_str(), kMainWindowStyle, CW_USEDEFAULT,
                             CW_USEDEFAULT, kMainWindowWidth, kMainWindowHeight, nullptr, nullptr, Instance, this);
    if (Window == nullptr) return false;
    if (AppIcon != nullptr) {
        SendMessageW(Window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(AppIcon));
        SendMessageW(Window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(AppIcon));
    }
    ApplyDarkCaption(Window);
    AddWheelButtonsMenuItem();
    Controllers.SetWindow(Window);
    SliderRows.reserve(kSliderRowCapacity);
    CheckboxRows.reserve(kCheckboxRowCapacity);
    CreateControls();
    ShowWindow(Window, showCommand);
    UpdateWindow(Window);
    return true;
}

void App::CreateControls() {
    const EngineSettings& settings = Store.CurrentSettings;
    for (const CatalogueEntry& entry : ControlCatalogue()) {
        const std::wstring text(entry.Text);
        if (entry.Kind == ControlKind::Slider) {
            const int32_t value = entry.SliderField != nullptr ? settings.*entry.SliderField : CarSliderBeforeAnyCar(entry);
            CreateSliderRow(entry.Id, text.c_str(), entry.Rect.X, entry.Rect.Y, entry.Minimum, entry.Maximum, value);
        } else if (entry.Kind == ControlKind::Checkbox) {
            CheckboxRow* row = CreateCheckboxRow(entry.Id, text.c_str(), entry.Rect.Y, settings.*entry.CheckField);
            if (entry.CheckField == &EngineSettings::UseCarSpecificSettings) CarSpecificCheck = row;
        } else {
            HWND control = CreateChild(*this, entry.Kind, entry.Id, text.c_str(), entry.Rect);
            SetFont(control, FontFor(*this, entry.Font));
            if (HWND* field = HandleField(*this, entry.Id)) *field = control;
            if (entry.Kind == ControlKind::LogPanel) {
                LogEdit = control;
                SendMessageW(LogEdit, EM_SETLIMITTEXT, 0, 0);  // the log has no cap of its own
            }
            if (entry.Kind == ControlKind::CarLabel) CarLabel = control;
        }
        switch (entry.Setup) {
            case ControlSetup::None: break;
            case ControlSetup::FillProfiles: Tracking().RefreshProfileList(); break;
            case ControlSetup::ShowCarPanel: Tracking().UpdateCarPanel(Store.CurrentCarPath); break;
            case ControlSetup::Disable: EnableWindow(GetDlgItem(Window, entry.Id), FALSE); break;
            case ControlSetup::FillOutputModes:
                for (std::wstring_view line : kOutputModeLines) {
                    SendMessageW(OutputModeCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(std::wstring(line).c_str()));
                }
                SendMessageW(OutputModeCombo, CB_SETCURSEL, 0, 0);
                break;
            case ControlSetup::FillTorque:
                SendMessageW(TorqueEdit, EM_SETLIMITTEXT, 6, 0);
                SetWindowTextW(TorqueEdit, TorqueFieldText(settings.WheelbaseMaxTorqueTenths).c_str());
                break;
        }
    }
    SetStatusTexts(L"iRacing disconnected", L"Not on track", L"Car: generic");
}

void App::CreateSliderRow(int32_t id, const wchar_t* name, int32_t x, int32_t y, int32_t minimum, int32_t maximum,
                          int32_t value) {
    const ControlRect origin{x, y, 0, 0};
    SetFont(CreateChild(*this, ControlKind::Label, 0, name, SliderNameRect(origin)), BodyFont);
    HWND valueLabel = CreateChild(*this, ControlKind::ValueText, 0, L"", SliderValueRect(origin));
    SetFont(valueLabel, BodyFont);
    SliderRow& row = SliderRows.emplace_back();
    row.ValueLabel = valueLabel;
    row.Minimum = minimum;
    row.Maximum = maximum;
    row.Value = value;  // as given: a stored value beyond the range shows until the slider moves
    row.Control = CreateChild(*this, ControlKind::Slider, id, L"", SliderControlRect(origin), &row);
    FormatSliderValue(id, value);
}

CheckboxRow* App::CreateCheckboxRow(int32_t id, const wchar_t* label, int32_t y, bool checked) {
    CheckboxRow& row = CheckboxRows.emplace_back();
    row.Id = id;
    row.Checked = checked;
    row.Label = label;
    row.Control = CreateChild(*this, ControlKind::Checkbox, id, L"", {48, y, 250, 24}, &row);
    SetFont(row.Control, BodyFont);
    return &row;
}

SliderRow* App::FindSliderRow(int32_t id) {
    for (SliderRow& row : SliderRows) {
        if (row.Control != nullptr && GetDlgCtrlID(row.Control) == id) return &row;
    }
    return nullptr;
}

void App::FormatSliderValue(int32_t id, int32_t value) {
    if (SliderRow* row = FindSliderRow(id)) SetWindowTextW(row->ValueLabel, SliderValueText(id, value).c_str());
}

void App::AppendLog(const std::wstring& text) {
    // A line that does not fit loses its end but keeps its line break.
    wchar_t line[kLogLineChars];
    const size_t kept = text.copy(line, kLogLineChars - 3);
    line[kept] = L'\r';
    line[kept + 1] = L'\n';
    line[kept + 2] = L'\0';
    AppendTo(LogEdit, line);
    AppendTo(LogWindow, line);
    if (++LogPanelLines <= kKeptLogLines + kLogTrimBatch) return;
    // The log window holds the same text as the panel, so the same cut fits both.
    if (const std::optional<LogTrim> trim = PlanLogTrim(WholeText(LogEdit))) {
        TrimStart(LogEdit, *trim);
        TrimStart(LogWindow, *trim);
    }
    LogPanelLines = kKeptLogLines;
}

void ScrollToEnd(HWND edit) {
    const int end = GetWindowTextLengthW(edit);
    SendMessageW(edit, EM_SETSEL, end, end);
    SendMessageW(edit, EM_SCROLLCARET, 0, 0);
}

std::wstring WholeText(HWND edit) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
    text.resize(static_cast<size_t>(std::max(GetWindowTextW(edit, text.data(), static_cast<int>(text.size())), 0)));
    return text;
}

}  // namespace veltor
