#include "SessionInfoText.h"

#include <string_view>

namespace veltor::sim {
namespace {

constexpr int kUserCarIdx = 7;
constexpr int kDifferingBlockUserId = 900001;

struct Driver {
    int carIdx;
    std::string name;
    int userId;
    std::string carPath;
};

void AppendDriver(std::string& text, const Driver& d, bool quoted) {
    const std::string q = quoted ? "\"" : "";
    text += " - CarIdx: " + std::to_string(d.carIdx) + "\n";
    text += "   UserName: " + q + d.name + q + "\n";
    text += "   AbbrevName: \n";
    text += "   UserID: " + std::to_string(d.userId) + "\n";
    text += "   TeamID: 0\n";
    text += "   CarNumber: \"" + std::to_string(d.carIdx + 10) + "\"\n";
    text += "   CarPath: " + q + d.carPath + (quoted ? "  \"  " : "") + "\n";
    text += "   CarIsPaceCar: 0\n";
    text += "   IRating: 1500\n";
}

std::string WithCrlf(const std::string& text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (char c : text) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
}

}  // namespace

SessionIdentityText SyntheticUser(int generation) {
    if (generation % 2 == 0) return {"bmwm4gt3", "Synthetic Driver", 424242};
    return {"porsche992rgt3", "Second Driver", 515151};
}

std::string BuildSessionInfo(IdentityCase identityCase, int generation) {
    const SessionIdentityText user = SyntheticUser(generation);
    const bool differing = identityCase == IdentityCase::DifferingIds;
    std::string text = "---\nWeekendInfo:\n TrackName: synthetic ring\n TrackLength: 3.20 km\n"
                       " WeekendOptions:\n  NumStarters: 4\n\n";
    text += "SessionInfo:\n Sessions:\n - SessionNum: 0\n   SessionType: Practice\n   ResultsPositions:\n"
            "   - Position: 1\n     CarIdx: 3\n\n";
    text += "DriverInfo:\n DriverCarIdx: " + std::to_string(kUserCarIdx) + "\n";
    text += " DriverUserID: " + std::to_string(user.userId) + "\n PaceCarIdx: -1\n Drivers:\n";
    const bool quoted = identityCase == IdentityCase::Quoted;
    AppendDriver(text, {0, "Other Driver A", 300001, "mx5 mx52016"}, quoted);
    AppendDriver(text, {3, "Other Driver B", 300002, "audir8gt3"}, quoted);
    AppendDriver(text, {kUserCarIdx, user.driverName, differing ? kDifferingBlockUserId : user.userId, user.carPath},
                 quoted);
    AppendDriver(text, {9, "Other Driver C", 300003, "bmwm4gt4"}, quoted);
    text += "\nSplitTimeInfo:\n Sectors:\n - SectorNum: 0\n   SectorStartPct: 0.000000\n\n...\n";
    return identityCase == IdentityCase::Crlf ? WithCrlf(text) : text;
}

bool ParseIdentityCase(const std::string& text, IdentityCase& identityCase) {
    constexpr std::pair<std::string_view, IdentityCase> kNames[] = {{"plain", IdentityCase::Plain},
                                                                    {"differing-ids", IdentityCase::DifferingIds},
                                                                    {"quoted", IdentityCase::Quoted},
                                                                    {"crlf", IdentityCase::Crlf}};
    for (const auto& [name, value] : kNames) {
        if (text == name) {
            identityCase = value;
            return true;
        }
    }
    return false;
}

}  // namespace veltor::sim
