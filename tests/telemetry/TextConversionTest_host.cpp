#include <gtest/gtest.h>

#include <string>

#include "telemetry/SessionInfoScanner.h"
#include "telemetry/TextConversion.h"

namespace veltor {
namespace {

TEST(TextConversionHost, MalformedUtf8FallsBackToWindows1252) {
    // Latin-1 bytes as an older session text would carry them, and 0x80 (the euro sign in 1252).
    EXPECT_EQ(ToWideText("J\xFCrgen \x80"), L"J\u00fcrgen \u20ac");
    // Overlong, surrogate and truncated sequences are not UTF-8 either.
    EXPECT_EQ(ToWideText("\xC0\xAF"), L"\u00c0\u00af");
    EXPECT_EQ(ToWideText("\xED\xA0\x80"), L"\u00ed\u00a0\u20ac");
    EXPECT_EQ(ToWideText("ab\xE2\x82"), L"ab\u00e2\u201a");
}

TEST(TextConversionHost, LengthCountsTheTerminatorAndConversionRespectsCapacity) {
    EXPECT_EQ(text::WideLength(text::CodePage::Utf8, "\xE2\x82\xAC"), 2);
    EXPECT_EQ(text::WideLength(text::CodePage::Utf8, "\xFF"), 0);
    EXPECT_EQ(text::WideLength(text::CodePage::Ansi, "\xFF"), 2);
    wchar_t out[3] = {L'x', L'x', L'x'};
    EXPECT_EQ(text::ConvertToWide(text::CodePage::Utf8, "abc", out, 3), 0);
    EXPECT_EQ(text::ConvertToWide(text::CodePage::Utf8, "ab", out, 3), 3);
    EXPECT_EQ(std::wstring(out), L"ab");
}

}  // namespace
}  // namespace veltor
