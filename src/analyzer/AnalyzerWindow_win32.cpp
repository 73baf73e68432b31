#include "analyzer/AnalyzerWindow.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <filesystem>

#include "analyzer/AdviceFile.h"
#include "analyzer/AnalyzerLayout.h"
#include "analyzer/RecordingAnalysis.h"
#include "profiles/ExecutablePath.h"
#include "profiles/IniEncoding.h"
#include "resources/ResourceIds.h"
#include "ui/ControlClassNames.h"
#include "ui/Theme.h"
#include "ui/WindowTheme.h"
#include "ui/WindowTrampoline.h"

namespace veltor::analyzer {
namespace {

constexpr DWORD kWindowStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
constexpr DWORD kButtonStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON;
constexpr size_t kApplyCheckCapacity = 8;  // at least the advice's rows: the controls point into the list
constexpr wchar_t kGriplineExe[] = L"Gripline.exe";


std::wstring FileName(const std::wstring& path) { return std::filesystem::path(path).filename().wstring(); }

std::wstring Folder(const std::wstring& path) { return std::filesystem::path(path).parent_path().wstring(); }


HWND CreateButton(HWND parent, HINSTANCE instance, int32_t id, const wchar_t* text, const LayoutRect& rect,
                  HFONT font) {
    HWND button = CreateWindowExW(0, L"Button", text, kButtonStyle, rect.left, rect.top, rect.right - rect.left,
                                  rect.bottom - rect.top, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                  instance, nullptr);
    SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    return button;
}

// Hidden until a recording is open (UpdateButtons).
HWND CreateSlider(HWND parent, HINSTANCE instance, int32_t id, SliderRow& row, const LayoutRect& rect) {
    row.Control = CreateWindowExW(0, kSliderClass, L"", WS_CHILD | WS_TABSTOP, rect.left, rect.top,
                                  rect.right - rect.left, rect.bottom - rect.top, parent,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, &row);
    return row.Control;
}

// A name for the advice file that no other run of ours takes: the process and the moment.
std::wstring TemporaryAdvicePath() {
    wchar_t folder[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    if (length == 0 || length > MAX_PATH) return {};
    return std::wstring(folder) + L"Veltor_advice_" + std::to_wstring(GetCurrentProcessId()) + L"_" +
           std::to_wstring(GetTickCount64()) + L".ini";
}

}  // namespace

AnalyzerWindow::~AnalyzerWindow() {
    if (GdiplusToken != 0) Gdiplus::GdiplusShutdown(GdiplusToken);
}

int AnalyzerWindow::Run(HINSTANCE instance, int showCommand, const std::wstring& file,
                        const SettingsForCar& settingsForCar) {
    if (!Create(instance, showCommand, settingsForCar)) return 1;
    if (!file.empty()) Open(file);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

bool AnalyzerWindow::Create(HINSTANCE instance, int showCommand, const SettingsForCar& settingsForCar) {
    Instance = instance;
    SettingsFor = settingsForCar;
    Gdiplus::GdiplusStartupInput startup;
    if (Gdiplus::GdiplusStartup(&GdiplusToken, &startup, nullptr) != Gdiplus::Ok) GdiplusToken = 0;
    const INITCOMMONCONTROLSEX commonControls{sizeof commonControls, ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&commonControls);
    CreateBrushesAndFonts();
    RegisterSliderClass(instance, PanelBrush);
    RegisterCheckboxClass(instance, PanelBrush);

    HICON icon = static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(kAppIconResourceId), IMAGE_ICON, 0, 0,
                                               LR_DEFAULTSIZE | LR_SHARED));
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowTrampoline<AnalyzerWindow>;
    windowClass.hInstance = instance;
    windowClass.hIcon = windowClass.hIconSm = icon != nullptr ? icon : LoadIconW(nullptr, IDI_APPLICATION);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kAnalyzerWindowClass;
    RegisterClassExW(&windowClass);

