#include "engine/SettingsKeys.h"

#include <charconv>

namespace veltor {

const SettingsKey kSettingsKeys[kSettingsFieldCount] = {
    {"Mode", &EngineSettings::Mode, nullptr},
    {"UseCarSpecificSettings", nullptr, &EngineSettings::UseCarSpecificSettings},
    {"ReduceForceWhenParked", nullptr, &EngineSettings::ReduceForceWhenParked},
    {"StartMinimized", nullptr, &EngineSettings::StartMinimized},
    {"RunOnStartup", nullptr, &EngineSettings::RunOnStartup},
    {"SimucubeMode", nullptr, &EngineSettings::SimucubeMode},
    {"DebugLogging", nullptr, &EngineSettings::DebugLogging},
    {"MinForce", &EngineSettings::MinForce, nullptr},
    {"ForceStrength", &EngineSettings::ForceStrength, nullptr},
    {"Bumps", &EngineSettings::Bumps, nullptr},
    {"BumpImpacts", &EngineSettings::BumpImpacts, nullptr},
    {"Damping", &EngineSettings::Damping, nullptr},
    {"AbsVibration", &EngineSettings::AbsVibration, nullptr},
    {"Understeer", &EngineSettings::Understeer, nullptr},
    {"SuspensionDetailPriority", &EngineSettings::SuspensionDetailPriority, nullptr},
    {"CarForceBalance", &EngineSettings::CarForceBalance, nullptr},
    {"UndersteerLighten", &EngineSettings::UndersteerLighten, nullptr},
    {"UndersteerResistance", &EngineSettings::UndersteerResistance, nullptr},
    {"OversteerCorrection", &EngineSettings::OversteerCorrection, nullptr},
    {"OversteerOffset", &EngineSettings::OversteerOffset, nullptr},
    {"CrashLongG", &EngineSettings::CrashLongG, nullptr},
    {"CrashLatG", &EngineSettings::CrashLatG, nullptr},
    {"CrashDurationTenths", &EngineSettings::CrashDurationTenths, nullptr},
    {"CrashReduction", &EngineSettings::CrashReduction, nullptr},
    {"WheelbaseMaxTorqueTenths", &EngineSettings::WheelbaseMaxTorqueTenths, nullptr},
};

bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value) {
    for (const SettingsKey& entry : kSettingsKeys) {
        if (entry.name != key) continue;
        if (entry.flag != nullptr) {
            settings.*entry.flag = value != 0;
        } else {
            settings.*entry.number = value;
        }
        return true;
    }
    return false;
}

bool ParseSettingInteger(std::string_view text, int32_t& value) {
    // One sign at most: "+-5" is no number.
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return false;
    }
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    return !text.empty() && failure == std::errc() && stop == end;
}

}  // namespace veltor
