#pragma once
#include <cstdint>
#include <string_view>

namespace virtualwheel {

// The controllers whose buttons a plan presses: the first wheel, and the button box (buttons only).
enum class VirtualController : uint8_t { Wheel, Box };

struct ButtonSpan {
    VirtualController controller = VirtualController::Wheel;
    int32_t button = 0;  // held during the span; kUnplugged: the controller is away during the span
    int64_t fromMs = 0;  // since the plan's start
    int64_t untilMs = INT64_MAX;
};

// What the buttons do, from text such as "3@8000+100;box:2@9000+100;unplug:box@12000+3000", entries
// separated by ';' or new lines: "[wheel:|box:]BUTTON@FROM[+LENGTH]" holds the button (from 0) for LENGTH
// ms from FROM ms, "unplug:wheel|box@FROM[+LENGTH]" takes the controller away; without a length, for good.
// An entry that starts with '#' is a comment. Entries that don't parse are skipped and counted.
class ButtonPlan {
public:
    static constexpr int kMaxSpans = 32;
    static constexpr int32_t kUnplugged = -1;
    static constexpr int32_t kButtons = 128;

    void Parse(std::string_view text);
    bool Held(VirtualController controller, int32_t button, int64_t elapsedMs) const;
    bool Unplugged(VirtualController controller, int64_t elapsedMs) const;
    int SpanCount() const { return count; }
    int RejectedCount() const { return rejected; }

private:
    bool Covers(VirtualController controller, int32_t button, int64_t elapsedMs) const;

    ButtonSpan spans[kMaxSpans];
    int count = 0;
    int rejected = 0;
};

}  // namespace virtualwheel
