#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "recording/RecordingHeader.h"
#include "recording/WideToUtf8.h"

namespace veltor {
namespace {

uint32_t U32At(const uint8_t* bytes, size_t at) {
    return bytes[at] | (bytes[at + 1] << 8) | (bytes[at + 2] << 16) | (static_cast<uint32_t>(bytes[at + 3]) << 24);
}

float F32At(const uint8_t* bytes, size_t at) {
    float value;
    std::memcpy(&value, bytes + at, sizeof value);
    return value;
}

bool AllZero(const uint8_t* bytes, size_t from, size_t length) {
    for (size_t i = from; i < from + length; ++i) {
        if (bytes[i] != 0) return false;
    }
    return true;
}

TEST(RecordingHeader, LaysOutEveryFieldAtItsFileOffset) {
    EngineSettings s;
    s.ForceStrength = 61;
    s.Bumps = 22;
    s.BumpImpacts = 33;
    s.UndersteerResistance = 44;
    s.SuspensionDetailPriority = 55;
    s.CarForceBalance = 120;
    s.AbsVibration = 17;
    s.WheelbaseMaxTorqueTenths = 125;
    const CarRow row{40.0f, 0.25f, 70.0f, 0.95f, 0.01f};
    const RecordingHeader header =
        MakeRecordingHeader(L"mercedesamggt4", L"Sample Driver", L"Club", s, row, 0x0102030405060708ULL);
    uint8_t bytes[380];
    std::memcpy(bytes, &header, sizeof bytes);

    EXPECT_EQ(std::memcmp(bytes, "VTRREC1\0", 8), 0);
    EXPECT_EQ(U32At(bytes, 8), 2u);
    EXPECT_EQ(U32At(bytes, 12), 380u);
    EXPECT_EQ(U32At(bytes, 16), 88u);
    EXPECT_EQ(U32At(bytes, 20), 60u);
    EXPECT_EQ(U32At(bytes, 24), 0x05060708u);
    EXPECT_EQ(U32At(bytes, 28), 0x01020304u);
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 32), "mercedesamggt4");
    EXPECT_TRUE(AllZero(bytes, 32 + 14, 64 - 14));
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 96), "Sample Driver");
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 160), "Club");
    const uint32_t settings[] = {61, 22, 33, 44, 55, 120};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(U32At(bytes, 224 + 4 * i), settings[i]) << i;
    EXPECT_EQ(F32At(bytes, 248), 40.0f);
    EXPECT_EQ(F32At(bytes, 252), 70.0f);
    EXPECT_EQ(F32At(bytes, 256), 0.95f);
    EXPECT_EQ(F32At(bytes, 260), 0.01f);
    EXPECT_EQ(F32At(bytes, 264), 12.5f);
    EXPECT_EQ(U32At(bytes, 268), 17u);
    EXPECT_EQ(F32At(bytes, 272), 0.25f);
    EXPECT_TRUE(AllZero(bytes, 276, 104));
}

// No wheelbase torque is 0 Nm; a long text keeps 63 bytes and a NUL; empty texts leave their fields zero.
TEST(RecordingHeader, EdgesOfTorqueAndTextFields) {
    const RecordingHeader header = MakeRecordingHeader(std::wstring(70, L'x'), L"", L"", EngineSettings{}, CarRow{}, 0);
    EXPECT_EQ(header.wheelbaseMaxTorque, 0.0f);
    EXPECT_EQ(std::string(header.carPath), std::string(63, 'x'));
    EXPECT_EQ(header.carPath[63], '\0');
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&header);
    EXPECT_TRUE(AllZero(bytes, 96, 64));
    EXPECT_TRUE(AllZero(bytes, 160, 64));
}

TEST(RecordingHeader, TextIsUtf8AndACutCharacterStillEndsInNul) {
    const RecordingHeader header = MakeRecordingHeader(L"car", L"J\u00fcrgen \u5c71", L"", EngineSettings{}, CarRow{}, 0);
    EXPECT_STREQ(header.driverName, "J\xC3\xBCrgen \xE5\xB1\xB1");
    const RecordingHeader cut =
        MakeRecordingHeader(std::wstring(62, L'a') + L"\u00fc", L"", L"", EngineSettings{}, CarRow{}, 0);
    EXPECT_EQ(std::string(cut.carPath, 62), std::string(62, 'a'));
    EXPECT_EQ(cut.carPath[63], '\0');
}

TEST(WideToUtf8, EncodesOneToFourByteCharacters) {
    EXPECT_EQ(ToUtf8(L"a\u00e9\u20ac"), "a\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(ToUtf8(L"\U0001F600"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf8(L""), "");
}

}  // namespace
}  // namespace veltor
