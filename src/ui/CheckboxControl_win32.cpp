#include "ui/CheckboxControl.h"

#include "ui/ControlClassNames.h"
#include "ui/GdiObject.h"
#include "ui/Theme.h"
#include "ui/WindowTrampoline.h"

namespace veltor {
namespace {

void Invalidate(const CheckboxRow& row) { InvalidateRect(row.Control, nullptr, FALSE); }

void Paint(const CheckboxRow& row) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(row.Control, &paint);
    RECT client;
    GetClientRect(row.Control, &client);
    FillRect(dc, &client, GdiObject<HBRUSH>(CreateSolidBrush(kPanelColour)));

    const bool highlighted = row.Hover || GetFocus() == row.Control;
    const GdiObject<HPEN> border(CreatePen(PS_SOLID, 1, highlighted ? kAccentColour : kBoxBorderColour));
    const GdiObject<HBRUSH> fill(CreateSolidBrush(row.Checked ? kAccentColour : kFieldColour));
    HGDIOBJ oldPen = SelectObject(dc, border);
    HGDIOBJ oldBrush = SelectObject(dc, fill);
    RoundRect(dc, 0, 4, 14, 18, 3, 3);
    SelectObject(dc, oldBrush);
    SelectObject(dc, oldPen);

    if (row.Checked) {
        const GdiObject<HPEN> tick(CreatePen(PS_SOLID, 2, kCheckMarkColour));
        HGDIOBJ old = SelectObject(dc, tick);
        MoveToEx(dc, 4, 11, nullptr);
        LineTo(dc, 7, 14);
        LineTo(dc, 11, 8);
        SelectObject(dc, old);
    }

    auto font = reinterpret_cast<HFONT>(SendMessageW(row.Control, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = SelectObject(dc, font != nullptr ? font : GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, row.Hover ? kCheckTextHoverColour : kCheckTextRestColour);
    RECT text{24, 1, client.right, client.bottom};
    DrawTextW(dc, row.Label.c_str(), static_cast<int>(row.Label.size()), &text,
              DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, oldFont);
    EndPaint(row.Control, &paint);
}

}  // namespace

LRESULT CheckboxRow::Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETFOCUS:
        case WM_KILLFOCUS: Invalidate(*this); return 0;
        case WM_PAINT: Paint(*this); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_KEYDOWN:
            if (wParam == VK_SPACE || wParam == VK_RETURN) {
                ToggleCheckbox(*this);
                return 0;
            }
            return DefWindowProcW(control, message, wParam, lParam);
        case WM_MOUSEMOVE:
            if (BeginHover(control, Hover)) Invalidate(*this);
            return 0;
        // No capture: a release over the box toggles it wherever the press began, and a press that
        // leaves before its release only takes the focus.
        case WM_LBUTTONDOWN: SetFocus(control); return 0;
        case WM_LBUTTONUP: ToggleCheckbox(*this); return 0;
        case WM_MOUSELEAVE:
            Hover = false;
            Invalidate(*this);
            return 0;
        default: return DefWindowProcW(control, message, wParam, lParam);
    }
}

bool RegisterCheckboxClass(HINSTANCE instance, HBRUSH background) {
    return RegisterControlClass<CheckboxRow>(instance, background, kCheckboxClass);
}

void ToggleCheckbox(CheckboxRow& row) {
    row.Checked = !row.Checked;
    Invalidate(row);
    if (HWND parent = GetParent(row.Control)) {
        SendMessageW(parent, CheckboxToggled, static_cast<WPARAM>(row.Id), reinterpret_cast<LPARAM>(row.Control));
    }
}

}  // namespace veltor
