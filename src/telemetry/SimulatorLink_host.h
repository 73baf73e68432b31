#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The simulator's side of the in-process link that stands in for the named mapping and event on hosts
// without the simulator. Tests and host tools publish a block here; the client opens it by "name".
//
// Edits: a script that must not race the engine's reads changes the block only between BeginEdit and
// EndEdit. BeginEdit returns once the engine is blocked in its wait on the event, and that wait cannot time
// out until EndEdit, so every write of the edit happens before the engine's next read.
namespace veltor::hostsim {

// Creates the block of `size` bytes, with `initialContent` at its start and zeros after, and the event.
// A block and event that a client still holds under the names are taken over instead, as creating a named
// kernel object that exists opens it. Returns the writable base.
uint8_t* Publish(size_t size, std::span<const uint8_t> initialContent = {});
// Drops the simulator's references, as its exit would: the names stay while a client holds a handle.
void Withdraw();
bool IsPublished();
// Sets the data-valid event (auto-reset: one waiter wakes per set).
void SignalDataValid();
// Every wait on the event fails while set, as a wait on a broken handle would.
void SetWaitFailure(bool fail);

bool BeginEdit(std::chrono::milliseconds timeout = std::chrono::milliseconds(5000));
void EndEdit(bool signal);
// Wakes the engine once and returns when it has finished that pass and waits again, idle.
bool Sync(std::chrono::milliseconds timeout = std::chrono::milliseconds(5000));

// Values received by the maximum-force broadcast, in order.
std::vector<int32_t> Broadcasts();
void ClearBroadcasts();

}  // namespace veltor::hostsim
