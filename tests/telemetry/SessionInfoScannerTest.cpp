#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "telemetry/SessionInfoScanner.h"

namespace veltor {
namespace {

bool Scan(const std::string& text, SessionIdentity& identity) {
    return ScanSessionInfo(text.data(), text.size(), identity);
}

std::string Block(int carIdx, const std::string& name, const std::string& path, int userId) {
    return " - CarIdx: " + std::to_string(carIdx) + "\n   UserName: " + name + "\n   UserID: " +
           std::to_string(userId) + "\n   CarPath: " + path + "\n";
}

// Session info as the simulator writes it: the user's car index ahead of the driver blocks.
std::string Session(int driverCarIdx, const std::string& blocks, const std::string& before = "") {
    return "WeekendInfo:\n TrackName: somewhere\nDriverInfo:\n" + before +
           " DriverCarIdx: " + std::to_string(driverCarIdx) + "\n Drivers:\n" + blocks;
}

// The trimmed line's prefix matches case-sensitively; digits are read up to the first other character, and
// numbers beyond 32 bits saturate.
TEST(SessionInfoFields, ParseIntReadsThePrefixedNumberAndSaturates) {
    const std::pair<const char*, int32_t> cases[] = {
        {"  UserID: 42\r", 42},   {"UserID:42", 42},     {"userid: 42", -1},         {"User", -1},
        {"UserID: -7", -7},       {"UserID: +7", 7},     {"UserID: 12ab3", 12},      {"UserID: abc", 0},
        {"UserID: \"17\"", 17},   {"UserID: 2147483647", INT32_MAX},                {"UserID: 2147483648", INT32_MAX},
        {"UserID: 99999999999999999999999999", INT32_MAX}, {"UserID: -2147483648", INT32_MIN},
        {"UserID: -99999999999999999999999999", INT32_MIN}};
    for (const auto& [line, value] : cases) EXPECT_EQ(ParseIntField(line, "UserID:"), value) << line;
}

// Text is UTF-8, cut at a NUL, and nothing at all reads "generic".
TEST(SessionInfoFields, WideTextDecodesUtf8AndFallsBackToGenericForNothing) {
    EXPECT_EQ(ToWideText("J\xC3\xBCrgen \xC3\x85str\xC3\xB6m"), L"J\u00fcrgen \u00c5str\u00f6m");
    EXPECT_EQ(ToWideText(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(ToWideText(""), L"generic");
    EXPECT_EQ(ToWideText(std::string("\0abc", 4)), L"generic");
}

// The user's block is found by the car index given before or after "Drivers:"; nothing after the next
// block line counts. The session's user id wins over the block's unless it is 0; the session's name is
// preferred and makes the name known; without it, differing ids make the name unknown. Where the scan
// fails, the identity stays as it was.
TEST(SessionInfoScan, FindsTheUsersBlockAndTheirIdentity) {
    const std::string blocks = Block(0, "Block Name", "car", 200);
    const struct {
        const char* what;
        std::string text;
        bool found;
        const wchar_t* car = L"kept";  // what a failed scan leaves
        const wchar_t* name = L"unknown";
        int32_t id = 0;
        bool known = true;
    } cases[] = {
        {"the user's block of three",
         Session(5, Block(3, "Three", "car3", 300) + Block(5, "Five", "car5", 500) +
                        " - CarIdx: 6\n   UserName: Six\n   CarPath: car6\n   UserID: 600\n"),
         true, L"car5", L"Five", 500, true},
        {"a car path after the next block line",
         Session(5, Block(5, "Five", "", 500) + " - CarIdx: 6\n   CarPath: late\n"), false},
        {"a car path ahead of Drivers:", "DriverCarIdx: 0\nCarPath: early\nDrivers:\n- CarIdx: 0\nUserName: A\n",
         false},
        {"the user's index after Drivers:",
         "Drivers:\n- CarIdx: 2\nCarPath: skipped\nDriverCarIdx: 2\n- CarIdx: 2\nCarPath: mine\n", true, L"mine"},
        {"Drivers: with more text", "DriverCarIdx: 0\nDrivers: none\n- CarIdx: 0\nCarPath: p\n", false},
        {"plain CarIdx: without blanks", "DriverCarIdx:1\nDrivers:\nCarIdx:1\nCarPath:plain\n", true, L"plain"},
        {"session id", Session(0, blocks, " DriverUserID: 100\n"), true, L"car", L"Block Name", 100, false},
        {"session name and id", Session(0, blocks, " DriverUserName: Session Name\n DriverUserID: 100\n"), true, L"car",
         L"Session Name", 100, true},
        {"empty session name", Session(0, blocks, " DriverUserName: \n DriverUserID: 100\n"), true, L"car",
         L"Block Name", 100, false},
        {"session id 0", Session(0, blocks, " DriverUserID: 0\n"), true, L"car", L"Block Name", 200, true},
        {"block id -1", Session(0, Block(0, "N", "car", -1)), true, L"car", L"N", 0, true},
        {"line ends and quotes",
         "DriverCarIdx: 1\r\nDrivers:\r\n- CarIdx: 1\r\n  UserName: \"Quoted Name\"\r\n"
         "  CarPath: \"porsche 911\"  \"\r\n",
         true, L"porsche 911", L"Quoted Name"},
        {"NUL padding", "DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: padded\n" + std::string(64, '\0'), true,
         L"padded"},
        {"no user index", "Drivers:\n- CarIdx: 0\nCarPath: nouser\n", false},
        {"negative user index", "DriverCarIdx: -1\nDrivers:\n- CarIdx: 0\nCarPath: x\n", false},
        {"no block of the user", Session(4, Block(3, "A", "a", 1)), false},
        {"empty car path", Session(3, Block(3, "A", "", 1)), false},
    };
    for (const auto& c : cases) {
        SessionIdentity id;
        id.carPath = L"kept";
        id.driverUserId = 9;
        ASSERT_EQ(Scan(c.text, id), c.found) << c.what;
        EXPECT_EQ(id.carPath, c.car) << c.what;
        EXPECT_EQ(id.driverUserId, c.found ? c.id : 9) << c.what;
        if (!c.found) continue;
        EXPECT_EQ(id.driverName, c.name) << c.what;
        EXPECT_EQ(id.driverNameKnown, c.known) << c.what;
    }
}

}  // namespace
}  // namespace veltor
