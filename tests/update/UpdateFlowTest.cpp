#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "TestSignature.h"
#include "platform/TextConversion.h"
#include "update/UpdateFlow.h"

// The flow runs in the real program against the test server under Wine (UpdateFlowTest_win32.cpp), with
// the notice at start, every failure the server can play and the restart. Here are the stages after the
// question that only the machine can make fail: the program must stay, and say why.
namespace veltor {
namespace {

HttpResult Answer(const std::string& body) { return HttpResult{true, 200, std::vector<uint8_t>(body.begin(), body.end()), L""}; }

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
        return found != answers.end() ? Answer(found->second)
                                      : HttpResult{false, 404, {}, L"The update server returned HTTP 404."};
    }
    void Log(const std::wstring& text) { lines.push_back(text); }
    bool Ask(const std::wstring&) {
        ++questions;
        return true;
    }
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
}

}  // namespace
}  // namespace veltor
