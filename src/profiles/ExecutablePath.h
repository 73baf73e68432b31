#pragma once
#include <string>

namespace veltor {

// The running program's full path. Windows: GetModuleFileNameW, 260 characters at most.
std::wstring ExecutablePath();

}  // namespace veltor
