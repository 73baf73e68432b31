#pragma once

namespace veltor {

// Six weights that sum to 1, rising to a peak at the third and falling off. The wheel's velocity filter and
// the engine's oversteer correction ramp both smooth with them.
constexpr int kSmoothingTaps = 6;
constexpr float kSmoothingWeights[kSmoothingTaps] = {0.1295867f, 0.2311436f, 0.2582509f,
                                                     0.1923936f, 0.1156718f, 0.0729534f};

}  // namespace veltor
