// The real Gripline.exe, started from a folder of its own on the test's display: the window's child list
// against the layout written out below, its frame, what a screenshot of it shows and how it answers input.
// The fonts are read in this process, from App's own window: Wine answers no WM_GETFONT from another one.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "RunningProgram_win32.h"
#include "Screenshot_win32.h"
#include "app/App.h"
#include "app/ControlCatalogue.h"

namespace {

using veltor::test::Screenshot;
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
std::vector<Child> Layout() {
    std::vector<Child> layout = {
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
    };
    int y = 496;
    for (const int id : {1004, 1005, 1006, 1007, 1011, 1012}) {
        layout.push_back({L"VeltorCheckbox", id, {48, y, 250, 24}, 0x50010000, 0, None, L""});
        y += 26;
    }
    const struct {
        int x;
        Child heading;  // none in the crash protection column
        std::vector<std::tuple<int, const wchar_t*, const wchar_t*>> rows;  // id, name, value text
    } columns[] = {
        {374, {L"Static", 0, {374, 188, 220, 20}, 0x50000080, 0, Body, L"BASE SIGNAL"},
         {{1100, L"Min force", L"0"}, {1101, L"Force strength", L"50%"}, {1104, L"Damping", L"0"},
          {1102, L"Road texture", L"20"}, {1103, L"Impact texture", L"20"}, {1105, L"ABS vibration", L"15%"}}},
        {674, {L"Static", 0, {674, 188, 220, 20}, 0x50000080, 0, Body, L"GRIP MODEL"},
         {{1109, L"Understeer resistance", L"75"}, {1108, L"Understeer lightening", L"0"},
          {1106, L"Car force balance", L"100%"}, {1107, L"Suspension detail priority", L"50%"},
          {1110, L"Oversteer correction", L"50"}, {1111, L"Oversteer offset", L"0"}}},
        {978, {},
         {{1112, L"Longitudinal G-force", L"6.0 g"}, {1113, L"Lateral G-force", L"6.0 g"},
          {1114, L"Duration", L"1.5 sec"}, {1115, L"Force reduction", L"95%"}}},
        {1298, {L"Static", 0, {1298, 188, 244, 22}, 0x50000080, 0, Body, L"Car: generic (unknown)"},
         {{1116, L"Steering build-up", L"40.0"}, {1117, L"Extra load in big steering", L"0.000"},
          {1118, L"Cornering load balance", L"90"}, {1119, L"Understeer weight", L"1.00"},
          {1120, L"Understeer trigger point", L"+0.0 deg"}}},
    };
    for (const auto& column : columns) {
        if (column.heading.className != nullptr) layout.push_back(column.heading);
        // A slider row: its name, its value text to the right of it, and the track below both.
        const int x = column.x;
        y = 218;
        for (const auto& [id, name, value] : column.rows) {
            layout.push_back({L"Static", 0, {x, y, 174, 22}, 0x50000080, 0, Body, name});
            layout.push_back({L"Static", 0, {x + 180, y, 64, 22}, 0x50000002, 0, Body, value});
            layout.push_back({L"VeltorSlider", id, {x, y + 26, 244, 30}, 0x50010000, 0, None, L""});
            y += 70;
        }
    }
    const Child tail[] = {
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
    layout.insert(layout.end(), std::begin(tail), std::end(tail));
    return layout;
}
const std::vector<Child> kLayout = Layout();

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(program.Start()) << "no painted window"; }

    veltor::test::RunningProgram program{VELTOR_GRIPLINE_EXE};
    HWND& window = program.window;
};

TEST_F(MainWindow, FrameAndEveryChildInOrderFollowTheLayout) {
    EXPECT_EQ(WindowText(window), L"Gripline v0.1.0.134");
    RECT outer;
    GetWindowRect(window, &outer);
    EXPECT_EQ(outer.right - outer.left, 1620);
    EXPECT_EQ(outer.bottom - outer.top, 875);
    // Created with 0x02CA0000; the system adds WS_VISIBLE and, for a top-level window, WS_CLIPSIBLINGS.
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)), 0x16CA0000u);
    EXPECT_EQ(GetWindowLongW(window, GWL_EXSTYLE) & ~WS_EX_WINDOWEDGE, 0);

    size_t i = 0;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT), ++i) {
        ASSERT_LT(i, kLayout.size()) << "more children than the layout has";
        const Child& expected = kLayout[i];
        SCOPED_TRACE(testing::Message() << "child " << i << " id " << expected.id);
        const std::wstring name = veltor::test::ClassName(child);
        RECT r;
        GetWindowRect(child, &r);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&r), 2);
        // A combo box's window is its closed field; the list's height is the platform's to lay out.
        const LONG height = name == L"ComboBox" ? expected.box.height : r.bottom - r.top;
        EXPECT_EQ(std::tuple(name, GetDlgCtrlID(child), r.left, r.top, r.right - r.left, height,
                             GetWindowLongW(child, GWL_STYLE), GetWindowLongW(child, GWL_EXSTYLE), WindowText(child)),
                  std::tuple(std::wstring(expected.className), expected.id, LONG{expected.box.x}, LONG{expected.box.y},
                             LONG{expected.box.width}, LONG{expected.box.height}, static_cast<LONG>(expected.style),
                             static_cast<LONG>(expected.exStyle), std::wstring(expected.text)));
    }
    EXPECT_EQ(i, kLayout.size());
}

