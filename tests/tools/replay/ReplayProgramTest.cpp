// The built replay program over the real sample file, as other tooling runs it.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace veltor::replay {
namespace {

namespace fs = std::filesystem;

const std::string kSample = std::string(VELTOR_DATA_DIR) + "/telemetry/mercedesamggt4_sample.ibt";

std::string ReadText(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class ReplayProgramTest : public ::testing::Test {
protected:
    void SetUp() override { fs::create_directories(dir); }
    void TearDown() override { fs::remove_all(dir); }

    // Runs the program; returns its exit code, with stdout and stderr in `out` and `err`.
    int Replay(const std::string& arguments) {
        const std::string command = std::string(VELTOR_REPLAY_PATH) + " " + arguments + " >" + Path("out.txt") +
                                    " 2>" + Path("err.txt");
        const int status = std::system(command.c_str());
        out = ReadText(Path("out.txt"));
        err = ReadText(Path("err.txt"));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string Path(const char* name) const { return (dir / name).string(); }

    const fs::path dir = fs::temp_directory_path() / ("veltor_replay_" + std::to_string(::getpid()));
    std::string out, err;
};

// The force rows and the records (time stamps aside) are pinned value for value by the replay check
// (../shared/checks/replay-unchanged), which runs this program the same way; here is what it leaves out: the
// identity line, the recording's header and time stamps, and another car's row.
TEST_F(ReplayProgramTest, PrintsTheIdentityAndRecordsTheHeaderAndTheFilesTimes) {
    if (!fs::exists(kSample)) GTEST_SKIP() << "sample telemetry absent: " << kSample;
    ASSERT_EQ(Replay("--ibt " + kSample + " --csv " + Path("a.csv") + " --record " + Path("a.vtrrec")), 0) << err;
    EXPECT_EQ(out, "identity car=mercedesamggt4 driver=Sample Driver GT4 userId=100064 known=1\n");
    const std::string recording = ReadText(Path("a.vtrrec"));
    ASSERT_GE(recording.size(), sizeof(RecordingHeader) + sizeof(RecordingSample));
    RecordingHeader header;
    std::memcpy(&header, recording.data(), sizeof header);
    EXPECT_STREQ(header.profileName, "Replay");
    EXPECT_EQ(header.LateralAccelDivisor, 70.0f);  // the car's catalogue row
    RecordingSample first;
    std::memcpy(&first, recording.data() + sizeof header, sizeof first);
    EXPECT_EQ(first.timeMicroseconds, static_cast<uint64_t>(first.tickCount) * 16666u);
    ASSERT_EQ(Replay("--ibt " + kSample + " --car rt2000 --csv " + Path("b.csv")), 0) << err;
    EXPECT_EQ(out.rfind("identity car=rt2000 ", 0), 0u) << out;
    EXPECT_NE(ReadText(Path("a.csv")), ReadText(Path("b.csv")));  // the grip model reads the car's row
}

TEST_F(ReplayProgramTest, ErrorsExitWithTwoAndOneLineAndLeaveNoCsv) {
    std::ofstream(Path("short.ibt"), std::ios::binary) << std::string(50, 'x');
    std::string malformed = ReadText(kSample).substr(0, 4096);
    malformed.resize(4096, '\0');
    std::memset(malformed.data() + 36, 0, 4);  // bufLen
    std::ofstream(Path("malformed.ibt"), std::ios::binary) << malformed;
    const std::string csv = " --csv " + Path("out.csv");
    const std::string sample = "--ibt " + kSample;
    for (const std::string& arguments :
         {"--ibt " + Path("missing.ibt") + csv, "--ibt " + Path("short.ibt") + csv,
          "--ibt " + Path("malformed.ibt") + csv, sample + " --set NoSuchKey=3" + csv, sample + " --set Bumps=1.5" + csv, sample + " --mode 7" + csv,
          sample + " --frobnicate" + csv, sample}) {
        EXPECT_EQ(Replay(arguments), 2) << arguments;
        EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
        EXPECT_FALSE(fs::exists(Path("out.csv")) || fs::exists(Path("out.csv.partial"))) << arguments;
    }
}

}  // namespace
}  // namespace veltor::replay
