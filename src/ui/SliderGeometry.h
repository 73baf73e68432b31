#pragma once
#include <cstdint>

namespace veltor {

// The track runs from this many pixels inside the left edge to as many inside the right.
inline constexpr int32_t kSliderTrackInset = 10;

// First the smaller of value and maximum, then the larger of that and minimum.
int32_t ClampSliderValue(int32_t value, int32_t minimum, int32_t maximum);

// The value under client x for a slider this wide; x beyond the track takes the nearest end.
int32_t SliderValueAtPoint(int32_t x, int32_t clientWidth, int32_t minimum, int32_t maximum);

// The knob's centre in client x. The value is not clamped: one outside the range stands beyond the track.
int32_t SliderKnobX(int32_t value, int32_t minimum, int32_t maximum, int32_t clientWidth);

}  // namespace veltor
