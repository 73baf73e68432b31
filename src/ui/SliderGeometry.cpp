#include "ui/SliderGeometry.h"

#include <algorithm>

namespace veltor {

int32_t ClampSliderValue(int32_t value, int32_t minimum, int32_t maximum) {
    return std::max(std::min(value, maximum), minimum);
}

int32_t SliderValueAtPoint(int32_t x, int32_t clientWidth, int32_t minimum, int32_t maximum) {
    const int32_t onTrack = std::max(std::min(x, clientWidth - kSliderTrackInset), kSliderTrackInset);
    const int32_t span = std::max(maximum - minimum, 1);
    const int32_t usable = std::max(clientWidth - 2 * kSliderTrackInset, 1);
    const float t = static_cast<float>(onTrack - kSliderTrackInset) / static_cast<float>(usable);
    const float rounded = t * static_cast<float>(span) + 0.5f;
    return ClampSliderValue(minimum + static_cast<int32_t>(rounded), minimum, maximum);
}

int32_t SliderKnobX(int32_t value, int32_t minimum, int32_t maximum, int32_t clientWidth) {
    const float fraction = static_cast<float>(value - minimum) / static_cast<float>(std::max(maximum - minimum, 1));
    const float pixels = fraction * static_cast<float>(std::max(clientWidth - 2 * kSliderTrackInset, 1)) + 0.5f;
    return static_cast<int32_t>(pixels) + kSliderTrackInset;
}

}  // namespace veltor
