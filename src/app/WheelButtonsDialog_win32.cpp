#include "app/WheelButtonsDialog.h"

#include "app/App.h"
#include "app/ControlCatalogue.h"
#include "settings/ButtonActions.h"
#include "ui/Theme.h"
#include "ui/WindowTheme.h"
#include "ui/WindowTrampoline.h"

namespace veltor {
namespace {

// Client pixels: one row per action, then a line that says what Bind does.
constexpr DWORD kDialogStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;
constexpr DWORD kLabelStyle = WS_CHILD | WS_VISIBLE | SS_NOPREFIX;
constexpr DWORD kButtonStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
constexpr int kMargin = 20;
constexpr int kRowHeight = 44;
constexpr int kLabelWidth = 190;
constexpr int kBindingX = 215;
constexpr int kBindingWidth = 260;
constexpr int kBindX = 485;
constexpr int kClearX = 565;
constexpr int kButtonWidth = 70;
constexpr int kButtonHeight = 30;
constexpr int kTextHeight = 22;
constexpr int kTextDrop = 5;  // texts sit this much below their row's buttons
constexpr int kClientWidth = kClearX + kButtonWidth + kMargin;
constexpr int kClientHeight = kMargin + static_cast<int>(kButtonActionCount) * kRowHeight + kTextHeight + kMargin;
constexpr wchar_t kBindHint[] = L"Bind takes the next button pressed on any game controller within 5 seconds.";

HWND MakeChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id, ControlRect rect,
               HFONT font) {
    HWND child = CreateWindowExW(0, className, text, style, rect.X, rect.Y, rect.Width, rect.Height, parent,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (child != nullptr) SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    return child;
}

bool RegisterDialogClass(HBRUSH background) {
    WNDCLASSEXW existing{};
    existing.cbSize = sizeof existing;
    if (GetClassInfoExW(GetModuleHandleW(nullptr), kWheelButtonsClass, &existing)) return true;
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowTrampoline<WheelButtonsDialog>;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = kWheelButtonsClass;
    return RegisterClassExW(&windowClass) != 0;
}

// Centred over the owner.
POINT CentredOver(HWND owner, SIZE outer) {
    RECT area;
    GetWindowRect(owner, &area);
    return {(area.left + area.right - outer.cx) / 2, (area.top + area.bottom - outer.cy) / 2};
}

}  // namespace

void WheelButtonsDialog::Show(App& app) {
    Owner = &app;
    if (Window == nullptr && !Create()) return;
    ShowBindings();
    ShowWindow(Window, SW_SHOWNORMAL);
    SetForegroundWindow(Window);
}

bool WheelButtonsDialog::Create() {
    if (!RegisterDialogClass(Owner->PanelBrush)) return false;
    RECT outer{0, 0, kClientWidth, kClientHeight};
    AdjustWindowRectEx(&outer, kDialogStyle, FALSE, 0);
    const SIZE size{outer.right - outer.left, outer.bottom - outer.top};
    const POINT at = CentredOver(Owner->Window, size);
    Window = CreateWindowExW(0, kWheelButtonsClass, kWheelButtonsTitle, kDialogStyle, at.x, at.y, size.cx, size.cy,
                             Owner->Window, nullptr, GetModuleHandleW(nullptr), this);
    if (Window == nullptr) return false;
    ApplyDarkCaption(Window);
    CreateControls();
    return true;
}

void WheelButtonsDialog::CreateControls() {
    const HFONT font = Owner->BodyFont;
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        const ButtonActionRow& row = kButtonActionRows[i];
        const int y = kMargin + static_cast<int>(i) * kRowHeight;
        MakeChild(Window, L"Static", std::wstring(row.label).c_str(), kLabelStyle, 0,
                  {kMargin, y + kTextDrop, kLabelWidth, kTextHeight}, font);
        MakeChild(Window, L"Static", L"", kLabelStyle, row.bindingText, {kBindingX, y + kTextDrop, kBindingWidth, kTextHeight},
                  font);
        MakeChild(Window, L"Button", L"Bind", kButtonStyle, row.bindButton, {kBindX, y, kButtonWidth, kButtonHeight}, font);
        MakeChild(Window, L"Button", L"Clear", kButtonStyle, row.clearButton, {kClearX, y, kButtonWidth, kButtonHeight},
                  font);
    }
    const int hintY = kMargin + static_cast<int>(kButtonActionCount) * kRowHeight;
    MakeChild(Window, L"Static", kBindHint, kLabelStyle, 0, {kMargin, hintY, kClientWidth - 2 * kMargin, kTextHeight},
              font);
}

void WheelButtonsDialog::ShowBindings() {
    if (Window == nullptr) return;
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        SetDlgItemTextW(Window, kButtonActionRows[i].bindingText, Owner->BindingText(i).c_str());
    }
}

void WheelButtonsDialog::Close() {
    if (Window != nullptr) DestroyWindow(Window);
}

LRESULT WheelButtonsDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            for (size_t i = 0; i < kButtonActionCount; ++i) {
                if (LOWORD(wParam) == kButtonActionRows[i].bindButton) Owner->BeginButtonCapture(i);
                if (LOWORD(wParam) == kButtonActionRows[i].clearButton) Owner->ClearButtonBinding(i);
            }
            return 0;
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            SetTextColor(reinterpret_cast<HDC>(wParam), kPrimaryTextColour);
            SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
            return reinterpret_cast<LRESULT>(Owner->PanelBrush.Get());
        case WM_CLOSE: DestroyWindow(window); return 0;
        case WM_DESTROY:
            Window = nullptr;
            Owner->CancelButtonCapture();
            return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

}  // namespace veltor
