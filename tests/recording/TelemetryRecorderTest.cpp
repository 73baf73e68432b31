#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

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

class TelemetryRecorderTest : public ::testing::Test {
protected:
    void SetUp() override {
        FileLog::Instance().Reset();
        WriterGate::Instance().Set(false);
        recorder = std::make_unique<HeldRecorder>();
    }
    void TearDown() override {
        WriterGate::Instance().Set(true);
        recorder.reset();
    }
    void Push(int32_t first, int32_t count) {
        for (int32_t i = first; i < first + count; ++i) recorder->Push(Sample(i));
    }
    std::unique_ptr<HeldRecorder> recorder;
};

TEST_F(TelemetryRecorderTest, StopDrainsThreeHundredQueuedAsWritesOf256And44) {
    ASSERT_TRUE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 0));
    Push(0, 300);
    WriterGate::Instance().Set(true);
    recorder->Stop();
    EXPECT_EQ(FileLog::Instance().Writes(), (std::vector<size_t>{kHeader, 256 * kRecord, 44 * kRecord}));
    const std::vector<int32_t> ticks = FileLog::Instance().RecordTicks(kHeader);
    ASSERT_EQ(ticks.size(), 300u);
    for (int32_t i = 0; i < 300; ++i) EXPECT_EQ(ticks[static_cast<size_t>(i)], i);
    EXPECT_EQ(FileLog::Instance().closes, 1);
    EXPECT_FALSE(recorder->IsActive());
}

TEST_F(TelemetryRecorderTest, FullRingKeeps8191AndDropsTheNewest) {
    ASSERT_TRUE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 0));
    Push(0, 8191);
    EXPECT_EQ(recorder->DroppedSamples(), 0u);
    Push(8191, 2);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);
    WriterGate::Instance().Set(true);
    recorder->Stop();
    const std::vector<int32_t> ticks = FileLog::Instance().RecordTicks(kHeader);
    ASSERT_EQ(ticks.size(), 8191u);
    EXPECT_EQ(ticks.front(), 0);
    EXPECT_EQ(ticks.back(), 8190);
    const std::vector<size_t> writes = FileLog::Instance().Writes();
    for (size_t i = 1; i < writes.size(); ++i) EXPECT_LE(writes[i], 256 * kRecord);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);  // kept after Stop for the GUI's message
}

TEST_F(TelemetryRecorderTest, StartDuringARecordingFinishesTheOldFileFirst) {
    ASSERT_TRUE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 0));
    Push(0, 8192);
    ASSERT_EQ(recorder->DroppedSamples(), 1u);
    WriterGate::Instance().Set(true);
    ASSERT_TRUE(recorder->Start(L"b.vtrrec", RecordingHeader{}, 0));
    EXPECT_EQ(FileLog::Instance().closes, 1);
    EXPECT_EQ(FileLog::Instance().creates, 2);
    EXPECT_EQ(recorder->DroppedSamples(), 0u);
    recorder->Push(Sample(77));
    recorder->Stop();
    EXPECT_EQ(FileLog::Instance().Size(), 2 * kHeader + (8191 + 1) * kRecord);
    EXPECT_EQ(FileLog::Instance().closes, 2);
    const std::vector<size_t> writes = FileLog::Instance().Writes();
    EXPECT_EQ(writes[writes.size() - 2], kHeader);
    EXPECT_EQ(writes.back(), kRecord);
}

TEST_F(TelemetryRecorderTest, StopWithoutARecordingTouchesNoFile) {
    recorder->Stop();
    recorder->Push(Sample(1));
    EXPECT_EQ(FileLog::Instance().creates, 0);
    EXPECT_EQ(FileLog::Instance().closes, 0);
    EXPECT_TRUE(FileLog::Instance().Writes().empty());
    EXPECT_FALSE(recorder->IsActive());
}

TEST_F(TelemetryRecorderTest, FailsWhenTheFileCannotBeCreatedOrTheHeaderWritten) {
    FileLog::Instance().failCreate = true;
    EXPECT_FALSE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 0));
    EXPECT_FALSE(recorder->IsActive());
    FileLog::Instance().failCreate = false;
    FileLog::Instance().failWrites = true;
    EXPECT_FALSE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 0));
    EXPECT_FALSE(recorder->IsActive());
    EXPECT_EQ(FileLog::Instance().closes, 1);
    recorder->Push(Sample(1));
    EXPECT_EQ(recorder->DroppedSamples(), 0u);
}

TEST_F(TelemetryRecorderTest, ElapsedMicrosecondsCountsFromTheStart) {
    WriterGate::Instance().Set(true);
    ASSERT_TRUE(recorder->Start(L"a.vtrrec", RecordingHeader{}, 5000000000LL));
    EXPECT_EQ(recorder->ElapsedMicroseconds(5000000000LL + 1234567), 1234u);
    EXPECT_EQ(recorder->ElapsedMicroseconds(5000000000LL), 0u);
}

TEST(TelemetryRecorderFile, StartedAndStoppedAtOnceLeavesTheHeaderAlone) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_header_only.vtrrec";
    auto recorder = std::make_unique<TelemetryRecorder>();
    RecordingHeader header;
    header.version = 2;
    header.reserved[0] = 7;
    ASSERT_TRUE(recorder->Start(path.wstring(), header, 0));
    recorder->Stop();
    ASSERT_EQ(std::filesystem::file_size(path), 380u);
    RecordingHeader read;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&read), sizeof read);
    EXPECT_EQ(std::memcmp(&read, &header, sizeof header), 0);
    std::filesystem::remove(path);
}

TEST(TelemetryRecorderFile, RefusesAPathThatCannotBeCreated) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_no_such_dir" / "x.vtrrec";
    auto recorder = std::make_unique<TelemetryRecorder>();
    EXPECT_FALSE(recorder->Start(path.wstring(), RecordingHeader{}, 0));
    EXPECT_FALSE(recorder->IsActive());
}

}  // namespace
}  // namespace veltor::test
