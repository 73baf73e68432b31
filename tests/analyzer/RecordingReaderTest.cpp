// The recording reader over cut and hostile recordings; a telemetry file recorded through the engine is read
// back whole in the coefficient fit's test.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "AnalyzerTestFiles.h"
#include "analyzer/RecordingReader.h"

namespace veltor::analyzer {
namespace {

TEST(ParseRecording, RefusesWhatCannotBeARecordingWithItsReason) {
    struct Case {
        const char* what;
        size_t size;
        size_t offset;  // where `value` goes; SIZE_MAX for none
        uint32_t value;
        const char* reason;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    uint32_t nanBits = 0, infBits = 0;
    std::memcpy(&nanBits, &nan, 4);
    std::memcpy(&infBits, &inf, 4);
    const Case cases[] = {
        {"empty", 0, SIZE_MAX, 0, "too short for a recording header (0 of 380 bytes)"},
        {"one byte short", 379, SIZE_MAX, 0, "(379 of 380 bytes)"},
        {"wrong magic", 380 + 88, 0, 0x4B4E554A /* JUNK */, "does not start with VTRREC1"},
        {"another version", 380, 8, 3, "recording version 3 cannot be read"},
        {"another header size", 380, 12, 384, "header size 384 is not 380"},
        {"another record size", 380, 16, 96, "record size 96 is not 88"},
        {"NaN coefficient", 380, 248, nanBits, "YawRateMultiplier is not a finite number"},
        {"infinite torque", 380, 264, infBits, "wheelbaseMaxTorque is not a finite number"},
    };
    for (const Case& c : cases) {
        std::vector<uint8_t> bytes = test::RecordingBytes(test::SampleRecords(3));
        bytes.resize(c.size);
        if (c.offset != SIZE_MAX) std::memcpy(bytes.data() + c.offset, &c.value, 4);
        Recording recording;
        std::string error;
        EXPECT_FALSE(ParseRecording(bytes.data(), bytes.size(), recording, error)) << c.what;
        EXPECT_NE(error.find(c.reason), std::string::npos) << c.what << ": " << error;
    }
}

TEST(ParseRecording, KeepsTheWholeRecordsOfACutFileAndLeavesOutNonFiniteOnes) {
    std::vector<RecordingSample> samples = test::SampleRecords(5);
    samples[1].mixedTorque = std::numeric_limits<float>::quiet_NaN();
    samples[3].speed = -std::numeric_limits<float>::infinity();
    std::vector<uint8_t> bytes = test::RecordingBytes(samples);
    bytes.resize(bytes.size() + 40);  // a sixth record cut short

    Recording recording;
    std::string error;
    ASSERT_TRUE(ParseRecording(bytes.data(), bytes.size(), recording, error)) << error;
    ASSERT_EQ(recording.samples.size(), 3u);
    EXPECT_EQ(recording.samples[0].tickCount, 0);
    EXPECT_EQ(recording.samples[1].tickCount, 2);
    EXPECT_EQ(recording.samples[2].tickCount, 4);
    EXPECT_EQ(recording.cutBytes, 40u);
    EXPECT_EQ(recording.nonFiniteRecords, 2u);
    const std::vector<std::string> warnings = ReadingWarnings(recording);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_NE(warnings[0].find("last 40 bytes"), std::string::npos);
    EXPECT_NE(warnings[1].find("2 records"), std::string::npos);
    EXPECT_NE(warnings[1].find("record 1)"), std::string::npos);
}

TEST(HeaderText, StopsAtTheNulOrBeforeACharacterCutAtTheFieldsEndAndMasksControlCharacters) {
    RecordingHeader header;
    std::memset(header.carPath, 'a', sizeof header.carPath);  // no NUL at all
    std::memcpy(header.driverName, "Line\nBreak\x7f", 12);
    std::memset(header.profileName, 'a', sizeof header.profileName);
    std::memcpy(header.profileName + 60, "\xC3\xB6\xE2\x82", 4);  // an o-umlaut, then a euro sign cut short
    EXPECT_EQ(HeaderText(header.carPath), std::string(63, 'a'));
    EXPECT_EQ(HeaderText(header.driverName), "Line?Break?");
    EXPECT_EQ(HeaderText(header.profileName), std::string(60, 'a') + "\xC3\xB6");
}

}  // namespace
}  // namespace veltor::analyzer
