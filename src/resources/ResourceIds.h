#pragma once
// Shared by the resource script and the code that loads the resources.
#define VELTOR_APP_ICON 101
#define VELTOR_LOGO_PNG 102

#ifndef RC_INVOKED
namespace veltor {
inline constexpr int kAppIconResourceId = VELTOR_APP_ICON;
inline constexpr int kLogoResourceId = VELTOR_LOGO_PNG;  // raw data: a 1024 x 1024 RGBA PNG
}  // namespace veltor
#endif
