#pragma once

namespace veltor {

// The window classes of the custom controls that both programs draw with.
inline constexpr wchar_t kSliderClass[] = L"VeltorSlider";
inline constexpr wchar_t kCheckboxClass[] = L"VeltorCheckbox";

}  // namespace veltor
