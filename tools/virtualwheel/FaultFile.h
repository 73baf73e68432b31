#pragma once
#include <windows.h>

#include <cstdint>

#include "FaultPlan.h"

namespace virtualwheel {

// Faults switched on and off while the wheel runs: the entries of a file (FaultPlan's text) apply while the
// file exists and are read again when its time stamp changes. The output thread asks on every pass, so the
// file's time stamp is looked at no more than every 20 ms and its text read only when it changed.
class FaultFile {
public:
    // An empty path: never a fault.
    explicit FaultFile(const wchar_t* path);

    // The plan in force at `nowMicroseconds`. The owner serialises the calls.
    const FaultPlan& Poll(int64_t nowMicroseconds);

private:
    void Read();

    wchar_t path[MAX_PATH] = {};
    FaultPlan plan;
    FILETIME written{};
    bool looked = false;
    int64_t lookedMicroseconds = 0;
};

}  // namespace virtualwheel
