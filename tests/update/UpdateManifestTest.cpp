#include <gtest/gtest.h>

#include <string>

#include "update/UpdateManifest.h"
#include "update/UpdatePath.h"
#include "update/VersionText.h"

namespace veltor {
namespace {

TEST(ParseVersion, AcceptsFourNumbersAndLeavesThePartsAloneOnFailure) {
    struct Case {
        const wchar_t* text;
        bool ok;
        VersionNumbers parts;
    };
    const Case cases[] = {
        {L"0.1.0.134", true, {0, 1, 0, 134}},
        {L"1.2.3.4.5", true, {1, 2, 3, 4}},  // the rest behind the fourth part is not looked at
        {L" 1.+2.3.-0", true, {1, 2, 3, 0}},  // as wcstol reads a piece
        {L"99999999999.0.0.1", true, {2147483647, 0, 0, 1}},  // a 32-bit long saturates
        {L"", false, {}},
        {L"1.2.3", false, {}},
        {L"1..3.4", false, {}},
        {L"1.2.3.4x", false, {}},
        {L"1 .2.3.4", false, {}},
        {L"1.2.-3.4", false, {}},
        {L"a.b.c.d", false, {}},
    };
    for (const Case& c : cases) {
        VersionNumbers parts{7, 7, 7, 7};
        EXPECT_EQ(ParseVersion(c.text, parts), c.ok) << c.text;
        EXPECT_EQ(parts, (c.ok ? c.parts : VersionNumbers{7, 7, 7, 7})) << c.text;
    }
}

// A plain value and UTF-8 text are read by the update flow's test under Wine; here are the odd ones.
TEST(JsonStringValue, ScansForwardWithoutDecoding) {
    struct Case {
        const char* text;
        const char* key;
        const wchar_t* value;
    };
    const Case cases[] = {
        {R"({"notes":"say \"hi\""})", "notes", L"say \\"},  // an escaped quote ends the value
        {R"({"version":1,"appPath":"/a"})", "version", L"appPath"},  // runs on to the next string
        {R"({"tag":"version","notes":"n","version":"2"})", "version", L"n"},  // found inside a value first
        {R"({"notes":"x"})", "version", L""},
        {R"({"version" "x"})", "version", L""},
        {R"({"version": "unclosed)", "version", L""},
        {R"({"version":)", "version", L""},
    };
    for (const Case& c : cases) EXPECT_EQ(JsonStringValue(c.text, c.key), c.value) << c.text;
}

// What a valid manifest carries (version, paths, notes, hashes) is used, and so checked, by the update flow's
// test under Wine.
TEST(ParseManifest, NeedsVersionBothPathsAndWellFormedHashes) {
    const std::string hash(64, 'a');
    const std::string base = R"("version":"0.1.0.135","appPath":"/a.exe","analyzerPath":"/b.exe")";
    struct Case {
        std::string text;
        bool valid;
    };
    const Case cases[] = {
        {"{" + base + "}", true},
        {"{" + base + R"(,"notes":""})", true},
        {"{" + base + R"(,"appSha256":")" + hash + R"(","analyzerSha256":")" + std::string(64, 'F') + "\"}", true},
        {"{" + base + R"(,"appSha256":")" + hash.substr(1) + "\"}", false},
        {"{" + base + R"(,"analyzerSha256":")" + hash.substr(1) + "g\"}", false},
        {R"({"version":"0.1.0.135","appPath":"/a.exe"})", false},
        {R"({"version":"0.1.0","appPath":"/a.exe","analyzerPath":"/b.exe"})", false},
        {"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(ParseManifest(c.text).Valid, c.valid) << c.text;
}

TEST(UpdatePath, VersionQueryAndFileName) {
    EXPECT_EQ(AddVersionQuery(L"/f/a.exe?x=1", L"1.2.3.4"), L"/f/a.exe?x=1&v=1.2.3.4");
    EXPECT_EQ(AddVersionQuery(L"/f/a.exe", L""), L"/f/a.exe");
    EXPECT_EQ(UrlFileName(L"/f/a.exe#top"), L"a.exe");
    EXPECT_EQ(UrlFileName(L"dir\\b.exe"), L"b.exe");
    EXPECT_EQ(UrlFileName(L"plain.exe"), L"plain.exe");
    EXPECT_EQ(UrlFileName(L"/f/"), L"");
}

}  // namespace
}  // namespace veltor
