#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "RecordingFileLog.h"

namespace veltor::test {
namespace {

constexpr size_t kHeader = sizeof(RecordingHeader);
constexpr size_t kRecord = sizeof(RecordingSample);

RecordingSample Sample(int32_t tick) {
    RecordingSample sample;
    sample.tickCount = tick;
    return sample;
}

std::vector<int32_t> Ticks(size_t file) {
    std::vector<int32_t> ticks;
    for (const RecordingSample& record : FileLog::Records(file)) ticks.push_back(record.tickCount);
    return ticks;
}

class TelemetryRecorderTest : public ::testing::Test {
protected:
    void SetUp() override {
        FileLog::Reset();
        WriterGate::Set(false);
    }
    void TearDown() override {
        WriterGate::Set(true);
        recorder.reset();
    }
    void Push(int32_t first, int32_t count) {
        RecordingTicket ticket;
        ASSERT_TRUE(recorder->BeginSample(ticket));
        for (int32_t i = first; i < first + count; ++i) recorder->Push(Sample(i), ticket);
    }
    std::unique_ptr<HeldRecorder> recorder = std::make_unique<HeldRecorder>();
};

TEST_F(TelemetryRecorderTest, StopDrainsThreeHundredQueuedAsWritesOf256And44) {
    ASSERT_TRUE(recorder->Start(L"a", RecordingHeader{}));
    Push(0, 300);
    WriterGate::Set(true);
    recorder->Stop();
    EXPECT_EQ(FileLog::Writes(), (std::vector<size_t>{kHeader, 256 * kRecord, 44 * kRecord}));
    const std::vector<int32_t> ticks = Ticks(0);
    ASSERT_EQ(ticks.size(), 300u);
    for (int32_t i = 0; i < 300; ++i) EXPECT_EQ(ticks[static_cast<size_t>(i)], i);
    EXPECT_EQ(FileLog::Locked([](FileLog& log) { return log.closes; }), 1);
    EXPECT_FALSE(recorder->IsActive());
}

TEST_F(TelemetryRecorderTest, FullRingKeeps8191AndDropsTheNewestUntilTheNextStart) {
    ASSERT_TRUE(recorder->Start(L"a", RecordingHeader{}));
    Push(0, 8193);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);
    WriterGate::Set(true);
    recorder->Stop();
    const std::vector<int32_t> ticks = Ticks(0);
    ASSERT_EQ(ticks.size(), 8191u);
    EXPECT_EQ(ticks.back(), 8190);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);  // kept after Stop for the GUI's message

    ASSERT_TRUE(recorder->Start(L"b", RecordingHeader{}));  // finishes nothing more, starts counting anew
    EXPECT_EQ(recorder->DroppedSamples(), 0u);
    Push(77, 1);
    recorder->Stop();
    EXPECT_EQ(Ticks(1), std::vector<int32_t>{77});
}

TEST_F(TelemetryRecorderTest, StartDuringARecordingFinishesTheOldFileFirst) {
    ASSERT_TRUE(recorder->Start(L"a", RecordingHeader{}));
    Push(0, 10);
    WriterGate::Set(true);
    ASSERT_TRUE(recorder->Start(L"b", RecordingHeader{}));
    EXPECT_EQ(Ticks(0).size(), 10u);
    EXPECT_EQ(FileLog::Locked([](FileLog& log) { return log.closes; }), 1);
    Push(10, 1);
    recorder->Stop();
    EXPECT_EQ(Ticks(1), std::vector<int32_t>{10});
}

// The start is taken once the file and its header are there: creating the file takes 50 ms here, and the
// first sample's time must not carry them. A time before the start never wraps around.
TEST_F(TelemetryRecorderTest, TimesCountFromAfterTheHeaderIsWritten) {
    LoggingFile::steppedNow = 1000000000;
    WriterGate::Set(true);
    ASSERT_TRUE(recorder->Start(L"a", RecordingHeader{}));
    RecordingTicket ticket;
    ASSERT_TRUE(recorder->BeginSample(ticket));
    EXPECT_EQ(ticket.startTime, 1000000000 + LoggingFile::kCreateNanoseconds);
    EXPECT_EQ(ticket.ElapsedMicroseconds(ticket.startTime + 1234567), 1234u);
    EXPECT_EQ(ticket.ElapsedMicroseconds(ticket.startTime - 1000), 0u);
}

