#pragma once
#include <cstdint>
#include <string_view>

namespace virtualwheel {

// What the virtual wheel can be told to get wrong.
enum class FaultKind : uint8_t { SetParameters, Acquire, GetDeviceState, Vanish };

struct FaultSpan {
    FaultKind kind = FaultKind::SetParameters;
    int32_t result = 0;         // the HRESULT returned while the span lasts
    int64_t fromMs = 0;         // since the device was created
    int64_t untilMs = INT64_MAX;
};

// Spans from text such as "SetParameters=INPUTLOST@3000+300;Acquire=FAIL@0+500;Vanish@9000", separated by
// ';' or new lines. Without "@from" a span lasts for ever, without "+length" from `from` on. Codes: INPUTLOST, NOTEXCLUSIVEACQUIRED,
// NOTACQUIRED, FAIL, or a number (0x... allowed). Entries that don't parse are skipped and counted.
class FaultPlan {
public:
    static constexpr int kMaxSpans = 16;

    void Parse(std::string_view text);
    // The failure of `kind` at `elapsedMs`, or 0 when none applies.
    int32_t ResultAt(FaultKind kind, int64_t elapsedMs) const;
    bool Has(FaultKind kind) const;
    int SpanCount() const { return count; }
    int RejectedCount() const { return rejected; }

private:
    bool ParseEntry(std::string_view entry, FaultSpan& span) const;
    FaultSpan spans[kMaxSpans];
    int count = 0;
    int rejected = 0;
};

}  // namespace virtualwheel
