#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

#include "telemetry/TelemetryFrame.h"

namespace veltor::sim {

// A telemetry file of the simulator's layout with the program's variables: header, session-info text,
// variable headers, then one record per frame. The replay tool and the analyzer read it like a real one.
std::vector<uint8_t> MakeIbtFile(const std::vector<TelemetryFrame>& frames, std::string_view sessionInfo);

}  // namespace veltor::sim
