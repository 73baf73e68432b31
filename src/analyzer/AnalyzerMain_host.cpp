// veltor-analyzer --report FILE | --advice FILE OUT.ini: the analyzer's command line on Linux.
#include <cstdio>
#include <string>
#include <vector>

#include "analyzer/AnalyzerCommand.h"

int main(int argc, char** argv) {
    using namespace veltor::analyzer;
    const std::vector<std::string> args(argv + 1, argv + argc);
    const CommandOutcome outcome =
        RunAnalyzer(args, "veltor-analyzer", [](std::wstring_view) { return OfflineSettings{}; });
    std::fputs(outcome.out.c_str(), stdout);
    std::fputs(outcome.err.c_str(), stderr);
    return outcome.exitCode;
}
