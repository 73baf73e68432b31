// "VeltorSlider" and "VeltorCheckbox" in a window of the test's own, which records what they send. The mouse
// is the real one (the cursor placed, the buttons through SendInput); keys arrive as key-down messages.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

#include "ChildProcess_win32.h"
#include "ui/CheckboxControl.h"
#include "ui/SliderControl.h"

namespace {

using veltor::CheckboxRow;
using veltor::SliderRow;

std::vector<MSG> sent;

// What a control handled, seen by a procedure standing in front of its own.
struct Handled {
    WNDPROC original = nullptr;
    int paints = 0;
    int buttons = 0;
    LPARAM lastMove = -1;
};
std::map<HWND, Handled> handled;

LRESULT CALLBACK CountingProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    Handled& h = handled[control];
    h.paints += message == WM_PAINT ? 1 : 0;
    h.buttons += message == WM_LBUTTONDOWN || message == WM_LBUTTONUP ? 1 : 0;
    if (message == WM_MOUSEMOVE) h.lastMove = lParam;
    return CallWindowProcW(h.original, control, message, wParam, lParam);
}

LRESULT CALLBACK RecordingParent(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    handled[window].buttons += message == WM_LBUTTONDOWN || message == WM_LBUTTONUP ? 1 : 0;
    if (message == veltor::SliderValueChanged || message == veltor::CheckboxToggled) {
        sent.push_back({window, message, wParam, lParam, 0, {}});
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Dispatches everything queued, paints included; true once `done` holds, false after the deadline.
bool PumpUntil(const std::function<bool()>& done) {
    return veltor::test::WaitUntil([&] {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
        return done();
    }, 30000);
}

class CustomControls : public ::testing::Test {
protected:
    void SetUp() override {
        HINSTANCE instance = GetModuleHandleW(nullptr);
        panel = CreateSolidBrush(0x221C18);
        veltor::RegisterSliderClass(instance, panel);
        veltor::RegisterCheckboxClass(instance, panel);
        const WNDCLASSW parentClass{0,       RecordingParent, 0,       0,       instance,
                                    nullptr, nullptr,         nullptr, nullptr, L"ControlsTestParent"};
        RegisterClassW(&parentClass);
        parent = CreateWindowExW(0, L"ControlsTestParent", L"", WS_POPUP | WS_VISIBLE, 100, 100, 700, 200, nullptr,
                                 nullptr, instance, nullptr);
        slider.Maximum = 100;
        slider.Value = 40;
        slider.Control = CreateWindowExW(0, L"VeltorSlider", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 20, 20, 244, 30,
                                         parent, reinterpret_cast<HMENU>(1101), instance, &slider);
        box.Id = 1005;
        box.Label = L"Reduce force when parked";
        box.Control = CreateWindowExW(0, L"VeltorCheckbox", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 20, 100, 250, 24,
                                      parent, reinterpret_cast<HMENU>(1005), instance, &box);
        for (HWND control : {slider.Control, box.Control}) {
            handled[control].original = reinterpret_cast<WNDPROC>(
                SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountingProcedure)));
        }
        SetForegroundWindow(parent);
        PumpUntil([] { return true; });
    }
    void TearDown() override {
        DestroyWindow(parent);
        handled.clear();
        DeleteObject(panel);
    }

    static void Mouse(DWORD flags, LONG dx = 0, LONG dy = 0) {
        INPUT input{INPUT_MOUSE, {{dx, dy, 0, flags, 0, 0}}};
        SendInput(1, &input, sizeof input);
    }
    // The cursor to a point in the control's client coordinates (outside it too), normalised to 0..65535 and
    // rounded up so that the pixel reached is the one asked for.
    void MoveTo(HWND control, POINT p) {
        ClientToScreen(control, &p);
        const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
        Mouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, (p.x * 65536 + width - 1) / width,
              (p.y * 65536 + height - 1) / height);
    }
    static HWND Under(HWND control, POINT p) {
        ClientToScreen(control, &p);
        return WindowFromPoint(p);
    }
    // The button pressed or released, and seen by `target`.
    void Button(HWND target, bool down) {
        const int before = handled[target].buttons;
        Mouse(down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP);
        ASSERT_TRUE(PumpUntil([&] { return handled[target].buttons > before; })) << "button not seen";
    }
    void Drag(int fromX, int toX) {
        MoveTo(slider.Control, {fromX, 15});
        Button(slider.Control, true);
        MoveTo(slider.Control, {toX, 15});
        ASSERT_TRUE(PumpUntil([&] { return static_cast<int16_t>(LOWORD(handled[slider.Control].lastMove)) == toX; }))
            << "no move seen at " << toX;
        Button(slider.Control, false);
    }

    HBRUSH panel = nullptr;
    HWND parent = nullptr;
    SliderRow slider;
    CheckboxRow box;
};

