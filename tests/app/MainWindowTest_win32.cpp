// The real Gripline.exe, started from a folder of its own on the test's display: the window's child list
// against the layout written out below, its frame, what a screenshot of it shows and how it answers input.
// The fonts are read in this process, from App's own window: Wine answers no WM_GETFONT from another one.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <algorithm>
#include <cstring>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ProgramWindow_win32.h"
#include "Screenshot_win32.h"
#include "app/App.h"
#include "app/ControlCatalogue.h"

namespace {

using veltor::test::Process;
using veltor::test::Screenshot;
using veltor::test::ProgramFolder;
using veltor::test::WindowText;

enum Font { None, Body, Section, Mono };

struct Box {
    int x, y, width, height;  // client coordinates
};

struct Child {
    const wchar_t* className;
    int id;
    Box box;
    DWORD style;
    DWORD exStyle;
    Font font;
    const wchar_t* text;
};

// The window as a driver sees it after a start with no INI file and no wheel: the one profile "Default", and
// the car panel showing the set for an unknown car, since none has been seen.
const Child kLayout[] = {
        {L"Static", 0, {48, 188, 220, 20}, 0x50000080, 0, Body, L"FORCE FEEDBACK DEVICE"},
        {L"ComboBox", 1000, {48, 214, 250, 280}, 0x50010003, 0, Body, L""},
        {L"Static", 0, {48, 268, 220, 20}, 0x50000080, 0, Body, L"OUTPUT MODE"},
        {L"ComboBox", 1003, {48, 294, 250, 280}, 0x50010003, 0, Body, L"360 Hz telemetry"},
        {L"Static", 0, {48, 326, 220, 20}, 0x50000080, 0, Body, L"DRIVER PROFILE"},
        // Made with 0x50210002: the combo box hands the vertical scroll bar on to its list.
        {L"ComboBox", 1008, {48, 350, 250, 280}, 0x50010002, 0, Body, L"Default"},
        {L"Button", 1009, {48, 390, 118, 34}, 0x50010000, 0, Body, L"New"},
        {L"Button", 1010, {180, 390, 118, 34}, 0x50010000, 0, Body, L"Save"},
        {L"Button", 1001, {48, 442, 118, 34}, 0x50010000, 0, Body, L"Start"},
        {L"Button", 1002, {180, 442, 118, 34}, 0x58010000, 0, Body, L"Stop"},
        {L"VeltorCheckbox", 1004, {48, 496, 250, 24}, 0x50010000, 0, None, L""},
        {L"VeltorCheckbox", 1005, {48, 522, 250, 24}, 0x50010000, 0, None, L""},
        {L"VeltorCheckbox", 1006, {48, 548, 250, 24}, 0x50010000, 0, None, L""},
        {L"VeltorCheckbox", 1007, {48, 574, 250, 24}, 0x50010000, 0, None, L""},
        {L"VeltorCheckbox", 1011, {48, 600, 250, 24}, 0x50010000, 0, None, L""},
        {L"VeltorCheckbox", 1012, {48, 626, 250, 24}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 188, 220, 20}, 0x50000080, 0, Body, L"BASE SIGNAL"},
        {L"Static", 0, {374, 218, 174, 22}, 0x50000080, 0, Body, L"Min force"},
        {L"Static", 0, {554, 218, 64, 22}, 0x50000002, 0, Body, L"0"},
        {L"VeltorSlider", 1100, {374, 244, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 288, 174, 22}, 0x50000080, 0, Body, L"Force strength"},
        {L"Static", 0, {554, 288, 64, 22}, 0x50000002, 0, Body, L"50%"},
        {L"VeltorSlider", 1101, {374, 314, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 358, 174, 22}, 0x50000080, 0, Body, L"Damping"},
        {L"Static", 0, {554, 358, 64, 22}, 0x50000002, 0, Body, L"0"},
        {L"VeltorSlider", 1104, {374, 384, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 428, 174, 22}, 0x50000080, 0, Body, L"Road texture"},
        {L"Static", 0, {554, 428, 64, 22}, 0x50000002, 0, Body, L"20"},
        {L"VeltorSlider", 1102, {374, 454, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 498, 174, 22}, 0x50000080, 0, Body, L"Impact texture"},
        {L"Static", 0, {554, 498, 64, 22}, 0x50000002, 0, Body, L"20"},
        {L"VeltorSlider", 1103, {374, 524, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {374, 568, 174, 22}, 0x50000080, 0, Body, L"ABS vibration"},
        {L"Static", 0, {554, 568, 64, 22}, 0x50000002, 0, Body, L"15%"},
        {L"VeltorSlider", 1105, {374, 594, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 188, 220, 20}, 0x50000080, 0, Body, L"GRIP MODEL"},
        {L"Static", 0, {674, 218, 174, 22}, 0x50000080, 0, Body, L"Understeer resistance"},
        {L"Static", 0, {854, 218, 64, 22}, 0x50000002, 0, Body, L"75"},
        {L"VeltorSlider", 1109, {674, 244, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 288, 174, 22}, 0x50000080, 0, Body, L"Understeer lightening"},
        {L"Static", 0, {854, 288, 64, 22}, 0x50000002, 0, Body, L"0"},
        {L"VeltorSlider", 1108, {674, 314, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 358, 174, 22}, 0x50000080, 0, Body, L"Car force balance"},
        {L"Static", 0, {854, 358, 64, 22}, 0x50000002, 0, Body, L"100%"},
        {L"VeltorSlider", 1106, {674, 384, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 428, 174, 22}, 0x50000080, 0, Body, L"Suspension detail priority"},
        {L"Static", 0, {854, 428, 64, 22}, 0x50000002, 0, Body, L"50%"},
        {L"VeltorSlider", 1107, {674, 454, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 498, 174, 22}, 0x50000080, 0, Body, L"Oversteer correction"},
        {L"Static", 0, {854, 498, 64, 22}, 0x50000002, 0, Body, L"50"},
        {L"VeltorSlider", 1110, {674, 524, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {674, 568, 174, 22}, 0x50000080, 0, Body, L"Oversteer offset"},
        {L"Static", 0, {854, 568, 64, 22}, 0x50000002, 0, Body, L"0"},
        {L"VeltorSlider", 1111, {674, 594, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {978, 218, 174, 22}, 0x50000080, 0, Body, L"Longitudinal G-force"},
        {L"Static", 0, {1158, 218, 64, 22}, 0x50000002, 0, Body, L"6.0 g"},
        {L"VeltorSlider", 1112, {978, 244, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {978, 288, 174, 22}, 0x50000080, 0, Body, L"Lateral G-force"},
        {L"Static", 0, {1158, 288, 64, 22}, 0x50000002, 0, Body, L"6.0 g"},
        {L"VeltorSlider", 1113, {978, 314, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {978, 358, 174, 22}, 0x50000080, 0, Body, L"Duration"},
        {L"Static", 0, {1158, 358, 64, 22}, 0x50000002, 0, Body, L"1.5 sec"},
        {L"VeltorSlider", 1114, {978, 384, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {978, 428, 174, 22}, 0x50000080, 0, Body, L"Force reduction"},
        {L"Static", 0, {1158, 428, 64, 22}, 0x50000002, 0, Body, L"95%"},
        {L"VeltorSlider", 1115, {978, 454, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {1298, 188, 244, 22}, 0x50000080, 0, Body, L"Car: generic (unknown)"},
        {L"Static", 0, {1298, 218, 174, 22}, 0x50000080, 0, Body, L"Steering build-up"},
        {L"Static", 0, {1478, 218, 64, 22}, 0x50000002, 0, Body, L"40.0"},
        {L"VeltorSlider", 1116, {1298, 244, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {1298, 288, 174, 22}, 0x50000080, 0, Body, L"Extra load in big steering"},
        {L"Static", 0, {1478, 288, 64, 22}, 0x50000002, 0, Body, L"0.000"},
        {L"VeltorSlider", 1117, {1298, 314, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {1298, 358, 174, 22}, 0x50000080, 0, Body, L"Cornering load balance"},
        {L"Static", 0, {1478, 358, 64, 22}, 0x50000002, 0, Body, L"90"},
        {L"VeltorSlider", 1118, {1298, 384, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {1298, 428, 174, 22}, 0x50000080, 0, Body, L"Understeer weight"},
        {L"Static", 0, {1478, 428, 64, 22}, 0x50000002, 0, Body, L"1.00"},
        {L"VeltorSlider", 1119, {1298, 454, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {1298, 498, 174, 22}, 0x50000080, 0, Body, L"Understeer trigger point"},
        {L"Static", 0, {1478, 498, 64, 22}, 0x50000002, 0, Body, L"+0.0 deg"},
        {L"VeltorSlider", 1120, {1298, 524, 244, 30}, 0x50010000, 0, None, L""},
        {L"Static", 0, {980, 42, 230, 20}, 0x50000080, 0, Section, L"WHEELBASE MAX TORQUE"},
        {L"Edit", 1131, {980, 68, 128, 28}, 0x50010082, 0x200, Body, L""},
        {L"Static", 0, {1118, 72, 40, 20}, 0x50000080, 0, Body, L"Nm"},
        {L"Static", 0, {1268, 42, 272, 20}, 0x50000080, 0, Section, L"UPDATES AND SUPPORT"},
        {L"Button", 1127, {1392, 64, 88, 32}, 0x50010000, 0, Body, L"Update"},
        {L"Button", 1130, {1484, 64, 84, 32}, 0x50010000, 0, Body, L"Donate"},
        {L"Button", 1124, {1088, 674, 104, 30}, 0x58010000, 0, Body, L"Record"},
        {L"Button", 1125, {1200, 674, 104, 30}, 0x58010000, 0, Body, L"Stop rec"},
        {L"Button", 1126, {1312, 674, 104, 30}, 0x50010000, 0, Body, L"Analyzer"},
        {L"Button", 1123, {1424, 674, 124, 30}, 0x50010000, 0, Body, L"View log"},
        {L"Edit", 0, {48, 718, 1500, 56}, 0x50200844, 0x200, Mono, L"No force feedback device found.\r\n"},
};

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.copied);
        program = std::make_unique<Process>(folder.Exe, L"");
        ASSERT_TRUE(program->started);
        window = veltor::test::WaitForPaintedWindow(*program);
        ASSERT_NE(window, nullptr) << "no painted window";
    }

    std::vector<HWND> Children() const {
        std::vector<HWND> children;
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            children.push_back(child);
        }
        return children;
    }

    Box ClientBox(HWND child) const {
        RECT rect;
        GetWindowRect(child, &rect);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
        return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    }

    ProgramFolder folder{VELTOR_GRIPLINE_EXE};
    std::unique_ptr<Process> program;
    HWND window = nullptr;
};

TEST_F(MainWindow, FrameHasTheTitleSizeAndStyleOfAFixedWindow) {
    wchar_t title[64];
    GetWindowTextW(window, title, 64);
    EXPECT_STREQ(title, L"Gripline v0.1.0.134");
    RECT outer;
    GetWindowRect(window, &outer);
    EXPECT_EQ(outer.right - outer.left, 1620);
    EXPECT_EQ(outer.bottom - outer.top, 875);
    // Created with 0x02CA0000; the system adds WS_VISIBLE and, for a top-level window, WS_CLIPSIBLINGS.
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)), 0x16CA0000u);
    EXPECT_EQ(GetWindowLongW(window, GWL_EXSTYLE) & ~WS_EX_WINDOWEDGE, 0);
}

TEST_F(MainWindow, ChildListFollowsTheLayoutInOrder) {
    const std::vector<HWND> children = Children();
    ASSERT_EQ(children.size(), std::size(kLayout));
    for (size_t i = 0; i < children.size(); ++i) {
        const Child& expected = kLayout[i];
        HWND child = children[i];
        wchar_t name[32];
        GetClassNameW(child, name, 32);
        const Box box = ClientBox(child);
        SCOPED_TRACE(testing::Message() << "child " << i << " id " << expected.id);
        EXPECT_STREQ(name, expected.className);
        EXPECT_EQ(GetDlgCtrlID(child), expected.id);
        EXPECT_EQ(box.x, expected.box.x);
        EXPECT_EQ(box.y, expected.box.y);
        EXPECT_EQ(box.width, expected.box.width);
        // A combo box's window is its closed field; the list's height is the platform's to lay out.
        if (std::wcscmp(name, L"ComboBox") != 0) {
            EXPECT_EQ(box.height, expected.box.height);
        }
        EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(child, GWL_STYLE)), expected.style);
        EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(child, GWL_EXSTYLE)), expected.exStyle);
        EXPECT_EQ(WindowText(child), expected.text);
    }
}

