#pragma once
#include <windows.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace veltor::test {

// One line of the virtual wheel's call log: steady-clock microseconds, the call, then its details.
struct LogLine {
    int64_t microseconds = 0;
    std::string text;

    bool Is(const char* call) const { return text.compare(0, std::strlen(call) + 1, std::string(call) + " ") == 0; }
    bool Has(const char* part) const { return text.find(part) != std::string::npos; }
    // The value after " key=" up to the next blank; empty when the line has none.
    std::string Field(const char* key) const {
        const std::string tag = std::string(" ") + key + "=";
        const size_t at = text.find(tag);
        if (at == std::string::npos) return {};
        const size_t from = at + tag.size();
        return text.substr(from, text.find(' ', from) - from);
    }
    long Magnitude() const { return std::strtol(Field("magnitude").c_str(), nullptr, 10); }
};

// The log's lines from line `from` on.
inline std::vector<LogLine> ReadLog(const std::wstring& path, size_t from = 0) {
    std::vector<LogLine> lines;
    std::ifstream file(path.c_str());
    size_t index = 0;
    for (std::string line; std::getline(file, line); ++index) {
        const size_t space = line.find(' ');
        if (index >= from && space != std::string::npos) {
            lines.push_back({std::stoll(line.substr(0, space)), line.substr(space + 1)});
        }
    }
    return lines;
}

// Reads the log into `lines` until `holds(lines)`; false when the deadline passes first.
template <class Condition>
bool WaitForLog(const std::wstring& path, size_t from, Condition holds, std::vector<LogLine>& lines,
                DWORD timeoutMs = 60000) {
    for (DWORD waited = 0;; waited += 50) {
        lines = ReadLog(path, from);
        if (holds(lines)) return true;
        if (waited >= timeoutMs) return false;
        Sleep(50);
    }
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
