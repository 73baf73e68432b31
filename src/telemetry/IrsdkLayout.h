#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltor {

// The simulator's published memory: a header at the base, an array of 144-byte variable headers and
// several telemetry buffers. All integers are little-endian i32; all offsets count from the base.
namespace irsdk {

constexpr size_t kStatusOffset = 4;
constexpr size_t kSessionInfoUpdateOffset = 12;
constexpr size_t kSessionInfoLenOffset = 16;
constexpr size_t kSessionInfoOffsetOffset = 20;
constexpr size_t kNumVarsOffset = 24;
constexpr size_t kVarHeaderOffsetOffset = 28;
constexpr size_t kNumBufOffset = 32;
constexpr size_t kBufLenOffset = 36;
constexpr size_t kVarBufOffset = 48;
constexpr size_t kVarBufStride = 16;  // tickCount, bufOffset, 8 bytes of padding
constexpr size_t kVarBufTickCount = 0;
constexpr size_t kVarBufBufOffset = 4;
constexpr int32_t kMaxBuffersRead = 4;
constexpr size_t kHeaderSize = 112;  // through the fourth descriptor

constexpr size_t kVarHeaderSize = 144;
constexpr size_t kVarHeaderType = 0;
constexpr size_t kVarHeaderOffset = 4;
constexpr size_t kVarHeaderCount = 8;
constexpr size_t kVarHeaderName = 16;
constexpr size_t kVarNameLength = 32;

constexpr int32_t kStatusConnected = 1;

// The variables the program reads, in the order their indices are kept.
enum Var : int {
    kIsOnTrack,
    kSpeed,
    kSteeringWheelTorque,
    kSteeringWheelTorqueST,
    kSteeringWheelAngle,
    kSteeringWheelAngleMax,
    kVelocityX,
    kVelocityY,
    kLongAccel,
    kLatAccel,
    kYawRate,
    kBrakeABSactive,
    kLFshockDeflST,
    kRFshockDeflST,
    kCFshockDeflST,
    kVarCount
};

constexpr std::array<std::string_view, kVarCount> kVarNames{
    "IsOnTrack",          "Speed",         "SteeringWheelTorque", "SteeringWheelTorque_ST",
    "SteeringWheelAngle", "SteeringWheelAngleMax", "VelocityX",   "VelocityY",
    "LongAccel",          "LatAccel",      "YawRate",             "BrakeABSactive",
    "LFshockDefl_ST",     "RFshockDefl_ST", "CFshockDefl_ST"};

}  // namespace irsdk
}  // namespace veltor
