#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "analyzer/AnalyzerLayout.h"
#include "analyzer/AnalyzerWindow.h"
#include "analyzer/RecordingAnalysis.h"
#include "profiles/IniEncoding.h"
#include "ui/Theme.h"

namespace veltor::analyzer {
namespace {

// The plots' own colours beside the theme's, as COLORREF (blue in the high byte).
constexpr uint32_t kForceColour = kSliderRestingColour;
constexpr uint32_t kClippedColour = 0x5548E8;
constexpr uint32_t kUndersteerColour = 0x8CC850;
constexpr uint32_t kAbsColour = 0x2AA6F2;
constexpr uint32_t kCrashColour = 0xA03CC8;
constexpr uint32_t kGapColour = 0x807870;
constexpr uint32_t kFailureTextColour = 0x6A6AF2;

constexpr float kFullScaleHeadroom = 1.25f;  // the force plot reaches this far past full scale
constexpr double kTargetShare = kTargetPeakPercent / 100.0;  // where the advice aims the force's peaks

Gdiplus::ARGB Argb(uint32_t colour, uint32_t alpha = 255) {
    return alpha << 24 | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

RECT Rect(const LayoutRect& r) { return {r.left, r.top, r.right, r.bottom}; }


std::wstring Format(const wchar_t* format, double value) {
    wchar_t text[64];
    std::swprintf(text, 64, format, value);
    return text;
}

// Text in a box; returns the height it took.
int32_t Text(HDC dc, const std::wstring& text, RECT box, HFONT font, COLORREF colour, UINT flags = 0) {
    HGDIOBJ old = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    RECT measured = box;
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &measured, flags | DT_NOPREFIX | DT_CALCRECT);
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &box, flags | DT_NOPREFIX);
    SelectObject(dc, old);
    return measured.bottom - measured.top;
}

void Panel(HDC dc, const LayoutRect& r, HBRUSH fill) {
    const GdiObject<HPEN> border(CreatePen(PS_SOLID, 1, kPanelBorderColour));
    HGDIOBJ oldPen = SelectObject(dc, border);
    HGDIOBJ oldBrush = SelectObject(dc, fill);
    RoundRect(dc, r.left, r.top, r.right, r.bottom, 10, 10);
    SelectObject(dc, oldBrush);
    SelectObject(dc, oldPen);
}

// A panel's heading in the accent colour with its rule beneath, as the main window has them.
void Heading(HDC dc, const LayoutRect& panel, const wchar_t* text, HFONT font, HBRUSH accent) {
    Text(dc, text, {panel.left + 16, panel.top + 9, panel.right - 16, panel.top + 27}, font, kAccentColour,
         DT_SINGLELINE);
    const RECT rule{panel.left + 16, panel.top + 28, panel.left + 120, panel.top + 30};
    FillRect(dc, &rule, accent);
}

// One entry of a plot's legend, right to left from `right`; returns where the next one ends.
int32_t Legend(HDC dc, int32_t right, int32_t top, const std::wstring& label, uint32_t colour, HFONT font) {
    SIZE size{};
    HGDIOBJ old = SelectObject(dc, font);
    GetTextExtentPoint32W(dc, label.c_str(), static_cast<int>(label.size()), &size);
    SelectObject(dc, old);
    const int32_t textLeft = right - size.cx;
    Text(dc, label, {textLeft - 8, top, right, top + 18}, font, kTaglineTextColour, DT_SINGLELINE | DT_RIGHT | DT_NOCLIP);
    const RECT box{textLeft - 18, top + 4, textLeft - 8, top + 14};
    FillRect(dc, &box, GdiObject<HBRUSH>(CreateSolidBrush(colour)));
    return textLeft - 32;
}

// Maps time to x and a value to y inside a plot's area.
struct PlotMap {
    LayoutRect area;
    TimeWindow shown;
    float top = 1.0f;  // the value at the area's top edge
    float bottom = -1.0f;
    float X(double t) const {
        const double span = shown.to - shown.from;
        const double share = span > 0.0 ? (t - shown.from) / span : 0.0;
        return static_cast<float>(area.left + share * (area.right - area.left));
    }
    float Y(float v) const {
        const float share = (top - v) / (top - bottom);
        return static_cast<float>(area.top) + std::clamp(share, 0.0f, 1.0f) * static_cast<float>(area.bottom - area.top);
    }
};

void FillArea(HDC dc, const LayoutRect& area) {
    const RECT r = Rect(area);
    FillRect(dc, &r, GdiObject<HBRUSH>(CreateSolidBrush(kFieldColour)));
}

void HorizontalLine(Gdiplus::GpGraphics* g, const PlotMap& map, float value, uint32_t colour, bool dashed) {
    Gdiplus::GpPen* pen = nullptr;
    Gdiplus::DllExports::GdipCreatePen1(Argb(colour, dashed ? 200 : 255), 1.0f, Gdiplus::UnitPixel, &pen);
    if (dashed) Gdiplus::DllExports::GdipSetPenDashStyle(pen, Gdiplus::DashStyleDash);
    const float y = map.Y(value);
    Gdiplus::DllExports::GdipDrawLine(g, pen, static_cast<float>(map.area.left), y, static_cast<float>(map.area.right), y);
    Gdiplus::DllExports::GdipDeletePen(pen);
}

// Stretches of the recording as bands over the whole height of the plot.
void Shade(Gdiplus::GpGraphics* g, const PlotMap& map, const std::vector<TimeStretch>& stretches, uint32_t colour,
           uint32_t alpha) {
    Gdiplus::GpSolidFill* brush = nullptr;
    Gdiplus::DllExports::GdipCreateSolidFill(Argb(colour, alpha), &brush);
    for (const TimeStretch& s : stretches) {
        if (s.end < map.shown.from || s.start > map.shown.to) continue;
        const float left = map.X(std::max(s.start, map.shown.from));
        const float width = std::max(2.0f, map.X(std::min(s.end, map.shown.to)) - left);
        Gdiplus::DllExports::GdipFillRectangle(g, brush, left, static_cast<float>(map.area.top), width,
                                               static_cast<float>(map.area.bottom - map.area.top));
    }
    Gdiplus::DllExports::GdipDeleteBrush(brush);
}

// The band between each slice's lowest and highest value, at least a pixel and a bit tall so a quiet stretch
// still shows as a line: every peak shows. One antialiased polygon; outlines drawn over it would cost the
// redraw several times as much.
void Envelope(Gdiplus::GpGraphics* g, const PlotMap& map, const std::vector<PlotBucket>& buckets, float scale,
              uint32_t colour) {
    if (buckets.empty()) return;
    constexpr float kHalfLine = 0.7f;
    std::vector<Gdiplus::PointF> outline;
    outline.reserve(2 * buckets.size() + 2);
    for (const PlotBucket& b : buckets) outline.emplace_back(map.X(b.start), map.Y(b.highest * scale) - kHalfLine);
    if (buckets.size() == 1) outline.emplace_back(outline[0].X + 1.0f, outline[0].Y);
    for (auto b = buckets.rbegin(); b != buckets.rend(); ++b) {
        if (buckets.size() == 1) outline.emplace_back(map.X(b->start) + 1.0f, map.Y(b->lowest * scale) + kHalfLine);
        outline.emplace_back(map.X(b->start), map.Y(b->lowest * scale) + kHalfLine);
    }
    Gdiplus::GpSolidFill* fill = nullptr;
    Gdiplus::DllExports::GdipCreateSolidFill(Argb(colour, 230), &fill);
    Gdiplus::DllExports::GdipFillPolygon(g, fill, outline.data(), static_cast<INT>(outline.size()), Gdiplus::FillModeWinding);
    Gdiplus::DllExports::GdipDeleteBrush(fill);
}

// Start, middle and end of the time shown, under the plot.
void TimeLabels(HDC dc, const PlotMap& map, HFONT font) {
    const int32_t y = map.area.bottom + 4;
    const double middle = (map.shown.from + map.shown.to) / 2.0;
    const int32_t mid = static_cast<int32_t>(map.X(middle));
    Text(dc, Format(L"%.1f s", map.shown.from), {map.area.left, y, map.area.left + 120, y + 16}, font,
         kTaglineTextColour, DT_SINGLELINE);
    Text(dc, Format(L"%.1f s", middle), {mid - 60, y, mid + 60, y + 16}, font, kTaglineTextColour,
         DT_SINGLELINE | DT_CENTER);
    Text(dc, Format(L"%.1f s", map.shown.to), {map.area.right - 120, y, map.area.right, y + 16}, font,
         kTaglineTextColour, DT_SINGLELINE | DT_RIGHT);
}

float LargestMagnitude(const std::vector<PlotBucket>& buckets) {
    float largest = 0.0f;
    for (const PlotBucket& b : buckets) largest = std::max({largest, std::fabs(b.lowest), std::fabs(b.highest)});
    return largest;
}

}  // namespace

