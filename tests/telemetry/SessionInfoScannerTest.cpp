#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "telemetry/IrsdkClient.h"
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

// Blanks, tabs, line ends and quotes go at both ends only; a line without the key leaves the output alone.
TEST(SessionInfoFields, ParseTextStoresTheTrimmedRest) {
    EXPECT_EQ(TrimField(" \t\"a \"b\"\r\n"), "a \"b");
    std::string out = "before";
    EXPECT_FALSE(ParseTextField("CarPat: x", "CarPath:", out));
    EXPECT_EQ(out, "before");
    EXPECT_TRUE(ParseTextField("   CarPath:\"dallara f3\" \r", "CarPath:", out));
    EXPECT_EQ(out, "dallara f3");
    EXPECT_TRUE(ParseTextField("CarPath:", "CarPath:", out));
    EXPECT_EQ(out, "");
}

TEST(SessionInfoFields, WideTextDecodesUtf8AndFallsBackToGenericForNothing) {
    EXPECT_EQ(ToWideText(""), L"generic");
    EXPECT_EQ(ToWideText("J\xC3\xBCrgen \xC3\x85str\xC3\xB6m"), L"J\u00fcrgen \u00c5str\u00f6m");
    EXPECT_EQ(ToWideText(std::string("\0abc", 4)), L"generic");
    EXPECT_EQ(ToWideText(std::string("ab\0cd", 5)), L"ab");
}

TEST(SessionInfoScan, TakesTheUsersBlockAndReadsNothingAfterTheNextBlockLine) {
    const std::string text = Session(5, Block(3, "Three", "car3", 300) + Block(5, "Five", "car5", 500) +
                                            " - CarIdx: 6\n   UserName: Six\n   CarPath: car6\n   UserID: 600\n");
    SessionIdentity id;
    ASSERT_TRUE(Scan(text, id));
    EXPECT_EQ(id.carPath, L"car5");
    EXPECT_EQ(id.driverName, L"Five");
    EXPECT_EQ(id.driverUserId, 500);
    EXPECT_TRUE(id.driverNameKnown);

    // A car path where the user's block would go on proves nothing after index 6's line is read.
    const std::string late = Session(5, Block(5, "Five", "", 500) + " - CarIdx: 6\n   CarPath: late\n");
    EXPECT_FALSE(Scan(late, id));
}

TEST(SessionInfoScan, KeysOutsideTheDriverBlocksAreIgnoredOrFollowTheirOrder) {
    SessionIdentity id;
    // A car path ahead of "Drivers:" is ignored.
    EXPECT_FALSE(Scan("DriverCarIdx: 0\nCarPath: early\nDrivers:\n- CarIdx: 0\nUserName: A\n", id));
    // "DriverCarIdx:" after "Drivers:" still counts from that line on.
    ASSERT_TRUE(Scan("Drivers:\n- CarIdx: 2\nCarPath: skipped\nDriverCarIdx: 2\n- CarIdx: 2\nCarPath: mine\n", id));
    EXPECT_EQ(id.carPath, L"mine");
    // "Drivers:" is matched after trimming, but not with more text behind it.
    EXPECT_TRUE(Scan("DriverCarIdx: 0\n   Drivers:  \n- CarIdx: 0\nCarPath: p\n", id));
    EXPECT_FALSE(Scan("DriverCarIdx: 0\nDrivers: none\n- CarIdx: 0\nCarPath: p\n", id));
    // "- CarIdx:" followed by letters opens the block of car index 0.
    ASSERT_TRUE(Scan("DriverCarIdx: 0\nDrivers:\n- CarIdx: abc\nCarPath: zero\n", id));
    EXPECT_EQ(id.carPath, L"zero");
    // A plain "CarIdx:" line opens a block too, and a value without a blank after the colon is found.
    ASSERT_TRUE(Scan("DriverCarIdx:1\nDrivers:\nCarIdx:1\nCarPath:plain\n", id));
    EXPECT_EQ(id.carPath, L"plain");
}

