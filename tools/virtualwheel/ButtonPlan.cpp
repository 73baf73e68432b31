#include "ButtonPlan.h"

#include <charconv>

namespace virtualwheel {

namespace {

constexpr int64_t kLongestMs = 1'000'000'000'000;  // so that FROM + LENGTH cannot overflow

// A whole number of at most kLongestMs, without a sign.
bool Whole(std::string_view text, int64_t& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return !text.empty() && error == std::errc() && stop == end && value >= 0 && value <= kLongestMs;
}

bool ParseController(std::string_view name, VirtualController& controller) {
    if (name == "wheel") {
        controller = VirtualController::Wheel;
    } else if (name == "box") {
        controller = VirtualController::Box;
    } else {
        return false;
    }
    return true;
}

// "unplug:CONTROLLER", or "[CONTROLLER:]BUTTON" on the wheel when no controller is named.
bool ParseWhat(std::string_view what, ButtonSpan& span) {
    constexpr std::string_view kUnplug = "unplug:";
    if (what.substr(0, kUnplug.size()) == kUnplug) {
        span.button = ButtonPlan::kUnplugged;
        return ParseController(what.substr(kUnplug.size()), span.controller);
    }
    if (const size_t colon = what.find(':'); colon != std::string_view::npos) {
        if (!ParseController(what.substr(0, colon), span.controller)) return false;
        what.remove_prefix(colon + 1);
    }
    int64_t button = 0;
    if (!Whole(what, button) || button >= ButtonPlan::kButtons) return false;
    span.button = static_cast<int32_t>(button);
    return true;
}

// "WHAT@FROM[+LENGTH]"
bool ParseSpan(std::string_view entry, ButtonSpan& span) {
    const size_t at = entry.find('@');
    if (at == std::string_view::npos || !ParseWhat(entry.substr(0, at), span)) return false;
    const std::string_view timing = entry.substr(at + 1);
    const size_t plus = timing.find('+');
    if (!Whole(timing.substr(0, plus), span.fromMs)) return false;
    if (plus == std::string_view::npos) return true;
    int64_t length = 0;
    if (!Whole(timing.substr(plus + 1), length)) return false;
    span.untilMs = span.fromMs + length;
    return true;
}

}  // namespace

void ButtonPlan::Parse(std::string_view text) {
    count = 0;
    rejected = 0;
    while (!text.empty()) {
        const size_t end = text.find_first_of(";\n");
        std::string_view entry = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        while (!entry.empty() && (entry.back() == '\r' || entry.back() == ' ')) entry.remove_suffix(1);
        while (!entry.empty() && entry.front() == ' ') entry.remove_prefix(1);
        if (entry.empty() || entry.front() == '#') continue;  // a comment tells two texts of one plan apart
        ButtonSpan span;
        if (count < kMaxSpans && ParseSpan(entry, span)) {
            spans[count++] = span;
        } else {
            ++rejected;
        }
    }
}

bool ButtonPlan::Held(VirtualController controller, int32_t button, int64_t elapsedMs) const {
    return button >= 0 && Covers(controller, button, elapsedMs);
}

bool ButtonPlan::Unplugged(VirtualController controller, int64_t elapsedMs) const {
    return Covers(controller, kUnplugged, elapsedMs);
}

bool ButtonPlan::Covers(VirtualController controller, int32_t button, int64_t elapsedMs) const {
    for (int i = 0; i < count; ++i) {
        const ButtonSpan& s = spans[i];
        if (s.controller == controller && s.button == button && elapsedMs >= s.fromMs && elapsedMs < s.untilMs) return true;
    }
    return false;
}

}  // namespace virtualwheel