void AnalyzerWindow::Paint(HDC target) {
    // Drawn off screen and copied in one go, so the plots never flicker while a slider moves.
    const MemoryDc dc(target);
    const GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(target, kAnalyzerClientWidth, kAnalyzerClientHeight));
    HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
    const RECT client{0, 0, kAnalyzerClientWidth, kAnalyzerClientHeight};
    FillRect(dc, &client, WindowBrush);
    PaintHeader(dc);
    if (Loaded) {
        PaintFacts(dc);
        for (const LayoutRect* panel : {&kForcePanel, &kGripPanel, &kHistogramPanel, &kViewPanel, &kAdvicePanel}) {
            Panel(dc, *panel, PanelBrush);
        }
        Gdiplus::GpGraphics* graphics = nullptr;
        if (Gdiplus::DllExports::GdipCreateFromHDC(dc, &graphics) == Gdiplus::Ok) {
            Gdiplus::DllExports::GdipSetSmoothingMode(graphics, Gdiplus::SmoothingModeAntiAlias);
        } else {
            graphics = nullptr;
        }
        PaintForcePlot(dc, graphics);
        PaintGripPlot(dc, graphics);
        PaintHistogram(dc, graphics);
        if (graphics != nullptr) Gdiplus::DllExports::GdipDeleteGraphics(graphics);
        PaintViewRange(dc);
        PaintAdvice(dc);
    } else {
        PaintEmpty(dc);
    }
    const RECT strip = Rect(kStatusStrip);
    const RECT rule{strip.left, strip.top, strip.right, strip.top + 1};
    FillRect(dc, &strip, HeaderBrush);
    FillRect(dc, &rule, AccentBrush);
    Text(dc, Status, {16, strip.top + 5, strip.right - 16, strip.bottom}, BodyFont,
         StatusIsFailure ? kFailureTextColour : kPrimaryTextColour, DT_SINGLELINE | DT_END_ELLIPSIS);
    BitBlt(target, 0, 0, kAnalyzerClientWidth, kAnalyzerClientHeight, dc, 0, 0, SRCCOPY);
    SelectObject(dc, oldBitmap);
}

