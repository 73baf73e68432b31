#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "GatedRecorder.h"
#include "recording/RecordingRing.h"

namespace veltor::test {
namespace {

namespace fs = std::filesystem;

uint32_t U32At(const uint8_t* bytes, size_t at) {
    uint32_t value;
    std::memcpy(&value, bytes + at, sizeof value);
    return value;
}

TEST(RecordingHeader, FormatFieldsAndStartTimeAtTheirOffsetsAndTheRestZero) {
    const RecordingHeader header = NewRecordingHeader(0x0102030405060708ULL);
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&header);
    EXPECT_EQ(std::memcmp(bytes, "VTRREC1\0", 8), 0);
    EXPECT_EQ(U32At(bytes, 8), 2u);
    EXPECT_EQ(U32At(bytes, 12), 380u);
    EXPECT_EQ(U32At(bytes, 16), 88u);
    EXPECT_EQ(U32At(bytes, 20), 60u);
    EXPECT_EQ(U32At(bytes, 24), 0x05060708u);
    EXPECT_EQ(U32At(bytes, 28), 0x01020304u);
    for (size_t i = 32; i < 380; ++i) ASSERT_EQ(bytes[i], 0) << i;
}

// UTF-8 of one to four bytes a character, at most 63 bytes and a NUL even when that cuts a character; an
// empty text leaves 64 zero bytes.
TEST(RecordingHeader, TextFieldsAreUtf8CutToSixtyThreeBytes) {
    struct Case {
        std::wstring text;
        std::string stored;  // then zeros, except where a character was cut
        bool cut;
    };
    const Case cases[] = {{std::wstring(70, L'x'), std::string(63, 'x'), false},
                          {L"J\u00fcrgen \u5c71 \U0001F600", "J\xC3\xBCrgen \xE5\xB1\xB1 \xF0\x9F\x98\x80", false},
                          {std::wstring(62, L'a') + L"\u00fc", std::string(62, 'a'), true},
                          {L"", "", false}};
    for (const Case& c : cases) {
        char field[kRecordingTextField];
        std::memset(field, 0x55, sizeof field);
        FillRecordingText(c.text, field);
        EXPECT_EQ(std::string(field, c.stored.size()), c.stored);
        EXPECT_EQ(field[kRecordingTextField - 1], '\0');
        for (size_t i = c.stored.size() + (c.cut ? 1 : 0); i < sizeof field; ++i) ASSERT_EQ(field[i], '\0') << i;
    }
}

RecordingSample Sample(int32_t tick) {
    RecordingSample sample;
    sample.tickCount = tick;
    return sample;
}

// One producer and one consumer at full speed, round the ring many times: every sample arrives once, in
// order.
TEST(RecordingRing, TwoThreadsPassEverySampleInOrder) {
    auto ring = std::make_unique<RecordingRing>();
    constexpr int32_t kCount = 200000;
    std::thread producer([&ring] {
        for (int32_t i = 1; i <= kCount; ++i) {
            while (!ring->TryPush(Sample(i), 1)) std::this_thread::yield();
        }
    });
    int32_t expected = 1;
    bool ordered = true;
    RecordingSample batch[256];
    while (expected <= kCount) {
        uint32_t passed = 0;
        const uint32_t count = ring->CopyOut(batch, 256, 1, passed);
        for (uint32_t k = 0; k < count; ++k) ordered = ordered && batch[k].tickCount == expected++;
        ring->Release(passed);
        if (count == 0) std::this_thread::yield();
    }
    producer.join();
    EXPECT_TRUE(ordered);
    EXPECT_TRUE(ring->Empty());
}

// A file name of this run's own, so that runs of two builds at once do not meet.
fs::path TempFile(int k) {
    static const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    return fs::temp_directory_path() / ("veltor_recorder_" + std::to_string(stamp) + "_" + std::to_string(k));
}

std::vector<int32_t> Ticks(int file) {
    std::vector<int32_t> ticks;
    for (const RecordingSample& record : ReadRecords(TempFile(file))) ticks.push_back(record.tickCount);
    fs::remove(TempFile(file));
    return ticks;
}

// The ring keeps 8191 samples and refuses the newest beyond; Stop drains what it holds; the count of drops
// stays after Stop, for the GUI's message, until the next Start. A Start during a recording finishes the
// old file first; a file that cannot be created fails the start.
TEST(TelemetryRecorder, StopDrainsTheRingWhichKeeps8191AndDropsTheNewest) {
    auto recorder = std::make_unique<GatedRecorder>();
    const auto push = [&](int32_t first, int32_t count) {
        RecordingTicket ticket;
        ASSERT_TRUE(recorder->BeginSample(ticket));
        RecordingSample sample;
        for (sample.tickCount = first; sample.tickCount < first + count; ++sample.tickCount) {
            recorder->Push(sample, ticket);
        }
    };
    GatedPlatform::held = true;  // the ring fills before the writer drains anything
    ASSERT_TRUE(recorder->Start(TempFile(0).wstring(), RecordingHeader{}));
    push(0, 8193);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);
    GatedPlatform::held = false;
    recorder->Stop();
    EXPECT_FALSE(recorder->IsActive());
    const std::vector<int32_t> ticks = Ticks(0);
    ASSERT_EQ(ticks.size(), 8191u);
    for (int32_t i = 0; i < 8191; ++i) ASSERT_EQ(ticks[static_cast<size_t>(i)], i);
    EXPECT_EQ(recorder->DroppedSamples(), 2u);
    ASSERT_TRUE(recorder->Start(TempFile(1).wstring(), RecordingHeader{}));
    EXPECT_EQ(recorder->DroppedSamples(), 0u);
    push(0, 10);
    ASSERT_TRUE(recorder->Start(TempFile(2).wstring(), RecordingHeader{}));
    EXPECT_EQ(Ticks(1).size(), 10u);
    push(10, 1);
    recorder->Stop();
    EXPECT_EQ(Ticks(2), std::vector<int32_t>{10});
    EXPECT_FALSE(recorder->Start((TempFile(0) / "no_such_dir" / "x").wstring(), RecordingHeader{}));
    EXPECT_FALSE(recorder->IsActive());
}

// A producer at full speed while the GUI side restarts the recording again and again. Every record of a
// file was begun for that file (one generation per file, a new one for each), none was begun before the
// file's Start or written after its Stop, and times never fall.
TEST(TelemetryRecorderRestarts, EachFileHoldsOnlyItsOwnSamplesInTimeOrder) {
    GatedPlatform::held = false;
    auto recorder = std::make_unique<GatedRecorder>();
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
        ASSERT_TRUE(recorder->Start(TempFile(100 + k).wstring(), RecordingHeader{}));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (sequence.load() < before + 50 && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
        recorder->Stop();
        bounds.emplace_back(before, sequence.load());
    }
    stop.store(true);
    producer.join();

    float previousGeneration = -1.0f;
    size_t total = 0;
    for (int k = 0; k < kFiles; ++k) {
        const std::vector<RecordingSample> records = ReadRecords(TempFile(100 + k));
        fs::remove(TempFile(100 + k));
        total += records.size();
        for (size_t i = 0; i < records.size(); ++i) {
            const RecordingSample& r = records[i];
            ASSERT_GT(r.tickCount, bounds[static_cast<size_t>(k)].first) << "file " << k << " record " << i;
            ASSERT_LE(r.tickCount, bounds[static_cast<size_t>(k)].second) << "file " << k << " record " << i;
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
}

}  // namespace
}  // namespace veltor::test