    RECT outer{0, 0, kAnalyzerClientWidth, kAnalyzerClientHeight};
    AdjustWindowRectEx(&outer, kWindowStyle, FALSE, 0);
    Window = CreateWindowExW(0, kAnalyzerWindowClass, kAnalyzerTitle, kWindowStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                             outer.right - outer.left, outer.bottom - outer.top, nullptr, nullptr, instance, this);
    if (Window == nullptr) return false;
    ApplyDarkCaption(Window);
    CreateControls();
    DragAcceptFiles(Window, TRUE);
    SetStatus(L"Open a recording made with Gripline's Record button, or an iRacing telemetry file.", false);
    ShowWindow(Window, showCommand);
    UpdateWindow(Window);
    return true;
}

void AnalyzerWindow::CreateBrushesAndFonts() {
    WindowBrush.Reset(CreateSolidBrush(kWindowColour));
    PanelBrush.Reset(CreateSolidBrush(kPanelColour));
    HeaderBrush.Reset(CreateSolidBrush(kHeaderColour));
    AccentBrush.Reset(CreateSolidBrush(kAccentColour));
    BodyFont.Reset(MakeThemeFont(-15, 400));
    TitleFont.Reset(MakeThemeFont(-28, 700));
    SectionFont.Reset(MakeThemeFont(-13, 600));
    SmallFont.Reset(MakeThemeFont(-12, 400));
    MonoFont.Reset(MakeThemeFont(-12, 400, true));
}

void AnalyzerWindow::CreateControls() {
    OpenButton = CreateButton(Window, Instance, kOpenButtonId, L"Open...", kOpenButtonRect, BodyFont);
    SaveAdviceButton =
        CreateButton(Window, Instance, kSaveAdviceButtonId, L"Save advice as...", kSaveAdviceButtonRect, BodyFont);
    ApplyButton = CreateButton(Window, Instance, kApplyButtonId, L"Apply to Gripline", kApplyButtonRect, BodyFont);
    SpanSlider = {nullptr, nullptr, kSpanPercentLowest, kSpanPercentHighest, kSpanPercentHighest};
    PositionSlider = {nullptr, nullptr, 0, kPositionHighest, 0};
    CreateSlider(Window, Instance, kSpanSliderId, SpanSlider, kSpanSliderRect);
    CreateSlider(Window, Instance, kPositionSliderId, PositionSlider, kPositionSliderRect);
    ApplyChecks.reserve(kApplyCheckCapacity);
    UpdateButtons();
}

void AnalyzerWindow::Open(const std::wstring& file) {
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const std::filesystem::path path(file);
    AnalyzedFile fresh;
    std::string error;
    const bool opened = OpenForAnalysis(path, SettingsFor, fresh.recording, error);
    SetCursor(previous);
    if (!opened) {
        // What is shown stays; a window with nothing in it says why in its middle too.
        OpenFailure = L"Could not open " + FileName(file) + L": " + DecodeIniBytes(error) + L".";
        SetStatus(OpenFailure, true);
        if (!Loaded) InvalidateRect(Window, nullptr, FALSE);
        return;
    }
    fresh.path = file;
    fresh.analysis = AnalyseRecording(fresh.recording);
    fresh.advice = BuildAdvice(fresh.recording, fresh.analysis);
    fresh.facts = RecordingFacts({Utf8FromPath(path.filename()), IsTelemetryFile(path)}, fresh.recording, fresh.analysis);
    std::string findings = FormatFindings(fresh.analysis);
    for (const std::string& warning : ReadingWarnings(fresh.recording)) findings += "Warning: " + warning + "\n";
    fresh.findings = DecodeIniBytes(findings);
    fresh.histogram = FullScaleHistogram(fresh.recording.samples);
    File = std::move(fresh);
    Loaded = true;
    OpenFailure.clear();

    SetWindowTextW(Window, (std::wstring(kAnalyzerTitle) + L" - " + FileName(file)).c_str());
    SpanSlider.Value = kSpanPercentHighest;
    PositionSlider.Value = 0;
    InvalidateRect(SpanSlider.Control, nullptr, FALSE);
    InvalidateRect(PositionSlider.Control, nullptr, FALSE);
    RebuildPlots();
    RebuildApplyChecks();
    UpdateButtons();
    const auto proposed = std::count_if(File.advice.rows.begin(), File.advice.rows.end(),
                                        [](const AdviceRow& row) { return row.advised; });
    SetStatus(proposed == 0 ? L"Nothing to change: each row says why."
                            : std::to_wstring(proposed) + (proposed == 1 ? L" change" : L" changes") +
                                  L" proposed. Untick what you want to keep, then Apply to Gripline.",
              false);
    InvalidateRect(Window, nullptr, FALSE);
}

void AnalyzerWindow::RebuildPlots() {
    if (!Loaded) return;
    const std::vector<RecordingSample>& samples = File.recording.samples;
    File.shown = VisibleWindow(File.analysis.durationSeconds, SpanSlider.Value, PositionSlider.Value);
    const auto width = [](const LayoutRect& r) { return static_cast<size_t>(r.right - r.left); };
    File.mixed = DecimateForPlot(samples, &RecordingSample::mixedTorque, width(kForcePlotArea), File.shown);
    File.steerExcess = DecimateForPlot(samples, &RecordingSample::steerExcess, width(kGripPlotArea), File.shown);
    File.understeerLoad = DecimateForPlot(samples, &RecordingSample::understeerLoad, width(kGripPlotArea), File.shown);
}

void AnalyzerWindow::RebuildApplyChecks() {
    for (const CheckboxRow& row : ApplyChecks) DestroyWindow(row.Control);
    ApplyChecks.clear();
    ApplyCheckRows.clear();
    for (size_t i = 0; i < File.advice.rows.size() && ApplyChecks.size() < kApplyCheckCapacity; ++i) {
        const AdviceRow& advice = File.advice.rows[i];
        if (!advice.advised) continue;
        CheckboxRow& row = ApplyChecks.emplace_back();
        row.Id = kFirstApplyCheckId + static_cast<int32_t>(ApplyChecks.size() - 1);
        row.Checked = advice.apply;
        const LayoutRect rect = ApplyCheckRect(i);
        row.Control = CreateWindowExW(0, kCheckboxClass, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, rect.left, rect.top,
                                      rect.right - rect.left, rect.bottom - rect.top, Window,
                                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.Id)), Instance, &row);
        SendMessageW(row.Control, WM_SETFONT, reinterpret_cast<WPARAM>(BodyFont.Get()), FALSE);
        ApplyCheckRows.push_back(i);
    }
}