void AnalyzerWindow::PaintHeader(HDC dc) {
    const RECT band = Rect(kHeaderBand);
    const RECT rule{band.left, band.bottom - 2, band.right, band.bottom};
    FillRect(dc, &band, HeaderBrush);
    FillRect(dc, &rule, AccentBrush);
    Text(dc, kAnalyzerTitle, {24, 8, 980, 44}, TitleFont, kPrimaryTextColour, DT_SINGLELINE);
    const std::wstring subtitle = Loaded ? File.path : L"No recording open";
    Text(dc, subtitle, {26, 46, 990, 66}, BodyFont, kTaglineTextColour, DT_SINGLELINE | DT_PATH_ELLIPSIS);
}

void AnalyzerWindow::PaintFacts(HDC dc) {
    Panel(dc, kFactsPanel, PanelBrush);
    Heading(dc, kFactsPanel, L"RECORDING", SectionFont, AccentBrush);
    const int32_t left = kFactsPanel.left + 16, right = kFactsPanel.right - 16;
    int32_t y = kFactsPanel.top + 40;
    for (const ReportFact& fact : File.facts) {
        Text(dc, DecodeIniBytes(fact.label), {left, y + 1, left + 100, y + 20}, SectionFont, kTaglineTextColour, DT_SINGLELINE);
        y += Text(dc, DecodeIniBytes(fact.value), {left + 104, y, right, kFactsPanel.bottom}, BodyFont, kPrimaryTextColour,
                  DT_WORDBREAK) + 5;
    }
    const LayoutRect findings{kFactsPanel.left, y + 6, kFactsPanel.right, kFactsPanel.bottom};
    Heading(dc, findings, L"FINDINGS", SectionFont, AccentBrush);
    Text(dc, File.findings, {left, findings.top + 38, right, kFactsPanel.bottom - 8}, MonoFont, kTrackTextColour,
         DT_WORDBREAK);
}

