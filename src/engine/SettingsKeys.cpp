#include "engine/SettingsKeys.h"

#include <charconv>

namespace veltor {
namespace {

struct NumberKey {
    std::string_view name;
    int32_t EngineSettings::*field;
};

struct SwitchKey {
    std::string_view name;
    bool EngineSettings::*field;
};

constexpr NumberKey kNumberKeys[] = {
    {"Mode", &EngineSettings::Mode},
    {"MinForce", &EngineSettings::MinForce},
    {"ForceStrength", &EngineSettings::ForceStrength},
    {"Bumps", &EngineSettings::Bumps},
    {"BumpImpacts", &EngineSettings::BumpImpacts},
    {"Damping", &EngineSettings::Damping},
    {"AbsVibration", &EngineSettings::AbsVibration},
    {"Understeer", &EngineSettings::Understeer},
    {"SuspensionDetailPriority", &EngineSettings::SuspensionDetailPriority},
    {"CarForceBalance", &EngineSettings::CarForceBalance},
    {"UndersteerLighten", &EngineSettings::UndersteerLighten},
    {"UndersteerResistance", &EngineSettings::UndersteerResistance},
    {"OversteerCorrection", &EngineSettings::OversteerCorrection},
    {"OversteerOffset", &EngineSettings::OversteerOffset},
    {"CrashLongG", &EngineSettings::CrashLongG},
    {"CrashLatG", &EngineSettings::CrashLatG},
    {"CrashDurationTenths", &EngineSettings::CrashDurationTenths},
    {"CrashReduction", &EngineSettings::CrashReduction},
    {"WheelbaseMaxTorqueTenths", &EngineSettings::WheelbaseMaxTorqueTenths},
};

constexpr SwitchKey kSwitchKeys[] = {
    {"UseCarSpecificSettings", &EngineSettings::UseCarSpecificSettings},
    {"ReduceForceWhenParked", &EngineSettings::ReduceForceWhenParked},
    {"StartMinimized", &EngineSettings::StartMinimized},
    {"RunOnStartup", &EngineSettings::RunOnStartup},
    {"SimucubeMode", &EngineSettings::SimucubeMode},
    {"DebugLogging", &EngineSettings::DebugLogging},
};

}  // namespace

bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value) {
    for (const NumberKey& entry : kNumberKeys) {
        if (entry.name == key) {
            settings.*entry.field = value;
            return true;
        }
    }
    for (const SwitchKey& entry : kSwitchKeys) {
        if (entry.name == key) {
            settings.*entry.field = value != 0;
            return true;
        }
    }
    return false;
}

bool ParseSettingInteger(std::string_view text, int32_t& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    return !text.empty() && failure == std::errc() && stop == end;
}

}  // namespace veltor
