// The update as a user meets it: a test build of the program (gripline_loopback, 0.1.0.134, asking the
// test server on localhost) in a folder of its own, its log panel and its message boxes, answered by
// pressing their buttons, and the real restart through cmd.exe into the newer test build
// (gripline_loopback_next, 0.1.0.135) that the feed offers; both carry the build tree's throwaway release
// key, and the feed is signed with it unless a case says otherwise. The test server (tests/update/update-server.sh,
// started by scripts/test) plays what its folder says: the files it serves, their faults, its greeting.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ProgramWindow_win32.h"
#include "TestSignature.h"
#include "platform/TextConversion.h"
#include "update/RestartScript.h"
#include "update/Sha256.h"
#include "update/WriteBytes.h"

namespace veltor::test {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kDeadlineMs = 120000;  // generous: a busy machine, a cold prefix, cmd.exe's pauses
constexpr int kUpdateButton = 1127;
constexpr wchar_t kMainClass[] = L"VeltorCommercialWindow";

const fs::path kServerDir = fs::path(ProgramPath(VELTOR_UPDATE_SERVER_DIR));
const std::string kFolder = "/uploads/veltor/commercial/0.1.0.135/";
const std::string kAppPath = kFolder + "Gripline.exe";
const std::string kAnalyzerPath = kFolder + "VeltorCommercialAnalyzer.exe";
const std::string kNewAnalyzer = "the analyzer of 0.1.0.135";  // copied by the script, never started

template <typename Condition>
bool WaitFor(Condition condition) {
    return WaitUntil(condition, kDeadlineMs);
}

void Put(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// A switch file of the server: written, or removed for an empty text.
void SetSwitch(const fs::path& path, const std::string& text) {
    fs::remove(path);
    if (!text.empty()) Put(path, text);
}

std::string ServerRequests() { return ReadAll(kServerDir / "requests.log"); }
bool ServerLogged(const std::string& line) { return ServerRequests().find(line) != std::string::npos; }

const std::string& NewApp() {
    static const std::string bytes = ReadAll(ProgramPath(VELTOR_LOOPBACK_NEXT_EXE));
    return bytes;
}

// A manifest as the release script writes it: the four keys and, unless left out, both hashes.
std::string Manifest(const std::string& version, const std::string& notes, bool hashes = true) {
    const std::string keys = "{\n  \"version\": \"" + version + "\",\n  \"appPath\": \"" + kAppPath +
                             "\",\n  \"analyzerPath\": \"" + kAnalyzerPath + "\",\n  \"notes\": \"" + notes + "\"";
    if (!hashes) return keys + "\n}\n";
    return keys + ",\n  \"appSha256\": \"" + test::Sha256Hex(NewApp()) + "\",\n  \"analyzerSha256\": \"" +
           test::Sha256Hex(kNewAnalyzer) + "\"\n}\n";
}

std::string SignedByRelease(const std::string& manifest) { return test::SignatureFile(manifest, test::kReleaseKey); }

// The feed's signature file: the release key's over the manifest served, or no file at all (404).
const std::string kSignedByRelease;
const std::string kNoSignatureFile = "no file";

// The feed offering `manifest` with `signature` beside it; `fault` names what misbehaves and how: a file
// of the feed and its fault ("latest.json status 500", "Gripline.exe cut 20000", "... slow S"), or the
// server's greeting ("switch down", "switch untrusted").
void SetFeed(const std::string& manifest, const std::string& fault = "",
             const std::string& signature = kSignedByRelease) {
    const std::string target = fault.substr(0, fault.find(' ')), how = fault.substr(fault.find(' ') + 1);
    const fs::path signatureFile = kServerDir / "feed" / "uploads" / "veltor" / "commercial" / "latest.json.sig";
    SetSwitch(signatureFile, signature == kNoSignatureFile ? ""
                             : signature == kSignedByRelease ? SignedByRelease(manifest)
                                                             : signature);
    const std::pair<std::string, std::string> files[] = {{"/uploads/veltor/commercial/latest.json", manifest},
                                                         {kAppPath, NewApp()}, {kAnalyzerPath, kNewAnalyzer}};
    for (const auto& [urlPath, body] : files) {
        const fs::path file = kServerDir / "feed" / fs::path(urlPath.substr(1)).make_preferred();
        Put(file, body);
        SetSwitch(fs::path(file) += ".fault", file.filename() == target ? how : "");
    }
    SetSwitch(kServerDir / "switch", target == "switch" ? how : "");
}

const fs::path kNewAppFile = fs::path(TempPath(L"Veltor_Commercial.update.exe"));
const fs::path kNewAnalyzerFile = fs::path(TempPath(L"Veltor_Commercial_Analyzer.update.exe"));

std::vector<fs::path> RestartScripts() {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(fs::path(TempPath(L"")))) {
        const std::wstring name = entry.path().filename().wstring();
        if (name.rfind(L"Veltor-Commercial-Update-", 0) == 0 && entry.path().extension() == L".cmd") {
            found.push_back(entry.path());
        }
    }
    return found;
}

void RemoveUpdateFiles() {
    fs::remove(kNewAppFile);
    fs::remove(kNewAnalyzerFile);
    for (const fs::path& script : RestartScripts()) fs::remove(script);
}

// A box's message: the longest text among its labels.
std::wstring BoxText(HWND box) {
    std::wstring longest;
    for (HWND child : Descendants(box)) {
        const std::wstring label = WindowText(child);
        if (ClassName(child) == L"Static" && label.size() > longest.size()) longest = label;
    }
    return longest;
}

bool HasBox(DWORD processId) { return FindProcessWindow(processId, L"#32770") != nullptr; }

// The session log, the last child, once the window has made it.
HWND LogPanel(HWND window) {
    HWND last = window != nullptr ? GetWindow(GetWindow(window, GW_CHILD), GW_HWNDLAST) : nullptr;
    const bool made = last != nullptr && ClassName(last) == L"Edit" && (GetWindowLongW(last, GWL_STYLE) & ES_MULTILINE);
    return made ? last : nullptr;
}

// Returns once the window's thread takes messages again, in its loop or in a box's.
void Settle(HWND window) {
    DWORD_PTR result = 0;
    SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kDeadlineMs, &result);
}