void AnalyzerWindow::UpdateButtons() {
    const BOOL advice = Loaded && HasAdviceToApply(File.advice) ? TRUE : FALSE;
    EnableWindow(ApplyButton, advice);
    EnableWindow(SaveAdviceButton, advice);
    // The view's sliders belong to the plots: without a recording there are none.
    ShowWindow(SpanSlider.Control, Loaded ? SW_SHOW : SW_HIDE);
    ShowWindow(PositionSlider.Control, Loaded ? SW_SHOW : SW_HIDE);
}

void AnalyzerWindow::SetStatus(const std::wstring& text, bool failure) {
    Status = text;
    StatusIsFailure = failure;
    RECT strip{0, kStatusStrip.top, kAnalyzerClientWidth, kAnalyzerClientHeight};
    if (Window != nullptr) InvalidateRect(Window, &strip, FALSE);
}

LRESULT AnalyzerWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ERASEBKGND: return 1;  // the paint covers every pixel
        case WM_PAINT: {
            PAINTSTRUCT paint;
            HDC dc = BeginPaint(window, &paint);
            Paint(dc);
            EndPaint(window, &paint);
            return 0;
        }
        case WM_COMMAND:
            if (HIWORD(wParam) == BN_CLICKED) OnCommand(LOWORD(wParam));
            return 0;
        case CheckboxToggled: OnCheckbox(static_cast<int32_t>(wParam)); return 0;
        case SliderValueChanged: OnSlider(reinterpret_cast<HWND>(lParam)); return 0;
        case WM_CTLCOLORBTN:
            SetBkColor(reinterpret_cast<HDC>(wParam), kHeaderColour);
            return reinterpret_cast<LRESULT>(HeaderBrush.Get());
        case WM_LBUTTONUP: {
            // A click on an advised value's name flips its check box, as a label beside a box does.
            const POINT at{static_cast<int16_t>(LOWORD(lParam)), static_cast<int16_t>(HIWORD(lParam))};
            for (size_t i = 0; i < ApplyChecks.size(); ++i) {
                const int32_t top = AdviceRowTop(ApplyCheckRows[i]);
                const RECT label{kAdviceLabelLeft, top, kAdviceNowLeft - 12, top + kAdviceRowHeight};
                if (PtInRect(&label, at)) ToggleCheckbox(ApplyChecks[i]);
            }
            return 0;
        }
        case WM_DROPFILES: {
            auto drop = reinterpret_cast<HDROP>(wParam);
            wchar_t path[MAX_PATH] = {};
            const bool got = DragQueryFileW(drop, 0, path, MAX_PATH) > 0;
            DragFinish(drop);
            if (got) Open(path);
            return 0;
        }
        case WM_DESTROY: PostQuitMessage(0); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

