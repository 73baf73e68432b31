// Runs the real engine (FfbEngine::Start with the product's wheel) against whatever simulator is there and
// prints a status line each time the status changes. Stops after --seconds or when --stop-file exists.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "HarnessOptions.h"
#include "HarnessWindow.h"
#include "StatusLine.h"
#include "engine/FfbEngine.h"
#include "wheel/WheelDevice.h"

namespace {

constexpr int32_t kPollMilliseconds = 20;

bool StopFileExists(const std::string& path) { return !path.empty() && std::ifstream(path).good(); }

}  // namespace

int main(int argc, char** argv) {
    using namespace veltor;
    harness::HarnessOptions options;
    std::string error;
    if (!harness::ParseHarnessOptions(argc, argv, options, error)) {
        std::fprintf(stderr,
                     "engineharness: %s\nusage: engineharness [--seconds N] [--stop-file PATH] [--mode 0|1] "
                     "[--device HEX32] [Key=Value ...]\n",
                     error.c_str());
        return 2;
    }
    const WindowHandle window = harness::CreateHarnessWindow();
    std::printf("engine harness: mode %d, force strength %d, simucube %d, window %s\n", options.settings.Mode,
                options.settings.ForceStrength, options.settings.SimucubeMode ? 1 : 0,
                window != nullptr ? "made" : "none");
    std::fflush(stdout);

    if (!options.deviceGiven) {
        // Without --device, the first force-feedback wheel the system lists, as the window would select.
        std::vector<WheelDevice> wheels;
        EnumerateWheels(wheels);
        if (!wheels.empty()) options.device = wheels.front().instanceGuid;
        std::printf("wheels found: %zu\n", wheels.size());
    }
    FfbEngine engine;
    engine.Start(options.settings, window, options.device);
    const auto start = std::chrono::steady_clock::now();
    const auto limit = std::chrono::duration<double>(options.seconds);
    std::string lastLine;
    while ((options.seconds <= 0.0 || std::chrono::steady_clock::now() - start < limit) &&
           !StopFileExists(options.stopFile)) {
        harness::PumpMessages(kPollMilliseconds);
        const std::string line = harness::FormatStatusLine(engine.CopyStatus());
        if (line == lastLine) continue;
        const double at = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        std::printf("%7.2f s  %s\n", at, line.c_str());
        std::fflush(stdout);
        lastLine = line;
    }
    engine.Stop();
    std::printf("engine stopped, running %d\n", engine.IsRunning() ? 1 : 0);
    harness::DestroyHarnessWindow(window);
    return 0;
}
