#pragma once
#include <string>

namespace veltor::sim {

// How the session-info text presents the user, to exercise the program's identity scan.
enum class IdentityCase {
    Plain,         // the user's block among others, as the simulator writes it
    DifferingIds,  // the session's user id differs from the block's, and no session name
    Quoted,        // name and car path in quotes, with trailing blanks
    Crlf,          // carriage return and line feed line ends
};

struct SessionIdentityText {
    std::string carPath;
    std::string driverName;
    int userId = 0;
};

// The user of a session of our synthetic drive; `generation` 1 and up gives another car and driver,
// as a change of car mid-session would.
SessionIdentityText SyntheticUser(int generation);
// A session-info text in the simulator's YAML form with three other drivers and the user's block.
std::string BuildSessionInfo(IdentityCase identityCase, int generation);
bool ParseIdentityCase(const std::string& text, IdentityCase& identityCase);

}  // namespace veltor::sim
