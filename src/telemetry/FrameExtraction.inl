#pragma once
// Frame extraction over any block of the published layout; included by IrsdkClient.h.
#include <algorithm>
#include <limits>

namespace veltor {
namespace frame_detail {

struct VarLocation {
    int32_t offset = 0;
    int32_t count = 0;
};

// Offset and element count of a variable as its header gives them, or nothing for an absent index or a
// header outside the block.
template <class Block>
bool LocateVariable(const Block& block, int32_t varIndex, VarLocation& location) {
    if (varIndex < 0) return false;
    const int32_t numVars = block.LoadI32(irsdk::kNumVarsOffset);
    const int32_t varHeaderOffset = block.LoadI32(irsdk::kVarHeaderOffsetOffset);
    if (varIndex >= numVars) return false;
    const int64_t at = static_cast<int64_t>(varHeaderOffset) + static_cast<int64_t>(varIndex) * irsdk::kVarHeaderSize;
    if (!block.Contains(at, irsdk::kVarHeaderSize)) return false;
    location.offset = block.LoadI32(static_cast<size_t>(at) + irsdk::kVarHeaderOffset);
    location.count = block.LoadI32(static_cast<size_t>(at) + irsdk::kVarHeaderCount);
    return true;
}

// Copies up to `maxElements` elements of `elementSize` bytes that lie wholly inside the snapshot.
inline int32_t CopyElements(const std::vector<uint8_t>& snapshot, const VarLocation& location, size_t elementSize,
                            int32_t maxElements, void* destination) {
    const int32_t count = std::clamp(location.count, 0, maxElements);
    if (count == 0 || location.offset < 0) return 0;
    const uint64_t end = static_cast<uint64_t>(location.offset) + static_cast<uint64_t>(count) * elementSize;
    if (end > snapshot.size()) return 0;
    std::memcpy(destination, snapshot.data() + location.offset, static_cast<size_t>(count) * elementSize);
    return count;
}

template <class Block>
void ReadFloat(const Block& block, const std::vector<uint8_t>& snapshot, int32_t varIndex, float& out) {
    VarLocation location;
    if (LocateVariable(block, varIndex, location)) CopyElements(snapshot, location, sizeof(float), 1, &out);
}

template <class Block>
void ReadByteFlag(const Block& block, const std::vector<uint8_t>& snapshot, int32_t varIndex, uint8_t& out) {
    VarLocation location;
    uint8_t raw = 0;
    if (LocateVariable(block, varIndex, location) && CopyElements(snapshot, location, 1, 1, &raw) == 1) {
        out = raw != 0 ? 1 : 0;
    }
}

template <class Block>
int32_t CopyFloatArray(const Block& block, const std::vector<uint8_t>& snapshot, int32_t varIndex, float* out) {
    VarLocation location;
    if (!LocateVariable(block, varIndex, location)) return 0;
    return CopyElements(snapshot, location, sizeof(float), kMaxSubSamples, out);
}

}  // namespace frame_detail

template <class Block>
bool ReadFrameFromBlock(const Block& block, const std::array<int32_t, irsdk::kVarCount>& varIndex,
                        std::vector<uint8_t>& snapshot, TelemetryFrame& destination) {
    using namespace frame_detail;
    if (block.base == nullptr || !block.Contains(0, irsdk::kHeaderSize)) return false;
    const int32_t bufLen = block.LoadI32(irsdk::kBufLenOffset);
    // A buffer longer than the whole block can never be copied whole: fail before sizing the snapshot.
    if (bufLen <= 0 || !block.Contains(0, bufLen)) return false;
    snapshot.resize(static_cast<size_t>(bufLen));  // grows once; steady running allocates nothing

    int32_t tickCount = 0;
    bool whole = false;
    for (int pass = 0; pass < 2 && !whole; ++pass) {
        const int32_t numBuf = block.LoadI32(irsdk::kNumBufOffset);
        if (numBuf < 1) return false;
        int winner = -1;
        int32_t best = std::numeric_limits<int32_t>::min();
        const int count = std::min(numBuf, irsdk::kMaxBuffersRead);
        for (int i = 0; i < count; ++i) {
            const int32_t tick = block.LoadI32(irsdk::kVarBufOffset + i * irsdk::kVarBufStride + irsdk::kVarBufTickCount);
            if (tick > best) {  // strictly greater: on equal ticks the lower index stays
                winner = i;
                best = tick;
            }
        }
        if (winner < 0) return false;
        const size_t descriptor = irsdk::kVarBufOffset + static_cast<size_t>(winner) * irsdk::kVarBufStride;
        const int32_t bufOffset = block.LoadI32(descriptor + irsdk::kVarBufBufOffset);
        if (!block.Contains(bufOffset, bufLen)) return false;
        tickCount = best;
        block.Copy(snapshot.data(), static_cast<size_t>(bufOffset), static_cast<size_t>(bufLen));
        whole = block.LoadI32(descriptor + irsdk::kVarBufTickCount) == tickCount;
    }
    if (!whole) return false;

    TelemetryFrame frame;
    frame.valid = 1;
    frame.tickCount = tickCount;
    ReadByteFlag(block, snapshot, varIndex[irsdk::kIsOnTrack], frame.isOnTrack);
    ReadFloat(block, snapshot, varIndex[irsdk::kSpeed], frame.speed);
    ReadFloat(block, snapshot, varIndex[irsdk::kSteeringWheelTorque], frame.steeringWheelTorque);
    ReadFloat(block, snapshot, varIndex[irsdk::kSteeringWheelAngle], frame.steeringWheelAngle);
    ReadFloat(block, snapshot, varIndex[irsdk::kSteeringWheelAngleMax], frame.steeringWheelAngleMax);
    ReadFloat(block, snapshot, varIndex[irsdk::kVelocityX], frame.velocityX);
    ReadFloat(block, snapshot, varIndex[irsdk::kVelocityY], frame.velocityY);
    ReadFloat(block, snapshot, varIndex[irsdk::kLongAccel], frame.longAccel);
    ReadFloat(block, snapshot, varIndex[irsdk::kLatAccel], frame.latAccel);
    ReadFloat(block, snapshot, varIndex[irsdk::kYawRate], frame.yawRate);
    ReadByteFlag(block, snapshot, varIndex[irsdk::kBrakeABSactive], frame.brakeAbsActive);

    frame.torqueSampleCount = CopyFloatArray(block, snapshot, varIndex[irsdk::kSteeringWheelTorqueST], frame.torqueSamples);
    if (frame.torqueSampleCount <= 0) {
        frame.torqueSamples[0] = frame.steeringWheelTorque;
        frame.torqueSampleCount = 1;
    }

    const int32_t left = CopyFloatArray(block, snapshot, varIndex[irsdk::kLFshockDeflST], frame.lfShockDeflSamples);
    const int32_t right = CopyFloatArray(block, snapshot, varIndex[irsdk::kRFshockDeflST], frame.rfShockDeflSamples);
    frame.shockSampleCount = std::min(left, right);
    if (frame.shockSampleCount > 0) {
        frame.lfShockDefl = frame.lfShockDeflSamples[frame.shockSampleCount - 1];
        frame.rfShockDefl = frame.rfShockDeflSamples[frame.shockSampleCount - 1];
    }
    frame.cfShockSampleCount = CopyFloatArray(block, snapshot, varIndex[irsdk::kCFshockDeflST], frame.cfShockDeflSamples);
    if (frame.cfShockSampleCount > 0) frame.cfShockDefl = frame.cfShockDeflSamples[frame.cfShockSampleCount - 1];

    destination = frame;
    return true;
}

}  // namespace veltor
