#include "app/RecordingName.h"

#include <cwchar>

namespace veltor {
namespace {

constexpr size_t kNameBufferChars = 160;

}  // namespace

std::wstring ProposedRecordingName(std::wstring_view carPath, const LocalTime& time) {
    wchar_t stamp[40];
    std::swprintf(stamp, 40, L"_%04d%02d%02d_%02d%02d%02d.vtrrec", time.Year, time.Month, time.Day, time.Hour,
                  time.Minute, time.Second);
    std::wstring name = L"Veltor_" + std::wstring(carPath.empty() ? std::wstring_view(L"generic") : carPath) + stamp;
    if (name.size() >= kNameBufferChars) name.resize(kNameBufferChars - 1);
    return name;
}

}  // namespace veltor
