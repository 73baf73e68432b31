#pragma once
// GDI+ for the logo, through its flat functions. The headers of one compiler use min and max unqualified
// inside namespace Gdiplus, which NOMINMAX hides: give them the standard ones.
#include <windows.h>

#include <algorithm>
#include <objidl.h>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus

#include <gdiplus.h>
