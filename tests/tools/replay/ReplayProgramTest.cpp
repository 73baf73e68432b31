// The built replay program over the real sample file, as other tooling runs it.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace veltor::replay {
namespace {

namespace fs = std::filesystem;

const std::string kSample = std::string(VELTOR_DATA_DIR) + "/telemetry/mercedesamggt4_sample.ibt";
constexpr int kSampleRecords = 3371;

struct Outcome {
    int exitCode = -1;
    std::string out;
    std::string err;
};

std::string ReadText(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class ReplayProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() / ("veltor_replay_" + std::to_string(::getpid()));
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    Outcome Replay(const std::string& arguments) {
        const fs::path out = dir / "stdout.txt";
        const fs::path err = dir / "stderr.txt";
        const std::string command =
            std::string(VELTOR_REPLAY_PATH) + " " + arguments + " >" + out.string() + " 2>" + err.string();
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out), ReadText(err)};
    }
    std::string Path(const char* name) const { return (dir / name).string(); }

    fs::path dir;
};

struct CsvRow {
    int frame;
    int output;
    double force;
};

std::vector<CsvRow> ReadCsv(const std::string& path, std::string& header) {
    std::ifstream in(path);
    std::getline(in, header);
    std::vector<CsvRow> rows;
    std::string line;
    while (std::getline(in, line)) {
        CsvRow row{};
        char comma1 = 0, comma2 = 0;
        std::istringstream fields(line);
        fields >> row.frame >> comma1 >> row.output >> comma2 >> row.force;
        if (fields.fail() || comma1 != ',' || comma2 != ',') row.force = std::nan("");
        rows.push_back(row);
    }
    return rows;
}

RecordingHeader ReadHeader(const std::string& path) {
    RecordingHeader header;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    return header;
}

void ExpectSaneForces(const std::vector<CsvRow>& rows, int outputsPerRecord) {
    int previousFrame = -1;
    for (const CsvRow& row : rows) {
        ASSERT_FALSE(std::isnan(row.force)) << "frame " << row.frame;
        ASSERT_GE(row.force, -9996.0);
        ASSERT_LE(row.force, 9996.0);
        ASSERT_GE(row.output, -1);
        ASSERT_LT(row.output, outputsPerRecord);
        ASSERT_GE(row.frame, previousFrame);
        ASSERT_LT(row.frame, kSampleRecords);
        previousFrame = row.frame;
    }
}

TEST_F(ReplayProgramTest, RunsTheSampleInBothModesWithSaneForces) {
    if (!fs::exists(kSample)) GTEST_SKIP() << "sample telemetry absent: " << kSample;
    for (int mode : {0, 1}) {
        const std::string csv = Path(mode == 0 ? "m0.csv" : "m1.csv");
        const Outcome outcome = Replay("--ibt " + kSample + " --mode " + std::to_string(mode) + " --csv " + csv);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out.rfind("identity car=", 0), 0u) << outcome.out;
        EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
        std::string header;
        const std::vector<CsvRow> rows = ReadCsv(csv, header);
        EXPECT_EQ(header, "frame,output,force");
        const int outputs = mode == 0 ? 6 : 12;
        ExpectSaneForces(rows, outputs);
        // Six torque sub-samples a record: every record on track gives a full burst.
        EXPECT_GT(rows.size(), static_cast<size_t>(kSampleRecords / 2 * outputs));
        EXPECT_LE(rows.size(), static_cast<size_t>(kSampleRecords * outputs));
        size_t nonZero = 0;
        for (const CsvRow& row : rows) nonZero += row.force != 0.0 ? 1 : 0;
        EXPECT_GT(nonZero, rows.size() / 2);
    }
}

// One run with a recording: the scanned identity, the car's catalogue row in the header, one sample per tick.
TEST_F(ReplayProgramTest, FindsTheIdentityUsesTheCarsRowAndRecordsEachTick) {
    if (!fs::exists(kSample)) GTEST_SKIP() << "sample telemetry absent: " << kSample;
    const Outcome outcome = Replay("--ibt " + kSample + " --csv " + Path("a.csv") + " --record " + Path("a.vtrrec"));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "identity car=mercedesamggt4 driver=Sample Driver GT4 userId=100064 known=1\n");
    const RecordingHeader header = ReadHeader(Path("a.vtrrec"));
    EXPECT_STREQ(header.carPath, "mercedesamggt4");
    EXPECT_STREQ(header.profileName, "Replay");
    EXPECT_EQ(header.YawRateMultiplier, 40.0f);
    EXPECT_EQ(header.LateralAccelDivisor, 70.0f);
    EXPECT_EQ(header.ResistanceGain, 0.95f);

    const std::string bytes = ReadText(Path("a.vtrrec"));
    ASSERT_GE(bytes.size(), 380u);
    ASSERT_EQ((bytes.size() - 380) % 88, 0u);
    std::string csvHeader;
    size_t ticks = 0;
    for (const CsvRow& row : ReadCsv(Path("a.csv"), csvHeader)) ticks += row.output == 0 ? 1 : 0;
    EXPECT_EQ((bytes.size() - 380) / 88, ticks);
    RecordingSample first;
    std::memcpy(&first, bytes.data() + 380, sizeof first);
    EXPECT_EQ(first.timeMicroseconds, static_cast<uint64_t>(first.tickCount) * 16666u);

    const Outcome other = Replay("--ibt " + kSample + " --car rt2000 --csv " + Path("b.csv"));
    ASSERT_EQ(other.exitCode, 0) << other.err;
    EXPECT_EQ(other.out.rfind("identity car=rt2000 ", 0), 0u) << other.out;
    EXPECT_NE(ReadText(Path("a.csv")), ReadText(Path("b.csv")));  // the grip model reads the row
}

TEST_F(ReplayProgramTest, ErrorsExitWithTwoAndOneLineAndLeaveNoCsv) {
    std::ofstream(Path("short.ibt"), std::ios::binary) << std::string(50, 'x');
    std::string malformed = ReadText(kSample).substr(0, 4096);
    if (malformed.size() < 112) malformed = std::string(4096, '\0');
    const int32_t zero = 0;
    std::memcpy(malformed.data() + 36, &zero, sizeof zero);  // bufLen
    std::ofstream(Path("malformed.ibt"), std::ios::binary) << malformed;
    const std::string cases[] = {
        "--ibt " + Path("missing.ibt") + " --csv " + Path("out.csv"),
        "--ibt " + Path("short.ibt") + " --csv " + Path("out.csv"),
        "--ibt " + Path("malformed.ibt") + " --csv " + Path("out.csv"),
        "--ibt " + kSample + " --set NoSuchKey=3 --csv " + Path("out.csv"),
        "--ibt " + kSample + " --mode 7 --csv " + Path("out.csv"),
        "--ibt " + kSample,
    };
    for (const std::string& arguments : cases) {
        const Outcome outcome = Replay(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_FALSE(fs::exists(Path("out.csv"))) << arguments;
        EXPECT_FALSE(fs::exists(Path("out.csv.partial"))) << arguments;
    }
}

}  // namespace
}  // namespace veltor::replay
