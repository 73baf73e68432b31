#include <windows.h>

#include <cstdlib>
#include <string>

#include "WheelConfig.h"

namespace virtualwheel {

namespace {
constexpr int32_t kMaxWheels = 2;

std::string Variable(const wchar_t* name) {
    wchar_t value[1024];
    const DWORD length = GetEnvironmentVariableW(name, value, 1024);
    if (length == 0 || length >= 1024) return {};
    std::string narrow;
    for (DWORD i = 0; i < length; ++i) narrow.push_back(value[i] < 128 ? static_cast<char>(value[i]) : '?');
    return narrow;
}
}  // namespace

WheelConfig ReadWheelConfig() {
    WheelConfig config;
    const std::string wheels = Variable(L"VIRTUALWHEEL_WHEELS");
    if (wheels == "2") config.wheelCount = kMaxWheels;
    const std::string hand = Variable(L"VIRTUALWHEEL_HAND");
    if (const size_t comma = hand.find(','); comma != std::string::npos) {
        config.handAmplitude = std::strtof(hand.c_str(), nullptr);
        config.handFrequency = std::strtof(hand.c_str() + comma + 1, nullptr);
    }
    config.faults.Parse(Variable(L"VIRTUALWHEEL_FAULTS"));
    const DWORD length = GetEnvironmentVariableW(L"VIRTUALWHEEL_FAULT_FILE", config.faultFile, 260);
    if (length >= 260) config.faultFile[0] = L'\0';
    return config;
}

}  // namespace virtualwheel
