#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "IbtImage.h"
#include "ReplayOptions.h"
#include "ReplayPlatform.h"
#include "telemetry/SessionInfoScanner.h"

namespace veltor::replay {

constexpr int64_t kRecordSpacingNanoseconds = 16666667;  // one 60 Hz tick of the virtual clock
constexpr int32_t kMaxOutputsPerRecord = 12;
// The recorder's writer idles 10 ms at a time and its ring holds 8191 samples, while the offline run
// ticks far faster than 60 Hz: it pauses after each stretch so the writer keeps up.
constexpr int32_t kRecorderPaceRecords = 2048;
constexpr int32_t kRecorderPaceMilliseconds = 12;

struct ReplayResult {
    std::vector<ForceRow> rows;  // every force store in order
    uint32_t droppedSamples = 0;  // recording samples the ring refused; 0 unless the writer was starved
};

// Who drives which car: the scan of the file's session-info text ("generic" and the other defaults when
// it fails), with --car over the car path.
SessionIdentity ScanReplayIdentity(const ReplayOptions& options, const IbtImage& image);

// The identity line printed before the first record, UTF-8.
std::string IdentityLine(const SessionIdentity& identity);

// Runs every record of `image` through the engine's own pass and tick code, and records if asked to.
// False with a one-line reason when the recording cannot be started.
bool RunReplay(const ReplayOptions& options, const SessionIdentity& identity, IbtImage& image, ReplayResult& result,
               std::string& error);

// "frame,output,force" and one line per row.
std::string FormatCsv(const std::vector<ForceRow>& rows);

// Writes under a temporary name and renames, so a failure leaves no partial file at `path`.
bool WriteWholeFile(const std::string& path, const std::string& content, std::string& error);

// Command-line text (UTF-8) to wide text.
std::wstring WidenUtf8(const std::string& text);

}  // namespace veltor::replay