void AnalyzerWindow::PaintForcePlot(HDC dc, Gdiplus::GpGraphics* g) {
    Heading(dc, kForcePanel, L"FORCE AT THE WHEEL", SectionFont, AccentBrush);
    const float fullScale = File.analysis.clipping.fullScaleTorque;
    const float reach = std::max({fullScale * kFullScaleHeadroom, LargestMagnitude(File.mixed) * 1.05f, 1.0f});
    const PlotMap map{kForcePlotArea, File.shown, reach, -reach};
    int32_t right = kForcePanel.right - 16;
    right = Legend(dc, right, kForcePanel.top + 8, L"clipped", kClippedColour, SmallFont);
    right = Legend(dc, right, kForcePanel.top + 8, L"full scale", kTaglineTextColour, SmallFont);
    Legend(dc, right, kForcePanel.top + 8, L"force sent to the wheel", kForceColour, SmallFont);
    FillArea(dc, map.area);
    if (g != nullptr) {
        Shade(g, map, File.analysis.clipping.stretches, kClippedColour, 110);
        HorizontalLine(g, map, 0.0f, kPanelBorderColour, false);
        HorizontalLine(g, map, fullScale, kTaglineTextColour, true);
        HorizontalLine(g, map, -fullScale, kTaglineTextColour, true);
        Envelope(g, map, File.mixed, 1.0f, kForceColour);
    }
    const int32_t labelRight = map.area.left - 6;
    for (float value : {fullScale, 0.0f, -fullScale}) {
        const int32_t y = static_cast<int32_t>(map.Y(value));
        Text(dc, Format(value == 0.0f ? L"%.0f Nm" : L"%+.0f Nm", value), {kForcePanel.left + 4, y - 8, labelRight, y + 8}, SmallFont,
             kTaglineTextColour, DT_SINGLELINE | DT_RIGHT);
    }
    TimeLabels(dc, map, SmallFont);
}

void AnalyzerWindow::PaintGripPlot(HDC dc, Gdiplus::GpGraphics* g) {
    Heading(dc, kGripPanel, L"GRIP", SectionFont, AccentBrush);
    // Each series on its own scale, its largest magnitude at the edge; the legend says how large that is.
    const float excessReach = std::max(LargestMagnitude(File.steerExcess), 1e-3f);
    const float loadReach = std::max(LargestMagnitude(File.understeerLoad), 1e-3f);
    const PlotMap map{kGripPlotArea, File.shown, 1.05f, -1.05f};
    // The series on the heading's line, the shaded events on a line of their own beneath it.
    int32_t right = kGripPanel.right - 16;
    right = Legend(dc, right, kGripPanel.top + 8, Format(L"understeer load, up to %.2f", loadReach), kUndersteerColour,
                   SmallFont);
    Legend(dc, right, kGripPanel.top + 8, Format(L"steer excess, up to %.2f rad", excessReach), kForceColour, SmallFont);
    right = kGripPanel.right - 16;
    right = Legend(dc, right, kGripPanel.top + 22, L"gap", kGapColour, SmallFont);
    right = Legend(dc, right, kGripPanel.top + 22, L"crash hold", kCrashColour, SmallFont);
    Legend(dc, right, kGripPanel.top + 22, L"ABS", kAbsColour, SmallFont);
    FillArea(dc, map.area);
    if (g != nullptr) {
        Shade(g, map, File.analysis.absStretches, kAbsColour, 70);
        Shade(g, map, File.analysis.crashHoldStretches, kCrashColour, 90);
        Shade(g, map, File.analysis.gaps, kGapColour, 90);
        HorizontalLine(g, map, 0.0f, kPanelBorderColour, false);
        Envelope(g, map, File.understeerLoad, 1.0f / loadReach, kUndersteerColour);
        Envelope(g, map, File.steerExcess, 1.0f / excessReach, kForceColour);
    }
    TimeLabels(dc, map, SmallFont);
}

