#include "app/CheckboxControl.h"

#include "app/ControlCatalogue.h"
#include "app/Theme.h"

namespace veltor {
namespace {

CheckboxRow* RowOf(HWND control) {
    return reinterpret_cast<CheckboxRow*>(GetWindowLongPtrW(control, GWLP_USERDATA));
}

void Invalidate(const CheckboxRow& row) { InvalidateRect(row.Control, nullptr, FALSE); }

void Paint(const CheckboxRow& row) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(row.Control, &paint);
    RECT client;
    GetClientRect(row.Control, &client);
    HBRUSH panel = CreateSolidBrush(kPanelColour);
    FillRect(dc, &client, panel);
    DeleteObject(panel);

    const bool highlighted = row.Hover || GetFocus() == row.Control;
    HPEN border = CreatePen(PS_SOLID, 1, highlighted ? kAccentColour : kBoxBorderColour);
    HBRUSH fill = CreateSolidBrush(row.Checked ? kAccentColour : kFieldColour);
    HGDIOBJ oldPen = SelectObject(dc, border);
    HGDIOBJ oldBrush = SelectObject(dc, fill);
    RoundRect(dc, 0, 4, 14, 18, 3, 3);
    SelectObject(dc, oldBrush);
    SelectObject(dc, oldPen);
    DeleteObject(fill);
    DeleteObject(border);

    if (row.Checked) {
        HPEN tick = CreatePen(PS_SOLID, 2, kCheckMarkColour);
        HGDIOBJ old = SelectObject(dc, tick);
        MoveToEx(dc, 4, 11, nullptr);
        LineTo(dc, 7, 14);
        LineTo(dc, 11, 8);
        SelectObject(dc, old);
        DeleteObject(tick);
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

LRESULT CALLBACK CheckboxProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
        return 1;
    }
    CheckboxRow* row = RowOf(control);
    if (row == nullptr) return DefWindowProcW(control, message, wParam, lParam);
    switch (message) {
        case WM_SETFOCUS:
        case WM_KILLFOCUS: Invalidate(*row); return 0;
        case WM_PAINT: Paint(*row); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_KEYDOWN:
            if (wParam == VK_SPACE || wParam == VK_RETURN) {
                ToggleCheckbox(*row);
                return 0;
            }
            return DefWindowProcW(control, message, wParam, lParam);
        case WM_MOUSEMOVE:
            if (!row->Hover) {
                row->Hover = true;
                TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, control, 0};
                TrackMouseEvent(&track);
                Invalidate(*row);
            }
            return 0;
        // No capture: a release over the box toggles it wherever the press began, and a press that
        // leaves before its release only takes the focus.
        case WM_LBUTTONDOWN: SetFocus(control); return 0;
        case WM_LBUTTONUP: ToggleCheckbox(*row); return 0;
        case WM_MOUSELEAVE:
            row->Hover = false;
            Invalidate(*row);
            return 0;
        default: return DefWindowProcW(control, message, wParam, lParam);
    }
}

}  // namespace

bool RegisterCheckboxClass(HINSTANCE instance, HBRUSH background) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = CheckboxProcedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_HAND);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = kCheckboxClass;
    return RegisterClassExW(&windowClass) != 0;
}

void ToggleCheckbox(CheckboxRow& row) {
    row.Checked = !row.Checked;
    Invalidate(row);
    if (HWND parent = GetParent(row.Control)) {
        SendMessageW(parent, CheckboxToggled, static_cast<WPARAM>(row.Id), reinterpret_cast<LPARAM>(row.Control));
    }
}

}  // namespace veltor