int Distance(COLORREF a, COLORREF b) {
    return std::max({std::abs(GetRValue(a) - GetRValue(b)), std::abs(GetGValue(a) - GetGValue(b)),
                     std::abs(GetBValue(a) - GetBValue(b))});
}

constexpr COLORREF kWindow = RGB(13, 15, 18);
constexpr COLORREF kPanel = RGB(24, 28, 34);
constexpr COLORREF kHeader = RGB(19, 23, 29);
constexpr COLORREF kAccent = RGB(45, 102, 194);
constexpr COLORREF kBorder = RGB(39, 45, 54);
constexpr COLORREF kPrimaryText = RGB(232, 238, 246);
constexpr COLORREF kTrackText = RGB(190, 204, 218);

TEST_F(MainWindow, ScreenshotShowsThePanelsBarsLogoAndStatusStrip) {
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    ASSERT_TRUE(shot.Take("main-window")) << "xwd or convert failed";
    std::printf("screenshot: %s\n", shot.png.c_str());
    RECT client;
    GetClientRect(window, &client);
    const LONG b = client.bottom;
    auto at = [&](LONG x, LONG y) {
        POINT p{x, y};
        ClientToScreen(window, &p);
        return shot.At(p);
    };
    const struct {
        const char* what;
        LONG x, y;
        COLORREF colour;
        int tolerance;
    } points[] = {
        {"window background", 10, 130, kWindow, 0},
        {"window background under the crash panel", 1100, 630, kWindow, 0},
        {"window background over the status strip", 800, 800, kWindow, 0},
        {"header band", 700, 100, kHeader, 0},
        {"header band's foot", 700, 121, kAccent, 0},
        {"control deck", 312, 300, kPanel, 0},
        {"control deck's border", 24, 400, kBorder, 0},
        {"tuning matrix", 900, 640, kPanel, 0},
        {"crash protection", 1100, 560, kPanel, 0},
        {"car-specific feel", 1400, 590, kPanel, 0},
        {"session log band", 40, 782, kHeader, 0},
        {"bar under CONTROL DECK", 200, 162, kAccent, 0},
        {"bar under TUNING MATRIX", 600, 162, kAccent, 0},
        {"bar under CRASH PROTECTION", 1100, 162, kAccent, 0},
        {"bar under CAR-SPECIFIC FEEL", 1400, 162, kAccent, 0},
        {"bar over SESSION LOG", 500, 692, kAccent, 0},
        {"status strip's rule", 800, b - 28, kAccent, 0},
        {"status strip", 800, b - 4, kHeader, 0},
        {"logo's hub", 86, 72, RGB(232, 238, 246), 40},
        {"logo's rim", 62, 48, RGB(74, 144, 226), 40},
        {"logo's marker", 86, 39, RGB(245, 166, 35), 60},
        {"logo's transparent corner", 46, 32, kHeader, 8},
    };
    for (const auto& p : points) EXPECT_LE(Distance(at(p.x, p.y), p.colour), p.tolerance) << p.what;

    // The three status texts begin at their x on the line b - 22, each in its colour.
    const struct {
        LONG from, to, x;
        COLORREF colour;
    } texts[] = {{0, 250, 12, kPrimaryText}, {250, 445, 260, kTrackText}, {445, 1000, 450, kPrimaryText}};
    for (const auto& t : texts) {
        LONG first = -1;
        COLORREF brightest = 0;
        for (LONG x = t.from; x < t.to; ++x) {
            for (LONG y = b - 22; y < b - 4; ++y) {
                const COLORREF c = at(x, y);
                if (GetRValue(c) + GetGValue(c) + GetBValue(c) < 300) continue;
                if (first < 0) first = x;
                if (GetGValue(c) > GetGValue(brightest)) brightest = c;
            }
        }
        EXPECT_GE(first, t.x) << "text at " << t.x;
        EXPECT_LE(first, t.x + 4) << "text at " << t.x;
        EXPECT_LE(Distance(brightest, t.colour), 6) << "text at " << t.x;
    }
}

