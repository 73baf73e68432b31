#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "TestSignature.h"
#include "platform/TextConversion.h"
#include "update/RestartScript.h"
#include "update/UpdateClient.h"

// The manifest check itself, and the download against the live server, run under Wine in
// UpdateFlowTest_win32.cpp; here is what a server cannot easily be made to do.
namespace veltor {

// This test build takes the build tree's throwaway release key (the public half behind d).
const char* const UpdatePublicKey = test::kReleaseKey.data() + 64;

namespace {

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
        std::remove(target.c_str());
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

TEST(WriteBytes, ReplacesTheFileWithExactlyTheBytes) {
    const std::string path = testing::TempDir() + "write_bytes.bin";
    const std::string bytes("\0\r\n\xFF", 4);
    for (const std::string& content : {std::string("a longer earlier content"), bytes, std::string()}) {
        EXPECT_TRUE(WriteBytes(Utf8ToWide(path), std::vector<uint8_t>(content.begin(), content.end())));
        EXPECT_TRUE(std::ifstream(path).good());
        EXPECT_EQ(ReadFile(path), content);
    }
    EXPECT_FALSE(WriteBytes(Utf8ToWide(testing::TempDir() + "no_such_folder/x.bin"), {1}));
    EXPECT_FALSE(WriteText(Utf8ToWide(testing::TempDir() + "no_such_folder/x.txt"), "x"));
    std::remove(path.c_str());
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

// CR LF, no mark, every path quoted, the copies retried ten times, the script deleting itself.
TEST(RestartScript, TextAndName) {
    const std::string expected =
        "@echo off\r\n"
        "setlocal EnableDelayedExpansion\r\n"
        "set tries=0\r\n"
        ":retry_app\r\n"
        "ping 127.0.0.1 -n 2 >nul\r\n"
        "copy /Y \"C:\\T\\n.exe\" \"C:\\G r\\G\xC3\xBC.exe\" >nul\r\n"
        "if errorlevel 1 (\r\n"
        "  set /a tries+=1\r\n"
        "  if !tries! GEQ 10 exit /b 1\r\n"
        "  goto retry_app\r\n"
        ")\r\n"
        "set tries=0\r\n"
        ":retry_analyzer\r\n"
        "copy /Y \"C:\\T\\na.exe\" \"C:\\G r\\A.exe\" >nul\r\n"
        "if errorlevel 1 (\r\n"
        "  set /a tries+=1\r\n"
        "  if !tries! GEQ 10 exit /b 1\r\n"
        "  ping 127.0.0.1 -n 2 >nul\r\n"
        "  goto retry_analyzer\r\n"
        ")\r\n"
        "del \"C:\\T\\n.exe\" >nul 2>nul\r\n"
        "del \"C:\\T\\na.exe\" >nul 2>nul\r\n"
        "start \"\" \"C:\\G r\\G\xC3\xBC.exe\"\r\n"
        "del \"%~f0\"\r\n";
    EXPECT_EQ(RestartScriptText("C:\\T\\n.exe", WideToUtf8(L"C:\\G r\\G\u00fc.exe"), "C:\\T\\na.exe", "C:\\G r\\A.exe"),
              expected);
    EXPECT_EQ(RestartScriptPath(L"C:\\T\\", 4000000000u), L"C:\\T\\Veltor-Commercial-Update-4000000000.cmd");
}

}  // namespace
}  // namespace veltor
