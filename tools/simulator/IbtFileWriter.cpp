#include "IbtFileWriter.h"

#include "TelemetryLayoutWriter.h"

namespace veltor::sim {

std::vector<uint8_t> MakeIbtFile(const std::vector<TelemetryFrame>& frames, std::string_view sessionInfo) {
    const TelemetryLayoutWriter layout(StandardVariables(), 1, sessionInfo.size() + 1);
    std::vector<uint8_t> bytes(layout.BlockSize());
    layout.WriteLayout(bytes.data());
    layout.SetSessionInfo(bytes.data(), sessionInfo, 1);
    const size_t header = static_cast<size_t>(layout.BufferOffset(0));
    const size_t record = static_cast<size_t>(layout.BufLen());
    bytes.resize(header + frames.size() * record);
    for (size_t i = 0; i < frames.size(); ++i) layout.WriteFrame(bytes.data() + header + i * record, frames[i]);
    return bytes;
}

}  // namespace veltor::sim