TEST_F(MainWindow, SliderKeysMoveTheValueAndItsText) {
    HWND slider = GetDlgItem(window, 1101);
    HWND text = GetWindow(slider, GW_HWNDPREV);  // the block's value text
    const struct {
        WPARAM key;
        const wchar_t* shown;
    } steps[] = {{VK_END, L"100%"}, {VK_LEFT, L"99%"}, {VK_HOME, L"0%"}, {VK_RIGHT, L"1%"}};
    for (const auto& step : steps) {
        PostMessageW(slider, WM_KEYDOWN, step.key, 1);
        const ULONGLONG until = GetTickCount64() + veltor::test::kWindowTimeoutMs;
        while (WindowText(text) != step.shown && GetTickCount64() < until) Sleep(10);
        EXPECT_EQ(WindowText(text), step.shown);
    }
}

// Closing the window ends the process with 0 and saves the store beside the program, where there was none.
TEST_F(MainWindow, ClosingTheWindowSavesTheStoreAndEndsWithExitCodeZero) {
    ASSERT_FALSE(folder.Holds(L"Veltor_profiles.ini"));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(program->WaitForExit(), 0);
    EXPECT_TRUE(folder.Holds(L"Veltor_profiles.ini"));
}

// App's own window in this process: AppRun runs until a thread timer has read the fonts and closed it.
struct FontReading {
    std::vector<HFONT> handles;
    std::vector<LOGFONTW> fonts;
};
FontReading reading;

