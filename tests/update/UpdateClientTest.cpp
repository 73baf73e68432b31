#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "TestSignature.h"
#include "platform/TextConversion.h"
#include "update/UpdateFlow.h"
#include "update/UpdateManifest.h"
#include "update/UpdatePath.h"
#include "update/VersionText.h"

// The manifest check itself, the download against the live server and the restart script run by cmd.exe are
// the Wine flow test's (UpdateFlowTest_win32.cpp); here is what a server or the machine cannot easily be
// made to do.
namespace veltor {

// This test build takes the build tree's throwaway release key (the public half behind d).
const char* const UpdatePublicKey = test::kReleaseKey.data() + 64;

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

HttpResult Answer(uint32_t status, const std::string& body, const wchar_t* error = L"") {
    return HttpResult{status == 200, status, std::vector<uint8_t>(body.begin(), body.end()), error};
}

// Empty when the file does not exist.
std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The refusals that a server plays (no signature, another key, a changed manifest, a bad line, no hashes)
// are the Wine flow test's; here are a signature request that gets no answer and the order of the checks.
TEST(FetchManifest, TrustsOnlyASignedManifestThatNamesBothHashes) {
    const std::string paths = R"({"version":"0.1.0.135","appPath":"/a.exe","analyzerPath":"/b.exe")";
    const std::string appHash = R"(,"appSha256":")" + std::string(64, 'a') + "\"";
    const std::string analyzerHash = R"(,"analyzerSha256":")" + std::string(64, 'B') + "\"";
    const std::string offer = paths + appHash + analyzerHash + "}";
    const std::string oneHash = paths + appHash + "}";
    const std::string noAppPath = R"({"version":"0.1.0.135","analyzerPath":"/b.exe")" + appHash + analyzerHash + "}";
    const auto signature = [](const std::string& manifest) { return test::SignatureFile(manifest, test::kReleaseKey); };
    const auto sign = [&](const std::string& manifest) { return Answer(200, signature(manifest)); };
    const wchar_t* refused = L"The update server returned HTTP 500.";
    const HttpResult noAnswer{false, 0, {}, L"The update server did not respond."};
    const std::wstring notSigned = kManifestNotSignedError;
    const struct {
        const char* name;
        HttpResult manifest;
        HttpResult signature;
        const wchar_t* error;  // empty for a check that worked
        size_t requests;
    } cases[] = {
        {"signed", Answer(200, offer), sign(offer), L"", 2},
        {"the manifest refused", Answer(500, offer, refused), sign(offer), refused, 1},
        {"no answer for the signature", Answer(200, offer), noAnswer, L"The update server did not respond.", 2},
        {"a signature served with status 500", Answer(200, offer), Answer(500, signature(offer)), notSigned.c_str(), 2},
        {"signed, one hash", Answer(200, oneHash), sign(oneHash), notSigned.c_str(), 2},
        {"signed, no appPath", Answer(200, noAppPath), sign(noAppPath), kManifestInvalidError, 2},
        {"unsigned, no appPath", Answer(200, noAppPath), Answer(404, "not found"), notSigned.c_str(), 2},
    };
    for (const auto& c : cases) {
        std::vector<std::wstring> asked;
        const auto get = [&](const std::wstring& host, const std::wstring& path) {
            asked.push_back(host + path);
            return path.find(L".sig") == std::wstring::npos ? c.manifest : c.signature;
        };
        UpdateManifest manifest;
        bool available = false;
        std::wstring error;
        EXPECT_EQ(FetchManifest(get, manifest, available, error), *c.error == L'\0') << c.name;
        EXPECT_EQ(error, c.error) << c.name;
        EXPECT_EQ(available, *c.error == L'\0') << c.name;
        const std::wstring host = UpdateHost;
        const std::vector<std::wstring> expected = {host + L"/uploads/veltor/commercial/latest.json?v=0.1.0.134",
                                                    host + L"/uploads/veltor/commercial/latest.json.sig?v=0.1.0.134"};
        EXPECT_EQ(asked, std::vector<std::wstring>(expected.begin(), expected.begin() + c.requests)) << c.name;
    }
}

TEST(DownloadUpdateFile, WritesOnlyAnAnswerThatMatchesTheManifestsHash) {
    const std::string body("new program \0 bytes\r\n", 21);
    const wchar_t* bodyHash = L"DAA1AAB946D85C2F69532C315676C85B877B2FB16304813C9A18B56E592D45C4";
    const struct {
        HttpResult answer;
        const wchar_t* expectedHash;
        const char* target;
        const wchar_t* error;  // empty for success
    } cases[] = {
        {Answer(200, body), L"", "dl_unchecked.bin", L""},
        {Answer(200, body), bodyHash, "dl_checked.bin", L""},
        {Answer(200, body), L"", "no_such_folder/dl.bin", L"Could not write the downloaded file."},
    };
    for (const auto& c : cases) {
        const std::string target = testing::TempDir() + c.target;
        std::ofstream(target) << std::string(64, 'x');  // a longer earlier file, which the body replaces
        const bool ok = *c.error == L'\0';
        std::wstring error;
        const auto get = [&](const std::wstring&, const std::wstring&) { return c.answer; };
        EXPECT_EQ(DownloadUpdateFile(get, L"/a.exe?v=1", c.expectedHash, Utf8ToWide(target), error), ok) << c.target;
        EXPECT_EQ(error, c.error) << c.target;
        EXPECT_EQ(ReadFile(target), ok ? body : "") << c.target;
        EXPECT_EQ(std::ifstream(target).good(), ok) << c.target;
        std::remove(target.c_str());
    }
}

