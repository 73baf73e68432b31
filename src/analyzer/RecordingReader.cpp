#include "analyzer/RecordingReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <system_error>

namespace veltor::analyzer {
namespace {

constexpr char kMagic[8] = "VTRREC1";

bool Fail(std::string& error, std::string reason) {
    error = std::move(reason);
    return false;
}

struct NamedFloat {
    const char* name;
    float RecordingHeader::*field;
};

constexpr NamedFloat kHeaderFloats[] = {
    {"YawRateMultiplier", &RecordingHeader::YawRateMultiplier},
    {"LateralAccelDivisor", &RecordingHeader::LateralAccelDivisor},
    {"ResistanceGain", &RecordingHeader::ResistanceGain},
    {"SteerMarginBias", &RecordingHeader::SteerMarginBias},
    {"wheelbaseMaxTorque", &RecordingHeader::wheelbaseMaxTorque},
    {"YawSteerGain", &RecordingHeader::YawSteerGain},
};

constexpr float RecordingSample::*kSampleFloats[] = {
    &RecordingSample::speed,           &RecordingSample::steeringWheelAngle, &RecordingSample::steeringWheelTorque,
    &RecordingSample::velocityX,       &RecordingSample::velocityY,          &RecordingSample::longAccel,
    &RecordingSample::latAccel,        &RecordingSample::yawRate,            &RecordingSample::steerExcess,
    &RecordingSample::understeerLoad,  &RecordingSample::baseTorque,         &RecordingSample::resistanceTorque,
    &RecordingSample::textureTorque,   &RecordingSample::correctionTorque,   &RecordingSample::mixedTorque,
    &RecordingSample::fullScaleTorque, &RecordingSample::crashGain,
};

// Takes the header from the file's first 380 bytes and works out how many whole records follow.
bool TakeHeader(const uint8_t* bytes, uint64_t fileSize, Recording& recording, uint64_t& records,
                std::string& error) {
    if (fileSize < kRecordingHeaderSize) {
        return Fail(error, "too short for a recording header (" + std::to_string(fileSize) + " of " +
                               std::to_string(kRecordingHeaderSize) + " bytes)");
    }
    RecordingHeader& header = recording.header;
    std::memcpy(&header, bytes, sizeof header);
    if (std::memcmp(header.magic, kMagic, sizeof kMagic) != 0) {
        return Fail(error, "not a recording: the file does not start with VTRREC1");
    }
    if (header.version != kReadableRecordingVersion) {
        return Fail(error, "recording version " + std::to_string(header.version) + " cannot be read (version " +
                               std::to_string(kReadableRecordingVersion) + " expected)");
    }
    if (header.headerSize != kRecordingHeaderSize) {
        return Fail(error, "header size " + std::to_string(header.headerSize) + " is not " +
                               std::to_string(kRecordingHeaderSize));
    }
    if (header.recordSize != kRecordingSampleSize) {
        return Fail(error, "record size " + std::to_string(header.recordSize) + " is not " +
                               std::to_string(kRecordingSampleSize));
    }
    for (const NamedFloat& value : kHeaderFloats) {
        if (!std::isfinite(header.*value.field)) {
            return Fail(error, std::string("header value ") + value.name + " is not a finite number");
        }
    }
    const uint64_t body = fileSize - kRecordingHeaderSize;
    records = body / kRecordingSampleSize;
    if (records > kMaxRecords) {
        return Fail(error, std::to_string(records) + " records: longer than a day of driving, not read");
    }
    recording.cutBytes = static_cast<uint32_t>(body % kRecordingSampleSize);
    return true;
}

bool AllFinite(const RecordingSample& sample) {
    return std::all_of(std::begin(kSampleFloats), std::end(kSampleFloats),
                       [&](float RecordingSample::*field) { return std::isfinite(sample.*field); });
}

// Leaves out the records with a value that is no finite number, keeping the others in file order.
void DropNonFinite(Recording& recording) {
    std::vector<RecordingSample>& samples = recording.samples;
    recording.nonFiniteRecords = 0;
    recording.firstNonFiniteRecord = -1;
    size_t kept = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        if (!AllFinite(samples[i])) {
            if (recording.nonFiniteRecords++ == 0) recording.firstNonFiniteRecord = static_cast<int64_t>(i);
            continue;
        }
        if (kept != i) samples[kept] = samples[i];
        ++kept;
    }
    samples.resize(kept);
}

}  // namespace

bool ParseRecording(const uint8_t* data, size_t size, Recording& recording, std::string& error) {
    recording = Recording{};
    uint64_t records = 0;
    if (!TakeHeader(data, size, recording, records, error)) return false;
    recording.samples.resize(static_cast<size_t>(records));
    if (records > 0) {
        std::memcpy(recording.samples.data(), data + kRecordingHeaderSize,
                    static_cast<size_t>(records) * kRecordingSampleSize);
    }
    DropNonFinite(recording);
    return true;
}

bool LoadRecording(const std::filesystem::path& path, Recording& recording, std::string& error) {
    recording = Recording{};
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) return Fail(error, "no such file");
    const uint64_t size = std::filesystem::file_size(path, failure);
    std::ifstream in(path, std::ios::binary);
    if (failure || !in) return Fail(error, "cannot open the file");
    uint8_t header[kRecordingHeaderSize] = {};
    in.read(reinterpret_cast<char*>(header), static_cast<std::streamsize>(std::min<uint64_t>(size, sizeof header)));
    uint64_t records = 0;
    if (!in || !TakeHeader(header, size, recording, records, error)) {
        if (error.empty()) error = "cannot read the file";
        return false;
    }
    recording.samples.resize(static_cast<size_t>(records));
    in.read(reinterpret_cast<char*>(recording.samples.data()),
            static_cast<std::streamsize>(records * kRecordingSampleSize));
    if (!in) {
        recording.samples.clear();
        return Fail(error, "cannot read the file to its end");
    }
    DropNonFinite(recording);
    return true;
}

std::vector<std::string> ReadingWarnings(const Recording& recording) {
    std::vector<std::string> warnings;
    if (recording.cutBytes > 0) {
        warnings.push_back("the file ends inside a record: its last " + std::to_string(recording.cutBytes) +
                           " bytes were ignored");
    }
    if (recording.nonFiniteRecords > 0) {
        warnings.push_back(std::to_string(recording.nonFiniteRecords) +
                           " records with values that are not finite numbers were left out (the first is record " +
                           std::to_string(recording.firstNonFiniteRecord) + ")");
    }
    return warnings;
}

std::string HeaderText(const char (&field)[kRecordingTextField]) {
    std::string text(field, std::find(field, field + kRecordingTextField - 1, '\0'));
    // The writer cuts a long text at the field's end, maybe inside a character: that partial one goes.
    size_t lead = text.size();
    while (lead > 0 && text.size() - lead < 3 && (static_cast<unsigned char>(text[lead - 1]) & 0xC0) == 0x80) --lead;
    if (lead > 0) {
        const unsigned char first = static_cast<unsigned char>(text[lead - 1]);
        const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
        if (first >= 0xC0 && text.size() - (lead - 1) < length) text.resize(lead - 1);
    }
    for (char& c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) c = '?';
    }
    return text;
}

}  // namespace veltor::analyzer
