#include "engine/MixForce.h"

#include <algorithm>
#include <cmath>

#include "engine/OutputStage.h"

namespace veltor {
namespace {

constexpr float kTextureFloor = 0.1f;               // Nm; a smaller texture is simply added
constexpr float kOppositionShare = 0.06f;           // of full scale
constexpr float kOppositionMinimum = 2.5f;          // Nm
constexpr float kChangeThreshold = 0.0001f;         // Nm; a smaller change is no action

}  // namespace

float MixForce(const EngineSettings& settings, float base, float resistance, float texture, float other,
               bool* priorityActed) {
    if (priorityActed != nullptr) *priorityActed = false;
    if (settings.SuspensionDetailPriority <= 0 || std::fabs(texture) < kTextureFloor) {
        return ((base + resistance) + texture) + other;
    }
    const float fullScale = FullScaleTorque(settings);
    const float p = static_cast<float>(std::min(settings.SuspensionDetailPriority, 100));
    const float main = base + other;
    const float sum = main + resistance;
    bool acted = false;
    float result = 0.0f;
    if (sum * texture < 0.0f) {
        // The texture pulls against the force: duck the force so the texture can be felt.
        if (std::fabs(texture) < std::max(fullScale * kOppositionShare, kOppositionMinimum)) return sum + texture;
        const float duck = std::min((p / 100.0f * 1.1f + 0.55f) * std::fabs(texture), std::fabs(sum));
        const float reduced = std::copysign(std::fabs(sum) - duck, sum);
        acted = duck > kChangeThreshold;
        result = reduced + texture;
    } else {
        // The texture pulls along: keep headroom for it by giving up resistance, never more.
        if (std::fabs(resistance) <= kChangeThreshold) return sum + texture;
        if (fullScale >= std::fabs(sum) + std::fabs(texture)) return sum + texture;
        const float reserve = std::min(fullScale, (p / 50.0f + 1.0f) * std::fabs(texture));
        const float room = std::max(fullScale - reserve, 0.0f);
        const float wanted = std::clamp(sum, -room, room) - main;
        const float kept = resistance > 0.0f ? std::max(std::min(resistance, wanted), 0.0f)
                                             : std::max(std::min(0.0f, wanted), resistance);
        acted = std::fabs(kept - resistance) > kChangeThreshold;
        result = (kept + main) + texture;
    }
    if (priorityActed != nullptr) *priorityActed = acted;
    return result;
}

}  // namespace veltor
