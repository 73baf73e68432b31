#pragma once

namespace veltor::test {

// Global allocations so far in a binary that compiles AllocationCounter.cpp in (it replaces the global
// operators new and delete, so it is no part of the support library). The operators live in a file of
// their own so that no caller sees their bodies.
long AllocationCount();

}  // namespace veltor::test