// Posted, as a click is: the program's thread may be about to block in the flow.
void Click(HWND button) { PostMessageW(button, BM_CLICK, 0, 0); }

// One run of the program, started from `exe` with the show command given, and its window once it has made
// its log panel; closed as its close box does when this goes.
class Program : public Process {
public:
    Program(const fs::path& exe, WORD showCommand) : Process(exe.wstring(), L"", L"", showCommand) {
        WaitFor([&] {
            Window = FindProcessWindow(Id(), kMainClass);
            Log = LogPanel(Window);
            return Log != nullptr || Ended();
        });
        if (Log == nullptr) Window = nullptr;
    }
    ~Program() {
        if (!Ended()) PostMessageW(Window, WM_CLOSE, 0, 0);
        WaitForExit(kDeadlineMs);
    }

    DWORD Id() const { return info.dwProcessId; }
    std::wstring LogText() const { return WindowText(Log); }
    // The program's message box once it shows its text and a button, or null.
    HWND WaitForBox() const {
        HWND box = nullptr;
        WaitFor([&] {
            box = FindProcessWindow(Id(), L"#32770");
            const bool ready = box != nullptr && IsWindowVisible(box) && !BoxText(box).empty() &&
                               (GetDlgItem(box, IDOK) != nullptr || GetDlgItem(box, IDNO) != nullptr);
            return ready || Ended();
        });
        return Ended() ? nullptr : box;
    }

    HWND Window = nullptr;
    HWND Log = nullptr;
};