constexpr COLORREF kWindow = RGB(13, 15, 18);
constexpr COLORREF kPanel = RGB(24, 28, 34);
constexpr COLORREF kHeader = RGB(19, 23, 29);
constexpr COLORREF kAccent = RGB(45, 102, 194);
constexpr COLORREF kPrimaryText = RGB(232, 238, 246);
constexpr COLORREF kTrackText = RGB(190, 204, 218);

TEST_F(MainWindow, ScreenshotShowsThePanelsBarsLogoAndStatusStrip) {
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    ASSERT_TRUE(shot.Take(window, "main-window")) << "xwd or convert failed";
    std::printf("screenshot: %s\n", shot.png.c_str());
    const LONG b = shot.height;
    const struct {
        const char* what;
        LONG x, y;
        COLORREF colour;
        int tolerance;
    } points[] = {
        {"window background", 10, 130, kWindow, 0},
        {"header band", 700, 100, kHeader, 0},
        {"header band's foot", 700, 121, kAccent, 0},
        {"control deck", 312, 300, kPanel, 0},
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
        {"logo's transparent corner", 46, 32, kHeader, 8},
    };
    for (const auto& p : points) EXPECT_LE(Screenshot::Distance(shot.At(p.x, p.y), p.colour), p.tolerance) << p.what;

    // The three status texts begin at their x on the line b - 22, each in its colour.
    const struct {
        LONG from, to, x;
        COLORREF colour;
    } texts[] = {{0, 250, 12, kPrimaryText}, {250, 445, 260, kTrackText}, {445, 1000, 450, kPrimaryText}};
    for (const auto& t : texts) {
        const Screenshot::Ink ink = shot.InkIn(t.from, t.to, b - 22, b - 4);
        EXPECT_NEAR(ink.first, t.x + 2, 2) << "text at " << t.x;
        EXPECT_LE(Screenshot::Distance(ink.greenest, t.colour), 6) << "text at " << t.x;
    }
}

// App's own window in this process: AppRun runs until a thread timer has read the fonts and closed it.
std::vector<std::pair<HFONT, LOGFONTW>> fonts;

void CALLBACK ReadFontsAndClose(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND window = FindWindowW(veltor::kMainWindowClass, nullptr);
    if (window == nullptr || !IsWindowVisible(window)) return;
    KillTimer(nullptr, timer);
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        auto& [handle, font] = fonts.emplace_back(reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0)), LOGFONTW{});
        if (handle != nullptr) GetObjectW(handle, sizeof font, &font);
    }
    PostMessageW(window, WM_CLOSE, 0, 0);
}

TEST(MainWindowFonts, EachControlHasTheFontOfItsRole) {
    auto app = std::make_unique<veltor::App>();
    SetTimer(nullptr, 0, 20, ReadFontsAndClose);
    EXPECT_EQ(app->AppRun(GetModuleHandleW(nullptr), SW_SHOWNORMAL, L""), 0);
    ASSERT_EQ(fonts.size(), kLayout.size());
    const std::tuple<LONG, LONG, BYTE, std::wstring, BYTE, BYTE> roles[] = {
        {}, {-15, 400, 0, L"Segoe UI", DEFAULT_CHARSET, CLEARTYPE_QUALITY},
        {-13, 600, 0, L"Segoe UI", DEFAULT_CHARSET, CLEARTYPE_QUALITY},
        {-14, 400, FIXED_PITCH, L"Cascadia Mono", DEFAULT_CHARSET, CLEARTYPE_QUALITY}};
    std::map<Font, HFONT> shared;
    for (size_t i = 0; i < kLayout.size(); ++i) {
        const Font role = kLayout[i].font;
        const auto& [handle, font] = fonts[i];
        if (role == None) {
            EXPECT_EQ(handle, nullptr) << "child " << i;
            continue;
        }
        // One font object per role, made as the theme says.
        EXPECT_EQ(shared.emplace(role, handle).first->second, handle) << "child " << i;
        EXPECT_EQ(std::tuple(font.lfHeight, font.lfWeight, font.lfPitchAndFamily, std::wstring(font.lfFaceName),
                             font.lfCharSet, font.lfQuality),
                  roles[role])
            << "child " << i;
    }
    EXPECT_EQ(shared.size(), 3u);
}

}  // namespace
