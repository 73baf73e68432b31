#pragma once
// Screenshots of the test's X display, read back pixel by pixel.
#include <windows.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "ProgramWindow_win32.h"

namespace veltor::test {

// An image of the whole X display, taken with the X tools: Wine starts Unix programs like its own.
class Screenshot {
public:
    // Files go to `artefactDir`, a Unix path.
    explicit Screenshot(std::string artefacts) : artefactDir(std::move(artefacts)) {}

    bool Take(const std::string& name) {
        const std::string base = artefactDir + "/" + name;
        png = base + ".png";
        const std::string ppm = base + ".ppm";
        const std::string done = base + ".done";
        DeleteFileA(("Z:" + done).c_str());
        if (!RunUnix("/usr/bin/xwd -root -silent -out " + base + ".xwd && /usr/bin/convert " + base + ".xwd -write " +
                     png + " " + ppm + " && touch " + done) ||
            !WaitForFile("Z:" + done)) {
            return false;
        }
        const bool read = ReadPpm("Z:" + ppm);
        DeleteFileA(("Z:" + ppm).c_str());
        DeleteFileA(("Z:" + base + ".xwd").c_str());
        return read;
    }
    COLORREF At(POINT p) const {
        if (p.x < 0 || p.y < 0 || p.x >= width || p.y >= height) return CLR_INVALID;
        const unsigned char* pixel = &rgb[(static_cast<size_t>(p.y) * width + p.x) * 3];
        return RGB(pixel[0], pixel[1], pixel[2]);
    }

    std::string png;
    int width = 0;
    int height = 0;

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
        const ULONGLONG until = GetTickCount64() + veltor::test::kWindowTimeoutMs;
        while (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
            if (GetTickCount64() > until) return false;
            Sleep(50);
        }
        return true;
    }
    // Binary PPM: "P6", width, height, maximum value, each maybe after "#" comment lines, then RGB bytes.
    bool ReadPpm(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        auto number = [&file]() {
            file >> std::ws;
            while (file.peek() == '#') {
                file.ignore(1 << 16, '\n');
                file >> std::ws;
            }
            int value = -1;
            file >> value;
            return value;
        };
        std::string magic;
        file >> magic;
        width = number();
        height = number();
        const int depth = number();
        file.get();
        if (magic != "P6" || depth != 255 || width <= 0 || height <= 0) return false;
        rgb.resize(static_cast<size_t>(width) * height * 3);
        file.read(reinterpret_cast<char*>(rgb.data()), static_cast<std::streamsize>(rgb.size()));
        return file.good();
    }

    std::string artefactDir;
    std::vector<unsigned char> rgb;
};

}  // namespace veltor::test
