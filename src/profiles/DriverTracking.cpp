#include "profiles/DriverTracking.h"

#include <cmath>

namespace veltor {
namespace {

constexpr float kRadiansToTenthDegrees = 572.9578f;
constexpr int32_t kTriggerPointMidpoint = 100;  // slider 1120 at 100 is 0.0 degrees

// A car slider: how its value stands to its coefficient (value = coefficient * scale + offset) and its range.
struct CarSlider {
    float CarCoefficients::*field;
    float scale;
    int32_t offset;
    int32_t minimum;
    int32_t maximum;
};

constexpr std::array<CarSlider, kCarSliderCount> kCarSliders{{
    {&CarCoefficients::YawRateMultiplier, 10.0f, 0, 100, 700},
    {&CarCoefficients::YawSteerGain, 1000.0f, 0, 0, 450},
    {&CarCoefficients::LateralAccelDivisor, 1.0f, 0, 50, 130},
    {&CarCoefficients::ResistanceGain, 100.0f, 0, 50, 200},
    {&CarCoefficients::SteerMarginBias, kRadiansToTenthDegrees, kTriggerPointMidpoint, 0, 200},
}};

int32_t SliderValue(const CarSlider& slider, float coefficient) {
    const float scaled = std::round(coefficient * slider.scale + static_cast<float>(slider.offset));
    if (std::isnan(scaled)) return slider.minimum;
    return static_cast<int32_t>(
        std::clamp(scaled, static_cast<float>(slider.minimum), static_cast<float>(slider.maximum)));
}

}  // namespace

std::array<int32_t, kCarSliderCount> CarSliderValues(const CarCoefficients& coefficients) {
    std::array<int32_t, kCarSliderCount> values{};
    for (size_t i = 0; i < kCarSliderCount; ++i) values[i] = SliderValue(kCarSliders[i], coefficients.*kCarSliders[i].field);
    return values;
}

bool SetCoefficientFromSlider(CarCoefficients& coefficients, int32_t id, int32_t value) {
    const int32_t index = id - kFirstCarSliderId;
    if (index < 0 || index >= static_cast<int32_t>(kCarSliderCount)) return false;
    const CarSlider& slider = kCarSliders[static_cast<size_t>(index)];
    coefficients.*slider.field = static_cast<float>(value - slider.offset) / slider.scale;
    return true;
}

std::wstring CarLabelText(const ProfileStore& store, std::wstring_view normalizedCarPath) {
    std::wstring label = L"Car: " + std::wstring(normalizedCarPath);
    if (!store.IsKnownCar(normalizedCarPath)) label += L" (unknown)";
    return label;
}

}  // namespace veltor