TEST(Sha256, KnownDigestsAcrossTheBlockBoundaries) {
    const std::pair<size_t, const wchar_t*> cases[] = {  // the length of a run of 'a', its digest
        {0, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {56, L"b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
        {64, L"ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
        {119, L"31eba51c313a5c08226adf18d4a359cfdfd8d2e816b13f4af952f7ea6584dcfb"},
        {1000000, L"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& [length, hex] : cases) {
        std::vector<uint8_t> bytes(length, 'a');
        EXPECT_TRUE(MatchesSha256(bytes, hex)) << length;
        bytes.push_back('a');
        EXPECT_FALSE(MatchesSha256(bytes, hex)) << length;
    }
    EXPECT_FALSE(MatchesSha256({}, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b85"));
    EXPECT_FALSE(MatchesSha256({}, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b85x"));
}

struct ScriptedDesk {
    bool tempFolder = true;
    bool scriptStarts = true;
    std::vector<std::wstring> lines;
    int questions = 0;
    bool closed = false;

    HttpResult Get(const std::wstring&, const std::wstring& path) {
        const std::string manifest =
            R"({"version":"0.1.0.135","appPath":"/u/Gripline.exe","analyzerPath":"/u/Analyzer.exe","appSha256":")" +
            test::Sha256Hex("new app") + R"(","analyzerSha256":")" + test::Sha256Hex("new analyzer") + "\"}";
        const std::string signature = test::SignatureFile(manifest, test::kReleaseKey);
        const std::map<std::wstring, std::string> answers = {
            {L"/uploads/veltor/commercial/latest.json?v=0.1.0.134", manifest},
            {L"/uploads/veltor/commercial/latest.json.sig?v=0.1.0.134", signature},
            {L"/u/Gripline.exe?v=0.1.0.135", "new app"},
            {L"/u/Analyzer.exe?v=0.1.0.135", "new analyzer"}};
        const auto found = answers.find(path);
        return found != answers.end() ? Answer(200, found->second)
                                      : Answer(404, "", L"The update server returned HTTP 404.");
    }
    void Log(const std::wstring& text) { lines.push_back(text); }
    bool Ask(const std::wstring&) { return ++questions > 0; }  // always yes
    std::wstring AppPath() { return L"C:\\Gripline\\Gripline.exe"; }
    std::wstring AnalyzerPath() { return L"C:\\Gripline\\Veltor Commercial Analyzer.exe"; }
    bool TempFolder(std::wstring& folder) {
        folder = Utf8ToWide(testing::TempDir());
        return tempFolder;
    }
    bool StartRestartScript(const std::wstring&, const std::wstring&, const std::wstring&, const std::wstring&,
                            std::wstring& error) {
        error = kScriptStartError;
        return scriptStarts;
    }
    void Close() { closed = true; }
};

// The flow runs in the real program against the test server under Wine, with the notice at start, every
// failure the server can play and the restart. Here are the stages after the question that only the machine
// can make fail: the program must stay, and say why.
TEST(UpdateFlow, AStageThatFailsOnTheMachineEndsInItsLineAndKeepsTheProgram) {
    const struct {
        const char* name;
        bool tempFolder;
        bool scriptStarts;
        std::vector<std::wstring> lines;
        int questions;
    } cases[] = {
        {"temporary folder", false, true,
         {L"Checking for Commercial updates...", L"Update failed: could not resolve a temporary path."}, 0},
        {"script", true, false,
         {L"Checking for Commercial updates...", L"Downloading Gripline.exe v0.1.0.135...",
          L"Downloading Analyzer.exe v0.1.0.135...",
          L"Update downloaded but restart failed: Could not start the updater restart script."},
         1},
    };
    for (const auto& c : cases) {
        ScriptedDesk desk;
        desk.tempFolder = c.tempFolder;
        desk.scriptStarts = c.scriptStarts;
        RunUpdate(desk);
        EXPECT_EQ(desk.lines, c.lines) << c.name;
        EXPECT_EQ(desk.questions, c.questions) << c.name;
        EXPECT_FALSE(desk.closed) << c.name;
    }
}

TEST(RestartScript, PathsThatCmdReadsBackAsWritten) {
    const struct {
        const wchar_t* path;
        bool safe;
    } cases[] = {
        {L"C:\\Program Files (x86)\\Gripline\\Gripline.exe", true},
        {L"C:\\Games & Co\\G~1\\Gripline.exe", true},
        {L"C:\\Users\\J\u00fcrgen\\Gripline.exe", false},
        {L"C:\\100%\\Gripline.exe", false},
        {L"C:\\Wow!\\Gripline.exe", false},
        {L"", false},
    };
    for (const auto& c : cases) EXPECT_EQ(IsScriptSafePath(c.path), c.safe) << WideToUtf8(c.path);
    // GetTickCount's value beyond INT32_MAX names the script as it is.
    EXPECT_EQ(RestartScriptPath(L"C:\\T\\", 4000000000u), L"C:\\T\\Veltor-Commercial-Update-4000000000.cmd");
}

}  // namespace
}  // namespace veltor
