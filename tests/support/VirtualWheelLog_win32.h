#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace veltor::test {

constexpr int64_t kWarmupMicroseconds = 1200000;
constexpr int64_t kRampMicroseconds = 1800000;

// One line of the virtual wheel's call log: microseconds, the call, then its details.
struct LogLine {
    int64_t microseconds = 0;
    std::string text;
    bool Is(const char* call) const { return text.compare(0, std::strlen(call) + 1, std::string(call) + " ") == 0; }
    bool Has(const char* part) const { return text.find(part) != std::string::npos; }
    long Magnitude() const {
        const size_t at = text.find("magnitude=");
        return at == std::string::npos ? 0 : std::stol(text.substr(at + 10));
    }
};

inline std::vector<LogLine> ReadLog(const std::wstring& path) {
    std::vector<LogLine> lines;
    std::ifstream file(path.c_str());
    for (std::string line; std::getline(file, line);) {
        const size_t space = line.find(' ');
        if (space != std::string::npos) lines.push_back({std::stoll(line.substr(0, space)), line.substr(space + 1)});
    }
    return lines;
}

inline const LogLine* First(const std::vector<LogLine>& log, const char* call) {
    for (const LogLine& line : log) {
        if (line.Is(call)) return &line;
    }
    return nullptr;
}

// What a drive through a burst of lost input leaves in the log: the exclusive open without autocentre, the
// effect only after the warm-up, steps within the ramp's and then the running slew limit, and the effect
// started again after the burst. `passes` gets each pass's magnitude, failed or not, without the zeros of
// starting and reacquiring; `created` the effect's creation.
inline void ExpectDriveThroughLostInput(const std::vector<LogLine>& log, std::vector<const LogLine*>& passes,
                                        const LogLine*& created) {
    const LogLine* cooperative = First(log, "SetCooperativeLevel");
    const LogLine* autocentre = First(log, "SetProperty");
    const LogLine* acquired = First(log, "Acquire");
    created = First(log, "CreateEffect");
    ASSERT_TRUE(cooperative && autocentre && acquired && created) << log.size() << " log lines";
    EXPECT_TRUE(cooperative->Has("flags=0x9"));
    EXPECT_TRUE(autocentre->Has("AUTOCENTER") && autocentre->Has("dwData=0"));
    EXPECT_GE(created->microseconds - acquired->microseconds, kWarmupMicroseconds);

    for (size_t i = 0; i < log.size(); ++i) {
        if (!log[i].Is("SetParameters")) continue;
        const bool starting = i + 1 < log.size() && log[i + 1].Is("Start");
        const bool reacquiring = i > 0 && log[i - 1].Is("Acquire");
        if (log[i].Magnitude() == 0 && (starting || reacquiring)) continue;
        passes.push_back(&log[i]);
    }
    ASSERT_GT(passes.size(), 1000u);
    const int64_t rampEnd = created->microseconds + kRampMicroseconds;
    for (size_t i = 1; i < passes.size(); ++i) {
        const long step = std::labs(passes[i]->Magnitude() - passes[i - 1]->Magnitude());
        EXPECT_LE(step, passes[i]->microseconds < rampEnd ? 120 : 1200) << passes[i]->text;
    }

    size_t lastLost = log.size();
    for (size_t i = 0; i < log.size(); ++i) {
        if (log[i].Has("hr=0x8007001E")) lastLost = i;
    }
    ASSERT_LT(lastLost, log.size()) << "the burst of lost input never came";
    bool restarted = false;
    for (size_t i = lastLost; i < log.size(); ++i) {
        restarted = restarted || (log[i].Is("Start") && log[i].Has("hr=0x00000000"));
    }
    EXPECT_TRUE(restarted) << "the effect was not started again after the burst";
    EXPECT_GT(passes.back()->microseconds, log[lastLost].microseconds + 1000000);
}

}  // namespace veltor::test
