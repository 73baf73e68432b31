#pragma once
#include <windows.h>

#include <string>
#include <vector>

#include "analyzer/Advice.h"
#include "analyzer/AnalysisReport.h"
#include "analyzer/AnalyzerInput.h"
#include "analyzer/AnalyzerLayout.h"
#include "analyzer/PlotData.h"
#include "ui/CheckboxControl.h"
#include "ui/GdiObject.h"
#include "ui/GdiplusFlat.h"
#include "ui/SliderControl.h"

namespace veltor::analyzer {

// What the window shows of one analysed file; plots are rebuilt when the view's sliders move.
struct AnalyzedFile {
    std::wstring path;
    Recording recording;
    Analysis analysis;
    Advice advice;
    std::vector<ReportFact> facts;
    std::wstring findings;
    std::vector<PlotBucket> mixed;
    std::vector<PlotBucket> steerExcess;
    std::vector<PlotBucket> understeerLoad;
    std::vector<size_t> histogram;
    TimeWindow shown;
};

// The analyzer's one window: a recording's facts, plots, findings and advice, and the buttons that hand
// the advice to Gripline or save it. The GUI thread alone touches it.
class AnalyzerWindow {
public:
    AnalyzerWindow() = default;
    AnalyzerWindow(const AnalyzerWindow&) = delete;
    AnalyzerWindow& operator=(const AnalyzerWindow&) = delete;
    ~AnalyzerWindow();

    // Resources, the window, the file if one is given, and the message loop; the process's exit code.
    int Run(HINSTANCE instance, int showCommand, const std::wstring& file, const SettingsForCar& settingsForCar);

    // Everything but the loop: false when the window could not be made.
    bool Create(HINSTANCE instance, int showCommand, const SettingsForCar& settingsForCar);
    // Reads and analyses the file and shows it, or shows why it can't.
    void Open(const std::wstring& file);

    LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND Window = nullptr;

private:
    void CreateBrushesAndFonts();
    void CreateControls();
    void RebuildApplyChecks();
    void UpdateButtons();
    void RebuildPlots();
    void OnCommand(int32_t id);
    void OnCheckbox(int32_t id);
    void OnSlider(HWND slider);
    void ChooseFile();
    void ApplyToGripline();
    void SaveAdviceAs();
    void SetStatus(const std::wstring& text, bool failure);

    // Painting (AnalyzerPainting_win32.cpp).
    void Paint(HDC dc);
    void PaintHeader(HDC dc);
    void PaintFacts(HDC dc);
    void PaintForcePlot(HDC dc, Gdiplus::GpGraphics* graphics);
    void PaintGripPlot(HDC dc, Gdiplus::GpGraphics* graphics);
    void PaintHistogram(HDC dc, Gdiplus::GpGraphics* graphics);
    void PaintViewRange(HDC dc);
    void PaintAdvice(HDC dc);
    void PaintEmpty(HDC dc);

    HINSTANCE Instance = nullptr;
    SettingsForCar SettingsFor;
    bool Loaded = false;
    std::wstring OpenFailure;  // why the last file could not be shown
    AnalyzedFile File;
    std::wstring Status;
    bool StatusIsFailure = false;

    HWND OpenButton = nullptr;
    HWND SaveAdviceButton = nullptr;
    HWND ApplyButton = nullptr;
    SliderRow SpanSlider;
    SliderRow PositionSlider;
    std::vector<CheckboxRow> ApplyChecks;  // reserved once: the controls point into it
    std::vector<size_t> ApplyCheckRows;    // the advice row behind each check

    GdiObject<HFONT> BodyFont;
    GdiObject<HFONT> TitleFont;
    GdiObject<HFONT> SectionFont;
    GdiObject<HFONT> SmallFont;
    GdiObject<HFONT> MonoFont;
    GdiObject<HBRUSH> WindowBrush;
    GdiObject<HBRUSH> PanelBrush;
    GdiObject<HBRUSH> HeaderBrush;
    GdiObject<HBRUSH> AccentBrush;
    ULONG_PTR GdiplusToken = 0;
};

}  // namespace veltor::analyzer