void AnalyzerWindow::PaintHistogram(HDC dc, Gdiplus::GpGraphics* g) {
    Heading(dc, kHistogramPanel, L"FORCE SPREAD", SectionFont, AccentBrush);
    Text(dc, L"records by |force| / full scale", {kHistogramPanel.left + 130, kHistogramPanel.top + 9,
                                                 kHistogramPanel.right - 14, kHistogramPanel.top + 27},
         SmallFont, kTaglineTextColour, DT_SINGLELINE | DT_RIGHT);
    const LayoutRect& area = kHistogramArea;
    FillArea(dc, area);
    const size_t largest = std::max<size_t>(1, *std::max_element(File.histogram.begin(), File.histogram.end()));
    const float width = static_cast<float>(area.right - area.left) / static_cast<float>(kHistogramBins);
    const float height = static_cast<float>(area.bottom - area.top);
    const auto shareX = [&](double share) {
        return static_cast<float>(area.left + share / kHistogramTopShare * (area.right - area.left));
    };
    if (g != nullptr) {
        Gdiplus::GpSolidFill* inside = nullptr;
        Gdiplus::GpSolidFill* beyond = nullptr;
        Gdiplus::DllExports::GdipCreateSolidFill(Argb(kForceColour), &inside);
        Gdiplus::DllExports::GdipCreateSolidFill(Argb(kClippedColour), &beyond);
        for (size_t i = 0; i < File.histogram.size(); ++i) {
            if (File.histogram[i] == 0) continue;
            const float bar = std::max(1.0f, height * static_cast<float>(File.histogram[i]) / static_cast<float>(largest));
            const bool clipped = (static_cast<double>(i) + 0.5) * kHistogramTopShare / kHistogramBins > 1.0;
            Gdiplus::DllExports::GdipFillRectangle(g, clipped ? beyond : inside,
                                                   area.left + width * static_cast<float>(i) + 1.0f,
                                                   static_cast<float>(area.bottom) - bar, width - 2.0f, bar);
        }
        Gdiplus::DllExports::GdipDeleteBrush(inside);
        Gdiplus::DllExports::GdipDeleteBrush(beyond);
        Gdiplus::GpPen* pen = nullptr;
        Gdiplus::DllExports::GdipCreatePen1(Argb(kTaglineTextColour, 200), 1.0f, Gdiplus::UnitPixel, &pen);
        Gdiplus::DllExports::GdipSetPenDashStyle(pen, Gdiplus::DashStyleDash);
        for (double share : {kTargetShare, 1.0}) {
            const float x = shareX(share);
            Gdiplus::DllExports::GdipDrawLine(g, pen, x, static_cast<float>(area.top), x, static_cast<float>(area.bottom));
        }
        Gdiplus::DllExports::GdipDeletePen(pen);
    }
    const int32_t y = area.bottom + 4;
    for (double share : {0.0, 0.5, kTargetShare, kHistogramTopShare}) {
        const int32_t x = static_cast<int32_t>(shareX(share));
        const UINT align = share == 0.0 ? DT_LEFT : share == kHistogramTopShare ? DT_RIGHT : DT_CENTER;
        const RECT box = align == DT_LEFT ? RECT{x, y, x + 60, y + 16}
                         : align == DT_RIGHT ? RECT{x - 60, y, x, y + 16}
                                             : RECT{x - 30, y, x + 30, y + 16};
        Text(dc, Format(share == kHistogramTopShare ? L"%.0f %%+" : L"%.0f %%", share * 100.0), box, SmallFont,
             kTaglineTextColour, DT_SINGLELINE | align);
    }
}

void AnalyzerWindow::PaintViewRange(HDC dc) {
    const int32_t top = kViewPanel.top + 10;
    Text(dc, L"VIEW", {kViewPanel.left + 16, top, kViewPanel.left + 70, top + 18}, SectionFont, kAccentColour,
         DT_SINGLELINE);
    Text(dc, L"Span", {kSpanSliderRect.left - 52, top, kSpanSliderRect.left - 6, top + 18}, BodyFont,
         kPrimaryTextColour, DT_SINGLELINE | DT_RIGHT);
    Text(dc, L"Position", {kPositionSliderRect.left - 80, top, kPositionSliderRect.left - 6, top + 18}, BodyFont,
         kPrimaryTextColour, DT_SINGLELINE | DT_RIGHT);
    wchar_t range[96];
    std::swprintf(range, 96, L"%.1f to %.1f s of %.1f s", File.shown.from, File.shown.to,
                  File.analysis.durationSeconds);
    Text(dc, range, {kPositionSliderRect.right + 16, top, kViewPanel.right - 16, top + 18}, BodyFont,
         kTrackTextColour, DT_SINGLELINE);
}

