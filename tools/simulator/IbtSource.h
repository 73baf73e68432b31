#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "TelemetryLayoutWriter.h"

namespace veltor::sim {

// A telemetry file of the simulator's own format, held in memory for replay: the published header's
// first 112 bytes, a disk sub-header, the session-info text, the variable headers and `bufLen`-byte
// records from varBuf[0].bufOffset on. Every offset is checked against the file before use.
class IbtSource {
public:
    bool Load(const std::string& path, std::string& error);
    // Parses a file's bytes; false with a reason for anything that does not hold together.
    bool Parse(std::vector<uint8_t> bytes, std::string& error);

    const std::vector<VariableSpec>& Variables() const { return variables; }
    const std::string& SessionInfo() const { return sessionInfo; }
    int32_t BufLen() const { return bufLen; }
    int32_t TickRate() const { return tickRate; }
    int32_t RecordCount() const { return recordCount; }
    int32_t SkippedVariables() const { return skippedVariables; }
    // The bytes of record `index`, BufLen() of them.
    const uint8_t* Record(int32_t index) const;

private:
    bool ParseVariables(int32_t numVars, int32_t varHeaderOffset, std::string& error);

    std::vector<uint8_t> file;
    std::vector<VariableSpec> variables;
    std::string sessionInfo;
    int32_t bufLen = 0;
    int32_t tickRate = 60;
    int32_t firstRecord = 0;
    int32_t recordCount = 0;
    int32_t skippedVariables = 0;  // headers whose values would lie outside a record
};

}  // namespace veltor::sim
