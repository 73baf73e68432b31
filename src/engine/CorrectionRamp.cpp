#include "engine/CorrectionRamp.h"

#include "wheel/SmoothingWeights.h"

namespace veltor {

static_assert(kSmoothingTaps == kMaxSubSamples, "one ramp weight per sub-sample");

// Slot i takes this tick's torque at weight i; the correction of sub-sample i is the sum of all the slots,
// so the correction glides from the old torque to the new one across the tick.
void FillCorrectionRamp(float (&correctionRamp)[kMaxSubSamples], float oversteerTorque,
                        float (&correction)[kMaxSubSamples]) {
    for (int i = 0; i < kMaxSubSamples; ++i) {
        correctionRamp[i] = oversteerTorque * kSmoothingWeights[i];
        float sum = 0.0f;
        for (const float slot : correctionRamp) sum += slot;
        correction[i] = sum;
    }
}

}  // namespace veltor
