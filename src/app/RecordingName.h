#pragma once
#include <string>
#include <string_view>

namespace veltor {

struct LocalTime {
    int Year = 0;
    int Month = 0;
    int Day = 0;
    int Hour = 0;
    int Minute = 0;
    int Second = 0;
};

// "Veltor_<car>_YYYYMMDD_HHMMSS.vtrrec", the name the save dialog proposes: the car path as it stands
// ("generic" before any car), cut to 159 characters like the dialog's buffer.
std::wstring ProposedRecordingName(std::wstring_view carPath, const LocalTime& time);

}  // namespace veltor
