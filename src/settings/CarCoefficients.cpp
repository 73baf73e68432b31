#include "settings/CarCoefficients.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace veltor {

void NoCoefficientRow() { std::abort(); }

int32_t CoefficientFileValue(const CoefficientRow& row, float value) {
    const float scaled = value * row.scale;
    if (std::isnan(scaled)) return 0;
    if (scaled >= 2147483647.0f) return INT32_MAX;
    if (scaled <= -2147483648.0f) return INT32_MIN;
    return static_cast<int32_t>(std::round(scaled));
}

float CoefficientFromFile(const CoefficientRow& row, int32_t stored) { return static_cast<float>(stored) / row.scale; }

int32_t CarSliderValue(const CoefficientRow& row, float value) {
    const float scaled = std::round(value * row.scale + static_cast<float>(row.sliderOffset));
    if (std::isnan(scaled)) return row.minimum;
    return static_cast<int32_t>(std::clamp(scaled, static_cast<float>(row.minimum), static_cast<float>(row.maximum)));
}

float CoefficientFromSlider(const CoefficientRow& row, int32_t sliderValue) {
    return static_cast<float>(sliderValue - row.sliderOffset) / row.scale;
}

}  // namespace veltor
