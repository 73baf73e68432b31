#pragma once
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "settings/ValueText.h"

namespace veltor {

// The five numbers of one car that the grip model reads, in the order the engine resolves them.
struct CarRow {
    float YawRateMultiplier = 0.0f;
    float YawSteerGain = 0.0f;
    float LateralAccelDivisor = 0.0f;
    float ResistanceGain = 0.0f;
    float SteerMarginBias = 0.0f;  // radians
};

// A car path with its five numbers: an override from the INI file or a row of the catalogue. Every fact
// about a number beyond its value stands in its row of kCoefficientRows below.
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
// Used whatever the car while car-specific settings are off; also the numbers a file's missing key and a car
// slider before any car stand for.
constexpr CarRow kCarIndependentRow{44.0f, 0.0f, 110.0f, 1.0f, 0.0f};

// A coefficient's tenths of a degree, in files and on its slider.
constexpr float kCoefficientTenthDegreesPerRadian = 572.9578f;

// One number of CarCoefficients and what the file, the advice and its car slider know of it. The file and
// the slider hold whole numbers: value × scale, and on the slider plus its midpoint offset.
struct CoefficientRow {
    float CarCoefficients::*field;
    std::wstring_view key;       // in a Coefficient section and in an advice file
    std::wstring_view applyKey;  // the advice file's switch for it
    float scale;
    int32_t control;             // its car slider
    std::wstring_view label;
    int32_t minimum;             // the slider's range
    int32_t maximum;
    int32_t sliderOffset;        // the slider's value for 0
    ValueText text;
};

namespace coefficient_rows {

using C = CarCoefficients;
using T = ValueText;

inline constexpr CoefficientRow kRows[] = {
    {&C::YawRateMultiplier, L"YawRateMultiplierTenth", L"ApplyYawRateMultiplier", 10.0f, 1116, L"Steering build-up",
     100, 700, 0, T::Tenths},
    {&C::YawSteerGain, L"YawSteerGainThousand", L"ApplyYawSteerGain", 1000.0f, 1117, L"Extra load in big steering", 0,
     450, 0, T::Thousandths},
    {&C::LateralAccelDivisor, L"LateralAccelDivisor", L"ApplyLateralAccelDivisor", 1.0f, 1118,
     L"Cornering load balance", 50, 130, 0, T::Whole},
    {&C::ResistanceGain, L"ResistanceGainHundred", L"ApplyResistanceGain", 100.0f, 1119, L"Understeer weight", 50,
     200, 0, T::Hundredths},
    {&C::SteerMarginBias, L"SteerMarginBiasTenthDeg", L"ApplySteerMarginBias", kCoefficientTenthDegreesPerRadian, 1120,
     L"Understeer trigger point", 0, 200, 100, T::TenthDegrees},
};

}  // namespace coefficient_rows

inline constexpr std::span<const CoefficientRow> kCoefficientRows = coefficient_rows::kRows;
inline constexpr size_t kCoefficientCount = std::size(coefficient_rows::kRows);

// The row of a car slider's id; null for any other id.
constexpr const CoefficientRow* FindCoefficientRow(int32_t control) {
    for (const CoefficientRow& row : kCoefficientRows) {
        if (row.control == control) return &row;
    }
    return nullptr;
}

[[noreturn]] void NoCoefficientRow();

// The row of a number; every number has one (as SettingRowOf).
constexpr const CoefficientRow& CoefficientRowOf(float CarCoefficients::*field) {
    for (const CoefficientRow& row : kCoefficientRows) {
        if (row.field == field) return row;
    }
    NoCoefficientRow();
}

// The number as a file stores it: rounded half away from zero; beyond 32 bits it saturates, and a NaN,
// which no slider or file gives, stores 0.
int32_t CoefficientFileValue(const CoefficientRow& row, float value);
// A file's whole number as the coefficient, in single precision.
float CoefficientFromFile(const CoefficientRow& row, int32_t stored);

// The car slider's value for a coefficient: rounded half away from zero and clamped to the range (a NaN
// shows as the minimum). A value beyond the range stays in the coefficients; only the slider shows it clamped.
int32_t CarSliderValue(const CoefficientRow& row, float value);
// The coefficient from its slider's value, in single precision.
float CoefficientFromSlider(const CoefficientRow& row, int32_t sliderValue);

}  // namespace veltor
