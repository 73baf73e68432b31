#include "StatusLine.h"

#include <cstdio>

namespace veltor::harness {
namespace {

void AppendUtf8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Wide text is UTF-16 on Windows and UTF-32 on hosts; surrogate pairs are joined, a lone one kept as is.
std::string Utf8Of(const std::wstring& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size()) {
            const auto low = static_cast<char32_t>(text[i + 1]);
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        AppendUtf8(out, code);
    }
    return out;
}

}  // namespace

std::string FormatStatusLine(const EngineStatus& s) {
    char counters[256];
    std::snprintf(counters, sizeof counters,
                  ", user id %d, name known %d, output reports %u (peak %d), clip reports %u (%.2f%%), "
                  "output failures %u (0x%08X), stalls %u",
                  s.driverUserId, s.driverNameKnown ? 1 : 0, s.outputReportCount, s.outputReportPeak,
                  s.clipReportCount, static_cast<double>(s.clippedPercent), s.outputFailureCount,
                  s.outputFailureCode, s.telemetryStallCount);
    return std::string("status: ") + (s.connected ? "connected" : "disconnected") + ", " +
           (s.onTrack ? "on track" : "off track") + ", car " + Utf8Of(s.carPath) + ", driver \"" +
           Utf8Of(s.driverName) + "\"" + counters;
}

}  // namespace veltor::harness
