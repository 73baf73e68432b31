#include "app/SessionLog.h"

namespace veltor {
namespace {

constexpr std::wstring_view kNoticeStart = L"(";
constexpr std::wstring_view kNoticeEnd = L" earlier lines not kept)\r\n";
constexpr std::wstring_view kLineEnd = L"\r\n";

// The notice's length, 0 when the panel doesn't start with one.
size_t NoticeChars(std::wstring_view panel, uint64_t* dropped) {
    if (!panel.starts_with(kNoticeStart)) return 0;
    uint64_t count = 0;
    size_t at = kNoticeStart.size();
    // Up to 19 digits: no count that fits the type is longer.
    for (; at < panel.size() && at <= 19 && panel[at] >= L'0' && panel[at] <= L'9'; ++at) {
        count = count * 10 + static_cast<uint64_t>(panel[at] - L'0');
    }
    if (at == kNoticeStart.size() || panel.substr(at, kNoticeEnd.size()) != kNoticeEnd) return 0;
    if (dropped != nullptr) *dropped = count;
    return at + kNoticeEnd.size();
}

size_t CountLines(std::wstring_view text) {
    size_t lines = 0;
    for (size_t at = text.find(kLineEnd); at != std::wstring_view::npos; at = text.find(kLineEnd, at + kLineEnd.size())) {
        ++lines;
    }
    return lines;
}

}  // namespace

std::wstring DroppedLinesNotice(uint64_t dropped) {
    std::wstring notice(kNoticeStart);
    notice += std::to_wstring(dropped);
    notice += kNoticeEnd;
    return notice;
}

uint64_t DroppedLines(std::wstring_view panel) {
    uint64_t dropped = 0;
    NoticeChars(panel, &dropped);
    return dropped;
}

uint64_t LogLineCount(std::wstring_view panel) {
    uint64_t dropped = 0;
    const size_t notice = NoticeChars(panel, &dropped);
    return dropped + CountLines(panel.substr(notice));
}

size_t LineOffset(std::wstring_view panel, uint64_t line) {
    uint64_t dropped = 0;
    size_t at = NoticeChars(panel, &dropped);
    for (uint64_t n = dropped; n < line; ++n) {
        const size_t end = panel.find(kLineEnd, at);
        if (end == std::wstring_view::npos) return panel.size();
        at = end + kLineEnd.size();
    }
    return at;
}

std::optional<LogTrim> PlanLogTrim(std::wstring_view panel) {
    uint64_t dropped = 0;
    const size_t notice = NoticeChars(panel, &dropped);
    const size_t lines = CountLines(panel.substr(notice));
    if (lines <= kKeptLogLines + kLogTrimBatch) return std::nullopt;
    const uint64_t cut = lines - kKeptLogLines;
    return LogTrim{.cutChars = LineOffset(panel, dropped + cut), .notice = DroppedLinesNotice(dropped + cut)};
}

}  // namespace veltor
