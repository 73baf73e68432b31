// replay --ibt FILE [--mode 0|1] [--set Key=Value]... [--car PATH] --csv OUT [--record OUT.vtrrec]
// Runs the force pipeline offline over a telemetry file and writes every force store to CSV.
#include <cstdio>
#include <string>

#include "IbtImage.h"
#include "ReplayOptions.h"
#include "ReplaySession.h"

namespace {

constexpr int kExitFailure = 2;

int Fail(const std::string& reason) {
    std::fprintf(stderr, "replay: %s\n", reason.c_str());
    return kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace veltor::replay;
    ReplayOptions options;
    IbtImage image;
    ReplayResult result;
    std::string error;
    if (!ParseReplayArguments(argc, argv, options, error)) return Fail(error);
    if (!LoadIbtImage(options.ibtPath, image, error)) return Fail(error);
    const veltor::SessionIdentity identity = ScanReplayIdentity(options, image);
    std::printf("%s\n", IdentityLine(identity).c_str());
    std::fflush(stdout);
    if (!RunReplay(options, identity, image, result, error)) return Fail(error);
    if (!WriteWholeFile(options.csvPath, FormatCsv(result.rows), error)) return Fail(error);
    return 0;
}
