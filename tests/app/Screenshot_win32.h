#pragma once
// A window as the test's X display shows it, read back pixel by pixel in the window's client coordinates.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "ChildProcess_win32.h"

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
        // Wine starts a Unix program from its path but cannot wait for it: its end shows by a file it leaves.
        const std::string script = "/usr/bin/xwd -root -silent | /usr/bin/convert xwd:- -crop " + crop +
                                   " +repage -write " + png + " -depth 8 rgb:" + base + ".rgb && touch " + base + ".done";
        if (!Process(L"/bin/sh", L"-c \"" + std::wstring(script.begin(), script.end()) + L"\"").started ||
            !WaitUntil([&] { return GetFileAttributesA(("Z:" + base + ".done").c_str()) != INVALID_FILE_ATTRIBUTES; })) {
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

    // The largest difference in one channel.
    static int Distance(COLORREF a, COLORREF b) {
        return std::max({std::abs(GetRValue(a) - GetRValue(b)), std::abs(GetGValue(a) - GetGValue(b)),
                         std::abs(GetBValue(a) - GetBValue(b))});
    }
    // Pixels within `tolerance` of `colour` in a rectangle of the client area.
    template <class Rect>
    int CountNear(const Rect& area, COLORREF colour, int tolerance) const {
        int count = 0;
        for (LONG y = area.top; y < area.bottom; ++y) {
            for (LONG x = area.left; x < area.right; ++x) count += Distance(At(x, y), colour) <= tolerance ? 1 : 0;
        }
        return count;
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
    std::string artefactDir;
    std::vector<unsigned char> rgb;
};

}  // namespace veltor::test
