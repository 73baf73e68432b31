#include <string>

#include "app/App.h"
#include "ui/Theme.h"

namespace veltor {
namespace {

// The hand-off of a second instance: 1 when it was taken, 0 when it was ignored.
LRESULT OnCopyData(App& app, const COPYDATASTRUCT* data) {
    if (data == nullptr || data->dwData != kHandOffTag || data->lpData == nullptr || data->cbData < 2) return 0;
    // The sender's terminator may be missing: read no further than cbData.
    const auto* text = static_cast<const wchar_t*>(data->lpData);
    std::wstring path(text, data->cbData / sizeof(wchar_t));
    path.resize(path.find(L'\0') == std::wstring::npos ? path.size() : path.find(L'\0'));
    app.ApplyAdviceFile(path);
    return 1;
}

// The status step runs on its own timer and on any timer that isn't the meter's or the wheel buttons'.
void OnTimerMessage(App& app, WPARAM id) {
    switch (id) {
        case kMeterTimerId: app.OnMeterTimer(); return;
        case kButtonTimerId: app.OnButtonTimer(); return;
        default: app.OnTimer(); return;
    }
}

LRESULT ColourField(const App& app, HDC dc) {
    SetTextColor(dc, kPrimaryTextColour);
    SetBkColor(dc, kFieldColour);
    return reinterpret_cast<LRESULT>(app.FieldBrush.Get());
}

LRESULT ColourLabel(const App& app, HDC dc) {
    SetTextColor(dc, kPrimaryTextColour);
    SetBkMode(dc, TRANSPARENT);
    return reinterpret_cast<LRESULT>(app.PanelBrush.Get());
}

}  // namespace

LRESULT App::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_DESTROY: Teardown(); return 0;
        case WM_PAINT: {
            PAINTSTRUCT paint;
            HDC dc = BeginPaint(window, &paint);
            PaintForeground(dc);
            EndPaint(window, &paint);
            return 0;
        }
        case WM_ERASEBKGND: PaintBackground(reinterpret_cast<HDC>(wParam)); return 1;
        case WM_COPYDATA: return OnCopyData(*this, reinterpret_cast<const COPYDATASTRUCT*>(lParam));
        case WM_COMMAND: return OnCommand(wParam, lParam);
        case WM_TIMER: OnTimerMessage(*this, wParam); return 0;
        case WM_SYSCOMMAND:
            if ((wParam & 0xFFF0) != kWheelButtonsCommand) return DefWindowProcW(window, message, wParam, lParam);
            ShowWheelButtonsDialog();
            return 0;
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX: return ColourField(*this, reinterpret_cast<HDC>(wParam));
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC: return ColourLabel(*this, reinterpret_cast<HDC>(wParam));
        case SliderValueChanged: OnSlider(reinterpret_cast<HWND>(lParam), static_cast<int32_t>(wParam)); return 0;
        case CheckboxToggled: OnCheckbox(static_cast<int32_t>(wParam)); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

// The end of a run, in this order: the log window, the wheel buttons' window and their reading, a torque
// edit that never lost the focus, the engine, the one save of the store, then GDI+ (the bitmap before the
// stream it reads, both before the shutdown) and the window's GDI objects.
void App::Teardown() {
    if (LogWindow != nullptr && IsWindow(LogWindow)) DestroyWindow(LogWindow);
    LogWindow = nullptr;
    ButtonsDialog.Close();
    KillTimer(Window, kButtonTimerId);
    ButtonTimerOn = false;
    Controllers.CloseAll();
    Tracking().ApplyTorqueField();
    StopEngine();
    Tracking().SaveAll();
    if (LogoBitmap != nullptr) Gdiplus::DllExports::GdipDisposeImage(LogoBitmap);
    LogoBitmap = nullptr;
    if (LogoStream != nullptr) LogoStream->Release();
    LogoStream = nullptr;
    if (GdiplusToken != 0) Gdiplus::GdiplusShutdown(GdiplusToken);
    GdiplusToken = 0;
    if (AppIcon != nullptr) DestroyIcon(AppIcon);
    AppIcon = nullptr;
    for (GdiObject<HFONT>* font : {&MonoFont, &SectionFont, &TitleFont, &BodyFont}) font->Reset();
    for (GdiObject<HBRUSH>* brush : {&AccentBrush, &FieldBrush, &HeaderBrush, &PanelBrush, &WindowBrush}) brush->Reset();
    PostQuitMessage(0);
}

}  // namespace veltor
