#pragma once
#include <concepts>
#include <string>

#include "update/RestartScript.h"
#include "update/UpdateClient.h"

namespace veltor {

// What the update flow needs of the program, all on the GUI thread: at start, a notice of a newer version;
// on the Update button, the whole update.
template <class Desk>
concept UpdateNoticeDesk = requires(Desk desk, const std::wstring& text) {
    { desk.Get(text, text) } -> std::same_as<HttpResult>;  // one HTTPS GET (HttpsGet in the product)
    desk.Log(text);                                         // one line of the session log
    { desk.NoticeCanShow() } -> std::same_as<bool>;         // the window is visible and not minimised
    desk.Inform(text);                                      // a message box
};

template <class Desk>
concept UpdateDesk = requires(Desk desk, const std::wstring& text, std::wstring& out) {
    { desk.Get(text, text) } -> std::same_as<HttpResult>;
    desk.Log(text);
    { desk.Ask(text) } -> std::same_as<bool>;             // a question box: true only for "Yes"
    { desk.AppPath() } -> std::same_as<std::wstring>;     // the files the update replaces
    { desk.AnalyzerPath() } -> std::same_as<std::wstring>;
    { desk.TempFolder(out) } -> std::same_as<bool>;       // the temporary folder, ending in its separator
    { desk.StartRestartScript(text, text, text, text, out) } -> std::same_as<bool>;
    desk.Close();  // ends the program the normal way, after this call returns
};

// The update flow's texts and stages, apart from the window that shows them.

inline std::wstring UpdateNoticeText(const UpdateManifest& manifest) {
    std::wstring text = L"A new version of Gripline is available: " + manifest.Version + L".\n\n";
    if (!manifest.Notes.empty()) text += manifest.Notes + L"\n\n";
    return text + L"Click the Update button to download and install it.";
}

inline std::wstring UpdateQuestionText(const UpdateManifest& manifest) {
    std::wstring text = L"Version " + manifest.Version + L" is available.\n\n";
    if (!manifest.Notes.empty()) text += manifest.Notes + L"\n\n";
    return text + L"Download the new app and analyzer, replace the current files, and restart now?";
}

// At start: tells of a newer version in the log and, if the window can be seen, in a box. A check that
// fails leaves no trace at all: a start without network must look like any other.
template <UpdateNoticeDesk Desk>
void NotifyUpdateAtStart(Desk& desk) {
    UpdateManifest manifest;
    bool available = false;
    std::wstring error;
    const auto get = [&desk](const std::wstring& host, const std::wstring& path) { return desk.Get(host, path); };
    if (!FetchManifest(get, manifest, available, error) || !available) return;
    desk.Log(L"Update available: version " + manifest.Version + L". Click Update to install.");
    if (!manifest.Notes.empty()) desk.Log(L"Update note: " + manifest.Notes);
    if (desk.NoticeCanShow()) desk.Inform(UpdateNoticeText(manifest));
}

// The Update button: asks the server again, asks the user, downloads both files beside the restart
// script and hands over to it. Every failure is one line, and the running program stays as it was.
template <UpdateDesk Desk>
void RunUpdate(Desk& desk) {
    const auto get = [&desk](const std::wstring& host, const std::wstring& path) { return desk.Get(host, path); };
    desk.Log(L"Checking for Commercial updates...");
    UpdateManifest manifest;
    bool available = false;
    std::wstring error;
    if (!FetchManifest(get, manifest, available, error)) {
        desk.Log(L"Update check failed: " + error);
        return;
    }
    if (!available) {
        desk.Log(L"No update available. Current version: " + CurrentVersionText() + L".");
        if (!manifest.Notes.empty()) desk.Log(L"Feed note: " + manifest.Notes);
        return;
    }
    const std::wstring app = desk.AppPath();
    const std::wstring analyzer = desk.AnalyzerPath();
    std::wstring tempFolder;
    if (!desk.TempFolder(tempFolder)) {
        desk.Log(L"Update failed: could not resolve a temporary path.");
        return;
    }
    if (!desk.Ask(UpdateQuestionText(manifest))) return;

    const std::wstring newApp = tempFolder + kNewAppFileName;
    const std::wstring newAnalyzer = tempFolder + kNewAnalyzerFileName;
    const struct {
        const std::wstring& serverPath;
        const std::wstring& sha256;
        const std::wstring& target;
        const wchar_t* failure;
    } downloads[] = {
        {manifest.AppPath, manifest.AppSha256, newApp, L"Update failed while downloading the app: "},
        {manifest.AnalyzerPath, manifest.AnalyzerSha256, newAnalyzer, L"Update failed while downloading the analyzer: "},
    };
    for (const auto& download : downloads) {
        const std::wstring path = AddVersionQuery(download.serverPath, manifest.Version);
        desk.Log(L"Downloading " + UrlFileName(path) + L" v" + manifest.Version + L"...");
        if (!DownloadUpdateFile(get, path, download.sha256, download.target, error)) {
            desk.Log(download.failure + error);
            return;
        }
    }
    if (!desk.StartRestartScript(newApp, app, newAnalyzer, analyzer, error)) {
        desk.Log(L"Update downloaded but restart failed: " + error);
        return;
    }
    desk.Log(L"Update downloaded. Restarting into version " + manifest.Version + L"...");
    desk.Close();
}

}  // namespace veltor
