// Scan time of a 64-driver session-info text (about 150 KB: four sessions' results and the driver list)
// with the user's block last, so the scan reads the whole text. Prints the text's size and the scan time in microseconds.
// Usage: bench_session_info [--runs N]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "telemetry/SessionInfoScanner.h"

namespace {

constexpr int kDrivers = 64;
constexpr int kUserCarIdx = kDrivers - 1;
constexpr int kResultSessions = 4;  // practice, qualifying, warm-up and race results ahead of the driver list

// One driver block with the keys the simulator writes for each driver, about 1.2 KB.
std::string DriverBlock(int carIdx) {
    const std::string n = std::to_string(carIdx);
    std::string b = " - CarIdx: " + n + "\n   UserName: Driver Number " + n + "\n   AbbrevName: D. Number\n"
                    "   Initials: DN\n   UserID: " + std::to_string(100000 + carIdx) + "\n   TeamID: 0\n"
                    "   TeamName: Driver Number " + n + "\n   CarNumber: \"" + n + "\"\n   CarNumberRaw: " + n + "\n"
                    "   CarPath: rt2000\n   CarClassID: 0\n   CarID: 38\n   CarIsPaceCar: 0\n   CarIsAI: 0\n"
                    "   CarIsElectric: 0\n   CarScreenName: Skip Barber Formula 2000\n"
                    "   CarScreenNameShort: Skip Barber RT2000\n   CarClassShortName: \n   CarClassRelSpeed: 0\n"
                    "   CarClassLicenseLevel: 0\n   CarClassMaxFuelPct: 1.000 %\n   CarClassWeightPenalty: 0.000 kg\n"
                    "   CarClassPowerAdjust: 0.000 %\n   CarClassDryTireSetLimit: 0 %\n   CarClassColor: 0xffffff\n"
                    "   CarClassEstLapTime: 94.6717\n   IRating: 1350\n   LicLevel: 12\n   LicSubLevel: 349\n"
                    "   LicString: C 3.49\n   LicColor: 0x00cc00\n   IsSpectator: 0\n"
                    "   CarDesignStr: 1,FF0000,00FF00,0000FF\n   HelmetDesignStr: 22,03b60a,ffffff,e00000\n"
                    "   SuitDesignStr: 1,ffffff,ffee47,0300c2\n   CarNumberDesignStr: 0,0,FFFFFF,777777,000000\n"
                    "   CarSponsor_1: 0\n   CarSponsor_2: 0\n   ClubName: Somewhere\n   ClubID: 7\n"
                    "   DivisionName: Division 3\n   DivisionID: 2\n   CurDriverIncidentCount: 0\n"
                    "   TeamIncidentCount: 0\n";
    return b;
}

// One result position of a session, as the results tables ahead of the driver list carry them.
std::string ResultPosition(int position) {
    const std::string p = std::to_string(position);
    return "   - Position: " + p + "\n     ClassPosition: " + p + "\n     CarIdx: " + std::to_string(position - 1) +
           "\n     Lap: 12\n     Time: 95.1234\n     FastestLap: 7\n     FastestTime: 94.6717\n"
           "     LastTime: 95.0021\n     LapsLed: 0\n     LapsComplete: 14\n     JokerLapsComplete: 0\n"
           "     LapsDriven: 14.512\n     Incidents: 2\n     ReasonOutId: 0\n     ReasonOutStr: Running\n";
}

std::string SessionText() {
    std::string text = "---\nWeekendInfo:\n TrackName: somewhere\n TrackLength: 3.20 km\n\nSessionInfo:\n Sessions:\n";
    for (int session = 0; session < kResultSessions; ++session) {
        text += " - SessionNum: " + std::to_string(session) + "\n   ResultsPositions:\n";
        for (int position = 1; position <= kDrivers; ++position) text += ResultPosition(position);
    }
    text += "\nDriverInfo:\n DriverCarIdx: " + std::to_string(kUserCarIdx) + "\n DriverUserID: 100063\n Drivers:\n";
    for (int i = 0; i < kDrivers; ++i) text += DriverBlock(i);
    text += "\nSplitTimeInfo:\n Sectors:\n - SectorNum: 0\n   SectorStartPct: 0.000000\n\n...\n";
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    int runs = 2000;
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[++i]));
    }
    const std::string text = SessionText();
    veltor::SessionIdentity identity;
    if (!veltor::ScanSessionInfo(text.data(), text.size(), identity) || identity.driverUserId != 100063) {
        std::fprintf(stderr, "the benchmark text did not scan as expected\n");
        return 1;
    }
    std::vector<double> micros;
    micros.reserve(static_cast<size_t>(runs));
    for (int r = 0; r < runs; ++r) {
        const auto start = std::chrono::steady_clock::now();
        veltor::ScanSessionInfo(text.data(), text.size(), identity);
        micros.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(micros.begin(), micros.end());
    const auto at = [&](double q) { return micros[static_cast<size_t>(q * static_cast<double>(micros.size() - 1))]; };
    std::printf("session-info scan: %d drivers, user's block last, %zu bytes, %d runs\n", kDrivers, text.size(), runs);
    std::printf("  min %.1f us  median %.1f us  p99 %.1f us  max %.1f us  (target: under 200 us)\n", micros.front(),
                at(0.5), at(0.99), micros.back());
    return 0;
}
