#include "app/StatusReport.h"

#include <cwchar>

namespace veltor {

std::wstring_view DirectInputErrorName(uint32_t code) {
    switch (code) {
        case 0x8007001Eu: return L"DIERR_INPUTLOST";
        case 0x8007000Cu: return L"DIERR_NOTACQUIRED";
        case 0x80040205u: return L"DIERR_NOTEXCLUSIVEACQUIRED";
        case 0x80040208u: return L"DIERR_EFFECTPLAYING";
        default: return L"unknown";
    }
}

std::wstring ClippingLine(float clippedPercent) {
    wchar_t line[64];
    std::swprintf(line, 64, L"%.02f%% of samples were clipped", static_cast<double>(clippedPercent));
    return line;
}

std::wstring OutputReportLine(const EngineStatus& status) {
    wchar_t line[128];
    std::swprintf(line, 128, L"FFB output report: %u samples, %u non-zero, max magnitude %d.",
                  status.outputReportSamples, status.outputReportNonZero, status.outputReportPeak);
    return line;
}

std::wstring DirectInputErrorLine(uint32_t code) {
    wchar_t line[96];
    std::swprintf(line, 96, L"DirectInput FFB error: 0x%08X (%ls)", code, DirectInputErrorName(code).data());
    return line;
}

}  // namespace veltor
