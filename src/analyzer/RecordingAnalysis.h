#pragma once
#include <cstddef>
#include <vector>

#include "analyzer/CoefficientFit.h"
#include "analyzer/RecordingReader.h"
#include "engine/OutputStage.h"

namespace veltor::analyzer {

constexpr double kPeakPercentile = 99.5;
constexpr float kTextureFloorTorque = 0.1f;  // Nm; a smaller texture counts as none, as in the mix
constexpr float kMovingSpeed = 10.0f;        // m/s; texture and base compared only above it
constexpr double kTexturePercentile = 95.0;
constexpr double kGapSeconds = 0.5;          // a longer step between two records is a gap
constexpr double kStretchJoinSeconds = 0.25;  // marked records closer than this form one stretch

// From one record's time to another's, in seconds from the first record.
struct TimeStretch {
    double start = 0.0;
    double end = 0.0;
};

struct ClippingFindings {
    size_t clippedRecords = 0;
    double clippedPercent = 0.0;
    std::vector<TimeStretch> stretches;
    float peakTorque = 0.0f;       // the 99.5th percentile of |mixedTorque|, Nm
    float fullScaleTorque = 0.0f;  // 2000 / ForceStrength of the header, Nm
    double peakPercentOfFullScale = 0.0;
};

struct TextureFindings {
    size_t texturedRecords = 0;  // |textureTorque| at or above the floor
    size_t priorityActedRecords = 0;
    double priorityActedPercent = 0.0;
    size_t clippedWithTexture = 0;  // clipped records that carried texture
    size_t movingRecords = 0;
    float texturePeak = 0.0f;  // 95th percentile of |textureTorque| while moving, Nm
    float basePeak = 0.0f;     // 95th percentile of |baseTorque| while moving, Nm
    double texturePercentOfBase = 0.0;
};

// What the recording says, each finding with the numbers behind it. Times are seconds from the first record.
struct Analysis {
    size_t records = 0;
    double durationSeconds = 0.0;
    ClippingFindings clipping;
    TextureFindings texture;
    CoefficientFit fit;
    std::vector<TimeStretch> absStretches;
    std::vector<TimeStretch> crashHoldStretches;
    std::vector<TimeStretch> gaps;
};

Analysis AnalyseRecording(const Recording& recording);

// Seconds from the first record to `sample`; never negative, even in a file whose times fall.
double SecondsFromStart(const std::vector<RecordingSample>& samples, const RecordingSample& sample);

}  // namespace veltor::analyzer