void AnalyzerWindow::OnCommand(int32_t id) {
    switch (id) {
        case kOpenButtonId: ChooseFile(); break;
        case kSaveAdviceButtonId: SaveAdviceAs(); break;
        case kApplyButtonId: ApplyToGripline(); break;
        default: break;
    }
}

void AnalyzerWindow::OnCheckbox(int32_t id) {
    const size_t index = static_cast<size_t>(id - kFirstApplyCheckId);
    if (id < kFirstApplyCheckId || index >= ApplyChecks.size()) return;
    File.advice.rows[ApplyCheckRows[index]].apply = ApplyChecks[index].Checked;
    UpdateButtons();
}

void AnalyzerWindow::OnSlider(HWND slider) {
    if (slider != SpanSlider.Control && slider != PositionSlider.Control) return;
    RebuildPlots();
    RECT plots{kForcePanel.left, kForcePanel.top, kForcePanel.right, kViewPanel.bottom};
    InvalidateRect(Window, &plots, FALSE);
}

void AnalyzerWindow::ChooseFile() {
    wchar_t path[MAX_PATH] = {};
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = Window;
    dialog.lpstrFilter = L"Recordings and telemetry (*.vtrrec;*.ibt)\0*.vtrrec;*.ibt\0"
                         L"Veltor telemetry recording (*.vtrrec)\0*.vtrrec\0"
                         L"iRacing telemetry (*.ibt)\0*.ibt\0All files (*.*)\0*.*\0";
    dialog.lpstrFile = path;
    dialog.nMaxFile = MAX_PATH;
    dialog.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST;
    if (GetOpenFileNameW(&dialog)) Open(path);
}

// The advice goes through a file in the temporary folder to Gripline beside us: a running Gripline takes it
// from the new start by its single-instance hand-off, or the new start is Gripline, with the advice applied.
void AnalyzerWindow::ApplyToGripline() {
    if (!Loaded || !HasAdviceToApply(File.advice)) return;  // a click that beat the button's disabling
    const std::wstring gripline = Folder(ExecutablePath()) + L"\\" + kGriplineExe;
    if (GetFileAttributesW(gripline.c_str()) == INVALID_FILE_ATTRIBUTES) {
        SetStatus(L"Gripline.exe was not found next to the analyzer.", true);
        return;
    }
    const std::wstring advicePath = TemporaryAdvicePath();
    std::string error;
    if (advicePath.empty() || !WriteAdviceFile(advicePath, File.advice, error)) {
        SetStatus(L"Could not write the advice file to the temporary folder.", true);
        return;
    }
    const std::wstring parameters = L"--apply-advice \"" + advicePath + L"\"";
    const auto started = reinterpret_cast<INT_PTR>(
        ShellExecuteW(Window, L"open", gripline.c_str(), parameters.c_str(), nullptr, SW_SHOWNORMAL));
    if (started <= 32) {
        DeleteFileW(advicePath.c_str());
        SetStatus(L"Could not start Gripline.", true);
        return;
    }
    SetStatus(L"Advice handed to Gripline: its session log says what it applied.", false);
}

void AnalyzerWindow::SaveAdviceAs() {
    if (!Loaded || !HasAdviceToApply(File.advice)) return;
    std::wstring proposed = L"Veltor_advice_" + DecodeIniBytes(File.advice.car.empty() ? "generic" : File.advice.car) + L".ini";
    wchar_t path[MAX_PATH] = {};
    proposed.copy(path, MAX_PATH - 1);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = Window;
    dialog.lpstrFilter = L"Advice file (*.ini)\0*.ini\0All files (*.*)\0*.*\0";
    dialog.lpstrFile = path;
    dialog.nMaxFile = MAX_PATH;
    dialog.lpstrDefExt = L"ini";
    dialog.Flags = OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST;
    if (!GetSaveFileNameW(&dialog)) return;
    std::string error;
    if (WriteAdviceFile(path, File.advice, error)) {
        SetStatus(L"Advice saved to " + std::wstring(path) + L".", false);
    } else {
        SetStatus(L"Could not save the advice to " + std::wstring(path) + L".", true);
    }
}

}  // namespace veltor::analyzer
