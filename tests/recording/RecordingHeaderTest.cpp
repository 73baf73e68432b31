#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "recording/RecordingHeader.h"

namespace veltor {
namespace {

uint32_t U32At(const uint8_t* bytes, size_t at) {
    uint32_t value;
    std::memcpy(&value, bytes + at, sizeof value);
    return value;
}

TEST(RecordingHeader, FormatFieldsAndStartTimeAtTheirOffsetsAndTheRestZero) {
    const RecordingHeader header = NewRecordingHeader(0x0102030405060708ULL);
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&header);
    EXPECT_EQ(std::memcmp(bytes, "VTRREC1\0", 8), 0);
    EXPECT_EQ(U32At(bytes, 8), 2u);
    EXPECT_EQ(U32At(bytes, 12), 380u);
    EXPECT_EQ(U32At(bytes, 16), 88u);
    EXPECT_EQ(U32At(bytes, 20), 60u);
    EXPECT_EQ(U32At(bytes, 24), 0x05060708u);
    EXPECT_EQ(U32At(bytes, 28), 0x01020304u);
    for (size_t i = 32; i < 380; ++i) ASSERT_EQ(bytes[i], 0) << i;
}

// UTF-8 of one to four bytes a character, at most 63 bytes and a NUL even when that cuts a character; an
// empty text leaves 64 zero bytes.
TEST(RecordingHeader, TextFieldsAreUtf8CutToSixtyThreeBytes) {
    struct Case {
        std::wstring text;
        std::string stored;  // then zeros, except where a character was cut
        bool cut;
    };
    const Case cases[] = {{std::wstring(70, L'x'), std::string(63, 'x'), false},
                          {L"J\u00fcrgen \u5c71 \U0001F600", "J\xC3\xBCrgen \xE5\xB1\xB1 \xF0\x9F\x98\x80", false},
                          {std::wstring(62, L'a') + L"\u00fc", std::string(62, 'a'), true},
                          {L"", "", false}};
    for (const Case& c : cases) {
        char field[kRecordingTextField];
        std::memset(field, 0x55, sizeof field);
        FillRecordingText(c.text, field);
        EXPECT_EQ(std::string(field, c.stored.size()), c.stored);
        EXPECT_EQ(field[kRecordingTextField - 1], '\0');
        for (size_t i = c.stored.size() + (c.cut ? 1 : 0); i < sizeof field; ++i) ASSERT_EQ(field[i], '\0') << i;
    }
}

}  // namespace
}  // namespace veltor
