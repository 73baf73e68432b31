#include "SimulatorPublisher.h"

#include "telemetry/SimulatorLink_host.h"

namespace veltor::sim::publisher {
namespace {
size_t gBroadcastsTaken = 0;  // simulator loop only
}

uint8_t* Publish(size_t size, uint32_t& error) {
    error = 0;
    return hostsim::Publish(size);
}

// The in-process link publishes block and event at once; readers there are the tests' own.
bool Announce(uint32_t& error) {
    error = 0;
    return true;
}

void Withdraw() { hostsim::Withdraw(); }

void SignalDataValid() { hostsim::SignalDataValid(); }

// The in-process link records every broadcast; listening is reading that record.
bool StartListening() {
    gBroadcastsTaken = hostsim::Broadcasts().size();
    return true;
}

void StopListening() {}

void TakeBroadcasts(std::vector<int32_t>& values) {
    const std::vector<int32_t> all = hostsim::Broadcasts();
    if (all.size() < gBroadcastsTaken) gBroadcastsTaken = 0;  // the record was cleared
    values.assign(all.begin() + static_cast<std::ptrdiff_t>(gBroadcastsTaken), all.end());
    gBroadcastsTaken = all.size();
}

}  // namespace veltor::sim::publisher
