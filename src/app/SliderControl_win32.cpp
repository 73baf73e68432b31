#include "app/SliderControl.h"

#include "app/ControlCatalogue.h"
#include "app/SliderGeometry.h"
#include "app/Theme.h"

namespace veltor {
namespace {

SliderRow* RowOf(HWND control) { return reinterpret_cast<SliderRow*>(GetWindowLongPtrW(control, GWLP_USERDATA)); }

// No erase: the paint covers every pixel, which keeps a dragged knob from flickering.
void Invalidate(const SliderRow& row) { InvalidateRect(row.Control, nullptr, FALSE); }

void StoreAndNotify(SliderRow& row, int32_t value) {
    if (value == row.Value) return;
    row.Value = value;
    Invalidate(row);
    if (HWND parent = GetParent(row.Control)) {
        SendMessageW(parent, SliderValueChanged, static_cast<WPARAM>(value), reinterpret_cast<LPARAM>(row.Control));
    }
}

void DrawLine(HDC dc, COLORREF colour, int32_t fromX, int32_t toX, int32_t y) {
    HPEN pen = CreatePen(PS_SOLID, 3, colour);
    HGDIOBJ old = SelectObject(dc, pen);
    MoveToEx(dc, fromX, y, nullptr);
    LineTo(dc, toX, y);
    SelectObject(dc, old);
    DeleteObject(pen);
}

void Paint(const SliderRow& row) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(row.Control, &paint);
    RECT client;
    GetClientRect(row.Control, &client);
    HBRUSH panel = CreateSolidBrush(kPanelColour);
    FillRect(dc, &client, panel);
    DeleteObject(panel);

    const int32_t width = client.right;
    const int32_t mid = client.bottom / 2;
    const int32_t knob = SliderKnobX(row.Value, row.Minimum, row.Maximum, width);
    const COLORREF active = row.Hover || row.Dragging ? kAccentColour : kSliderRestingColour;
    DrawLine(dc, kSliderTrackColour, kSliderTrackInset, width - kSliderTrackInset, mid);
    DrawLine(dc, active, kSliderTrackInset, knob, mid);

    HBRUSH knobBrush = CreateSolidBrush(active);
    HPEN knobPen = CreatePen(PS_SOLID, 1, active);
    HGDIOBJ oldBrush = SelectObject(dc, knobBrush);
    HGDIOBJ oldPen = SelectObject(dc, knobPen);
    RoundRect(dc, knob - 5, mid - 10, knob + 5, mid + 10, 5, 5);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
    DeleteObject(knobPen);
    DeleteObject(knobBrush);
    EndPaint(row.Control, &paint);
}

LRESULT OnKeyDown(SliderRow& row, HWND control, WPARAM key, LPARAM flags) {
    switch (key) {
        case VK_LEFT: SetSliderValueClamped(row, row.Value - 1); return 0;
        case VK_RIGHT: SetSliderValueClamped(row, row.Value + 1); return 0;
        case VK_HOME: SetSliderValueClamped(row, row.Minimum); return 0;
        case VK_END: SetSliderValueClamped(row, row.Maximum); return 0;
        default: return DefWindowProcW(control, WM_KEYDOWN, key, flags);
    }
}

LRESULT CALLBACK SliderProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
        return 1;
    }
    SliderRow* row = RowOf(control);
    if (row == nullptr) return DefWindowProcW(control, message, wParam, lParam);
    switch (message) {
        case WM_PAINT: Paint(*row); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_KEYDOWN: return OnKeyDown(*row, control, wParam, lParam);
        case WM_MOUSEMOVE:
            if (!row->Hover) {
                row->Hover = true;
                TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, control, 0};
                TrackMouseEvent(&track);
                Invalidate(*row);
            }
            if (row->Dragging) SetSliderFromPoint(*row, lParam);
            return 0;
        case WM_LBUTTONDOWN:
            SetFocus(control);
            SetCapture(control);
            row->Hover = true;
            row->Dragging = true;
            SetSliderFromPoint(*row, lParam);
            Invalidate(*row);
            return 0;
        case WM_LBUTTONUP:
            if (row->Dragging) {
                row->Dragging = false;
                ReleaseCapture();
                SetSliderFromPoint(*row, lParam);
                Invalidate(*row);
            }
            return 0;
        case WM_MOUSELEAVE:
            row->Hover = false;
            Invalidate(*row);
            return 0;
        default: return DefWindowProcW(control, message, wParam, lParam);
    }
}

}  // namespace

bool RegisterSliderClass(HINSTANCE instance, HBRUSH background) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = SliderProcedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_HAND);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = kSliderClass;
    return RegisterClassExW(&windowClass) != 0;
}

void SetSliderValueClamped(SliderRow& row, int32_t newValue) {
    StoreAndNotify(row, ClampSliderValue(newValue, row.Minimum, row.Maximum));
}

void SetSliderFromPoint(SliderRow& row, LPARAM point) {
    RECT client;
    GetClientRect(row.Control, &client);
    // The low word is signed: with the capture held, the mouse may stand left of the control.
    const int32_t x = static_cast<int16_t>(LOWORD(point));
    StoreAndNotify(row, SliderValueAtPoint(x, client.right, row.Minimum, row.Maximum));
}

}  // namespace veltor
