#pragma once
#include <span>
#include <string>

namespace veltor {

// The advice path of a command line (the program's own name first): the argument behind the first
// "--apply-advice", in any ASCII case, that has one. Empty when there is none.
std::wstring FindAdvicePath(std::span<const std::wstring> arguments);

}  // namespace veltor
