#include "ui/SliderControl.h"

#include "ui/ControlClassNames.h"
#include "ui/GdiObject.h"
#include "ui/SliderGeometry.h"
#include "ui/Theme.h"
#include "ui/WindowTrampoline.h"

namespace veltor {
namespace {

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
    const GdiObject<HPEN> pen(CreatePen(PS_SOLID, 3, colour));
    HGDIOBJ old = SelectObject(dc, pen);
    MoveToEx(dc, fromX, y, nullptr);
    LineTo(dc, toX, y);
    SelectObject(dc, old);
}

void Paint(const SliderRow& row) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(row.Control, &paint);
    RECT client;
    GetClientRect(row.Control, &client);
    FillRect(dc, &client, GdiObject<HBRUSH>(CreateSolidBrush(kPanelColour)));

    const int32_t width = client.right;
    const int32_t mid = client.bottom / 2;
    const int32_t knob = SliderKnobX(row.Value, row.Minimum, row.Maximum, width);
    const COLORREF active = row.Hover || row.Dragging ? kAccentColour : kSliderRestingColour;
    DrawLine(dc, kSliderTrackColour, kSliderTrackInset, width - kSliderTrackInset, mid);
    DrawLine(dc, active, kSliderTrackInset, knob, mid);

    const GdiObject<HBRUSH> knobBrush(CreateSolidBrush(active));
    const GdiObject<HPEN> knobPen(CreatePen(PS_SOLID, 1, active));
    HGDIOBJ oldBrush = SelectObject(dc, knobBrush);
    HGDIOBJ oldPen = SelectObject(dc, knobPen);
    RoundRect(dc, knob - 5, mid - 10, knob + 5, mid + 10, 5, 5);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
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

}  // namespace

LRESULT SliderRow::Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT: Paint(*this); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_KEYDOWN: return OnKeyDown(*this, control, wParam, lParam);
        case WM_MOUSEMOVE:
            if (BeginHover(control, Hover)) Invalidate(*this);
            if (Dragging) SetSliderFromPoint(*this, lParam);
            return 0;
        case WM_LBUTTONDOWN:
            SetFocus(control);
            SetCapture(control);
            Hover = true;
            Dragging = true;
            SetSliderFromPoint(*this, lParam);
            Invalidate(*this);
            return 0;
        case WM_LBUTTONUP:
            if (Dragging) {
                Dragging = false;
                ReleaseCapture();
                SetSliderFromPoint(*this, lParam);
                Invalidate(*this);
            }
            return 0;
        case WM_MOUSELEAVE:
            Hover = false;
            Invalidate(*this);
            return 0;
        default: return DefWindowProcW(control, message, wParam, lParam);
    }
}

bool RegisterSliderClass(HINSTANCE instance, HBRUSH background) {
    return RegisterControlClass<SliderRow>(instance, background, kSliderClass);
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
