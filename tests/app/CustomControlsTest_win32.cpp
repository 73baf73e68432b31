// "VeltorSlider" and "VeltorCheckbox" in a window of the test's own, which records what they send. The mouse
// is the real one (the cursor placed, the buttons through SendInput); keys arrive as key-down messages.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

#include "app/CheckboxControl.h"
#include "app/SliderControl.h"

namespace {

using veltor::CheckboxRow;
using veltor::SliderRow;

struct Sent {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};
std::vector<Sent> sent;

// Counts what a window handled: the parent's own procedure and one standing in front of each control's.
struct Handled {
    WNDPROC original = nullptr;
    int paints = 0;
    int keys = 0;
    int buttonsDown = 0;
    int buttonsUp = 0;
    LPARAM lastMove = -1;
};
std::map<HWND, Handled> handled;

void Count(HWND window, UINT message, LPARAM lParam) {
    Handled& h = handled[window];
    h.paints += message == WM_PAINT ? 1 : 0;
    h.keys += message == WM_KEYDOWN ? 1 : 0;
    h.buttonsDown += message == WM_LBUTTONDOWN ? 1 : 0;
    h.buttonsUp += message == WM_LBUTTONUP ? 1 : 0;
    if (message == WM_MOUSEMOVE) h.lastMove = lParam;
}

LRESULT CALLBACK CountingProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    Count(control, message, lParam);
    return CallWindowProcW(handled[control].original, control, message, wParam, lParam);
}

