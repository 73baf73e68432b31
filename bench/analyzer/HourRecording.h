#pragma once
#include <cstdint>
#include <filesystem>

namespace veltor::bench {

constexpr int64_t kHourRecords = 216000;  // an hour at 60 records a second

// Writes a made-up hour of driving as a recording, "hour.vtrrec" in `folder`, and returns its path:
// cornering, texture, clipping now and then, ABS in the braking zones.
std::filesystem::path WriteHourRecording(const std::filesystem::path& folder);

}  // namespace veltor::bench
