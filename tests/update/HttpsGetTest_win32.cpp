#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TestFeed_win32.h"
#include "update/UpdateClient.h"

// Runs against tests/update/feed_server.py, which scripts/test starts (tests/update/update-server.sh):
// 127.0.0.1 answers with the trusted test CA's certificate, 127.0.0.2 with an untrusted one, and
// nothing listens on 127.0.0.4.
namespace veltor {
namespace {

namespace fs = std::filesystem;

using test::HashHex;
using test::ReadAll;
using test::Serve;
using test::ServerDir;
using test::ServerLogged;

std::string Pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return bytes;
}

std::string Text(const std::vector<uint8_t>& bytes) { return std::string(bytes.begin(), bytes.end()); }

class UpdateServer : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(test::ServerRuns())
            << "No update test server: start it with tests/update/update-server.sh start " << VELTOR_UPDATE_SERVER_DIR;
    }
};

TEST_F(UpdateServer, HttpsGetOutcomes) {
    const std::string big = Pattern(64 * 1024);
    struct Case {
        const char* name;
        const wchar_t* host;
        bool present;
        std::string body;
        const char* fault;
        bool ok;
        uint32_t status;
        std::string received;
        const wchar_t* error;
    };
    const Case cases[] = {
        {"ok", L"localhost", true, "hello", "", true, 200, "hello", L""},
        {"status500", L"localhost", true, "server broke", "status 500", false, 500, "server broke",
         L"The update server returned HTTP 500."},
        {"missing", L"localhost", false, "", "", false, 404, "not found", L"The update server returned HTTP 404."},
        {"empty", L"localhost", true, "", "", true, 200, "", L""},
        {"cut", L"localhost", true, big, "cut 1000", true, 200, big.substr(0, 1000), L""},
        {"slow", L"localhost", true, big, "slow 3", true, 200, big, L""},
        {"untrusted", L"127.0.0.2", true, "hello", "", false, 0, "", L"The update server did not respond."},
        {"down", L"127.0.0.4", true, "hello", "", false, 0, "", L"The update server did not respond."},
    };
    for (const Case& c : cases) {
        const std::string path = std::string("/t/") + c.name + ".bin";
        fs::remove(ServerDir() / "feed" / "t" / (std::string(c.name) + ".bin"));
        if (c.present) Serve(path, c.body, c.fault);
        const HttpResult result = HttpsGet(c.host, std::wstring(path.begin(), path.end()));
        EXPECT_EQ(result.Ok, c.ok) << c.name;
        EXPECT_EQ(result.StatusCode, c.status) << c.name;
        EXPECT_EQ(Text(result.Body), c.received) << c.name;
        EXPECT_EQ(result.Error, c.error) << c.name;
    }
    EXPECT_TRUE(ServerLogged("GET /t/ok.bin Veltor Updater/0.1.0.134\n"));
    EXPECT_FALSE(ServerLogged("GET /t/untrusted.bin"));
}

// The product's chain: the manifest from the server, then a download checked against its hash.
TEST_F(UpdateServer, ManifestThenCheckedDownload) {
    const std::string program = Pattern(200 * 1024);
    const std::string manifestPath = "/uploads/veltor/commercial/latest.json";
    const auto manifestNaming = [](const std::string& hash) {
        return R"({"version":"0.1.0.135","appPath":"/uploads/veltor/commercial/0.1.0.135/Gripline.exe",)"
               R"("analyzerPath":"/uploads/veltor/commercial/0.1.0.135/Analyzer.exe","appSha256":")" +
               hash + "\"}";
    };
    std::wstring host;
    const wchar_t* server = L"localhost";
    const auto get = [&](const std::wstring& h, const std::wstring& path) {
        host = h;
        return HttpsGet(server, path);
    };
    const fs::path target = fs::path(test::TempPath(L"Veltor_Commercial.update.exe"));
    struct Case {
        const char* name;
        std::string manifestHash;
        const char* fault;
        bool ok;
        const wchar_t* error;
        std::string written;
    };
    const Case cases[] = {
        {"matching hash", HashHex(program), "", true, L"", program},
        {"other hash", HashHex("another build"), "", false, L"the download does not match the manifest.", ""},
        {"cut, checked", HashHex(program), "cut 5000", false, L"the download does not match the manifest.", ""},
        {"cut, unchecked", "", "cut 5000", true, L"", program.substr(0, 5000)},
    };
    for (const Case& c : cases) {
        Serve(manifestPath, manifestNaming(c.manifestHash));
        Serve("/uploads/veltor/commercial/0.1.0.135/Gripline.exe", program, c.fault);
        UpdateManifest manifest;
        bool available = false;
        std::wstring error;
        ASSERT_TRUE(FetchManifest(get, manifest, available, error)) << c.name << ": " << testing::PrintToString(error);
        EXPECT_TRUE(available) << c.name;
        EXPECT_EQ(host, UpdateHost);
        fs::remove(target);
        EXPECT_EQ(DownloadUpdateFile(get, AddVersionQuery(manifest.AppPath, manifest.Version), manifest.AppSha256,
                                     target.wstring(), error),
                  c.ok)
            << c.name;
        EXPECT_EQ(error, c.error) << c.name;
        EXPECT_EQ(fs::exists(target), c.ok) << c.name;
        EXPECT_EQ(ReadAll(target), c.written) << c.name;
    }
    EXPECT_TRUE(ServerLogged("GET /uploads/veltor/commercial/latest.json?v=0.1.0.134 "));
    EXPECT_TRUE(ServerLogged("GET /uploads/veltor/commercial/0.1.0.135/Gripline.exe?v=0.1.0.135 "));
    fs::remove(target);
}

TEST_F(UpdateServer, FetchManifestFailures) {
    const std::string manifestPath = "/uploads/veltor/commercial/latest.json";
    struct Case {
        const char* name;
        const wchar_t* server;
        std::string body;
        const char* fault;
        const wchar_t* error;
    };
    const std::string valid = R"({"version":"0.1.0.135","appPath":"/a.exe","analyzerPath":"/b.exe"})";
    const Case cases[] = {
        {"status 500", L"localhost", valid, "status 500", L"The update server returned HTTP 500."},
        {"empty body", L"localhost", "", "", L"the update manifest is invalid."},
        {"cut manifest", L"localhost", valid, "cut 30", L"the update manifest is invalid."},
        {"untrusted certificate", L"127.0.0.2", valid, "", L"The update server did not respond."},
        {"server down", L"127.0.0.4", valid, "", L"The update server did not respond."},
    };
    for (const Case& c : cases) {
        Serve(manifestPath, c.body, c.fault);
        const auto get = [&](const std::wstring&, const std::wstring& path) { return HttpsGet(c.server, path); };
        UpdateManifest manifest;
        bool available = true;
        std::wstring error;
        EXPECT_FALSE(FetchManifest(get, manifest, available, error)) << c.name;
        EXPECT_FALSE(available) << c.name;
        EXPECT_EQ(error, c.error) << c.name;
    }
}

}  // namespace
}  // namespace veltor
