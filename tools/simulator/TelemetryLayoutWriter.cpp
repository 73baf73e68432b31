#include "TelemetryLayoutWriter.h"

#include <algorithm>
#include <cstring>

#include "telemetry/IrsdkLayout.h"

namespace veltor::sim {
namespace {

constexpr int32_t kTickRate = 60;
constexpr int32_t kHeaderVersion = 2;

size_t ElementSize(VarType type) {
    switch (type) {
        case VarType::Char:
        case VarType::Bool: return 1;
        case VarType::Double: return 8;
        default: return 4;
    }
}

int32_t AlignUp(size_t value, size_t alignment) {
    return static_cast<int32_t>((value + alignment - 1) / alignment * alignment);
}

}  // namespace

void StoreI32(uint8_t* at, int32_t value) { std::memcpy(at, &value, sizeof value); }

std::vector<VariableSpec> StandardVariables(bool withCentreShock) {
    std::vector<VariableSpec> vars{
        {"IsOnTrack", VarType::Bool, 1},           {"Speed", VarType::Float, 1},
        {"SteeringWheelTorque", VarType::Float, 1}, {"SteeringWheelTorque_ST", VarType::Float, 6},
        {"SteeringWheelAngle", VarType::Float, 1},  {"SteeringWheelAngleMax", VarType::Float, 1},
        {"VelocityX", VarType::Float, 1},           {"VelocityY", VarType::Float, 1},
        {"LongAccel", VarType::Float, 1},           {"LatAccel", VarType::Float, 1},
        {"YawRate", VarType::Float, 1},             {"BrakeABSactive", VarType::Bool, 1},
        {"LFshockDefl_ST", VarType::Float, 6},      {"RFshockDefl_ST", VarType::Float, 6},
    };
    if (withCentreShock) vars.push_back({"CFshockDefl_ST", VarType::Float, 6});
    return vars;
}

std::vector<VariableSpec> SimulatorVariables() {
    std::vector<VariableSpec> vars = StandardVariables(true);
    vars.push_back({"SessionTime", VarType::Double, 1});
    vars.push_back({"Gear", VarType::Int, 1});
    vars.push_back({"RPM", VarType::Float, 1});
    vars.push_back({"Throttle", VarType::Float, 1});
    vars.push_back({"Brake", VarType::Float, 1});
    vars.push_back({"LapDistPct", VarType::Float, 1});
    return vars;
}

TelemetryLayoutWriter::TelemetryLayoutWriter(std::vector<VariableSpec> vars, int buffers, size_t capacity,
                                             int32_t givenBufLen)
    : variables(std::move(vars)), numBuf(buffers) {
    size_t offset = 0;
    for (const VariableSpec& v : variables) {
        offset = v.offset >= 0 ? static_cast<size_t>(v.offset) : static_cast<size_t>(AlignUp(offset, ElementSize(v.type)));
        varOffsets.push_back(static_cast<int32_t>(offset));
        offset += ElementSize(v.type) * static_cast<size_t>(std::max(v.count, 0));
    }
    bufLen = givenBufLen > 0 ? givenBufLen : AlignUp(std::max<size_t>(offset, 4), 16);
    sessionInfoOffset = static_cast<int32_t>(irsdk::kHeaderSize);
    sessionInfoCapacity = static_cast<int32_t>(capacity);
    varHeaderOffset = AlignUp(static_cast<size_t>(sessionInfoOffset) + capacity, 16);
    size_t next = static_cast<size_t>(AlignUp(varHeaderOffset + variables.size() * irsdk::kVarHeaderSize, 16));
    for (int i = 0; i < numBuf; ++i) {
        bufferOffsets.push_back(static_cast<int32_t>(next));
        next += static_cast<size_t>(bufLen);
    }
    blockSize = next;
}

int32_t TelemetryLayoutWriter::VarOffset(std::string_view name) const {
    for (size_t i = 0; i < variables.size(); ++i) {
        if (variables[i].name == name) return varOffsets[i];
    }
    return -1;
}

void TelemetryLayoutWriter::WriteLayout(uint8_t* block) const {
    StoreI32(block + 0, kHeaderVersion);
    StoreI32(block + 8, kTickRate);
    StoreI32(block + irsdk::kSessionInfoOffsetOffset, sessionInfoOffset);
    StoreI32(block + irsdk::kNumVarsOffset, static_cast<int32_t>(variables.size()));
    StoreI32(block + irsdk::kVarHeaderOffsetOffset, varHeaderOffset);
    StoreI32(block + irsdk::kNumBufOffset, numBuf);
    StoreI32(block + irsdk::kBufLenOffset, bufLen);
    for (int i = 0; i < numBuf && i < irsdk::kMaxBuffersRead; ++i) {
        StoreI32(block + irsdk::kVarBufOffset + i * irsdk::kVarBufStride + irsdk::kVarBufBufOffset, bufferOffsets[i]);
    }
    for (size_t i = 0; i < variables.size(); ++i) {
        uint8_t* header = block + varHeaderOffset + i * irsdk::kVarHeaderSize;
        std::memset(header, 0, irsdk::kVarHeaderSize);
        StoreI32(header + irsdk::kVarHeaderType, static_cast<int32_t>(variables[i].type));
        StoreI32(header + irsdk::kVarHeaderOffset, varOffsets[i]);
        StoreI32(header + irsdk::kVarHeaderCount, variables[i].count);
        std::memcpy(header + irsdk::kVarHeaderName, variables[i].name.data(),
                    std::min(variables[i].name.size(), irsdk::kVarNameLength));
    }
}

void TelemetryLayoutWriter::SetStatus(uint8_t* block, int32_t status) const {
    StoreI32(block + irsdk::kStatusOffset, status);
}

void TelemetryLayoutWriter::SetSessionInfo(uint8_t* block, std::string_view text, int32_t update) const {
    const size_t length = std::min(text.size(), static_cast<size_t>(sessionInfoCapacity));
    std::memset(block + sessionInfoOffset, 0, static_cast<size_t>(sessionInfoCapacity));
    std::memcpy(block + sessionInfoOffset, text.data(), length);
    StoreI32(block + irsdk::kSessionInfoLenOffset, static_cast<int32_t>(length));
    StoreI32(block + irsdk::kSessionInfoUpdateOffset, update);
}

void TelemetryLayoutWriter::SetTickCount(uint8_t* block, int bufferIndex, int32_t tickCount) const {
    StoreI32(block + irsdk::kVarBufOffset + bufferIndex * irsdk::kVarBufStride + irsdk::kVarBufTickCount, tickCount);
}

void TelemetryLayoutWriter::SetFloat(uint8_t* buffer, std::string_view name, float value, int element) const {
    const int32_t offset = VarOffset(name);
    if (offset >= 0) std::memcpy(buffer + offset + element * static_cast<int32_t>(sizeof(float)), &value, sizeof value);
}

void TelemetryLayoutWriter::SetBool(uint8_t* buffer, std::string_view name, bool value) const {
    const int32_t offset = VarOffset(name);
    if (offset >= 0) buffer[offset] = value ? 1 : 0;
}

void TelemetryLayoutWriter::SetInt(uint8_t* buffer, std::string_view name, int32_t value) const {
    const int32_t offset = VarOffset(name);
    if (offset >= 0) StoreI32(buffer + offset, value);
}

void TelemetryLayoutWriter::SetDouble(uint8_t* buffer, std::string_view name, double value) const {
    const int32_t offset = VarOffset(name);
    if (offset >= 0) std::memcpy(buffer + offset, &value, sizeof value);
}

void TelemetryLayoutWriter::WriteFrame(uint8_t* buffer, const TelemetryFrame& frame) const {
    SetBool(buffer, "IsOnTrack", frame.isOnTrack != 0);
    SetFloat(buffer, "Speed", frame.speed);
    SetFloat(buffer, "SteeringWheelTorque", frame.steeringWheelTorque);
    SetFloat(buffer, "SteeringWheelAngle", frame.steeringWheelAngle);
    SetFloat(buffer, "SteeringWheelAngleMax", frame.steeringWheelAngleMax);
    SetFloat(buffer, "VelocityX", frame.velocityX);
    SetFloat(buffer, "VelocityY", frame.velocityY);
    SetFloat(buffer, "LongAccel", frame.longAccel);
    SetFloat(buffer, "LatAccel", frame.latAccel);
    SetFloat(buffer, "YawRate", frame.yawRate);
    SetBool(buffer, "BrakeABSactive", frame.brakeAbsActive != 0);
    for (const VariableSpec& v : variables) {
        const float* samples = nullptr;
        if (v.name == "SteeringWheelTorque_ST") samples = frame.torqueSamples;
        if (v.name == "LFshockDefl_ST") samples = frame.lfShockDeflSamples;
        if (v.name == "RFshockDefl_ST") samples = frame.rfShockDeflSamples;
        if (v.name == "CFshockDefl_ST") samples = frame.cfShockDeflSamples;
        if (samples == nullptr) continue;
        for (int i = 0; i < std::min(v.count, kMaxSubSamples); ++i) SetFloat(buffer, v.name, samples[i], i);
    }
}

}  // namespace veltor::sim