// The session's id wins over the block's unless it is 0; the session's name is preferred and makes the
// name known; without it, differing ids make the name unknown. A block id of -1 counts as 0.
TEST(SessionInfoScan, UserIdsAndTheNameKnownFlag) {
    const std::string blocks = Block(0, "Block Name", "car", 200);
    const struct {
        std::string text;
        int32_t id;
        const wchar_t* name;
        bool known;
    } cases[] = {
        {Session(0, blocks, " DriverUserID: 100\n"), 100, L"Block Name", false},
        {Session(0, blocks, " DriverUserName: Session Name\n DriverUserID: 100\n"), 100, L"Session Name", true},
        {Session(0, blocks, " DriverUserName: \n DriverUserID: 100\n"), 100, L"Block Name", false},
        {Session(0, blocks, " DriverUserID: 0\n"), 200, L"Block Name", true},
        {Session(0, Block(0, "N", "car", -1)), 0, L"N", true},
        {"DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: car\n", 0, L"unknown", true},
    };
    for (const auto& c : cases) {
        SessionIdentity id;
        ASSERT_TRUE(Scan(c.text, id)) << c.text;
        EXPECT_EQ(id.driverUserId, c.id) << c.text;
        EXPECT_EQ(id.driverName, c.name) << c.text;
        EXPECT_EQ(id.driverNameKnown, c.known) << c.text;
    }
}

TEST(SessionInfoScan, LineEndsQuotesAndPaddingLeaveNoTrace) {
    SessionIdentity id;
    const std::string crlf = "DriverCarIdx: 1\r\nDrivers:\r\n- CarIdx: 1\r\n  UserName: \"Quoted Name\"\r\n"
                             "  CarPath: \"porsche 911\"  \"\r\n";
    ASSERT_TRUE(Scan(crlf, id));
    EXPECT_EQ(id.carPath, L"porsche 911");
    EXPECT_EQ(id.driverName, L"Quoted Name");

    std::string padded = "DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: padded\n";
    padded.append(64, '\0');
    ASSERT_TRUE(Scan(padded, id));
    EXPECT_EQ(id.carPath, L"padded");
}

// No user index, a negative one, no block of it, an empty car path: the identity stays as it was.
TEST(SessionInfoScan, FailuresLeaveTheIdentityAsItWas) {
    SessionIdentity id;
    id.carPath = L"kept";
    id.driverUserId = 9;
    EXPECT_FALSE(ScanSessionInfo(nullptr, 0, id));
    for (const std::string& text : {std::string(), std::string("Drivers:\n- CarIdx: 0\nCarPath: nouser\n"),
                                    std::string("DriverCarIdx: -1\nDrivers:\n- CarIdx: 0\nCarPath: x\n"),
                                    Session(4, Block(3, "A", "a", 1)), Session(3, Block(3, "A", "", 1))}) {
        EXPECT_FALSE(Scan(text, id)) << text;
    }
    EXPECT_EQ(id.carPath, L"kept");
    EXPECT_EQ(id.driverUserId, 9);
}

TEST(SessionInfoScan, ReadsExactlyTheGivenLength) {
    // The given length cuts the text inside the user's car path: only the bytes before the cut count.
    const std::string text = "DriverCarIdx: 0\nDrivers:\n- CarIdx: 0\nCarPath: abcdef\n";
    const size_t cut = text.find("def");
    std::vector<char> exact(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(cut));
    SessionIdentity id;
    ASSERT_TRUE(ScanSessionInfo(exact.data(), exact.size(), id));  // ASan reports any read past the vector
    EXPECT_EQ(id.carPath, L"abc");
}

// Scans the text that a file of the simulator's layout carries, where its header places it, and checks the
// identity found in it.
void ExpectIdentityIn(const char* fileName, const wchar_t* carPath, const wchar_t* driverName, int32_t userId) {
    std::ifstream in(std::string(VELTOR_DATA_DIR "/telemetry/") + fileName, std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (bytes.empty()) GTEST_SKIP() << fileName << " not found under " VELTOR_DATA_DIR;
    IrsdkClient client;
    std::string text;
    ASSERT_TRUE(client.AttachBlock(bytes.data(), bytes.size()) && client.CopySessionInfo(text));
    SessionIdentity id;
    ASSERT_TRUE(Scan(text, id));
    EXPECT_EQ(id.carPath, carPath);
    EXPECT_EQ(id.driverName, driverName);
    EXPECT_EQ(id.driverUserId, userId);
    EXPECT_TRUE(id.driverNameKnown);
}

TEST(SessionInfoRealText, TelemetryFileNamesTheCarAndTheSampleDriver) {
    ExpectIdentityIn("mercedesamggt4_sample.ibt", L"mercedesamggt4", L"Sample Driver GT4", 100064);
}

// The live copy's text is NUL padded to 512 KiB, and its user drives car 63, the last of three blocks.
TEST(SessionInfoRealText, LiveCopyFindsTheUserInTheLastOfThreeBlocks) {
    ExpectIdentityIn("rt2000_live_memory.bin", L"rt2000", L"Driver Number Two2", 100001);
}

}  // namespace
}  // namespace veltor
