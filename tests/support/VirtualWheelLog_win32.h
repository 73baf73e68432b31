#pragma once
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "ChildProcess_win32.h"

namespace veltor::test {

// One line of the virtual wheel's call log: steady-clock microseconds, the call, then its details.
struct LogLine {
    int64_t microseconds = 0;
    std::string text;

    bool Is(const char* call) const { return text.compare(0, std::strlen(call) + 1, std::string(call) + " ") == 0; }
    bool Has(const char* part) const { return text.find(part) != std::string::npos; }
    long Magnitude() const {
        const size_t at = text.find(" magnitude=");
        return at == std::string::npos ? 0 : std::strtol(text.c_str() + at + 11, nullptr, 10);
    }
};

inline std::vector<LogLine> ReadLog(const std::wstring& path) {
    std::vector<LogLine> lines;
    std::ifstream file(path.c_str());
    for (std::string line; std::getline(file, line);) {
        const size_t space = line.find(' ');
        if (space != std::string::npos) lines.push_back({std::stoll(line.substr(0, space)), line.substr(space + 1)});
    }
    return lines;
}

// Reads the log into `lines` until `holds(lines)`; false when the deadline passes first.
template <class Condition>
bool WaitForLog(const std::wstring& path, Condition holds, std::vector<LogLine>& lines, DWORD timeoutMs = 60000) {
    return WaitUntil([&] { return holds(lines = ReadLog(path)); }, timeoutMs, 50);
}

inline size_t CountOf(const std::vector<LogLine>& log, const char* call, const char* part = "") {
    size_t count = 0;
    for (const LogLine& line : log) count += line.Is(call) && line.Has(part) ? 1 : 0;
    return count;
}

inline const LogLine* First(const std::vector<LogLine>& log, const char* call) {
    for (const LogLine& line : log) {
        if (line.Is(call)) return &line;
    }
    return nullptr;
}

}  // namespace veltor::test
