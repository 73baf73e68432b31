#include <gtest/gtest.h>

#include "ui/SliderGeometry.h"

namespace {

using veltor::SliderKnobX;
using veltor::SliderValueAtPoint;

// The catalogue's sliders are 244 pixels wide: a usable track of 224 from x 10 to x 234.
constexpr int32_t kWidth = 244;

TEST(SliderGeometry, PointGivesTheValueAndTheNearestEndBeyondTheTrack) {
    const struct {
        int32_t x, minimum, maximum, value;
    } cases[] = {
        {10, 0, 100, 0},      {234, 0, 100, 100},   {122, 0, 100, 50},  {-300, 0, 100, 0},  {5000, 0, 100, 100},
        {0, 50, 150, 50},     {244, 50, 150, 150},  {11, 100, 700, 103}, {12, 100, 700, 105}, {122, 0, 20, 10},
        {122, 7, 7, 7},  // an empty range stays at its one value
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SliderValueAtPoint(c.x, kWidth, c.minimum, c.maximum), c.value)
            << "x " << c.x << " range " << c.minimum << ".." << c.maximum;
    }
}

TEST(SliderGeometry, KnobFollowsTheValueAndStandsBeyondTheTrackOutsideTheRange) {
    const struct {
        int32_t value, minimum, maximum, knob;
    } cases[] = {
        {0, 0, 100, 10}, {100, 0, 100, 234}, {50, 0, 100, 122}, {440, 100, 700, 137},
        {150, 0, 100, 346}, {-20, 0, 100, -34}, {5, 5, 5, 10},
    };
    for (const auto& c : cases) EXPECT_EQ(SliderKnobX(c.value, c.minimum, c.maximum, kWidth), c.knob) << c.value;
}

TEST(SliderGeometry, EveryKnobPositionReadsBackAsItsValue) {
    for (int32_t value = 0; value <= 150; ++value) {
        EXPECT_EQ(SliderValueAtPoint(SliderKnobX(value, 0, 150, kWidth), kWidth, 0, 150), value);
    }
}

}  // namespace
