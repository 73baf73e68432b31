#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "telemetry/TelemetryFrame.h"

namespace veltor::sim {

// Element types as the simulator's variable headers give them.
enum class VarType : int32_t { Char = 0, Bool = 1, Int = 2, BitField = 3, Float = 4, Double = 5 };

struct VariableSpec {
    std::string name;
    VarType type = VarType::Float;
    int32_t count = 1;
    int32_t offset = -1;  // inside a telemetry buffer; -1: laid out after the previous variable
};

// The 15 variables the program reads, with the simulator's types and counts.
std::vector<VariableSpec> StandardVariables(bool withCentreShock = false);
// What our simulator publishes: the 15 and a few the program does not read, as the real one has many.
std::vector<VariableSpec> SimulatorVariables();

// Writes memory blocks of the simulator's published layout: header, session-info text, variable headers
// and `numBuf` rotating telemetry buffers. Shared by our simulator, the replay tool and the tests.
class TelemetryLayoutWriter {
public:
    // `bufLen` 0 sizes the buffers from the variables; a replayed file brings its own length and offsets.
    TelemetryLayoutWriter(std::vector<VariableSpec> variables, int numBuf, size_t sessionInfoCapacity,
                          int32_t bufLen = 0);

    size_t BlockSize() const { return blockSize; }
    int32_t BufLen() const { return bufLen; }
    int32_t NumBuf() const { return numBuf; }
    int32_t BufferOffset(int index) const { return bufferOffsets[static_cast<size_t>(index)]; }
    int32_t SessionInfoOffset() const { return sessionInfoOffset; }
    int32_t VarHeaderOffset() const { return varHeaderOffset; }
    // Offset of a variable inside a telemetry buffer, or -1 when the layout has no such variable.
    int32_t VarOffset(std::string_view name) const;
    const std::vector<VariableSpec>& Variables() const { return variables; }

    // Header fields and variable headers; session info and buffers are left as they are.
    void WriteLayout(uint8_t* block) const;
    void SetStatus(uint8_t* block, int32_t status) const;
    // Copies the text (cut to the capacity) and moves the generation counter to `update`.
    void SetSessionInfo(uint8_t* block, std::string_view text, int32_t update) const;
    void SetTickCount(uint8_t* block, int bufferIndex, int32_t tickCount) const;
    uint8_t* Buffer(uint8_t* block, int bufferIndex) const { return block + BufferOffset(bufferIndex); }

    void SetFloat(uint8_t* buffer, std::string_view name, float value, int element = 0) const;
    void SetBool(uint8_t* buffer, std::string_view name, bool value) const;
    void SetInt(uint8_t* buffer, std::string_view name, int32_t value) const;
    void SetDouble(uint8_t* buffer, std::string_view name, double value) const;
    // Writes every variable of the layout that a frame carries; arrays take as many samples as they hold.
    void WriteFrame(uint8_t* buffer, const TelemetryFrame& frame) const;

private:
    std::vector<VariableSpec> variables;
    std::vector<int32_t> varOffsets;
    std::vector<int32_t> bufferOffsets;
    int32_t numBuf;
    int32_t bufLen = 0;
    int32_t sessionInfoOffset = 0;
    int32_t sessionInfoCapacity = 0;
    int32_t varHeaderOffset = 0;
    size_t blockSize = 0;
};

void StoreI32(uint8_t* at, int32_t value);

}  // namespace veltor::sim
