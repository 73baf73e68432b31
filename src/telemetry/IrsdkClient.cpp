#include "telemetry/IrsdkClient.h"

namespace veltor {

IrsdkClient::IrsdkClient() { varIndex.fill(-1); }

IrsdkClient::~IrsdkClient() { Close(); }

bool IrsdkClient::Open() {
    if (sharedMem != nullptr) return true;
    dataValidEvent = link::OpenDataValidEvent();
    memMapFile = link::OpenTelemetryMapping();  // tried even when the event is missing
    if (dataValidEvent == nullptr || memMapFile == nullptr) {
        Close();
        return false;
    }
    size_t size = 0;
    const uint8_t* view = link::MapTelemetryView(memMapFile, size);
    if (view == nullptr) {
        Close();
        return false;
    }
    sharedMem = view;
    viewSize = size;
    attached = false;
    LookUpVariables();
    return true;
}

bool IrsdkClient::AttachBlock(const uint8_t* base, size_t size) {
    Close();
    if (base == nullptr) return false;
    sharedMem = base;
    viewSize = size;
    attached = true;
    LookUpVariables();
    return true;
}

void IrsdkClient::LookUpVariables() {
    header = Block().Contains(0, irsdk::kHeaderSize) ? sharedMem : nullptr;
    varHeaders = nullptr;
    if (header != nullptr) {
        const int32_t offset = Block().LoadI32(irsdk::kVarHeaderOffsetOffset);
        if (Block().Contains(offset, 0)) varHeaders = sharedMem + offset;
    }
    for (int i = 0; i < irsdk::kVarCount; ++i) varIndex[i] = FindVariable(irsdk::kVarNames[i].data());
}

void IrsdkClient::Close() {
    if (sharedMem != nullptr && !attached) link::UnmapTelemetryView(sharedMem);
    sharedMem = nullptr;
    header = nullptr;
    varHeaders = nullptr;
    viewSize = 0;
    attached = false;
    if (memMapFile != nullptr) link::CloseLinkHandle(memMapFile);
    if (dataValidEvent != nullptr) link::CloseLinkHandle(dataValidEvent);
    memMapFile = nullptr;
    dataValidEvent = nullptr;
    varIndex.fill(-1);
}

int32_t IrsdkClient::FindVariable(const char* name) const {
    if (header == nullptr || varHeaders == nullptr) return -1;
    const LiveBlock block = Block();
    const int32_t numVars = block.LoadI32(irsdk::kNumVarsOffset);
    if (numVars < 1) return -1;
    const int64_t first = varHeaders - sharedMem;
    for (int32_t i = 0; i < numVars; ++i) {
        const int64_t at = first + static_cast<int64_t>(i) * irsdk::kVarHeaderSize;
        if (!block.Contains(at, irsdk::kVarHeaderSize)) return -1;  // the array runs past the block
        char stored[irsdk::kVarNameLength];
        block.Copy(reinterpret_cast<uint8_t*>(stored), static_cast<size_t>(at) + irsdk::kVarHeaderName, sizeof stored);
        // At most 32 bytes, stopping at a NUL: a name of exactly 32 characters needs no terminator.
        if (std::strncmp(stored, name, irsdk::kVarNameLength) == 0) return i;
    }
    return -1;
}

bool IrsdkClient::ReadFrame(TelemetryFrame& destination) {
    if (header == nullptr || sharedMem == nullptr) return false;
    return ReadFrameFromBlock(Block(), varIndex, snapshot, destination);
}

int32_t IrsdkClient::Status() const { return header ? Block().LoadI32(irsdk::kStatusOffset) : 0; }
int32_t IrsdkClient::SessionInfoUpdate() const { return header ? Block().LoadI32(irsdk::kSessionInfoUpdateOffset) : -1; }
int32_t IrsdkClient::SessionInfoLen() const { return header ? Block().LoadI32(irsdk::kSessionInfoLenOffset) : 0; }
int32_t IrsdkClient::SessionInfoOffset() const { return header ? Block().LoadI32(irsdk::kSessionInfoOffsetOffset) : 0; }

bool IrsdkClient::CopySessionInfo(std::string& text) const {
    if (header == nullptr) return false;
    const int32_t length = SessionInfoLen();
    const int32_t offset = SessionInfoOffset();
    if (length <= 0 || !Block().Contains(offset, length)) return false;
    text.resize(static_cast<size_t>(length));
    Block().Copy(reinterpret_cast<uint8_t*>(text.data()), static_cast<size_t>(offset), static_cast<size_t>(length));
    return true;
}

}  // namespace veltor
