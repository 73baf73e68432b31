// The replay's telemetry file image: what it takes and what it refuses.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "IbtImage.h"
#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkLayout.h"

namespace veltor::replay {
namespace {

// A telemetry file of the simulator's layout: header, variable headers, then `records` records.
std::vector<uint8_t> MakeFile(int records) {
    const sim::TelemetryLayoutWriter layout(sim::StandardVariables(), 1, 64);
    std::vector<uint8_t> bytes(layout.BlockSize());
    layout.WriteLayout(bytes.data());
    bytes.resize(static_cast<size_t>(layout.BufferOffset(0) + records * layout.BufLen()));
    return bytes;
}

void StoreI32(std::vector<uint8_t>& bytes, size_t at, int32_t value) { std::memcpy(bytes.data() + at, &value, 4); }

// Whole records count from the first buffer to the end; a short or malformed file is refused with a
// one-line reason.
TEST(ParseIbtImage, CountsWholeRecordsAndRefusesMalformedFilesWithAReason) {
    const std::vector<uint8_t> good = MakeFile(3);
    IbtImage image;
    std::string error;
    ASSERT_TRUE(ParseIbtImage(std::vector<uint8_t>(good.begin(), good.end() - 5), image, error)) << error;
    EXPECT_EQ(image.recordCount, 2);
    struct Case {
        const char* what;
        size_t offset;
        int32_t value;
    };
    const Case cases[] = {
        {"bufLen zero", irsdk::kBufLenOffset, 0},
        {"bufLen negative", irsdk::kBufLenOffset, -16},
        {"no variables", irsdk::kNumVarsOffset, 0},
        {"variables past the end", irsdk::kNumVarsOffset, 1000000},
        {"variable headers past the end", irsdk::kVarHeaderOffsetOffset, 0x7FFFFF00},
        {"records past the end", irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, 0x7FFFFFF0},
        {"records inside the header", irsdk::kVarBufOffset + irsdk::kVarBufBufOffset, 4},
        {"session info past the end", irsdk::kSessionInfoLenOffset, 0x7FFFFFF0},
        {"record longer than the rest", irsdk::kBufLenOffset, 0x100000},
    };
    for (const Case& c : cases) {
        std::vector<uint8_t> bytes = good;
        StoreI32(bytes, c.offset, c.value);
        EXPECT_FALSE(ParseIbtImage(bytes, image, error)) << c.what;
        EXPECT_FALSE(error.empty()) << c.what;
        EXPECT_EQ(error.find('\n'), std::string::npos) << c.what;
    }
    EXPECT_FALSE(ParseIbtImage(std::vector<uint8_t>(good.begin(), good.begin() + 100), image, error));
    const std::vector<uint8_t> oneRecord = MakeFile(1);
    EXPECT_FALSE(ParseIbtImage(std::vector<uint8_t>(oneRecord.begin(), oneRecord.end() - 1), image, error));
}

}  // namespace
}  // namespace veltor::replay
