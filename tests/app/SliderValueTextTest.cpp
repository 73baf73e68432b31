#include <gtest/gtest.h>

#include "settings/ValueText.h"

// The value texts at their defaults are in the window's layout test; these are the units and signs beyond.
namespace {

TEST(SliderValueText, EachIdShowsItsUnitAndPrecision) {
    const struct {
        int32_t id;
        int32_t value;
        const wchar_t* text;
    } cases[] = {
        {1100, 7, L"7"},          {1106, 150, L"150%"},    {1112, 65, L"6.5 g"},     {1113, 120, L"12.0 g"},
        {1114, 0, L"0.0 sec"},    {1116, 440, L"44.0"},    {1117, 5, L"0.005"},      {1117, 450, L"0.450"},
        {1119, 105, L"1.05"},     {1120, 0, L"-10.0 deg"}, {1120, 99, L"-0.1 deg"}, {1120, 200, L"+10.0 deg"},
        {4242, -3, L"-3"},
    };
    for (const auto& c : cases) EXPECT_EQ(veltor::SliderValueText(c.id, c.value), c.text) << c.id << " " << c.value;
}

}  // namespace