LRESULT CALLBACK RecordingParent(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Count(window, message, lParam);
    if (message == veltor::SliderValueChanged || message == veltor::CheckboxToggled) {
        sent.push_back({message, wParam, lParam});
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Dispatches everything queued, paints included; true once `done` holds, false after the deadline.
bool PumpUntil(const std::function<bool()>& done) {
    const ULONGLONG until = GetTickCount64() + 30000;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (done()) return true;
        if (GetTickCount64() > until) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
}

void Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

class CustomControls : public ::testing::Test {
protected:
    void SetUp() override {
        HINSTANCE instance = GetModuleHandleW(nullptr);
        panel = CreateSolidBrush(0x221C18);
        veltor::RegisterSliderClass(instance, panel);
        veltor::RegisterCheckboxClass(instance, panel);
        WNDCLASSW parentClass{};
        parentClass.lpfnWndProc = RecordingParent;
        parentClass.hInstance = instance;
        parentClass.lpszClassName = L"ControlsTestParent";
        RegisterClassW(&parentClass);
        parent = CreateWindowExW(0, L"ControlsTestParent", L"", WS_POPUP | WS_VISIBLE, 100, 100, 700, 200, nullptr,
                                 nullptr, instance, nullptr);
        slider.Minimum = 0;
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
        Pump();
        sent.clear();
    }
    void TearDown() override {
        DestroyWindow(parent);
        handled.clear();
        DeleteObject(panel);
    }

    // The cursor to a point in the control's client coordinates (outside it too), and a move reported there.
    void MoveTo(HWND control, int x, int y) {
        POINT p{x, y};
        ClientToScreen(control, &p);
        const int width = GetSystemMetrics(SM_CXSCREEN);
        const int height = GetSystemMetrics(SM_CYSCREEN);
        INPUT move{};
        move.type = INPUT_MOUSE;
        move.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
        // Normalised to 0..65535, rounded up so that the pixel reached is the one asked for.
        move.mi.dx = (p.x * 65536 + width - 1) / width;
        move.mi.dy = (p.y * 65536 + height - 1) / height;
        SendInput(1, &move, sizeof move);
    }
    static HWND Under(HWND control, POINT p) {
        ClientToScreen(control, &p);
        return WindowFromPoint(p);
    }
    void Button(HWND target, bool down) {
        INPUT input{};
        input.type = INPUT_MOUSE;
        input.mi.dwFlags = down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
        Handled& h = handled[target];
        const int before = down ? h.buttonsDown : h.buttonsUp;
        SendInput(1, &input, sizeof input);
        ASSERT_TRUE(PumpUntil([&] { return (down ? h.buttonsDown : h.buttonsUp) > before; })) << "button not seen";
    }
    void Drag(int fromX, int toX) {
        MoveTo(slider.Control, fromX, 15);
        Button(slider.Control, true);
        MoveTo(slider.Control, toX, 15);
        ASSERT_TRUE(PumpUntil([&] { return static_cast<int16_t>(LOWORD(handled[slider.Control].lastMove)) == toX; }))
            << "no move seen at " << toX << ", last at " << static_cast<int16_t>(LOWORD(handled[slider.Control].lastMove));
        Button(slider.Control, false);
    }
    void Key(HWND control, WPARAM key) {
        const int before = handled[control].keys;
        PostMessageW(control, WM_KEYDOWN, key, 1);
        ASSERT_TRUE(PumpUntil([&] { return handled[control].keys > before; }));
        Pump();  // and the paint it may have asked for
    }
    void SetSlider(int32_t value) {
        slider.Value = value;
        InvalidateRect(slider.Control, nullptr, FALSE);
        Pump();
        sent.clear();
    }

    HBRUSH panel = nullptr;
    HWND parent = nullptr;
    SliderRow slider;
    CheckboxRow box;
};

TEST_F(CustomControls, DragSetsTheValueAndHoldsTheCaptureBeyondBothEnds) {
    const struct {
        int toX;
        int32_t value;
    } drags[] = {{122, 50}, {244 + 300, 100}, {-100, 0}, {234, 100}};
    for (const auto& drag : drags) {
        sent.clear();
        Drag(10 + slider.Value * 224 / 100, drag.toX);
        EXPECT_EQ(slider.Value, drag.value) << "to " << drag.toX;
        EXPECT_FALSE(slider.Dragging);
        EXPECT_EQ(GetCapture(), nullptr);
        ASSERT_FALSE(sent.empty()) << "to " << drag.toX;
        EXPECT_EQ(sent.back().wParam, static_cast<WPARAM>(drag.value));
        EXPECT_EQ(sent.back().lParam, reinterpret_cast<LPARAM>(slider.Control));
        for (size_t i = 1; i < sent.size(); ++i) EXPECT_NE(sent[i].wParam, sent[i - 1].wParam) << "a repeat was sent";
    }
}

TEST_F(CustomControls, ClickOnTheCurrentValueSendsNothingButRepaints) {
    SetSlider(50);
    const int paints = handled[slider.Control].paints;
    MoveTo(slider.Control, 122, 15);
    Button(slider.Control, true);
    Button(slider.Control, false);
    Pump();
    EXPECT_EQ(slider.Value, 50);
    EXPECT_TRUE(sent.empty());
    EXPECT_GT(handled[slider.Control].paints, paints);
    EXPECT_EQ(GetFocus(), slider.Control);
}

TEST_F(CustomControls, KeysStepClampAndStaySilentWhenNothingChanges) {
    const struct {
        int32_t from;
        WPARAM key;
        int32_t value;
    } cases[] = {
        {0, VK_LEFT, 0},    {0, VK_HOME, 0},  {100, VK_RIGHT, 100}, {100, VK_END, 100}, {50, VK_RIGHT, 51},
        {50, VK_LEFT, 49},  {50, VK_HOME, 0}, {50, VK_END, 100},    {50, 'A', 50},
    };
    for (const auto& c : cases) {
        SetSlider(c.from);
        const int paints = handled[slider.Control].paints;
        Key(slider.Control, c.key);
        EXPECT_EQ(slider.Value, c.value) << c.from << " key " << c.key;
        const bool changed = c.value != c.from;
        EXPECT_EQ(handled[slider.Control].paints > paints, changed) << c.from << " key " << c.key;
        ASSERT_EQ(sent.size(), changed ? 1u : 0u) << c.from << " key " << c.key;
        if (changed) {
            EXPECT_EQ(sent[0].wParam, static_cast<WPARAM>(c.value));
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
        MoveTo(box.Control, click.press.x, click.press.y);
        Button(Under(box.Control, click.press), true);
        MoveTo(box.Control, click.release.x, click.release.y);
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

TEST_F(CustomControls, SpaceAndReturnToggleTheCheckboxOtherKeysDoNot) {
    const struct {
        WPARAM key;
        bool toggles;
    } keys[] = {{VK_SPACE, true}, {VK_RETURN, true}, {'A', false}, {VK_SPACE, true}};
    for (const auto& k : keys) {
        sent.clear();
        const bool before = box.Checked;
        Key(box.Control, k.key);
        EXPECT_EQ(box.Checked != before, k.toggles) << k.key;
        EXPECT_EQ(sent.size(), k.toggles ? 1u : 0u) << k.key;
    }
}

}  // namespace