// The program's folder, with a blank and a letter beyond ASCII in its name, holding the test build as
// Gripline.exe and a stand-in analyzer.
class UpdateFlow : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::exists(kServerDir / "server.pid"))
            << "No update test server: start it with tests/update/update-server.sh start " << VELTOR_UPDATE_SERVER_DIR;
        fs::remove_all(folder);
        fs::create_directories(folder);
        ASSERT_TRUE(fs::copy_file(ProgramPath(VELTOR_LOOPBACK_EXE), app));
        Put(analyzer, "the analyzer of 0.1.0.134");
        RemoveUpdateFiles();
    }
    // Whatever a failed test left running, the old program or the new one, goes by force.
    void TearDown() override {
        SetSwitch(kServerDir / "switch", "");
        for (HWND window = FindWindowW(kMainClass, nullptr); window != nullptr; window = FindWindowW(kMainClass, nullptr)) {
            DWORD id = 0;
            GetWindowThreadProcessId(window, &id);
            HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
            if (process == nullptr) break;
            TerminateProcess(process, 99);
            WaitForSingleObject(process, kDeadlineMs);
            CloseHandle(process);
        }
        RemoveUpdateFiles();
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    // A failed check at start: no box, no line.
    static void ExpectNoTraceOfTheCheckAtStart(const Program& program) {
        // The wheels are listed just before the check; once they are, the next message waits for its end.
        EXPECT_TRUE(WaitFor([&] { return program.LogText().find(L" found.\r\n") != std::wstring::npos; }));
        Settle(program.Window);
        EXPECT_FALSE(HasBox(program.Id()));
        EXPECT_EQ(program.LogText().find(L"Update"), std::wstring::npos);
    }

    // Presses "Update", answers the question if one is expected, and waits until the flow has ended with
    // exactly `lines` in the log behind the first.
    void PressUpdate(const Program& program, const wchar_t* question, int answer, const std::vector<std::wstring>& lines) {
        const std::wstring before = program.LogText();
        Click(GetDlgItem(program.Window, kUpdateButton));
        if (question != nullptr) {
            HWND box = program.WaitForBox();
            ASSERT_NE(box, nullptr) << "no question";
            EXPECT_EQ(BoxText(box), question);
            Click(GetDlgItem(box, answer));
            EXPECT_TRUE(WaitGone(box)) << "the question stayed";
        }
        std::wstring expected = before + L"Checking for Commercial updates...\r\n";
        for (const std::wstring& line : lines) expected += line + L"\r\n";
        EXPECT_TRUE(WaitFor([&] { return program.LogText() == expected; })) << testing::PrintToString(program.LogText());
        Settle(program.Window);
        EXPECT_EQ(program.LogText(), expected);
        EXPECT_FALSE(HasBox(program.Id()));
    }

    const fs::path folder = fs::path(TempPath(L"Gripline \u00dcpdate test"));
    const fs::path app = folder / L"Gripline.exe";
    const fs::path analyzer = folder / L"Veltor Commercial Analyzer.exe";
};

constexpr char kNotes[] = "Smoother grip model, tested in Z\xC3\xBCrich.";
constexpr wchar_t kOfferLines[] = L"Update available: version 0.1.0.135. Click Update to install.\r\n"
                                  L"Update note: Smoother grip model, tested in Z\u00fcrich.\r\n";

TEST_F(UpdateFlow, AtStartAnOfferIsLoggedAndShownOnlyOnAWindowInSight) {
    SetFeed(Manifest("0.1.0.135", kNotes));
    for (const WORD show : {SW_SHOWNORMAL, SW_SHOWMINNOACTIVE}) {
        Program program(app, show);
        ASSERT_NE(program.Window, nullptr) << "no window; exit code " << program.WaitForExit();
        EXPECT_TRUE(WaitFor([&] { return program.LogText().find(kOfferLines) != std::wstring::npos; }));
        if (show == SW_SHOWMINNOACTIVE) {
            Settle(program.Window);
            EXPECT_TRUE(IsIconic(program.Window));
            EXPECT_FALSE(HasBox(program.Id()));
            continue;
        }
        HWND notice = program.WaitForBox();
        ASSERT_NE(notice, nullptr);
        EXPECT_EQ(WindowText(notice), L"Gripline");
        EXPECT_EQ(BoxText(notice), L"A new version of Gripline is available: 0.1.0.135.\n\n"
                                   L"Smoother grip model, tested in Z\u00fcrich.\n\n"
                                   L"Click the Update button to download and install it.");
        EXPECT_EQ(GetDlgItem(notice, IDYES), nullptr);
        Click(GetDlgItem(notice, IDOK));
        EXPECT_TRUE(WaitGone(notice));
    }
    EXPECT_TRUE(ServerLogged("GET /uploads/veltor/commercial/latest.json?v=0.1.0.134 Veltor Updater/0.1.0.134\n"));
}

