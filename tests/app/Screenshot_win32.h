#pragma once
// A window as the test's X display shows it, read back pixel by pixel in the window's client coordinates.
#include <windows.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "ProgramWindow_win32.h"

namespace veltor::test {

// Taken with the X tools, which Wine starts like its own programs; kept as a PNG among the artefacts.
class Screenshot {
public:
    // Files go to `artefactDir`, a Unix path.
    explicit Screenshot(std::string artefacts) : artefactDir(std::move(artefacts)) {}

    bool Take(HWND window, const std::string& name) {
        RECT client;
        GetClientRect(window, &client);
        POINT origin{0, 0};
        ClientToScreen(window, &origin);
        width = client.right;
        height = client.bottom;
        const std::string base = artefactDir + "/" + name;
        const std::string crop = std::to_string(width) + "x" + std::to_string(height) + "+" +
                                 std::to_string(origin.x) + "+" + std::to_string(origin.y);
        png = base + ".png";
        DeleteFileA(("Z:" + base + ".done").c_str());
        if (!RunUnix("/usr/bin/xwd -root -silent | /usr/bin/convert xwd:- -crop " + crop + " +repage -write " + png +
                     " -depth 8 rgb:" + base + ".rgb && touch " + base + ".done") ||
            !WaitForFile("Z:" + base + ".done")) {
            return false;
        }
        rgb.assign(static_cast<size_t>(width) * height * 3, 0);
        std::ifstream file("Z:" + base + ".rgb", std::ios::binary);
        file.read(reinterpret_cast<char*>(rgb.data()), static_cast<std::streamsize>(rgb.size()));
        const bool whole = file.gcount() == static_cast<std::streamsize>(rgb.size());
        file.close();
        DeleteFileA(("Z:" + base + ".rgb").c_str());
        return whole;
    }
    COLORREF At(LONG x, LONG y) const {
        if (x < 0 || y < 0 || x >= width || y >= height) return CLR_INVALID;
        const unsigned char* pixel = &rgb[(static_cast<size_t>(y) * width + x) * 3];
        return RGB(pixel[0], pixel[1], pixel[2]);
    }

    // Text on the dark theme in a band of the client area: the first and last column with a bright pixel
    // (-1 for none), and the greenest such pixel.
    struct Ink {
        LONG first = -1, last = -1;
        COLORREF greenest = 0;
    };
    Ink InkIn(LONG fromX, LONG toX, LONG fromY, LONG toY) const {
        Ink ink;
        for (LONG x = fromX; x < toX; ++x) {
            for (LONG y = fromY; y < toY; ++y) {
                const COLORREF c = At(x, y);
                if (c == CLR_INVALID || GetRValue(c) + GetGValue(c) + GetBValue(c) < 300) continue;
                if (ink.first < 0) ink.first = x;
                ink.last = x;
                if (GetGValue(c) > GetGValue(ink.greenest)) ink.greenest = c;
            }
        }
        return ink;
    }

    std::string png;
    LONG width = 0;
    LONG height = 0;

private:
    // Wine starts a Unix program from its path but cannot wait for it: its end shows by a file it leaves.
    static bool RunUnix(const std::string& script) {
        std::wstring line = L"/bin/sh -c \"" + std::wstring(script.begin(), script.end()) + L"\"";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info{};
        if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
            return false;
        }
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
        return true;
    }
    static bool WaitForFile(const std::string& path) {
        const ULONGLONG until = GetTickCount64() + kWindowTimeoutMs;
        while (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
            if (GetTickCount64() > until) return false;
            Sleep(50);
        }
        return true;
    }

    std::string artefactDir;
    std::vector<unsigned char> rgb;
};

}  // namespace veltor::test
