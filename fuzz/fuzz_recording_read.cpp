// A recording file as a crash, a foreign program or a hostile sender may leave it: the reader, then
// everything the analyzer does with what it read (findings, fit, advice, report, plot data).
#include <cstddef>
#include <cstdint>
#include <string>

#include "analyzer/AdviceFile.h"
#include "analyzer/AnalysisReport.h"
#include "analyzer/PlotData.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace veltor::analyzer;
    Recording recording;
    std::string error;
    if (!ParseRecording(data, size, recording, error)) {
        if (error.empty()) __builtin_trap();  // every refusal says why
        return 0;
    }
    if (recording.samples.size() > (size - veltor::kRecordingHeaderSize) / veltor::kRecordingSampleSize) {
        __builtin_trap();
    }
    const Analysis analysis = AnalyseRecording(recording);
    const Advice advice = BuildAdvice(recording, analysis);
    const std::string report = FormatReport({"fuzz.vtrrec", false}, recording, analysis, advice);
    const std::wstring file = AdviceFileText(advice);
    if (report.empty() || file.empty()) __builtin_trap();
    DecimateForPlot(recording.samples, &veltor::RecordingSample::mixedTorque, 64,
                    VisibleWindow(analysis.durationSeconds, 30, 500));
    FullScaleHistogram(recording.samples);
    return 0;
}
