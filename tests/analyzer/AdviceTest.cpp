// What the analyzer advises for given findings, and what the program reads back from its advice file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "AnalyzerTestFiles.h"
#include "analyzer/AdviceFile.h"
#include "profiles/AnalyzerAdvice.h"

namespace veltor::analyzer {
namespace {

// Findings of a quiet 20-minute drive: nothing in them calls for a change.
Analysis QuietDrive() {
    Analysis a;
    a.records = 72000;
    a.clipping.peakTorque = 36.0f;
    a.clipping.fullScaleTorque = 40.0f;
    a.texture.movingRecords = 60000;
    a.texture.texturePeak = 2.0f;
    a.texture.basePeak = 10.0f;
    a.texture.texturePercentOfBase = 20.0;
    a.fit.yawRefusal = a.fit.lateralRefusal = "no fit here";
    return a;
}

TEST(BuildAdvice, ProposesOnlyWhatTheFindingsJustify) {
    struct Case {
        const char* what;
        void (*change)(Analysis&, RecordingHeader&);
        AdviceKey key;
        bool advised;
        double proposed;
        const char* reason;
    };
    const Case cases[] = {
        {"peak at 90 % stays", [](Analysis&, RecordingHeader&) {}, AdviceKey::ForceStrength, false, 50,
         "near enough to 90 %"},
        {"peak above full scale lowers the strength", [](Analysis& a, RecordingHeader&) { a.clipping.peakTorque = 44.4f; },
         AdviceKey::ForceStrength, true, 41, "41 brings it to 91 %"},
        {"a weak peak reaches the top only", [](Analysis& a, RecordingHeader&) { a.clipping.peakTorque = 10.0f; },
         AdviceKey::ForceStrength, true, 100, "100 brings it to 50 %"},
        {"no force measures nothing", [](Analysis& a, RecordingHeader&) { a.clipping.peakTorque = 0.1f; },
         AdviceKey::ForceStrength, false, 50, "no force to measure"},
        {"busy priority steps down", [](Analysis& a, RecordingHeader&) { a.texture.priorityActedPercent = 30.0; },
         AdviceKey::SuspensionDetailPriority, true, 25, "acted on 30.0 %"},
        {"clipped texture steps priority up",
         [](Analysis& a, RecordingHeader&) {
             a.clipping.clippedRecords = 1440;
             a.clipping.clippedPercent = 2.0;
             a.texture.clippedWithTexture = 1000;
         },
         AdviceKey::SuspensionDetailPriority, true, 75, "more priority keeps room"},
        {"dominant texture scales both sliders", [](Analysis& a, RecordingHeader&) { a.texture.texturePercentOfBase = 80.0; },
         AdviceKey::SuspensionImpactTexture, true, 11, "drowns the car's feel"},
        {"texture switched off is left alone",
         [](Analysis& a, RecordingHeader& h) {
             a.texture.texturePercentOfBase = 80.0;
             h.Bumps = h.BumpImpacts = 0;
         },
         AdviceKey::SuspensionTexture, false, 0, "switched off"},
        {"a good fit proposes the multiplier",
         [](Analysis& a, RecordingHeader&) {
             a.fit = {900, 0.95, 33.04, 0.0, true, false, "", "held"};
         },
         AdviceKey::YawRateMultiplier, true, 33.0, "900 records with grip gives 33.0 (R² 0.95)"},
        {"a refused fit says why", [](Analysis&, RecordingHeader&) {}, AdviceKey::LateralAccelDivisor, false, 90.0,
         "not fitted: no fit here"},
        {"no car, no coefficients",
         [](Analysis& a, RecordingHeader& h) {
             a.fit = {900, 0.95, 33.0, 0.0, true, false, "", "held"};
             std::memcpy(h.carPath, "Generic", 8);
         },
         AdviceKey::YawRateMultiplier, false, 40.0, "names no car"},
        {"too short for any advice",
         [](Analysis& a, RecordingHeader&) {
             a.records = 300;
             a.clipping.peakTorque = 80.0f;
         },
         AdviceKey::ForceStrength, false, 50, "only 300 records"},
    };
    for (const Case& c : cases) {
        Recording recording;
        recording.header = test::SampleHeader();
        Analysis analysis = QuietDrive();
        c.change(analysis, recording.header);
        const Advice advice = BuildAdvice(recording, analysis);
        const AdviceRow* row = nullptr;
        for (const AdviceRow& r : advice.rows) row = r.key == c.key ? &r : row;
        ASSERT_NE(row, nullptr) << c.what;
        EXPECT_EQ(row->advised, c.advised) << c.what << ": " << row->reason;
        EXPECT_DOUBLE_EQ(row->proposed, c.proposed) << c.what;
        EXPECT_NE(row->reason.find(c.reason), std::string::npos) << c.what << ": " << row->reason;
        const size_t advised = std::count_if(advice.rows.begin(), advice.rows.end(), [](auto& r) { return r.advised; });
        EXPECT_EQ(advised, c.advised ? (c.key == AdviceKey::SuspensionImpactTexture ? 2u : 1u) : 0u) << c.what;
    }
}

Advice TwoGroupAdvice(const char* profile) {
    Advice advice;
    advice.profile = profile;
    advice.car = "bmwm4gt3";
    advice.rows = {
        {AdviceKey::ForceStrength, "Force strength", 50, 62, true, true, ""},
        {AdviceKey::SuspensionDetailPriority, "Suspension detail priority", 50, 50, false, false, ""},
        {AdviceKey::YawRateMultiplier, "Steering build-up", 37.5, 33.0, true, false, ""},  // unticked by the user
        {AdviceKey::LateralAccelDivisor, "Cornering load balance", 82, 70, true, true, ""},
    };
    return advice;
}

// The program's own reader takes back each Apply box, and an Apply flag of 0 for every value not advised:
// absent, the reader would apply its 0. Each value's round trip is the settings tables' test.
TEST(WriteAdviceFile, TheProgramsReaderTakesBackWhatWasAdvisedOrNoFileIsWritten) {
    test::TempFolder folder;
    std::string error;
    const std::filesystem::path file = folder.path / "advice.ini";
    ASSERT_TRUE(WriteAdviceFile(file, TwoGroupAdvice("J\xC3\xB6rg"), error)) << error;
    AnalyzerAdvice read;
    ASSERT_TRUE(LoadAdviceFile(file.wstring(), read));
    EXPECT_EQ(read.Profile, L"J\u00F6rg");
    EXPECT_EQ(read.Car, L"bmwm4gt3");
    EXPECT_TRUE(read.HasProfileSettings && read.HasCoefficientAdvice);
    std::vector<std::wstring_view> applied;
    for (size_t i = 0; i < kSettingCount; ++i) {
        if (read.ApplySetting[i]) applied.push_back(kSettingRows[i].key);
    }
    for (size_t i = 0; i < kCoefficientCount; ++i) {
        if (read.ApplyCoefficient[i]) applied.push_back(kCoefficientRows[i].key);
    }
    EXPECT_THAT(applied, testing::ElementsAre(L"ForceStrength", L"LateralAccelDivisor"));

    Advice profileOnly = TwoGroupAdvice("Driver 1");
    profileOnly.rows.resize(2);
    ASSERT_TRUE(WriteAdviceFile(file, profileOnly, error)) << error;
    ASSERT_TRUE(LoadAdviceFile(file.wstring(), read));
    EXPECT_FALSE(read.HasCoefficientAdvice);

    EXPECT_FALSE(WriteAdviceFile(folder.path / "missing" / "advice.ini", profileOnly, error));
    EXPECT_EQ(error, "cannot write the advice file");
    EXPECT_FALSE(std::filesystem::exists(folder.path / "missing"));
}

}  // namespace
}  // namespace veltor::analyzer
