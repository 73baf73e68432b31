#include "engine/RoadTexture.h"

namespace veltor {

float ComputeTexture(float, const EngineSettings&) { return 0.0f; }

float SubSampleTexture(const TelemetryFrame&, const TelemetryFrame&, int, const EngineSettings&) { return 0.0f; }

void FillAbsVibration(const TelemetryFrame&, const EngineSettings&, bool, int, float& absPhase, float (&)[12]) {
    absPhase = 0.0f;
}

float MixForce(const EngineSettings&, float base, float resistance, float texture, float other, bool* priorityActed) {
    if (priorityActed != nullptr) *priorityActed = false;
    return ((base + resistance) + texture) + other;
}

}  // namespace veltor
