#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

// The simulator's side of the platform: its named mapping and data-valid event, and a window that hears
// the maximum-force broadcast. SimulatorPublisher_win32.cpp creates the real named objects,
// SimulatorPublisher_host.cpp publishes over the in-process link. One thread (the simulator's loop)
// calls all of these.
namespace veltor::sim::publisher {

// Creates "Local\IRSDKMemMapFileName" of `size` bytes, zeroed. Returns the writable base, or null with the
// platform's error in `error`.
uint8_t* Publish(size_t size, uint32_t& error);
// Creates the auto-reset event "Local\IRSDKDataValidEvent" once the block holds its layout: a reader opens
// only when both exist and looks its variables up once, so it must never find a block still being written.
// False (the names withdrawn) with the platform's error in `error`.
bool Announce(uint32_t& error);
// Closes the names, as the simulator's exit does. A reader that still holds them keeps its view.
void Withdraw();
void SignalDataValid();

// Begins hearing "IRSDK_BROADCASTMSG" with first parameter 11. False when no listener could be made.
bool StartListening();
void StopListening();
// Moves the values heard since the last call, in order, into `values`.
void TakeBroadcasts(std::vector<int32_t>& values);

}  // namespace veltor::sim::publisher
