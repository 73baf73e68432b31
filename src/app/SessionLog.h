#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltor {

// The session log panel keeps its newest lines only: a long session on a wheel that keeps failing would
// otherwise grow the process by every line it ever said. Once lines have gone, the panel's first line says
// how many, so the log's line numbers stay the same for whoever reads it.
constexpr size_t kKeptLogLines = 1000;
// Trimming rewrites the start of the control's text: it waits until this many lines are over.
constexpr size_t kLogTrimBatch = 100;

// "(N earlier lines not kept)\r\n"
std::wstring DroppedLinesNotice(uint64_t dropped);

// How many lines went before the panel's first, from its notice; 0 when it has none.
uint64_t DroppedLines(std::wstring_view panel);

// Lines the log has said in all: the dropped ones and those the panel holds (each ends with "\r\n").
uint64_t LogLineCount(std::wstring_view panel);

// Where the log's line `line` (counted from the first line ever said) starts in the panel; the start of the
// kept lines when it has been dropped, the end when it has not been said yet.
size_t LineOffset(std::wstring_view panel, uint64_t line);

struct LogTrim {
    size_t cutChars = 0;        // from the panel's start, its old notice included
    std::wstring notice;        // what takes their place
};

// What to cut once the panel holds more than kKeptLogLines + kLogTrimBatch lines, so that it keeps the
// newest kKeptLogLines; nothing before.
std::optional<LogTrim> PlanLogTrim(std::wstring_view panel);

}  // namespace veltor
