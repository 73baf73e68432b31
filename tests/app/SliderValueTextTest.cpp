#include <gtest/gtest.h>

#include "app/SliderValueText.h"
#include "profiles/TorqueField.h"

namespace {

TEST(SliderValueText, EachIdShowsItsUnit) {
    const struct {
        int32_t id;
        int32_t value;
        const wchar_t* text;
    } cases[] = {
        {1100, 7, L"7"},          {1101, 50, L"50%"},      {1115, 99, L"99%"},      {1106, 150, L"150%"},
        {1112, 65, L"6.5 g"},     {1113, 120, L"12.0 g"},  {1114, 15, L"1.5 sec"},  {1114, 0, L"0.0 sec"},
        {1116, 440, L"44.0"},     {1117, 5, L"0.005"},     {1117, 450, L"0.450"},   {1119, 105, L"1.05"},
        {1119, 50, L"0.50"},      {1118, 110, L"110"},     {1120, 0, L"-10.0 deg"}, {1120, 100, L"+0.0 deg"},
        {1120, 200, L"+10.0 deg"}, {1120, 99, L"-0.1 deg"}, {1111, 150, L"150"},     {4242, -3, L"-3"},
    };
    for (const auto& c : cases) EXPECT_EQ(veltor::SliderValueText(c.id, c.value), c.text) << c.id << " " << c.value;
}

TEST(TorqueFieldText, TenthsAsNewtonMetresAndEmptyForNone) {
    const struct {
        int32_t tenths;
        const wchar_t* text;
    } cases[] = {{125, L"12.5"}, {10, L"1.0"}, {9990, L"999.0"}, {0, L""}, {-5, L""}};
    for (const auto& c : cases) EXPECT_EQ(veltor::TorqueFieldText(c.tenths), c.text) << c.tenths;
}

}  // namespace