TEST_F(TelemetryRecorderTest, FailsWhenTheFileCannotBeCreatedOrTheHeaderWrittenAndThenRefusesSamples) {
    FileLog::Locked([](FileLog& log) { log.failCreate = true; });
    EXPECT_FALSE(recorder->Start(L"a", RecordingHeader{}));
    FileLog::Locked([](FileLog& log) {
        log.failCreate = false;
        log.failWrites = true;
    });
    EXPECT_FALSE(recorder->Start(L"a", RecordingHeader{}));
    EXPECT_FALSE(recorder->IsActive());
    RecordingTicket ticket;
    EXPECT_FALSE(recorder->BeginSample(ticket));
    recorder->Push(Sample(1), ticket);
    recorder->Stop();
    EXPECT_EQ(FileLog::Writes(), std::vector<size_t>{kHeader});  // the failed header, nothing after it
}

// A producer at full speed while the GUI side restarts the recording again and again. Every record of a
// file was begun for that file (one generation per file, a new one for each), none was begun before the
// file's Start or written after its Stop, and times never fall.
TEST(TelemetryRecorderRestarts, EachFileHoldsOnlyItsOwnSamplesInTimeOrder) {
    FileLog::Reset();
    WriterGate::Set(true);
    auto recorder = std::make_unique<LiveRecorder>();
    std::atomic<int32_t> sequence{0};
    std::atomic<bool> stop{false};
    std::thread producer([&] {
        while (!stop.load()) {
            RecordingTicket ticket;
            if (!recorder->BeginSample(ticket)) continue;
            RecordingSample sample;
            sample.timeMicroseconds = ticket.ElapsedMicroseconds(SteadyNowNanoseconds());
            sample.tickCount = sequence.fetch_add(1) + 1;
            sample.yawRate = static_cast<float>(ticket.generation);
            if (sample.tickCount % 3 == 0) std::this_thread::yield();  // widens the window a restart can hit
            recorder->Push(sample, ticket);
        }
    });
    constexpr int kFiles = 150;
    std::vector<std::pair<int32_t, int32_t>> bounds;
    for (int k = 0; k < kFiles; ++k) {
        const int32_t before = sequence.load();
        ASSERT_TRUE(recorder->Start(L"f", RecordingHeader{}));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (sequence.load() < before + 50 && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
        recorder->Stop();
        bounds.emplace_back(before, sequence.load());
    }
    stop.store(true);
    producer.join();

    ASSERT_EQ(FileLog::FileCount(), static_cast<size_t>(kFiles));
    float previousGeneration = -1.0f;
    size_t total = 0;
    for (size_t k = 0; k < bounds.size(); ++k) {
        const std::vector<RecordingSample> records = FileLog::Records(k);
        total += records.size();
        for (size_t i = 0; i < records.size(); ++i) {
            const RecordingSample& r = records[i];
            ASSERT_GT(r.tickCount, bounds[k].first) << "file " << k << " record " << i;
            ASSERT_LE(r.tickCount, bounds[k].second) << "file " << k << " record " << i;
            ASSERT_EQ(r.yawRate, records[0].yawRate) << "file " << k << " record " << i;
            if (i > 0) {
                ASSERT_GT(r.tickCount, records[i - 1].tickCount) << "file " << k << " record " << i;
                ASSERT_GE(r.timeMicroseconds, records[i - 1].timeMicroseconds) << "file " << k << " record " << i;
            }
        }
        if (!records.empty()) {
            ASSERT_NE(records[0].yawRate, previousGeneration) << "file " << k;
            previousGeneration = records[0].yawRate;
        }
    }
    EXPECT_GT(total, static_cast<size_t>(kFiles));
    std::printf("%zu records in %d files\n", total, kFiles);
}

TEST(TelemetryRecorderFile, AnImmediateStopLeavesTheHeaderAloneAndABadPathIsRefused) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_header_only.vtrrec";
    auto recorder = std::make_unique<TelemetryRecorder>();
    RecordingHeader header;
    header.version = 2;
    header.reserved[0] = 7;
    ASSERT_TRUE(recorder->Start(path.wstring(), header));
    recorder->Stop();
    ASSERT_EQ(std::filesystem::file_size(path), 380u);
    RecordingHeader read;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&read), sizeof read);
    EXPECT_EQ(std::memcmp(&read, &header, sizeof header), 0);
    std::filesystem::remove(path);
    EXPECT_FALSE(recorder->Start((path.parent_path() / "veltor_no_such_dir" / "x.vtrrec").wstring(), header));
    EXPECT_FALSE(recorder->IsActive());
}

}  // namespace
}  // namespace veltor::test
