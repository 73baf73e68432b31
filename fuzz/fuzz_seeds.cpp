// Seeds for the fuzz targets: a few well-formed blocks and session texts, so that mutation starts from
// inputs that reach deep into the code. Usage: fuzz_seeds BLOCK_DIR TEXT_DIR
#include <cstdio>
#include <string>
#include <vector>

#include "SessionInfoText.h"
#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkLayout.h"

namespace {

void WriteFile(const std::string& path, const void* data, size_t size) {
    if (std::FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
}

std::vector<uint8_t> Block(bool centreShock, int numBuf, const std::string& text) {
    using namespace veltor;
    sim::TelemetryLayoutWriter layout(sim::StandardVariables(centreShock), numBuf, text.size());
    std::vector<uint8_t> block(layout.BlockSize(), 0);
    layout.WriteLayout(block.data());
    layout.SetStatus(block.data(), irsdk::kStatusConnected);
    layout.SetSessionInfo(block.data(), text, 1);
    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.speed = 30.0f;
    for (int i = 0; i < kMaxSubSamples; ++i) frame.torqueSamples[i] = 0.5f * static_cast<float>(i);
    for (int b = 0; b < numBuf; ++b) {
        layout.WriteFrame(layout.Buffer(block.data(), b), frame);
        layout.SetTickCount(block.data(), b, 10 + b);
    }
    return block;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fuzz_seeds BLOCK_DIR TEXT_DIR\n");
        return 2;
    }
    using veltor::sim::IdentityCase;
    const IdentityCase cases[] = {IdentityCase::Plain, IdentityCase::DifferingIds, IdentityCase::Quoted,
                                  IdentityCase::Crlf};
    int n = 0;
    for (IdentityCase c : cases) {
        const std::string text = veltor::sim::BuildSessionInfo(c, n % 2);
        WriteFile(std::string(argv[2]) + "/text" + std::to_string(n), text.data(), text.size());
        const std::vector<uint8_t> block = Block(n % 2 == 0, 1 + n, "DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: x\n");
        WriteFile(std::string(argv[1]) + "/block" + std::to_string(n), block.data(), block.size());
        ++n;
    }
    return 0;
}
