#include "IbtSource.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include "telemetry/IrsdkLayout.h"

namespace veltor::sim {
namespace {

constexpr size_t kTickRateOffset = 8;
constexpr size_t kDiskRecordCountOffset = 140;  // in the disk sub-header that follows the 112-byte header
constexpr size_t kDiskHeaderEnd = 144;
constexpr int32_t kMaxVariables = 4096;
constexpr int32_t kMaxElements = 1 << 16;

int32_t LoadI32(const std::vector<uint8_t>& bytes, size_t offset) {
    int32_t v = 0;
    std::memcpy(&v, bytes.data() + offset, sizeof v);
    return v;
}

bool Fits(const std::vector<uint8_t>& bytes, int64_t offset, int64_t length) {
    return offset >= 0 && length >= 0 && static_cast<uint64_t>(offset + length) <= bytes.size();
}

size_t ElementSize(int32_t type) {
    switch (static_cast<VarType>(type)) {
        case VarType::Char:
        case VarType::Bool: return 1;
        case VarType::Double: return 8;
        default: return 4;
    }
}

}  // namespace

bool IbtSource::Load(const std::string& path, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    return Parse(std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()), error);
}

bool IbtSource::Parse(std::vector<uint8_t> bytes, std::string& error) {
    file = std::move(bytes);
    variables.clear();
    recordCount = 0;
    if (file.size() < kDiskHeaderEnd) {
        error = "shorter than its headers";
        return false;
    }
    bufLen = LoadI32(file, irsdk::kBufLenOffset);
    firstRecord = LoadI32(file, irsdk::kVarBufOffset + irsdk::kVarBufBufOffset);
    const int32_t infoLen = LoadI32(file, irsdk::kSessionInfoLenOffset);
    const int32_t infoOffset = LoadI32(file, irsdk::kSessionInfoOffsetOffset);
    if (bufLen <= 0 || !Fits(file, firstRecord, bufLen)) {
        error = "no whole record in the file";
        return false;
    }
    if (!Fits(file, infoOffset, infoLen)) {
        error = "session-info text outside the file";
        return false;
    }
    sessionInfo.assign(reinterpret_cast<const char*>(file.data()) + infoOffset, static_cast<size_t>(infoLen));
    sessionInfo.resize(std::strlen(sessionInfo.c_str()));  // the text ends at its first NUL
    const int32_t rate = LoadI32(file, kTickRateOffset);
    tickRate = rate > 0 && rate <= 1000 ? rate : 60;
    const int64_t whole = static_cast<int64_t>(file.size() - static_cast<size_t>(firstRecord)) / bufLen;
    const int32_t stated = LoadI32(file, kDiskRecordCountOffset);
    recordCount = static_cast<int32_t>(stated > 0 ? std::min<int64_t>(stated, whole) : whole);
    return ParseVariables(LoadI32(file, irsdk::kNumVarsOffset), LoadI32(file, irsdk::kVarHeaderOffsetOffset), error);
}

bool IbtSource::ParseVariables(int32_t numVars, int32_t varHeaderOffset, std::string& error) {
    if (numVars < 1 || numVars > kMaxVariables ||
        !Fits(file, varHeaderOffset, static_cast<int64_t>(numVars) * irsdk::kVarHeaderSize)) {
        error = "variable headers outside the file";
        return false;
    }
    skippedVariables = 0;
    for (int32_t i = 0; i < numVars; ++i) {
        const size_t at = static_cast<size_t>(varHeaderOffset) + static_cast<size_t>(i) * irsdk::kVarHeaderSize;
        VariableSpec v;
        const int32_t type = LoadI32(file, at + irsdk::kVarHeaderType);
        v.type = static_cast<VarType>(std::clamp(type, 0, 5));
        v.offset = LoadI32(file, at + irsdk::kVarHeaderOffset);
        v.count = LoadI32(file, at + irsdk::kVarHeaderCount);
        const char* name = reinterpret_cast<const char*>(file.data() + at + irsdk::kVarHeaderName);
        v.name.assign(name, strnlen(name, irsdk::kVarNameLength));
        const int64_t end = static_cast<int64_t>(v.offset) + static_cast<int64_t>(v.count) * ElementSize(type);
        if (type != static_cast<int32_t>(v.type) || v.offset < 0 || v.count < 1 || v.count > kMaxElements || end > bufLen) {
            ++skippedVariables;
            continue;
        }
        variables.push_back(std::move(v));
    }
    if (variables.empty()) {
        error = "no usable variable";
        return false;
    }
    return true;
}

const uint8_t* IbtSource::Record(int32_t index) const {
    if (index < 0 || index >= recordCount) return nullptr;
    return file.data() + firstRecord + static_cast<size_t>(index) * static_cast<size_t>(bufLen);
}

}  // namespace veltor::sim
