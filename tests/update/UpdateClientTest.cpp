#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "update/RestartScript.h"
#include "update/UpdateClient.h"
#include "update/Utf8Text.h"

namespace veltor {
namespace {

std::vector<uint8_t> Bytes(const std::string& text) { return std::vector<uint8_t>(text.begin(), text.end()); }

HttpResult Answer(uint32_t status, const std::string& body, const wchar_t* error = L"") {
    return HttpResult{status == 200, status, Bytes(body), error};
}

std::string TempFile(const char* name) { return testing::TempDir() + name; }

// Empty when the file does not exist.
std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

bool Exists(const std::string& path) { return std::ifstream(path).good(); }

TEST(FetchManifest, AsksForTheManifestWithTheCurrentVersionAndJudgesTheOffer) {
    const std::string paths = R"(,"appPath":"/a.exe","analyzerPath":"/b.exe"})";
    struct Case {
        HttpResult answer;
        bool ok;
        bool available;
        const wchar_t* error;
    };
    const Case cases[] = {
        {Answer(200, R"({"version":"0.1.0.135")" + paths), true, true, L""},
        {Answer(200, R"({"version":"0.2.0.0")" + paths), true, true, L""},
        {Answer(200, R"({"version":"0.1.0.134")" + paths), true, false, L""},
        {Answer(200, R"({"version":"0.1.0.9")" + paths), true, false, L""},
        {Answer(200, ""), false, false, L"the update manifest is invalid."},
        {Answer(500, R"({"version":"9.0.0.0")" + paths, L"The update server returned HTTP 500."), false, false,
         L"The update server returned HTTP 500."},
    };
    for (const Case& c : cases) {
        std::wstring host, path, error;
        const auto get = [&](const std::wstring& h, const std::wstring& p) {
            host = h;
            path = p;
            return c.answer;
        };
        UpdateManifest manifest;
        bool available = true;
        EXPECT_EQ(FetchManifest(get, manifest, available, error), c.ok);
        EXPECT_EQ(available, c.available);
        EXPECT_EQ(error, c.error);
        EXPECT_EQ(host, UpdateHost);
        EXPECT_EQ(path, L"/uploads/veltor/commercial/latest.json?v=0.1.0.134");
    }
}

TEST(DownloadUpdateFile, WritesOnlyAnAnswerThatMatchesTheManifestsHash) {
    const std::string body("new program \0 bytes\r\n", 21);
    const wchar_t* bodyHash = L"DAA1AAB946D85C2F69532C315676C85B877B2FB16304813C9A18B56E592D45C4";
    struct Case {
        HttpResult answer;
        const wchar_t* expectedHash;
        const char* target;
        bool ok;
        const wchar_t* error;
    };
    const Case cases[] = {
        {Answer(200, body), L"", "dl_unchecked.bin", true, L""},
        {Answer(200, body), bodyHash, "dl_checked.bin", true, L""},
        {Answer(200, body.substr(0, 5)), bodyHash, "dl_cut.bin", false, L"the download does not match the manifest."},
        {Answer(404, body, L"The update server returned HTTP 404."), L"", "dl_404.bin", false,
         L"The update server returned HTTP 404."},
        {Answer(200, body), L"", "no_such_folder/dl.bin", false, L"Could not write the downloaded file."},
    };
    for (const Case& c : cases) {
        const std::string target = TempFile(c.target);
        std::remove(target.c_str());
        std::wstring error;
        const auto get = [&](const std::wstring&, const std::wstring&) { return c.answer; };
        EXPECT_EQ(DownloadUpdateFile(get, L"/a.exe?v=1", c.expectedHash, Utf8ToWide(target), error), c.ok) << c.target;
        EXPECT_EQ(error, c.error) << c.target;
        EXPECT_EQ(ReadFile(target), c.ok ? body : "") << c.target;
        EXPECT_EQ(Exists(target), c.ok) << c.target;
    }
}

TEST(Sha256, KnownDigestsAcrossTheBlockBoundaries) {
    struct Case {
        size_t length;  // of a run of 'a'
        const wchar_t* hex;
    };
    const Case cases[] = {
        {0, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {3, L"9834876dcfb05cb167a5c24953eba58c4ac89b1adf57f28f2f9d09af107ee8f0"},
        {55, L"9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
        {56, L"b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
        {63, L"7d3e74a05d7db15bce4ad9ec0658ea98e3f06eeecf16b4c6fff2da457ddc2f34"},
        {64, L"ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
        {119, L"31eba51c313a5c08226adf18d4a359cfdfd8d2e816b13f4af952f7ea6584dcfb"},
        {1000000, L"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const Case& c : cases) {
        std::vector<uint8_t> bytes(c.length, 'a');
        EXPECT_TRUE(MatchesSha256(bytes, c.hex)) << c.length;
        bytes.push_back('a');
        EXPECT_FALSE(MatchesSha256(bytes, c.hex)) << c.length;
    }
    EXPECT_FALSE(MatchesSha256({}, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b85"));
    EXPECT_FALSE(MatchesSha256({}, L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b85x"));
}

TEST(WriteBytes, ReplacesTheFileWithExactlyTheBytes) {
    const std::string path = TempFile("write_bytes.bin");
    ASSERT_TRUE(WriteText(Utf8ToWide(path), "a longer earlier content"));
    const std::string bytes("\0\r\n\xFF", 4);
    EXPECT_TRUE(WriteBytes(Utf8ToWide(path), Bytes(bytes)));
    EXPECT_EQ(ReadFile(path), bytes);
    EXPECT_TRUE(WriteBytes(Utf8ToWide(path), {}));
    EXPECT_TRUE(Exists(path));
    EXPECT_EQ(ReadFile(path), "");
    EXPECT_FALSE(WriteBytes(Utf8ToWide(TempFile("no_such_folder/x.bin")), Bytes(bytes)));
    EXPECT_FALSE(WriteText(Utf8ToWide(TempFile("no_such_folder/x.txt")), "x"));
    std::remove(path.c_str());
}

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
