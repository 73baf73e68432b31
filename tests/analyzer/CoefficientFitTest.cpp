// The fit of the car's coefficients: over drives of our simulator run through the engine's pipeline, and
// over records made up to leave the two terms inseparable or the fit loose.
#include <gtest/gtest.h>

#include <cmath>

#include "AnalyzerTestFiles.h"
#include "GripDrive.h"
#include "IbtFileWriter.h"
#include "SessionInfoText.h"
#include "analyzer/AnalyzerInput.h"
#include "analyzer/RecordingAnalysis.h"

namespace veltor::analyzer {
namespace {

// The drive as a telemetry file of the simulator's car "bmwm4gt3" (37.5 / 82 in the catalogue), recorded
// the way the analyzer records any telemetry file.
Recording RecordDrive(const sim::CarBehaviour& behaviour, double seconds, size_t& frameCount) {
    const std::vector<TelemetryFrame> frames = sim::MakeGripDrive(behaviour, seconds);
    frameCount = frames.size();
    const std::vector<uint8_t> bytes = sim::MakeIbtFile(frames, sim::BuildSessionInfo(sim::IdentityCase::Plain, 0));
    test::TempFolder folder;
    const std::filesystem::path file = folder.path / "drive.ibt";
    test::WriteFile(file, bytes);
    Recording recording;
    std::string error;
    EXPECT_TRUE(RecordTelemetryFile(file, [](std::wstring_view) { return OfflineSettings{}; }, recording, error))
        << error;
    return recording;
}

// Tolerance: 0.5 % of each coefficient; the drive's steering carries 0.01 rad of noise.
// Both cars steer less than the catalogue row expects, so none of their grip is taken for understeer.
TEST(FitCarCoefficients, RecoversTheSteeringOfAChosenCarThroughTheEnginesPipeline) {
    const sim::CarBehaviour cars[] = {{32.0, 70.0, true}, {36.0, 95.0, true}};
    for (const sim::CarBehaviour& car : cars) {
        size_t frames = 0;
        const Recording recording = RecordDrive(car, 300.0, frames);
        ASSERT_EQ(recording.samples.size(), frames) << "every tick recorded, though the run outpaces the writer";
        const Analysis analysis = AnalyseRecording(recording);
        const CoefficientFit& fit = analysis.fit;
        ASSERT_TRUE(fit.yawFitted && fit.lateralFitted) << fit.yawRefusal << " / " << fit.lateralRefusal;
        EXPECT_NEAR(fit.yawRateMultiplier, car.yawRateMultiplier, 0.005 * car.yawRateMultiplier);
        EXPECT_NEAR(fit.lateralAccelDivisor, car.lateralAccelDivisor, 0.005 * car.lateralAccelDivisor);
        EXPECT_GT(fit.rSquared, 0.99);
        EXPECT_EQ(fit.samples, frames * 49 / 60) << "each minute's 11 s of understeer, ABS, slide and paddock left out";
    }
}

TEST(FitCarCoefficients, RefusesADriveWithoutGripStretchesAndSaysWhy) {
    size_t frames = 0;
    const Recording recording = RecordDrive({40.0, 90.0, false}, 60.0, frames);
    const CoefficientFit fit = AnalyseRecording(recording).fit;
    EXPECT_EQ(fit.samples, 0u);
    EXPECT_FALSE(fit.yawFitted || fit.lateralFitted);
    for (const std::string& refusal : {fit.yawRefusal, fit.lateralRefusal}) {
        EXPECT_EQ(refusal.find("only 0 records with grip"), 0u) << refusal;
    }
}

TEST(FitCarCoefficients, HoldsTheDivisorWhenCornersShareOneSpeedAndRefusesALooseFit) {
    struct Case {
        const char* what;
        bool random;  // steering unrelated to the car's motion
        bool yawFitted;
        const char* yawReason;
        const char* lateralReason;
    };
    const Case cases[] = {
        {"one speed", false, true, "", "too alike in speed"},
        {"random steering", true, false, "too loose", "too alike in speed"},
    };
    for (const Case& c : cases) {
        RecordingHeader header = test::SampleHeader();
        header.LateralAccelDivisor = 80.0f;
        std::vector<RecordingSample> samples = test::SampleRecords(1200);
        uint32_t state = 12345;
        for (size_t i = 0; i < samples.size(); ++i) {
            RecordingSample& s = samples[i];
            const float curvature = 0.01f * std::sin(static_cast<float>(i) / 50.0f);
            s.yawRate = s.speed * curvature;
            s.latAccel = s.speed * s.speed * curvature;
            s.steerExcess = -0.1f;
            state = state * 1664525u + 1013904223u;
            s.steeringWheelAngle = c.random ? static_cast<float>(state >> 8) / 16777216.0f - 0.5f
                                            : 45.0f * curvature + s.latAccel / 80.0f;
        }
        const CoefficientFit fit = FitCarCoefficients(samples, header);
        EXPECT_EQ(fit.yawFitted, c.yawFitted) << c.what << ": " << fit.yawRefusal;
        EXPECT_FALSE(fit.lateralFitted) << c.what;
        EXPECT_NE(fit.yawRefusal.find(c.yawReason), std::string::npos) << c.what << ": " << fit.yawRefusal;
        EXPECT_NE(fit.lateralRefusal.find(c.lateralReason), std::string::npos) << c.what << ": " << fit.lateralRefusal;
        if (c.yawFitted) {
            EXPECT_NEAR(fit.yawRateMultiplier, 45.0, 0.05) << c.what;
        }
    }
}

}  // namespace
}  // namespace veltor::analyzer
