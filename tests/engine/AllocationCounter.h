#pragma once

namespace veltor::test {

// Global allocations so far in this binary. The replaced operators live in their own file so that no
// caller sees their bodies.
long AllocationCount();

}  // namespace veltor::test