// A start with the server down shows no trace; then each failure of a press leaves the program as it was,
// until the offer is accepted and the program restarts into the new version.
TEST_F(UpdateFlow, EachFailedUpdateSaysWhyAndKeepsTheProgramTheAcceptedOneRestartsIntoTheNewVersion) {
    const std::string offer = Manifest("0.1.0.135", kNotes);
    SetFeed(offer, "switch down");
    const std::string oldApp = ReadAll(app);
    Program program(app, SW_SHOWNORMAL);
    ASSERT_NE(program.Window, nullptr) << "no window; exit code " << program.WaitForExit();
    ExpectNoTraceOfTheCheckAtStart(program);

    const wchar_t* question = L"Version 0.1.0.135 is available.\n\nSmoother grip model, tested in Z\u00fcrich.\n\n"
                              L"Download the new app and analyzer, replace the current files, and restart now?";
    const std::wstring downloadingApp = L"Downloading Gripline.exe v0.1.0.135...";
    const std::wstring downloadingAnalyzer = L"Downloading VeltorCommercialAnalyzer.exe v0.1.0.135...";
    const std::wstring notSigned = L"Update check failed: the update manifest is not signed with the release key.";
    std::string changed = offer;
    changed[changed.find("Smoother")] = 's';
    const std::string offerSignature = SignedByRelease(offer);
    const std::string withoutHashes = Manifest("0.1.0.135", kNotes, false);
    // The feed as scripts/package signs it with the same key (package_tests): it offers this very version.
    const fs::path packaged = fs::path(ProgramPath(VELTOR_PACKAGED_FEED_DIR));
    ASSERT_TRUE(fs::exists(packaged / "latest.json.sig")) << "no feed in " << packaged << ": run package_tests";
    const struct {
        const char* name;
        std::string manifest;
        const char* fault;
        int answer;  // to the question, or 0 where none may come
        std::vector<std::wstring> lines;
        bool appFileStays;
        std::string signature = kSignedByRelease;
    } cases[] = {
        {"server down", offer, "switch down", 0, {L"Update check failed: The update server did not respond."}, false},
        {"status 500", offer, "latest.json status 500", 0, {L"Update check failed: The update server returned HTTP 500."},
         false},
        {"manifest without appPath", R"({"version":"0.1.0.135","analyzerPath":"/a.exe"})", "", 0,
         {L"Update check failed: the update manifest is invalid."}, false},
        {"no signature (404)", offer, "", 0, {notSigned}, false, kNoSignatureFile},
        {"signed by another key", offer, "", 0, {notSigned}, false, test::SignatureFile(offer, test::kOtherKey)},
        {"changed by one byte after signing", changed, "", 0, {notSigned}, false, offerSignature},
        {"truncated signature", offer, "", 0, {notSigned}, false, offerSignature.substr(0, 60) + "\n"},
        {"signature not in base64", offer, "", 0, {notSigned}, false, "not a signature, but a line of ASCII\n"},
        {"signed without the hashes", withoutHashes, "", 0, {notSigned}, false},
        {"untrusted certificate", offer, "switch untrusted", 0,
         {L"Update check failed: The update server did not respond."}, false},
        {"lower version", Manifest("0.1.0.9", ""), "", 0, {L"No update available. Current version: 0.1.0.134."}, false},
        {"signed by scripts/package", ReadAll(packaged / "latest.json"), "", 0,
         {L"No update available. Current version: 0.1.0.134.", L"Feed note: Packaged by the test"}, false,
         ReadAll(packaged / "latest.json.sig")},
        {"answered No", offer, "", IDNO, {}, false},
        {"app download cut short", offer, "Gripline.exe cut 20000", IDYES,
         {downloadingApp, L"Update failed while downloading the app: the download does not match the manifest."}, false},
        {"analyzer download fails", offer, "VeltorCommercialAnalyzer.exe status 503", IDYES,
         {downloadingApp, downloadingAnalyzer,
          L"Update failed while downloading the analyzer: The update server returned HTTP 503."},
         true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RemoveUpdateFiles();
        SetFeed(c.manifest, c.fault, c.signature);
        const size_t requestsBefore = ServerRequests().size();
        PressUpdate(program, c.answer != 0 ? question : nullptr, c.answer, c.lines);

        EXPECT_FALSE(program.Ended());
        EXPECT_TRUE(ReadAll(app) == oldApp) << "the program changed";
        EXPECT_EQ(ReadAll(analyzer), "the analyzer of 0.1.0.134");
        EXPECT_TRUE(ReadAll(kNewAppFile) == (c.appFileStays ? NewApp() : "")) << "the app's update file";
        EXPECT_FALSE(fs::exists(kNewAnalyzerFile));
        EXPECT_TRUE(RestartScripts().empty());
        const bool downloaded = ServerRequests().find(kFolder, requestsBefore) != std::string::npos;
        EXPECT_EQ(downloaded, c.answer == IDYES);
    }

    // Accepted: the program closes, the script puts both files in place and starts the new version.
    RemoveUpdateFiles();
    SetFeed(Manifest("0.1.0.135", ""));
    Click(GetDlgItem(program.Window, kUpdateButton));
    HWND box = program.WaitForBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(BoxText(box), L"Version 0.1.0.135 is available.\n\n"
                            L"Download the new app and analyzer, replace the current files, and restart now?");
    fs::remove(folder / L"Veltor_profiles.ini");
    Click(GetDlgItem(box, IDYES));
    // The old program goes down by the normal close, to the end of its message loop, saving the profiles.
    EXPECT_EQ(program.WaitForExit(), 0);
    EXPECT_TRUE(fs::exists(folder / L"Veltor_profiles.ini")) << "the closing program saved no profiles";

    HWND next = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (next = FindWindowW(kMainClass, L"Gripline v0.1.0.135")) != nullptr; }))
        << "the new version did not start";
    // The files came from the feed (the host flow's test pins the paths it asks for; the notice's request
    // above, how they reach the server).
    EXPECT_TRUE(ReadAll(app) == NewApp()) << "the program was not replaced";
    EXPECT_EQ(ReadAll(analyzer), kNewAnalyzer) << "the analyzer was not replaced";
    EXPECT_FALSE(fs::exists(kNewAppFile));
    EXPECT_FALSE(fs::exists(kNewAnalyzerFile));
    EXPECT_TRUE(WaitFor([] { return RestartScripts().empty(); })) << "the script stayed";

    // The new version asks with its own version, is offered nothing newer, and says nothing.
    EXPECT_TRUE(WaitFor([] { return ServerLogged("latest.json?v=0.1.0.135 Veltor Updater/0.1.0.135\n"); }));
    Settle(next);
    DWORD nextId = 0;
    GetWindowThreadProcessId(next, &nextId);
    EXPECT_FALSE(HasBox(nextId));
    EXPECT_EQ(WindowText(LogPanel(next)).find(L"Update"), std::wstring::npos);
    PostMessageW(next, WM_CLOSE, 0, 0);
    EXPECT_TRUE(WaitGone(next));
}

