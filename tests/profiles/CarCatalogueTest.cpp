#include <gtest/gtest.h>

#include "profiles/CarCatalogue.h"

namespace veltor {
namespace {

TEST(CarCatalogue, HoldsFortyFiveRowsWithUniquePaths) {
    const auto rows = CarCatalogue();
    ASSERT_EQ(rows.size(), 45u);
    EXPECT_EQ(rows.front().CarPath, L"astonmartin dbr9");
    EXPECT_EQ(rows.back().CarPath, L"williamsfw31");
    for (size_t i = 0; i < rows.size(); ++i) {
        for (size_t j = i + 1; j < rows.size(); ++j) EXPECT_FALSE(EqualsFoldingAscii(rows[i].CarPath, rows[j].CarPath));
        EXPECT_EQ(rows[i].Coefficients.YawSteerGain, 0.0f);
        EXPECT_EQ(rows[i].Coefficients.SteerMarginBias, 0.0f);
    }
}

TEST(EqualsFoldingAscii, FoldsOnlyTheAsciiLetters) {
    EXPECT_TRUE(EqualsFoldingAscii(L"AbC xyZ", L"aBc XYz"));
    EXPECT_FALSE(EqualsFoldingAscii(L"abc", L"abcd"));
    EXPECT_FALSE(EqualsFoldingAscii(L"\u00C9", L"\u00E9"));  // É and é stay apart
    EXPECT_FALSE(EqualsFoldingAscii(L"[", L"{"));
}

}  // namespace
}  // namespace veltor
