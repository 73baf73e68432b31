#include "FaultPlan.h"

#include <charconv>

namespace virtualwheel {

namespace {

constexpr int32_t kInputLost = static_cast<int32_t>(0x8007001Eu);            // DIERR_INPUTLOST
constexpr int32_t kNotExclusiveAcquired = static_cast<int32_t>(0x80040205u); // DIERR_NOTEXCLUSIVEACQUIRED
constexpr int32_t kNotAcquired = static_cast<int32_t>(0x8007000Cu);          // DIERR_NOTACQUIRED
constexpr int32_t kFail = static_cast<int32_t>(0x80004005u);                 // E_FAIL

std::string_view Trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\r')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) text.remove_suffix(1);
    return text;
}

bool ParseNumber(std::string_view text, int64_t& value) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    if (text.empty()) return false;
    uint64_t parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed, base);
    if (error != std::errc() || end != text.data() + text.size() || parsed > 0xFFFFFFFFFFFFull) return false;
    value = static_cast<int64_t>(parsed);
    return true;
}

bool ParseKind(std::string_view name, FaultKind& kind) {
    if (name == "SetParameters") kind = FaultKind::SetParameters;
    else if (name == "Acquire") kind = FaultKind::Acquire;
    else if (name == "GetDeviceState") kind = FaultKind::GetDeviceState;
    else if (name == "Vanish") kind = FaultKind::Vanish;
    else return false;
    return true;
}

bool ParseCode(std::string_view name, int32_t& code) {
    if (name == "INPUTLOST") code = kInputLost;
    else if (name == "NOTEXCLUSIVEACQUIRED") code = kNotExclusiveAcquired;
    else if (name == "NOTACQUIRED") code = kNotAcquired;
    else if (name == "FAIL") code = kFail;
    else {
        int64_t number = 0;
        if (!ParseNumber(name, number) || number > 0xFFFFFFFFll) return false;
        code = static_cast<int32_t>(static_cast<uint32_t>(number));
    }
    return code < 0;  // a fault that succeeds is no fault
}

}  // namespace

void FaultPlan::Parse(std::string_view text) {
    count = 0;
    rejected = 0;
    while (!text.empty()) {
        const size_t end = text.find_first_of(";\n");
        const std::string_view entry = Trim(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (entry.empty()) continue;
        FaultSpan span;
        if (count < kMaxSpans && ParseEntry(entry, span)) {
            spans[count++] = span;
        } else {
            ++rejected;
        }
    }
}

// "Kind[=CODE][@from[+length]]"
bool FaultPlan::ParseEntry(std::string_view entry, FaultSpan& span) const {
    std::string_view timing;
    if (const size_t at = entry.find('@'); at != std::string_view::npos) {
        timing = entry.substr(at + 1);
        entry = entry.substr(0, at);
    }
    std::string_view code;
    if (const size_t equals = entry.find('='); equals != std::string_view::npos) {
        code = Trim(entry.substr(equals + 1));
        entry = entry.substr(0, equals);
    }
    if (!ParseKind(Trim(entry), span.kind)) return false;
    span.result = kInputLost;
    if (!code.empty() && !ParseCode(code, span.result)) return false;
    if (timing.empty()) return true;
    const size_t plus = timing.find('+');
    if (!ParseNumber(Trim(timing.substr(0, plus)), span.fromMs)) return false;
    if (plus == std::string_view::npos) return true;  // from then on
    int64_t length = 0;
    if (!ParseNumber(Trim(timing.substr(plus + 1)), length)) return false;
    span.untilMs = span.fromMs + length;
    return true;
}

bool FaultPlan::Has(FaultKind kind) const {
    for (int i = 0; i < count; ++i) {
        if (spans[i].kind == kind) return true;
    }
    return false;
}

int32_t FaultPlan::ResultAt(FaultKind kind, int64_t elapsedMs) const {
    for (int i = 0; i < count; ++i) {
        const FaultSpan& s = spans[i];
        if (s.kind == kind && elapsedMs >= s.fromMs && elapsedMs < s.untilMs) return s.result;
    }
    return 0;
}

}  // namespace virtualwheel
