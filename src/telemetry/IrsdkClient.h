#pragma once
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "telemetry/IrsdkLayout.h"
#include "telemetry/SimulatorLink.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Read access to a memory block of the simulator's published layout, bounded by the block's size.
// The simulator may rewrite the block at any moment, so each field is loaded once and checked before use.
struct LiveBlock {
    const uint8_t* base = nullptr;
    size_t size = 0;

    bool Contains(int64_t offset, int64_t length) const {
        return offset >= 0 && length >= 0 && static_cast<uint64_t>(offset) + static_cast<uint64_t>(length) <= size;
    }
    int32_t LoadI32(size_t offset) const {
        int32_t v;
        std::memcpy(&v, base + offset, sizeof v);
        return v;
    }
    void Copy(uint8_t* destination, size_t offset, size_t length) const {
        std::memcpy(destination, base + offset, length);
    }
};

// Delivers the newest consistent frame of a block. `Block` has Contains, LoadI32 and Copy (tests pass a
// block that rewrites itself during a copy). Every offset and length the header gives is held against the
// block's size before use: a buffer that does not fit fails the read, a variable that does not fit inside
// its buffer counts as absent. A hostile block thus yields a failed read or a thinner frame, never a read
// outside the block.
template <class Block>
bool ReadFrameFromBlock(const Block& block, const std::array<int32_t, irsdk::kVarCount>& varIndex,
                        std::vector<uint8_t>& snapshot, TelemetryFrame& destination);

class IrsdkClient {
public:
    IrsdkClient();
    ~IrsdkClient();
    IrsdkClient(const IrsdkClient&) = delete;
    IrsdkClient& operator=(const IrsdkClient&) = delete;

    bool Open();
    void Close();
    // Reads from a block the caller owns (offline replay, tests) instead of the simulator's mapping.
    // The block must outlive the attachment; Close detaches without unmapping.
    bool AttachBlock(const uint8_t* base, size_t size);

    int32_t FindVariable(const char* name) const;
    bool ReadFrame(TelemetryFrame& destination);

    bool IsOpen() const { return sharedMem != nullptr; }
    bool HasHeader() const { return header != nullptr; }
    int32_t Status() const;
    int32_t SessionInfoUpdate() const;  // -1 without a header
    int32_t SessionInfoLen() const;
    int32_t SessionInfoOffset() const;
    // Copies the session-info text into `text`; false when there is none or it lies outside the block.
    bool CopySessionInfo(std::string& text) const;
    link::Handle DataValidEvent() const { return dataValidEvent; }
    const std::array<int32_t, irsdk::kVarCount>& VarIndex() const { return varIndex; }

private:
    LiveBlock Block() const { return {sharedMem, viewSize}; }
    void LookUpVariables();

    link::Handle dataValidEvent = nullptr;
    link::Handle memMapFile = nullptr;
    const uint8_t* sharedMem = nullptr;
    const uint8_t* header = nullptr;
    const uint8_t* varHeaders = nullptr;
    std::array<int32_t, irsdk::kVarCount> varIndex;
    std::vector<uint8_t> snapshot;
    size_t viewSize = 0;
    bool attached = false;  // sharedMem belongs to the caller, not to a mapping
};

}  // namespace veltor

#include "telemetry/FrameExtraction.inl"
