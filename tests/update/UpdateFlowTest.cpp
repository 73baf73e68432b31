#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "update/UpdateFlow.h"
#include "update/Utf8Text.h"

// The flow's stages against a scripted program: what it logs, asks and starts. Under Wine the same flow
// runs in the real program against the test server (UpdateFlowTest_win32.cpp); this covers the stages
// that a live program cannot be made to fail.
namespace veltor {
namespace {

HttpResult Answer(const std::string& body) { return HttpResult{true, 200, std::vector<uint8_t>(body.begin(), body.end()), L""}; }

constexpr wchar_t kManifestRequest[] = L"/uploads/veltor/commercial/latest.json?v=0.1.0.134";

std::string Offer(const char* notes) {
    return std::string(R"({"version":"0.1.0.135","appPath":"/u/0.1.0.135/Gripline.exe",)") +
           R"("analyzerPath":"/u/0.1.0.135/Analyzer.exe","notes":")" + notes + "\"}";
}

struct ScriptedDesk {
    std::map<std::wstring, HttpResult> answers;  // by path and query; anything else is not found
    bool visible = true;
    bool tempFolder = true;
    bool yes = true;
    bool scriptStarts = true;

    std::vector<std::wstring> lines;
    std::vector<std::wstring> boxes;
    std::vector<std::wstring> scriptPaths;
    bool closed = false;

    HttpResult Get(const std::wstring&, const std::wstring& path) {
        const auto found = answers.find(path);
        if (found != answers.end()) return found->second;
        return HttpResult{false, 404, {}, L"The update server returned HTTP 404."};
    }
    void Log(const std::wstring& text) { lines.push_back(text); }
    bool NoticeCanShow() { return visible; }
    void Inform(const std::wstring& text) { boxes.push_back(text); }
    bool Ask(const std::wstring& text) {
        boxes.push_back(text);
        return yes;
    }
    std::wstring AppPath() { return L"C:\\Gripline\\Gripline.exe"; }
    std::wstring AnalyzerPath() { return L"C:\\Gripline\\Veltor Commercial Analyzer.exe"; }
    bool TempFolder(std::wstring& folder) {
        folder = Utf8ToWide(testing::TempDir());
        return tempFolder;
    }
    bool StartRestartScript(const std::wstring& newApp, const std::wstring& app, const std::wstring& newAnalyzer,
                            const std::wstring& analyzer, std::wstring& error) {
        scriptPaths = {newApp, app, newAnalyzer, analyzer};
        error = kScriptStartError;
        return scriptStarts;
    }
    void Close() { closed = true; }
};

std::string ReadFile(const std::wstring& path) {
    std::ifstream in(WideToUtf8(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(UpdateFlow, NoticeAtStartLogsTheOfferAndShowsABoxOnlyOnAWindowInSight) {
    const struct {
        const char* notes;
        bool visible;
        std::vector<std::wstring> lines;
        std::vector<std::wstring> boxes;
    } cases[] = {
        {"Faster.", true,
         {L"Update available: version 0.1.0.135. Click Update to install.", L"Update note: Faster."},
         {L"A new version of Gripline is available: 0.1.0.135.\n\nFaster.\n\n"
          L"Click the Update button to download and install it."}},
        {"", true,
         {L"Update available: version 0.1.0.135. Click Update to install."},
         {L"A new version of Gripline is available: 0.1.0.135.\n\nClick the Update button to download and install it."}},
        {"Faster.", false,
         {L"Update available: version 0.1.0.135. Click Update to install.", L"Update note: Faster."},
         {}},
    };
    for (const auto& c : cases) {
        ScriptedDesk desk;
        desk.answers[kManifestRequest] = Answer(Offer(c.notes));
        desk.visible = c.visible;
        NotifyUpdateAtStart(desk);
        EXPECT_EQ(desk.lines, c.lines) << c.notes << c.visible;
        EXPECT_EQ(desk.boxes, c.boxes) << c.notes << c.visible;
    }
}

TEST(UpdateFlow, AcceptedUpdateDownloadsBothFilesBesideTheScriptAndCloses) {
    ScriptedDesk desk;
    desk.answers[kManifestRequest] = Answer(Offer("Faster."));
    desk.answers[L"/u/0.1.0.135/Gripline.exe?v=0.1.0.135"] = Answer("new app");
    desk.answers[L"/u/0.1.0.135/Analyzer.exe?v=0.1.0.135"] = Answer("new analyzer");
    RunUpdate(desk);

    const std::wstring temp = Utf8ToWide(testing::TempDir());
    const std::vector<std::wstring> lines = {
        L"Checking for Commercial updates...",
        L"Downloading Gripline.exe v0.1.0.135...",
        L"Downloading Analyzer.exe v0.1.0.135...",
        L"Update downloaded. Restarting into version 0.1.0.135...",
    };
    EXPECT_EQ(desk.lines, lines);
    EXPECT_EQ(desk.boxes, std::vector<std::wstring>{L"Version 0.1.0.135 is available.\n\nFaster.\n\nDownload the new app "
                                                    L"and analyzer, replace the current files, and restart now?"});
    const std::vector<std::wstring> scriptPaths = {
        temp + L"Veltor_Commercial.update.exe", L"C:\\Gripline\\Gripline.exe",
        temp + L"Veltor_Commercial_Analyzer.update.exe", L"C:\\Gripline\\Veltor Commercial Analyzer.exe"};
    EXPECT_EQ(desk.scriptPaths, scriptPaths);
    EXPECT_EQ(ReadFile(scriptPaths[0]), "new app");
    EXPECT_EQ(ReadFile(scriptPaths[2]), "new analyzer");
    EXPECT_TRUE(desk.closed);
}

TEST(UpdateFlow, StagesThatFailOnTheMachineEndInTheirLineAndKeepTheProgram) {
    const struct {
        const char* name;
        bool tempFolder;
        bool scriptStarts;
        std::vector<std::wstring> lines;
        size_t boxes;
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
        desk.answers[kManifestRequest] = Answer(Offer(""));
        desk.answers[L"/u/0.1.0.135/Gripline.exe?v=0.1.0.135"] = Answer("new app");
        desk.answers[L"/u/0.1.0.135/Analyzer.exe?v=0.1.0.135"] = Answer("new analyzer");
        desk.tempFolder = c.tempFolder;
        desk.scriptStarts = c.scriptStarts;
        RunUpdate(desk);
        EXPECT_EQ(desk.lines, c.lines) << c.name;
        EXPECT_EQ(desk.boxes.size(), c.boxes) << c.name;
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
