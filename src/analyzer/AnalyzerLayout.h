#pragma once
#include <cstddef>
#include <cstdint>

namespace veltor::analyzer {

inline constexpr wchar_t kAnalyzerWindowClass[] = L"VeltorAnalyzerWindow";
inline constexpr wchar_t kAnalyzerTitle[] = L"Veltor Commercial Analyzer";
inline constexpr int32_t kAnalyzerClientWidth = 1520;
inline constexpr int32_t kAnalyzerClientHeight = 900;

// Control ids of the analyzer's window.
enum AnalyzerControlId : int32_t {
    kOpenButtonId = 2001,
    kSaveAdviceButtonId = 2002,
    kApplyButtonId = 2003,
    kSpanSliderId = 2010,
    kPositionSliderId = 2011,
    kFirstApplyCheckId = 2020,  // one for each advice row that proposes a change, in the table's order
};

// Where the analyzer's window puts things, in client pixels; nothing is scaled for the display's DPI.
struct LayoutRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
};

inline constexpr LayoutRect kHeaderBand{0, 0, 1520, 76};
inline constexpr LayoutRect kOpenButtonRect{1010, 21, 1150, 55};
inline constexpr LayoutRect kSaveAdviceButtonRect{1162, 21, 1322, 55};
inline constexpr LayoutRect kApplyButtonRect{1334, 21, 1504, 55};

inline constexpr LayoutRect kFactsPanel{16, 88, 496, 864};
inline constexpr LayoutRect kForcePanel{512, 88, 1504, 330};
inline constexpr LayoutRect kForcePlotArea{572, 126, 1488, 296};
inline constexpr LayoutRect kGripPanel{512, 338, 1160, 560};
inline constexpr LayoutRect kGripPlotArea{572, 376, 1144, 526};
inline constexpr LayoutRect kHistogramPanel{1168, 338, 1504, 560};
inline constexpr LayoutRect kHistogramArea{1190, 376, 1488, 526};
inline constexpr LayoutRect kViewPanel{512, 568, 1504, 606};
inline constexpr LayoutRect kSpanSliderRect{640, 575, 880, 599};
inline constexpr LayoutRect kPositionSliderRect{990, 575, 1290, 599};
inline constexpr LayoutRect kAdvicePanel{512, 614, 1504, 864};
inline constexpr LayoutRect kStatusStrip{0, 872, 1520, 900};

// The advice table: a heading line, then one row a value.
inline constexpr int32_t kAdviceHeadingTop = 650;
inline constexpr int32_t kAdviceFirstRowTop = 672;
inline constexpr int32_t kAdviceRowHeight = 31;
inline constexpr int32_t kAdviceLabelLeft = 528;
inline constexpr int32_t kAdviceNowLeft = 760;
inline constexpr int32_t kAdviceProposedLeft = 836;
inline constexpr int32_t kAdviceReasonLeft = 920;

constexpr int32_t AdviceRowTop(size_t row) { return kAdviceFirstRowTop + static_cast<int32_t>(row) * kAdviceRowHeight; }

// The Apply check box of an advised row, left of the value's name, which the window paints in its own font.
constexpr LayoutRect ApplyCheckRect(size_t row) {
    return {kAdviceLabelLeft, AdviceRowTop(row) + 2, kAdviceLabelLeft + 18, AdviceRowTop(row) + 26};
}

}  // namespace veltor::analyzer
