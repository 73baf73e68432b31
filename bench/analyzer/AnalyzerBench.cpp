// The analyzer over an hour of driving: open and analyse a generated recording of 216,000 records (and
// build what its window plots), then make the same hour from a telemetry file through the engine.
// Prints times (best and median of the runs) and the peak resident memory of each part.
// Usage: analyzer_bench [--runs N]
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "GripDrive.h"
#include "HourRecording.h"
#include "IbtFileWriter.h"
#include "SessionInfoText.h"
#include "analyzer/AnalysisReport.h"
#include "analyzer/AnalyzerInput.h"
#include "analyzer/PlotData.h"
#include "engine/RecordingHook.h"

namespace {

using namespace veltor;
using namespace veltor::analyzer;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr size_t kPlotBuckets = 1600;  // a wide window's plot, one bucket per pixel column

double Seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// VmHWM of /proc/self/status in MB; writing 5 to clear_refs starts it afresh from the present size.
double PeakResidentMegabytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;
    }
    return -1.0;
}

void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

fs::path WriteHourTelemetry(const fs::path& folder) {
    const fs::path file = folder / "hour.ibt";
    const std::vector<uint8_t> bytes = sim::MakeIbtFile(sim::MakeGripDrive({37.0, 80.0, true}, 3600.0),
                                                        sim::BuildSessionInfo(sim::IdentityCase::Plain, 0));
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
    return file;
}

struct Times {
    std::vector<double> open, analyse, plot, total;
};

void Print(const char* what, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::printf("  %-34s best %8.1f ms   median %8.1f ms\n", what, values.front() * 1e3, values[values.size() / 2] * 1e3);
}

OfflineSettings Defaults(std::wstring_view) { return OfflineSettings{}; }

}  // namespace

int main(int argc, char** argv) {
    int runs = 5;
    if (argc == 3 && std::strcmp(argv[1], "--runs") == 0) runs = std::max(1, std::atoi(argv[2]));
    const fs::path folder = fs::temp_directory_path() / "veltor_analyzer_bench";
    fs::create_directories(folder);

    const fs::path recordingFile = bench::WriteHourRecording(folder);
    std::printf("Recording of one hour: %lld records, %.1f MB\n", static_cast<long long>(bench::kHourRecords),
                static_cast<double>(fs::file_size(recordingFile)) / 1e6);
    Times times;
    double peak = 0.0;
    for (int run = 0; run < runs; ++run) {
        ResetPeak();
        const Clock::time_point start = Clock::now();
        Recording recording;
        std::string error;
        if (!LoadRecording(recordingFile, recording, error)) {
            std::fprintf(stderr, "analyzer_bench: %s\n", error.c_str());
            return 1;
        }
        const Clock::time_point opened = Clock::now();
        const Analysis analysis = AnalyseRecording(recording);
        const Advice advice = BuildAdvice(recording, analysis);
        const std::string report = FormatReport({"hour.vtrrec", false}, recording, analysis, advice);
        const Clock::time_point analysed = Clock::now();
        for (float RecordingSample::*field : {&RecordingSample::mixedTorque, &RecordingSample::steerExcess,
                                              &RecordingSample::understeerLoad}) {
            DecimateForPlot(recording.samples, field, kPlotBuckets, {0.0, analysis.durationSeconds});
        }
        FullScaleHistogram(recording.samples);
        const Clock::time_point plotted = Clock::now();
        peak = std::max(peak, PeakResidentMegabytes());
        times.open.push_back(Seconds(opened - start));
        times.analyse.push_back(Seconds(analysed - opened));
        times.plot.push_back(Seconds(plotted - analysed));
        times.total.push_back(Seconds(plotted - start));
        if (run == 0) std::printf("  (%zu advice rows, report %zu bytes)\n", advice.rows.size(), report.size());
    }
    Print("open (read and check)", times.open);
    Print("analyse, advise, report", times.analyse);
    Print("plot data (3 series, histogram)", times.plot);
    Print("all of it", times.total);
    std::printf("  peak resident memory             %8.1f MB (the process, program and all)\n", peak);

    const fs::path telemetryFile = WriteHourTelemetry(folder);
    std::printf("Telemetry file of one hour: %.1f MB, through the engine into a recording\n",
                static_cast<double>(fs::file_size(telemetryFile)) / 1e6);
    ResetPeak();
    const Clock::time_point start = Clock::now();
    Recording made;
    std::string error;
    const bool ok = RecordTelemetryFile(telemetryFile, Defaults, made, error);
    const double seconds = Seconds(Clock::now() - start);
    std::printf("  %s: %zu records in %.2f s, peak resident memory %.1f MB\n", ok ? "made" : error.c_str(),
                made.samples.size(), seconds, PeakResidentMegabytes());
    fs::remove_all(folder);
    return ok ? 0 : 1;
}