// A program built without a key trusts no manifest: it does not ask the server at all, says why when
// Update is pressed, and at start leaves no trace.
TEST_F(UpdateFlow, AProgramBuiltWithoutAKeyTakesNoManifest) {
    ASSERT_TRUE(fs::copy_file(ProgramPath(VELTOR_LOOPBACK_KEYLESS_EXE), app, fs::copy_options::overwrite_existing));
    SetFeed(Manifest("0.1.0.135", kNotes));
    const size_t requestsBefore = ServerRequests().size();
    Program program(app, SW_SHOWNORMAL);
    ASSERT_NE(program.Window, nullptr) << "no window; exit code " << program.WaitForExit();
    ExpectNoTraceOfTheCheckAtStart(program);
    PressUpdate(program, nullptr, 0,
                {L"Update check failed: the update manifest is not signed with the release key."});
    EXPECT_EQ(ServerRequests().size(), requestsBefore) << ServerRequests().substr(requestsBefore);
    EXPECT_FALSE(fs::exists(kNewAppFile));
}

// The restart script under cmd.exe when the program never lets go of its file: it gives up after ten
// failed copies and touches nothing. Its way through is the accepted update above.
TEST(RestartScriptRun, GivesUpAfterTenFailedCopiesAndTouchesNothing) {
    const fs::path folder = fs::path(TempPath(L"gripline restart test"));  // a blank to quote
    const fs::path app = folder / L"Gripline.exe";
    const fs::path analyzer = folder / kAnalyzerFileName;
    const fs::path newApp = fs::path(TempPath(kNewAppFileName));
    const fs::path newAnalyzer = fs::path(TempPath(kNewAnalyzerFileName));
    const std::pair<fs::path, std::string> files[] = {
        {app, "old app"}, {analyzer, "old analyzer"}, {newApp, "new app"}, {newAnalyzer, "new analyzer"}};
    fs::remove_all(folder);
    for (const auto& [file, text] : files) Put(file, text);
    const fs::path script = RestartScriptPath(TempPath(L""), GetTickCount());
    ASSERT_TRUE(WriteText(script.wstring(), RestartScriptText(WideToUtf8(newApp.wstring()), WideToUtf8(app.wstring()),
                                                              WideToUtf8(newAnalyzer.wstring()),
                                                              WideToUtf8(analyzer.wstring()))));

    // Held open without sharing, as a running program holds its executable.
    HANDLE running = CreateFileW(app.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(running, INVALID_HANDLE_VALUE);
    Process cmd(L"cmd.exe", L"/c \"" + script.wstring() + L"\"");
    EXPECT_EQ(cmd.WaitForExit(kDeadlineMs), 1);
    CloseHandle(running);

    for (const auto& [file, text] : files) EXPECT_EQ(ReadAll(file), text) << file;
    EXPECT_TRUE(fs::exists(script));
    for (const fs::path& file : {script, newApp, newAnalyzer}) fs::remove(file);
    fs::remove_all(folder);
}

}  // namespace
}  // namespace veltor::test
