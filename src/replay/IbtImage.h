#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace veltor::replay {

// A telemetry file in memory: the simulator's header, session-info text and variable headers, then
// `recordCount` records of `bufLen` bytes from `firstRecord` on. The header's buffer descriptor is
// rewritten per record, so the image doubles as the memory block the real frame reader reads.
struct IbtImage {
    std::vector<uint8_t> bytes;
    int32_t bufLen = 0;
    int32_t firstRecord = 0;
    int32_t recordCount = 0;
};

// Checks the layout of `bytes` and takes it over. False with a one-line reason for a short or malformed file.
bool ParseIbtImage(std::vector<uint8_t> bytes, IbtImage& image, std::string& error);

// Reads the whole file and parses it.
bool LoadIbtImage(const std::string& path, IbtImage& image, std::string& error);

// Presents record `index` as the block's one and newest buffer, with that index as its tick count.
void SelectRecord(IbtImage& image, int32_t index);

}  // namespace veltor::replay
