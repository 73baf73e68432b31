#include <gtest/gtest.h>

#include "engine/MixForce.h"

namespace veltor {
namespace {

// Texture against the force ducks it by the priority's slope, down to zero but never across; texture along
// with it near full scale shrinks only the resistance. `acted` is -1 where the case does not pin it.
TEST(MixForce, PriorityDucksOpposingTextureAndMakesRoomForTextureAlongside) {
    struct Case {
        const char* what;
        int32_t priority, strength;
        float main, resistance, texture, other, mixed;
        int acted;
    };
    const Case cases[] = {
        {"plain sum without priority", 0, 50, 30.0f, 9.0f, -20.0f, 1.0f, 20.0f, 0},
        {"tiny texture", 50, 50, 39.0f, 5.0f, 0.09f, 1.0f, 45.09f, 0},
        {"duck 1.1 x 5", 50, 50, 20.0f, 0.0f, -5.0f, 0.0f, 9.5f, 1},
        {"priority 100", 100, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 6.6f - 4.0f, -1},
        {"priority 150 as 100", 150, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 6.6f - 4.0f, -1},
        {"priority 1", 1, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 2.244f - 4.0f, -1},
        {"negative force", 50, 50, -20.0f, 2.0f, 5.0f, 1.0f, -17.0f + 5.5f + 5.0f, -1},
        {"ducked to zero, not across", 50, 50, 3.0f, 0.0f, -5.0f, 0.0f, -5.0f, 1},
        {"opposing below 2.5 Nm", 50, 50, 20.0f, 0.0f, -2.4f, 0.0f, 17.6f, 0},
        {"strength 10: threshold 12 Nm", 50, 10, 50.0f, 0.0f, -11.0f, 0.0f, 39.0f, -1},
        {"strength 10: at 12 Nm", 50, 10, 50.0f, 0.0f, -12.0f, 0.0f, 50.0f - 13.2f - 12.0f, -1},
        {"zero force never ducked", 50, 50, 0.0f, 0.0f, 5.0f, 0.0f, 5.0f, 0},
        {"room 30: resistance 8 to 2", 50, 50, 28.0f, 8.0f, 5.0f, 0.0f, 35.0f, 1},
        {"main above the room: no resistance", 50, 50, 30.0f, 8.0f, 5.0f, 2.0f, 37.0f, -1},
        {"the same, negative", 50, 50, -30.0f, -8.0f, -5.0f, 0.0f, -35.0f, -1},
        {"alongside texture that fits", 50, 50, 25.0f, 8.0f, 5.0f, 0.0f, 38.0f, 0},
        {"alongside without resistance", 50, 50, 45.0f, 0.0f, 5.0f, 0.0f, 50.0f, 0},
        {"resistance against the force stays", 50, 50, 44.0f, -8.0f, 5.0f, 0.0f, 41.0f, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EngineSettings s;
        s.SuspensionDetailPriority = c.priority;
        s.ForceStrength = c.strength;
        bool acted = c.acted == 0;
        EXPECT_NEAR(MixForce(s, c.main, c.resistance, c.texture, c.other, &acted), c.mixed, 1e-5f);
        if (c.acted >= 0) {
            EXPECT_EQ(acted, c.acted == 1);
        }
    }
}

}  // namespace
}  // namespace veltor