void AnalyzerWindow::PaintAdvice(HDC dc) {
    Heading(dc, kAdvicePanel, L"ADVICE", SectionFont, AccentBrush);
    const std::wstring target = L"for profile \"" + DecodeIniBytes(File.advice.profile) + L"\", car \"" +
                                DecodeIniBytes(File.advice.car) + L"\": a ticked value goes to Gripline";
    Text(dc, target, {kAdvicePanel.left + 110, kAdvicePanel.top + 10, kAdvicePanel.right - 16, kAdvicePanel.top + 28},
         SmallFont, kTaglineTextColour, DT_SINGLELINE | DT_END_ELLIPSIS);
    const int32_t head = kAdviceHeadingTop;
    const struct {
        const wchar_t* text;
        int32_t left;
    } columns[] = {{L"Apply  Value", kAdviceLabelLeft}, {L"Now", kAdviceNowLeft}, {L"Proposed", kAdviceProposedLeft},
                   {L"Why", kAdviceReasonLeft}};
    for (const auto& column : columns) {
        Text(dc, column.text, {column.left, head, column.left + 200, head + 18}, SectionFont, kTaglineTextColour,
             DT_SINGLELINE);
    }
    for (size_t i = 0; i < File.advice.rows.size(); ++i) {
        const AdviceRow& row = File.advice.rows[i];
        const int32_t top = AdviceRowTop(i);
        const COLORREF valueColour = row.advised ? kPrimaryTextColour : kTaglineTextColour;
        Text(dc, DecodeIniBytes(row.label), {kAdviceLabelLeft + 26, top + 4, kAdviceNowLeft - 12, top + 24}, BodyFont,
             valueColour, DT_SINGLELINE | DT_END_ELLIPSIS);
        Text(dc, DecodeIniBytes(FormatAdviceValue(row.key, row.now)), {kAdviceNowLeft, top + 4, kAdviceProposedLeft - 30, top + 24},
             BodyFont, valueColour, DT_SINGLELINE);
        Text(dc, row.advised ? L"\u2192 " + DecodeIniBytes(FormatAdviceValue(row.key, row.proposed)) : std::wstring(L"keep"),
             {kAdviceProposedLeft, top + 4, kAdviceReasonLeft - 8, top + 24}, BodyFont,
             row.advised ? kAccentColour : kTaglineTextColour, DT_SINGLELINE);
        Text(dc, DecodeIniBytes(row.reason), {kAdviceReasonLeft, top + 1, kAdvicePanel.right - 16, top + kAdviceRowHeight},
             SmallFont, valueColour, DT_WORDBREAK | DT_END_ELLIPSIS);
    }
}

void AnalyzerWindow::PaintEmpty(HDC dc) {
    const LayoutRect panel{16, 88, kAnalyzerClientWidth - 16, 864};
    Panel(dc, panel, PanelBrush);
    const int32_t middle = (panel.top + panel.bottom) / 2;
    Text(dc, L"No recording open", {panel.left, middle - 70, panel.right, middle - 36}, TitleFont, kPrimaryTextColour,
         DT_SINGLELINE | DT_CENTER);
    Text(dc,
         L"Press Record in Gripline while you drive, then Analyzer; or open a recording (.vtrrec) or an iRacing "
         L"telemetry file (.ibt) here, or drop one on this window.",
         {panel.left + 200, middle - 20, panel.right - 200, middle + 30}, BodyFont, kTaglineTextColour,
         DT_WORDBREAK | DT_CENTER);
    if (!OpenFailure.empty()) {
        Text(dc, OpenFailure, {panel.left + 200, middle + 40, panel.right - 200, middle + 90}, BodyFont,
             kFailureTextColour, DT_WORDBREAK | DT_CENTER);
    }
}

}  // namespace veltor::analyzer