void CALLBACK ReadFontsAndClose(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND window = FindWindowW(veltor::kMainWindowClass, nullptr);
    if (window == nullptr || !IsWindowVisible(window)) return;
    KillTimer(nullptr, timer);
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        auto font = reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0));
        LOGFONTW logFont{};
        if (font != nullptr) GetObjectW(font, sizeof logFont, &logFont);
        reading.handles.push_back(font);
        reading.fonts.push_back(logFont);
    }
    PostMessageW(window, WM_CLOSE, 0, 0);
}

TEST(MainWindowFonts, EachControlHasTheFontOfItsRole) {
    auto app = std::make_unique<veltor::App>();
    SetTimer(nullptr, 0, 20, ReadFontsAndClose);
    EXPECT_EQ(app->AppRun(GetModuleHandleW(nullptr), SW_SHOWNORMAL, L""), 0);
    ASSERT_EQ(reading.handles.size(), std::size(kLayout));
    const struct {
        LONG height;
        LONG weight;
        BYTE pitch;
        const wchar_t* face;
    } roles[] = {{}, {-15, 400, 0, L"Segoe UI"}, {-13, 600, 0, L"Segoe UI"}, {-14, 400, FIXED_PITCH, L"Cascadia Mono"}};
    std::map<Font, HFONT> shared;
    for (size_t i = 0; i < std::size(kLayout); ++i) {
        const Font role = kLayout[i].font;
        const LOGFONTW& font = reading.fonts[i];
        if (role == None) {
            EXPECT_EQ(reading.handles[i], nullptr) << "child " << i;
            continue;
        }
        // One font object per role, made as the theme says.
        EXPECT_EQ(shared.emplace(role, reading.handles[i]).first->second, reading.handles[i]) << "child " << i;
        EXPECT_EQ(font.lfHeight, roles[role].height) << "child " << i;
        EXPECT_EQ(font.lfWeight, roles[role].weight) << "child " << i;
        EXPECT_EQ(font.lfPitchAndFamily, roles[role].pitch) << "child " << i;
        EXPECT_STREQ(font.lfFaceName, roles[role].face) << "child " << i;
        EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
        EXPECT_EQ(font.lfQuality, CLEARTYPE_QUALITY);
    }
    EXPECT_EQ(shared.size(), 3u);
}

}  // namespace
