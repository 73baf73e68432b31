#include <gtest/gtest.h>

#include "engine/SettingsKeys.h"

namespace veltor {
namespace {

TEST(SettingsKeys, SetsTheFieldThatBearsTheKey) {
    EngineSettings settings;
    EXPECT_TRUE(SetSettingByKey(settings, "ForceStrength", 80));
    EXPECT_TRUE(SetSettingByKey(settings, "WheelbaseMaxTorqueTenths", 125));
    EXPECT_TRUE(SetSettingByKey(settings, "SimucubeMode", 7));
    EXPECT_TRUE(SetSettingByKey(settings, "UseCarSpecificSettings", 0));
    EXPECT_EQ(settings.ForceStrength, 80);
    EXPECT_EQ(settings.WheelbaseMaxTorqueTenths, 125);
    EXPECT_TRUE(settings.SimucubeMode);
    EXPECT_FALSE(settings.UseCarSpecificSettings);

    const EngineSettings before = settings;
    EXPECT_FALSE(SetSettingByKey(settings, "forcestrength", 1));  // keys are case-sensitive
    EXPECT_FALSE(SetSettingByKey(settings, "", 1));
    EXPECT_EQ(settings.ForceStrength, before.ForceStrength);
}

TEST(SettingsKeys, ParsesWholeDecimalIntegersOnly) {
    int32_t value = 0;
    EXPECT_TRUE(ParseSettingInteger("+42", value));
    EXPECT_EQ(value, 42);
    EXPECT_TRUE(ParseSettingInteger("-2147483648", value));
    EXPECT_EQ(value, INT32_MIN);
    value = 9;
    for (const char* bad : {"", "+", "4x", " 4", "2147483648", "1.5", "0x10"}) {
        EXPECT_FALSE(ParseSettingInteger(bad, value)) << bad;
    }
}

}  // namespace
}  // namespace veltor
