#pragma once
#include <cstdint>

namespace veltor {

// The dark theme's colours as COLORREF values: blue in the high byte.
inline constexpr uint32_t kWindowColour = 0x120F0D;       // window background, caption
inline constexpr uint32_t kPanelColour = 0x221C18;        // panels, labels, custom controls
inline constexpr uint32_t kHeaderColour = 0x1D1713;       // header band, log band, status strip
inline constexpr uint32_t kFieldColour = 0x100C09;        // edit and list fields, empty checkbox
inline constexpr uint32_t kAccentColour = 0xC2662D;       // bars, rules, headings, active controls
inline constexpr uint32_t kPanelBorderColour = 0x362D27;
inline constexpr uint32_t kPrimaryTextColour = 0xF6EEE8;  // also the caption text
inline constexpr uint32_t kTaglineTextColour = 0xACA096;
inline constexpr uint32_t kTrackTextColour = 0xDACCBE;
inline constexpr uint32_t kMeterClipColour = 0x3C3CE6;    // the force meter's bar while outputs clip

// The custom controls.
inline constexpr uint32_t kSliderTrackColour = 0xE0D6CE;
inline constexpr uint32_t kSliderRestingColour = 0xEC8E1C;
inline constexpr uint32_t kBoxBorderColour = 0xD0C6BE;
inline constexpr uint32_t kCheckMarkColour = 0x120F0D;
inline constexpr uint32_t kCheckTextHoverColour = 0xF6EEE8;
inline constexpr uint32_t kCheckTextRestColour = 0xECE2DA;

}  // namespace veltor