// A press on the knob where it stands sends nothing; the capture holds the drag beyond both ends.
TEST_F(CustomControls, DragSetsTheValueOnceForEachChangeAndHoldsTheCaptureBeyondBothEnds) {
    const struct {
        int toX;
        int32_t value;
        bool sends;
    } drags[] = {{122, 50, true}, {244 + 300, 100, true}, {-100, 0, true}, {234, 100, true}, {234, 100, false}};
    for (const auto& drag : drags) {
        sent.clear();
        Drag(10 + slider.Value * 224 / 100, drag.toX);
        EXPECT_EQ(slider.Value, drag.value) << "to " << drag.toX;
        EXPECT_FALSE(slider.Dragging);
        EXPECT_EQ(GetCapture(), nullptr);
        EXPECT_EQ(GetFocus(), slider.Control);
        ASSERT_EQ(!sent.empty(), drag.sends) << "to " << drag.toX;
        if (!drag.sends) continue;
        EXPECT_EQ(sent.back().wParam, static_cast<WPARAM>(drag.value));
        EXPECT_EQ(sent.back().lParam, reinterpret_cast<LPARAM>(slider.Control));
        for (size_t i = 1; i < sent.size(); ++i) EXPECT_NE(sent[i].wParam, sent[i - 1].wParam) << "a repeat was sent";
    }
}

// Keys step and clamp the slider and flip the checkbox; a key that changes nothing sends and paints nothing.
TEST_F(CustomControls, KeysChangeTheValueOrStaySilent) {
    const struct {
        bool onBox;
        int32_t from;
        WPARAM key;
        int32_t value;
    } cases[] = {
        {false, 0, VK_LEFT, 0},  {false, 0, VK_HOME, 0}, {false, 100, VK_RIGHT, 100}, {false, 100, VK_END, 100},
        {false, 50, VK_RIGHT, 51}, {false, 50, VK_LEFT, 49}, {false, 50, VK_HOME, 0}, {false, 50, VK_END, 100},
        {false, 50, 'A', 50},    {true, 0, VK_SPACE, 1},  {true, 1, VK_RETURN, 0},     {true, 0, 'A', 0},
    };
    for (const auto& c : cases) {
        HWND control = c.onBox ? box.Control : slider.Control;
        slider.Value = c.from;
        box.Checked = c.from != 0;
        InvalidateRect(control, nullptr, FALSE);
        PumpUntil([] { return true; });
        sent.clear();
        const int paints = handled[control].paints;
        SendMessageW(control, WM_KEYDOWN, c.key, 1);
        PumpUntil([] { return true; });  // and the paint it may have asked for
        const bool changed = c.value != c.from;
        EXPECT_EQ(c.onBox ? int32_t{box.Checked} : slider.Value, c.value) << c.from << " key " << c.key;
        ASSERT_EQ(sent.size(), changed ? 1u : 0u) << c.from << " key " << c.key;
        if (changed) {
            EXPECT_EQ(sent[0].wParam, c.onBox ? WPARAM{1005} : static_cast<WPARAM>(c.value));
        }
        if (!c.onBox) {
            EXPECT_EQ(handled[control].paints > paints, changed) << c.from << " key " << c.key;
        }
    }
}

TEST_F(CustomControls, CheckboxTogglesOnAReleaseOverItWhereverThePressBegan) {
    const struct {
        POINT press, release;  // in the checkbox's client coordinates
        bool toggles;
    } clicks[] = {
        {{7, 11}, {100, 12}, true},    // press and release on the box
        {{7, 11}, {400, 60}, false},   // pressed here, released elsewhere: the focus only
        {{400, 60}, {30, 12}, true},   // pressed elsewhere, released here
    };
    for (const auto& click : clicks) {
        sent.clear();
        const bool before = box.Checked;
        MoveTo(box.Control, click.press);
        Button(Under(box.Control, click.press), true);
        MoveTo(box.Control, click.release);
        Button(Under(box.Control, click.release), false);
        EXPECT_EQ(box.Checked != before, click.toggles);
        ASSERT_EQ(sent.size(), click.toggles ? 1u : 0u);
        if (click.toggles) {
            EXPECT_EQ(sent[0].message, veltor::CheckboxToggled);
            EXPECT_EQ(sent[0].wParam, 1005u);
            EXPECT_EQ(sent[0].lParam, reinterpret_cast<LPARAM>(box.Control));
        }
    }
}

}  // namespace
