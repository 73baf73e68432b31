#include <gtest/gtest.h>

#include <string>

#include "FaultPlan.h"

namespace virtualwheel {
namespace {

constexpr int32_t kInputLost = static_cast<int32_t>(0x8007001Eu);
constexpr int32_t kNotExclusive = static_cast<int32_t>(0x80040205u);

TEST(FaultPlan, SpansApplyFromTheirStartForTheirLength) {
    FaultPlan plan;
    plan.Parse("SetParameters=INPUTLOST@3000+300; Acquire=NOTEXCLUSIVEACQUIRED\nGetDeviceState=0x80004005@100;Vanish@9000");
    EXPECT_EQ(plan.SpanCount(), 4);
    EXPECT_EQ(plan.RejectedCount(), 0);
    EXPECT_EQ(plan.ResultAt(FaultKind::SetParameters, 2999), 0);
    EXPECT_EQ(plan.ResultAt(FaultKind::SetParameters, 3000), kInputLost);
    EXPECT_EQ(plan.ResultAt(FaultKind::SetParameters, 3300), 0);
    EXPECT_EQ(plan.ResultAt(FaultKind::Acquire, 123456), kNotExclusive);
    EXPECT_EQ(plan.ResultAt(FaultKind::GetDeviceState, 99), 0);
    EXPECT_EQ(plan.ResultAt(FaultKind::GetDeviceState, 1000000), static_cast<int32_t>(0x80004005u));
    EXPECT_NE(plan.ResultAt(FaultKind::Vanish, 9000), 0);
    EXPECT_TRUE(plan.Has(FaultKind::Vanish));
}

TEST(FaultPlan, MalformedEntriesAreSkippedAndCounted) {
    FaultPlan plan;
    plan.Parse("Explode=INPUTLOST;SetParameters=SOON;SetParameters=0x1;Acquire@x+1;Acquire@1+;;  ;"
               "SetParameters=99999999999;Start=INPUTLOST@0+5;SetParameters@1+2");
    EXPECT_EQ(plan.SpanCount(), 1);
    EXPECT_EQ(plan.RejectedCount(), 7);
    EXPECT_EQ(plan.ResultAt(FaultKind::SetParameters, 1), kInputLost);  // the default code
    EXPECT_EQ(plan.ResultAt(FaultKind::Acquire, 1), 0);
}

TEST(FaultPlan, KeepsAtMostItsCapacityAndAnEmptyTextClearsIt) {
    std::string text;
    for (int i = 0; i < FaultPlan::kMaxSpans + 5; ++i) text += "Acquire@" + std::to_string(i) + "+1;";
    FaultPlan plan;
    plan.Parse(text);
    EXPECT_EQ(plan.SpanCount(), FaultPlan::kMaxSpans);
    EXPECT_EQ(plan.RejectedCount(), 5);
    plan.Parse("");
    EXPECT_EQ(plan.SpanCount(), 0);
    EXPECT_EQ(plan.ResultAt(FaultKind::Acquire, 0), 0);
    EXPECT_FALSE(plan.Has(FaultKind::Acquire));
}

}  // namespace
}  // namespace virtualwheel
