#include "app/CommandLine.h"

#include "settings/CarCatalogue.h"

namespace veltor {

std::wstring FindAdvicePath(std::span<const std::wstring> arguments) {
    for (size_t i = 1; i + 1 < arguments.size(); ++i) {
        if (EqualsFoldingAscii(arguments[i], L"--apply-advice")) return arguments[i + 1];
    }
    return {};
}

}  // namespace veltor
