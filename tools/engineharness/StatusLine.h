#pragma once
#include <string>

#include "engine/EngineStatus.h"

namespace veltor::harness {

// One line of what a test or a person watches in the engine's status, in UTF-8: connection, track,
// identity and the report counters. Two statuses that print the same line count as unchanged.
std::string FormatStatusLine(const EngineStatus& status);

}  // namespace veltor::harness
