#include "IbtImage.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>

#include "telemetry/IrsdkLayout.h"

namespace veltor::replay {
namespace {

int32_t LoadI32(const std::vector<uint8_t>& bytes, size_t offset) {
    int32_t value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

void StoreI32(std::vector<uint8_t>& bytes, size_t offset, int32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

bool Inside(const std::vector<uint8_t>& bytes, int64_t offset, int64_t length) {
    return offset >= 0 && length >= 0 && static_cast<uint64_t>(offset + length) <= bytes.size();
}

bool Fail(std::string& error, const char* reason) {
    error = reason;
    return false;
}

}  // namespace

bool ParseIbtImage(std::vector<uint8_t> bytes, IbtImage& image, std::string& error) {
    if (bytes.size() < irsdk::kHeaderSize) return Fail(error, "file too short for a telemetry header");
    // Offsets in the layout are 32-bit.
    if (bytes.size() > static_cast<size_t>(INT32_MAX)) return Fail(error, "telemetry file too large");
    const int32_t numVars = LoadI32(bytes, irsdk::kNumVarsOffset);
    const int32_t varHeaderOffset = LoadI32(bytes, irsdk::kVarHeaderOffsetOffset);
    const int32_t bufLen = LoadI32(bytes, irsdk::kBufLenOffset);
    const int32_t firstRecord = LoadI32(bytes, irsdk::kVarBufOffset + irsdk::kVarBufBufOffset);
    const int32_t sessionInfoLen = LoadI32(bytes, irsdk::kSessionInfoLenOffset);
    const int32_t sessionInfoOffset = LoadI32(bytes, irsdk::kSessionInfoOffsetOffset);
    if (numVars < 1 || !Inside(bytes, varHeaderOffset, static_cast<int64_t>(numVars) * irsdk::kVarHeaderSize)) {
        return Fail(error, "malformed telemetry file: variable headers outside the file");
    }
    if (sessionInfoLen < 0 || !Inside(bytes, sessionInfoOffset, sessionInfoLen)) {
        return Fail(error, "malformed telemetry file: session info outside the file");
    }
    if (bufLen <= 0) return Fail(error, "malformed telemetry file: record length not positive");
    if (firstRecord < static_cast<int32_t>(irsdk::kHeaderSize) || !Inside(bytes, firstRecord, 0)) {
        return Fail(error, "malformed telemetry file: records outside the file");
    }
    const int64_t recordCount = static_cast<int64_t>(bytes.size() - static_cast<size_t>(firstRecord)) / bufLen;
    if (recordCount < 1) return Fail(error, "file too short: no telemetry record");

    image.bytes = std::move(bytes);
    image.bufLen = bufLen;
    image.firstRecord = firstRecord;
    image.recordCount = static_cast<int32_t>(recordCount);
    StoreI32(image.bytes, irsdk::kNumBufOffset, 1);
    return true;
}

bool LoadIbtImage(const std::string& path, IbtImage& image, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        error = "cannot read " + path;
        return false;
    }
    return ParseIbtImage(std::move(bytes), image, error);
}

void SelectRecord(IbtImage& image, int32_t index) {
    const size_t descriptor = irsdk::kVarBufOffset;
    StoreI32(image.bytes, descriptor + irsdk::kVarBufTickCount, index);
    StoreI32(image.bytes, descriptor + irsdk::kVarBufBufOffset, image.firstRecord + index * image.bufLen);
}

}  // namespace veltor::replay
