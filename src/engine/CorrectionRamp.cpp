#include "engine/CorrectionRamp.h"

namespace veltor {
namespace {

constexpr float kRampWeights[6] = {0.1295867f, 0.2311436f, 0.2582509f, 0.1923936f, 0.1156718f, 0.0729534f};

}  // namespace

// Slot i takes this tick's torque at weight i; the correction of sub-sample i is the sum of all six slots,
// so the correction glides from the old torque to the new one across the tick.
void FillCorrectionRamp(float (&correctionRamp)[6], float oversteerTorque, float (&correction)[6]) {
    for (int i = 0; i < 6; ++i) {
        correctionRamp[i] = oversteerTorque * kRampWeights[i];
        float sum = 0.0f;
        for (const float slot : correctionRamp) sum += slot;
        correction[i] = sum;
    }
}

}  // namespace veltor
