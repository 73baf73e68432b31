#pragma once
#include <string>
#include <string_view>

#include "analyzer/AnalyzerInput.h"

namespace veltor::analyzer {

// What the program would drive `carPath` with: the selected profile of the store at `iniPath` and, when it
// keeps settings per car, its entry for the car; the coefficient overrides; the program's defaults (profile
// "Default") when there is no file. The file is only read.
OfflineSettings StoredSettingsForCar(const std::wstring& iniPath, std::wstring_view carPath);

}  // namespace veltor::analyzer
