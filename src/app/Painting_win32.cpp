#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "app/App.h"
#include "platform/SteadyClock.h"
#include "ui/Theme.h"
#include "ui/WindowTheme.h"

namespace veltor {
namespace {

constexpr int32_t kStatusStripHeight = 28;
constexpr int32_t kStatusTextOffset = 22;  // the texts' line, up from the bottom
constexpr RECT kLogoArea{44, 30, 128, 114};

// The force meter, in pixels of its area: the bar, then its clipping figure right-aligned.
constexpr int32_t kMeterRightMargin = 16;
constexpr int32_t kMeterBarWidth = 240;
constexpr int32_t kMeterGap = 12;
constexpr int32_t kMeterTextWidth = 96;
constexpr int32_t kMeterWidth = kMeterBarWidth + kMeterGap + kMeterTextWidth;
constexpr int32_t kMeterBarTop = 8;
constexpr int32_t kMeterBarBottom = 18;
constexpr int32_t kMeterMarkReach = 2;  // the peak mark stands out of the bar this far, above and below
constexpr int32_t kMeterMarkWidth = 2;

struct Panel {
    RECT Rect;
    GdiObject<HBRUSH> App::*Brush;
};

constexpr std::array<Panel, 6> kPanels{{
    {{24, 20, 1576, 122}, &App::HeaderBrush},    // header band
    {{24, 138, 326, 654}, &App::PanelBrush},     // control deck
    {{344, 138, 936, 654}, &App::PanelBrush},    // tuning matrix
    {{954, 138, 1256, 610}, &App::PanelBrush},   // crash protection
    {{1274, 138, 1576, 610}, &App::PanelBrush},  // car-specific feel
    {{24, 666, 1576, 790}, &App::HeaderBrush},   // session log band
}};

constexpr std::array<RECT, 6> kAccentBars{{
    {24, 120, 1576, 122},  // foot of the header band
    {48, 160, 298, 164},
    {374, 160, 918, 164},
    {978, 160, 1228, 164},
    {1298, 160, 1548, 164},
    {48, 690, 1548, 694},  // over the session log
}};

struct PaintedText {
    std::wstring_view Text;
    int32_t X;
    int32_t Y;
    GdiObject<HFONT> App::*Font;
    COLORREF Colour;
};

constexpr std::array<PaintedText, 7> kTexts{{
    {L"Gripline", 146, 38, &App::TitleFont, kPrimaryTextColour},
    {L"iRacing force feedback, but better...", 150, 78, &App::BodyFont, kTaglineTextColour},
    {L"CONTROL DECK", 48, 168, &App::SectionFont, kAccentColour},
    {L"TUNING MATRIX", 374, 168, &App::SectionFont, kAccentColour},
    {L"CRASH PROTECTION", 978, 168, &App::SectionFont, kAccentColour},
    {L"CAR-SPECIFIC FEEL", 1298, 168, &App::SectionFont, kAccentColour},
    {L"SESSION LOG", 48, 698, &App::SectionFont, kAccentColour},
}};


void PaintStatusStrip(const App& app, HDC dc, const RECT& client) {
    const RECT strip{0, client.bottom - kStatusStripHeight, client.right, client.bottom};
    const RECT rule{0, client.bottom - kStatusStripHeight, client.right, client.bottom - kStatusStripHeight + 1};
    FillRect(dc, &strip, app.HeaderBrush);
    FillRect(dc, &rule, app.AccentBrush);
}

void PaintLogo(const App& app, HDC dc) {
    if (app.LogoBitmap != nullptr) {
        Gdiplus::GpGraphics* graphics = nullptr;
        if (Gdiplus::DllExports::GdipCreateFromHDC(dc, &graphics) == Gdiplus::Ok) {
            Gdiplus::DllExports::GdipSetInterpolationMode(graphics, Gdiplus::InterpolationModeHighQualityBicubic);
            Gdiplus::DllExports::GdipDrawImageRectI(graphics, app.LogoBitmap, 44, 30, 84, 84);
            Gdiplus::DllExports::GdipDeleteGraphics(graphics);
        }
    } else if (app.AppIcon != nullptr) {
        DrawIconEx(dc, 50, 44, app.AppIcon, 48, 48, 0, nullptr, DI_NORMAL);
    }
}

void FillColour(HDC dc, const RECT& area, COLORREF colour) {
    FillRect(dc, &area, GdiObject<HBRUSH>(CreateSolidBrush(colour)));
}

// The bar's track with its border, the level against full scale, and the peak mark.
void PaintMeterBar(HDC dc, const MeterReading& reading) {
    const RECT track{0, kMeterBarTop, kMeterBarWidth, kMeterBarBottom};
    FillColour(dc, track, kPanelBorderColour);
    const RECT inside{1, kMeterBarTop + 1, kMeterBarWidth - 1, kMeterBarBottom - 1};
    FillColour(dc, inside, kFieldColour);
    const auto along = [&](float fraction) {
        return inside.left + static_cast<int32_t>(std::min(fraction, 1.0f) * static_cast<float>(inside.right - inside.left));
    };
    FillColour(dc, {inside.left, inside.top, along(reading.level), inside.bottom},
               reading.clipping ? kMeterClipColour : kSliderRestingColour);
    const int32_t mark = std::min(along(reading.peak), inside.right - kMeterMarkWidth);
    if (reading.peak > 0.0f) {
        FillColour(dc, {mark, kMeterBarTop - kMeterMarkReach, mark + kMeterMarkWidth, kMeterBarBottom + kMeterMarkReach},
                   kPrimaryTextColour);
    }
}

void PaintText(HDC dc, std::wstring_view text, int32_t x, int32_t y, HFONT font, COLORREF colour) {
    HGDIOBJ old = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    TextOutW(dc, x, y, text.data(), static_cast<int>(text.size()));
    SelectObject(dc, old);
}

}  // namespace

void App::CreateBrushesAndFonts() {
    WindowBrush.Reset(CreateSolidBrush(kWindowColour));
    PanelBrush.Reset(CreateSolidBrush(kPanelColour));
    HeaderBrush.Reset(CreateSolidBrush(kHeaderColour));
    FieldBrush.Reset(CreateSolidBrush(kFieldColour));
    AccentBrush.Reset(CreateSolidBrush(kAccentColour));
    BodyFont.Reset(MakeThemeFont(-15, 400));
    TitleFont.Reset(MakeThemeFont(-34, 700));
    SectionFont.Reset(MakeThemeFont(-13, 600));
    MonoFont.Reset(MakeThemeFont(-14, 400, true));
}

void App::PaintBackground(HDC dc) {
    RECT client;
    GetClientRect(Window, &client);
    FillRect(dc, &client, WindowBrush);
    PaintStatusStrip(*this, dc, client);
    for (const Panel& panel : kPanels) {
        const GdiObject<HPEN> border(CreatePen(PS_SOLID, 1, kPanelBorderColour));
        HGDIOBJ oldPen = SelectObject(dc, border);
        HGDIOBJ oldBrush = SelectObject(dc, this->*panel.Brush);
        RoundRect(dc, panel.Rect.left, panel.Rect.top, panel.Rect.right, panel.Rect.bottom, 10, 10);
        SelectObject(dc, oldBrush);
        SelectObject(dc, oldPen);
    }
    for (const RECT& bar : kAccentBars) FillRect(dc, &bar, AccentBrush);
}

// The logo is scaled anew on each paint, so it is drawn only where the paint reaches it: the status strip
// repaints many times a second.
void App::PaintForeground(HDC dc) {
    if (RectVisible(dc, &kLogoArea)) PaintLogo(*this, dc);
    for (const PaintedText& text : kTexts) PaintText(dc, text.Text, text.X, text.Y, this->*text.Font, text.Colour);

    // The strip is invalidated without erase, so it is filled again here under the new texts; the meter
    // paints its own area whole, which keeps it from flickering.
    RECT client;
    GetClientRect(Window, &client);
    const RECT meter = ForceMeterArea(client);
    const int saved = SaveDC(dc);
    ExcludeClipRect(dc, meter.left, meter.top, meter.right, meter.bottom);
    PaintStatusStrip(*this, dc, client);
    const int32_t y = client.bottom - kStatusTextOffset;
    PaintText(dc, ConnectionText, 12, y, BodyFont, kPrimaryTextColour);
    PaintText(dc, TrackText, 260, y, BodyFont, kTrackTextColour);
    PaintText(dc, CarText, 450, y, BodyFont, kPrimaryTextColour);
    RestoreDC(dc, saved);
    PaintForceMeter(dc, meter);
}

RECT ForceMeterArea(const RECT& client) {
    const int32_t right = client.right - kMeterRightMargin;
    return {right - kMeterWidth, client.bottom - kStatusStripHeight + 1, right, client.bottom};
}

// Drawn off screen and copied whole. Empty while the engine doesn't run.
void App::PaintForceMeter(HDC dc, const RECT& area) {
    const int32_t width = area.right - area.left;
    const int32_t height = area.bottom - area.top;
    const MemoryDc memory(dc);
    const GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(dc, width, height));
    if (memory == nullptr || bitmap == nullptr) return;
    HGDIOBJ oldBitmap = SelectObject(memory, bitmap);
    const RECT whole{0, 0, width, height};
    FillRect(memory, &whole, HeaderBrush);
    if (Engine.IsRunning()) {
        const MeterReading reading = Meter.Reading(SteadyNowNanoseconds());
        PaintMeterBar(memory, reading);
        HGDIOBJ oldFont = SelectObject(memory, BodyFont);
        SetBkMode(memory, TRANSPARENT);
        SetTextColor(memory, kPrimaryTextColour);
        RECT text{kMeterBarWidth + kMeterGap, kStatusStripHeight - 1 - kStatusTextOffset, width, height};
        const std::wstring clip = ClipText(reading.clipTenths);
        DrawTextW(memory, clip.c_str(), static_cast<int>(clip.size()), &text, DT_RIGHT | DT_SINGLELINE | DT_NOPREFIX);
        SelectObject(memory, oldFont);
    }
    BitBlt(dc, area.left, area.top, width, height, memory, 0, 0, SRCCOPY);
    SelectObject(memory, oldBitmap);
}

void App::SetStatusTexts(const std::wstring& first, const std::wstring& second, const std::wstring& third) {
    ConnectionText = first;
    TrackText = second;
    CarText = third;
    if (Window == nullptr) return;
    RECT strip;
    GetClientRect(Window, &strip);
    strip.top = strip.bottom - kStatusStripHeight;
    InvalidateRect(Window, &strip, FALSE);
}

}  // namespace veltor
