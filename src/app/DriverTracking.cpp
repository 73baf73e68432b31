#include "app/DriverTracking.h"

namespace veltor {

std::array<int32_t, kCoefficientCount> CarSliderValues(const CarCoefficients& coefficients) {
    std::array<int32_t, kCoefficientCount> values{};
    for (size_t i = 0; i < kCoefficientCount; ++i) values[i] = CarSliderValue(kCoefficientRows[i], coefficients.*kCoefficientRows[i].field);
    return values;
}

std::wstring CarLabelText(const ProfileStore& store, std::wstring_view normalizedCarPath) {
    std::wstring label = L"Car: " + std::wstring(normalizedCarPath);
    if (!store.IsKnownCar(normalizedCarPath)) label += L" (unknown)";
    return label;
}

}  // namespace veltor
