#pragma once
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace veltor::analyzer {

constexpr uint32_t kReadableRecordingVersion = 2;
// A day of driving at 60 records a second; a longer file is refused rather than read into memory.
constexpr uint64_t kMaxRecords = 24ull * 3600 * 60;

// A recording as read: the header and every whole record whose values are all finite numbers.
struct Recording {
    RecordingHeader header;
    std::vector<RecordingSample> samples;
    uint32_t cutBytes = 0;             // the file ended inside a record: these trailing bytes were ignored
    uint64_t nonFiniteRecords = 0;     // records left out for a value that is no finite number
    int64_t firstNonFiniteRecord = -1;  // its index in the file
};

// Reads a recording from memory. False with a one-line reason when the file cannot be a recording:
// too short, wrong magic, another version, header or record size, a header value that is no finite
// number, or too many records. A cut last record and records with non-finite values are left out and
// counted, not refused.
bool ParseRecording(const uint8_t* data, size_t size, Recording& recording, std::string& error);

// Reads the file at `path` the same way, straight into the records.
bool LoadRecording(const std::filesystem::path& path, Recording& recording, std::string& error);

// The warnings for what was left out: one line each, none for a whole file.
std::vector<std::string> ReadingWarnings(const Recording& recording);

// A text field of the header, up to its NUL and without a character cut at the field's end; control
// characters become '?', so no field can break a line of the report or of the advice file.
std::string HeaderText(const char (&field)[kRecordingTextField]);

}  // namespace veltor::analyzer
