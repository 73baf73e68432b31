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

constexpr int64_t kHourRecords = 216000;
constexpr size_t kPlotBuckets = 1600;  // a wide window's plot, one bucket per pixel column
constexpr int64_t kChunkRecords = 6000;

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

// One record of a made-up hour: cornering, texture, clipping now and then, ABS in the braking zones.
RecordingSample HourRecord(int64_t i) {
    const double t = static_cast<double>(i) / 60.0;
    RecordingSample s;
    s.timeMicroseconds = static_cast<uint64_t>(i) * 16667;
    s.tickCount = static_cast<int32_t>(i);
    s.speed = s.velocityX = static_cast<float>(36.0 + 24.0 * std::sin(t / 7.5));
    s.latAccel = static_cast<float>(10.0 * std::sin(t / 2.1));
    s.yawRate = s.latAccel / s.speed;
    s.steeringWheelAngle = 38.0f * s.yawRate / s.speed + s.latAccel / 84.0f;
    s.steerExcess = std::fmod(t, 60.0) < 6.0 ? 0.1f : -0.05f;
    s.baseTorque = 3.2f * s.latAccel;
    s.textureTorque = static_cast<float>(0.8 * std::sin(t * 150.0));
    s.mixedTorque = s.baseTorque + s.textureTorque;
    s.fullScaleTorque = 40.0f;
    s.crashGain = 1.0f;
    s.clipped = std::fabs(s.mixedTorque) > 40.0f ? 1 : 0;
    s.priorityActed = std::fabs(s.textureTorque) > 0.7f ? 1 : 0;
    s.absActive = std::fmod(t, 45.0) < 1.5 ? 1 : 0;
    return s;
}

fs::path WriteHourRecording(const fs::path& folder) {
    const fs::path file = folder / "hour.vtrrec";
    RecordingHeader header = MakeRecordingHeader(L"bmwm4gt3", L"Bench Driver", L"Driver 1", EngineSettings{},
                                                 CarRow{37.5f, 0.0f, 82.0f, 1.0f, 0.0f}, 1700000000000ull);
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    std::vector<RecordingSample> chunk;
    for (int64_t i = 0; i < kHourRecords; i += kChunkRecords) {
        chunk.clear();
        for (int64_t k = i; k < std::min(i + kChunkRecords, kHourRecords); ++k) chunk.push_back(HourRecord(k));
        out.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(chunk.size() * sizeof chunk[0]));
    }
    return file;
}

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

    const fs::path recordingFile = WriteHourRecording(folder);
    std::printf("Recording of one hour: %lld records, %.1f MB\n", static_cast<long long>(kHourRecords),
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
            DecimateForPlot(recording.samples, field, kPlotBuckets);
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
