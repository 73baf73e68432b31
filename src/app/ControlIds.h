#pragma once
#include <cstdint>

#include "settings/EngineSettings.h"

namespace veltor {

// The main window's control ids: the control deck from 1000, the rest of the window from 1100. A setting's
// control takes the id its row gives it; the sliders and switches are reached through their rows alone.
enum ControlId : int32_t {
    kDeviceCombo = 1000,
    kStartButton = 1001,
    kStopButton = 1002,
    kOutputModeCombo = SettingRowOf(&EngineSettings::Mode).control,
    kCarSpecificCheck = SettingRowOf(&EngineSettings::UseCarSpecificSettings).control,
    kRunOnStartupCheck = SettingRowOf(&EngineSettings::RunOnStartup).control,
    kProfileCombo = 1008,
    kNewButton = 1009,
    kSaveButton = 1010,
    kViewLogButton = 1123,
    kRecordButton = 1124,
    kStopRecButton = 1125,
    kAnalyzerButton = 1126,
    kUpdateButton = 1127,
    kDonateButton = 1130,
    kTorqueEdit = SettingRowOf(&EngineSettings::WheelbaseMaxTorqueTenths).control,
};

}  // namespace veltor
