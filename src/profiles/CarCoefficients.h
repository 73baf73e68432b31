#pragma once
#include <string>
#include <string_view>
#include <utility>

namespace veltor {

// The five numbers of one car that the grip model reads, in the order the engine resolves them.
struct CarRow {
    float YawRateMultiplier = 0.0f;
    float YawSteerGain = 0.0f;
    float LateralAccelDivisor = 0.0f;
    float ResistanceGain = 0.0f;
    float SteerMarginBias = 0.0f;  // radians
};

// A car path with its five numbers: an override from the INI file or a row of the catalogue.
struct CarCoefficients {
    std::wstring CarPath;
    float YawRateMultiplier = 0.0f;
    float YawSteerGain = 0.0f;
    float LateralAccelDivisor = 0.0f;
    float ResistanceGain = 0.0f;
    float SteerMarginBias = 0.0f;

    CarRow Row() const {
        return {YawRateMultiplier, YawSteerGain, LateralAccelDivisor, ResistanceGain, SteerMarginBias};
    }
    static CarCoefficients FromRow(std::wstring carPath, const CarRow& row) {
        return {std::move(carPath), row.YawRateMultiplier, row.YawSteerGain, row.LateralAccelDivisor,
                row.ResistanceGain, row.SteerMarginBias};
    }
};

// Used for an unknown car while car-specific settings are on.
constexpr CarRow kUnmatchedCarRow{40.0f, 0.0f, 90.0f, 1.0f, 0.0f};
// Used whatever the car while car-specific settings are off.
constexpr CarRow kCarIndependentRow{44.0f, 0.0f, 110.0f, 1.0f, 0.0f};

}  // namespace veltor
