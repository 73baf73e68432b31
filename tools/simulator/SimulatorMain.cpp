// The simulator as a program: publishes the shared memory, the data-valid event and the session-info
// text, plays the synthetic drive or an .ibt file, prints what it does and each broadcast it hears.
#include <atomic>
#include <cstdio>
#include <string>

#include "Simulator.h"

int main(int argc, char** argv) {
    veltor::sim::SimulatorOptions options;
    std::string error;
    if (!veltor::sim::ParseSimulatorOptions(argc, argv, options, error)) {
        std::fprintf(stderr, "simulator: %s\nusage: %s", error.c_str(), veltor::sim::SimulatorUsage());
        return 2;
    }
    const std::atomic<bool> stop{false};
    return veltor::sim::RunSimulator(options, stop, stdout);
}
