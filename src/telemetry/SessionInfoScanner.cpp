#include "telemetry/SessionInfoScanner.h"

#include <cstring>
#include <limits>

#include "platform/TextConversion.h"

namespace veltor {
namespace {

// The five characters that TrimField removes from both ends.
constexpr bool IsTrimmed(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '"'; }

// Optional sign, then digits up to the first other character; 0 without digits. Values beyond 32 bits
// saturate at the nearest end of the range, so a hostile text cannot wrap a large id into a small one.
int32_t ParseDecimal(std::string_view text) {
    size_t at = 0;
    bool negative = false;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    const int64_t limit = negative ? -static_cast<int64_t>(std::numeric_limits<int32_t>::min())
                                   : std::numeric_limits<int32_t>::max();
    int64_t magnitude = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        magnitude = magnitude * 10 + (text[at] - '0');
        if (magnitude > limit) magnitude = limit;
    }
    return static_cast<int32_t>(negative ? -magnitude : magnitude);
}

// The trimmed rest of an already trimmed line after `key`, or false when the line does not begin with it.
bool MatchTrimmedKey(std::string_view trimmed, std::string_view key, std::string_view& rest) {
    if (trimmed.size() < key.size() || trimmed.compare(0, key.size(), key) != 0) return false;
    rest = TrimField(trimmed.substr(key.size()));
    return true;
}

// ParseIntField and ParseTextField for a line the scan has trimmed once already.
int32_t TrimmedIntField(std::string_view trimmed, std::string_view key) {
    std::string_view rest;
    return MatchTrimmedKey(trimmed, key, rest) ? ParseDecimal(rest) : -1;
}

bool TrimmedTextField(std::string_view trimmed, std::string_view key, std::string& out) {
    std::string_view rest;
    if (!MatchTrimmedKey(trimmed, key, rest)) return false;
    out.assign(rest);
    return true;
}

// The values one scan keeps; narrow text, local to one call.
struct ScanState {
    std::string driverUserName;
    int32_t sessionUserId = 0;
    int32_t driverCarIdx = -1;
    std::string carPath;
    std::string userName;
    int32_t blockUserId = 0;
    bool inDrivers = false;
    bool inOwnBlock = false;
    bool seenOwnBlock = false;
};

enum class LineResult { Next, Stop };

// Value of a driver block's opening line, or -1 when the line opens none.
int32_t BlockCarIndex(std::string_view line) {
    const int32_t value = TrimmedIntField(line, "- CarIdx:");
    return value >= 0 ? value : TrimmedIntField(line, "CarIdx:");
}

// The session's own keys, which all begin with 'D'.
void ScanSessionKeys(std::string_view line, ScanState& s) {
    std::string_view rest;
    if (MatchTrimmedKey(line, "DriverUserName:", rest)) {
        s.driverUserName.assign(rest);
    } else if (const int32_t id = TrimmedIntField(line, "DriverUserID:"); id > 0) {
        s.sessionUserId = id;
    } else if (const int32_t index = TrimmedIntField(line, "DriverCarIdx:"); index >= 0) {
        s.driverCarIdx = index;
    } else if (line == "Drivers:") {
        s.inDrivers = true;
    }
}

// A driver block's keys, which all begin with '-', 'C' or 'U'.
LineResult ScanBlockKeys(std::string_view line, ScanState& s) {
    if (!s.inDrivers || s.driverCarIdx < 0) return LineResult::Next;
    if (const int32_t carIndex = BlockCarIndex(line); carIndex >= 0) {
        s.inOwnBlock = carIndex == s.driverCarIdx;
        if (s.inOwnBlock) {
            s.seenOwnBlock = true;
            return LineResult::Next;
        }
        return s.seenOwnBlock ? LineResult::Stop : LineResult::Next;  // the user's block has ended
    }
    if (!s.inOwnBlock) return LineResult::Next;
    if (TrimmedTextField(line, "CarPath:", s.carPath)) return LineResult::Next;
    if (TrimmedTextField(line, "UserName:", s.userName)) return LineResult::Next;
    if (const int32_t id = TrimmedIntField(line, "UserID:"); id >= 0) s.blockUserId = id;
    return LineResult::Next;
}

// One trimmed line. The tests run in a fixed order and the first that fires ends the work on the line;
// since every key begins with one of four characters, a line's first character picks the tests that
// could fire at all, which keeps a long text's scan short.
LineResult ScanLine(std::string_view line, ScanState& s) {
    if (line.empty()) return LineResult::Next;
    switch (line[0]) {
        case 'D':
            ScanSessionKeys(line, s);
            return LineResult::Next;
        case '-':
        case 'C':
        case 'U':
            return ScanBlockKeys(line, s);
        default:
            return LineResult::Next;
    }
}

void ScanLines(std::string_view text, ScanState& state) {
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        if (ScanLine(TrimField(line), state) == LineResult::Stop) return;
        if (end == std::string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

}  // namespace

std::string_view TrimField(std::string_view text) {
    size_t first = 0;
    size_t end = text.size();
    while (first < end && IsTrimmed(text[first])) ++first;
    while (end > first && IsTrimmed(text[end - 1])) --end;
    return text.substr(first, end - first);
}

int32_t ParseIntField(std::string_view line, std::string_view key) { return TrimmedIntField(TrimField(line), key); }

bool ParseTextField(std::string_view line, std::string_view key, std::string& out) {
    return TrimmedTextField(TrimField(line), key, out);
}

// UTF-8 first; the ANSI code page only when UTF-8 yields nothing. One fallback text for every failure.
std::wstring ToWideText(const std::string& text) {
    if (text.empty()) return L"generic";
    text::CodePage page = text::CodePage::Utf8;
    int units = text::WideLength(page, text);
    if (units < 2) {
        page = text::CodePage::Ansi;
        units = text::WideLength(page, text);
        if (units < 2) return L"generic";
    }
    std::wstring wide(static_cast<size_t>(units), L'\0');
    if (text::ConvertToWide(text::CodePage::Utf8, text, wide.data(), units) < 1 &&
        text::ConvertToWide(text::CodePage::Ansi, text, wide.data(), units) < 1) {
        return L"generic";
    }
    wide.resize(static_cast<size_t>(units - 1));
    return wide;
}

bool ScanSessionInfo(const char* text, size_t length, SessionIdentity& identity) {
    ScanState s;
    if (text != nullptr) ScanLines(std::string_view(text, length), s);
    if (s.carPath.empty()) return false;
    identity.carPath = ToWideText(s.carPath);
    if (!s.driverUserName.empty()) {
        identity.driverName = ToWideText(s.driverUserName);
    } else if (!s.userName.empty()) {
        identity.driverName = ToWideText(s.userName);
    } else {
        identity.driverName = L"unknown";
    }
    identity.driverNameKnown = !(s.driverUserName.empty() && s.sessionUserId > 0 && s.blockUserId > 0 &&
                                 s.sessionUserId != s.blockUserId);
    identity.driverUserId = s.sessionUserId > 0 ? s.sessionUserId : s.blockUserId;
    return true;
}

}  // namespace veltor
