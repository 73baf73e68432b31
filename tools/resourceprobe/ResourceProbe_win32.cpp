// resource_probe [--every SECONDS]: the running Gripline's resources as Windows sees them, one line per
// sample, "private KB handles H gdi G user U threads T", once or every SECONDS until stopped.
//
// A counter is only a measurement if this platform moves it: before sampling, the probe makes 50 objects of
// each kind in its own process and looks whether its own counter followed. One that didn't is printed as
// "n/a" from then on (some Wine versions report 0 handles and 0 GDI and USER objects whatever a process holds).
#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace {

constexpr wchar_t kProgramWindowClass[] = L"VeltorCommercialWindow";
constexpr int kCalibrationObjects = 50;
constexpr DWORD kProcessAccess = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;

struct Counters {
    long long privateKb = -1;
    long long commitKb = -1;  // the pagefile usage, which Windows counts as the same private commit
    long long handles = -1;
    long long gdi = -1;
    long long user = -1;
    long long threads = -1;
};

// Which counters this platform moves.
struct Movable {
    bool privateBytes = false;
    bool commit = false;
    bool handles = false;
    bool gdi = false;
    bool user = false;
    bool threads = false;
};

long long ThreadCount(DWORD processId) {
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return -1;
    long long count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == processId ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

Counters Read(HANDLE process, DWORD processId) {
    Counters c;
    PROCESS_MEMORY_COUNTERS_EX memory{};
    if (GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof memory)) {
        c.privateKb = static_cast<long long>(memory.PrivateUsage / 1024);
        c.commitKb = static_cast<long long>(memory.PagefileUsage / 1024);
    }
    DWORD handles = 0;
    if (GetProcessHandleCount(process, &handles)) c.handles = handles;
    c.gdi = GetGuiResources(process, GR_GDIOBJECTS);
    c.user = GetGuiResources(process, GR_USEROBJECTS);
    c.threads = ThreadCount(processId);
    return c;
}

Counters ReadOwn() { return Read(GetCurrentProcess(), GetCurrentProcessId()); }

// Whether `counter` of this process moves while `make` holds kCalibrationObjects more objects of its kind.
bool Moves(long long Counters::*counter, const std::function<void(std::vector<HANDLE>&)>& make,
           const std::function<void(HANDLE)>& destroy) {
    const long long before = ReadOwn().*counter;
    std::vector<HANDLE> made;
    make(made);
    const long long during = ReadOwn().*counter;
    for (HANDLE object : made) destroy(object);
    return before >= 0 && during > before;
}

DWORD WINAPI Idle(LPVOID stop) {
    WaitForSingleObject(static_cast<HANDLE>(stop), INFINITE);
    return 0;
}

Movable Calibrate() {
    Movable m;
    m.handles = Moves(&Counters::handles, [](auto& made) {
        for (int i = 0; i < kCalibrationObjects; ++i) made.push_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    }, [](HANDLE h) { CloseHandle(h); });
    m.gdi = Moves(&Counters::gdi, [](auto& made) {
        for (int i = 0; i < kCalibrationObjects; ++i) made.push_back(CreateSolidBrush(RGB(i, 0, 0)));
    }, [](HANDLE h) { DeleteObject(h); });
    m.user = Moves(&Counters::user, [](auto& made) {
        for (int i = 0; i < kCalibrationObjects; ++i) made.push_back(CreateMenu());
    }, [](HANDLE h) { DestroyMenu(static_cast<HMENU>(h)); });
    HANDLE stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    m.threads = Moves(&Counters::threads, [&](auto& made) {
        for (int i = 0; i < kCalibrationObjects; ++i) made.push_back(CreateThread(nullptr, 0, Idle, stop, 0, nullptr));
    }, [&](HANDLE h) {
        SetEvent(stop);
        WaitForSingleObject(h, INFINITE);
        CloseHandle(h);
    });
    CloseHandle(stop);
    constexpr size_t kCalibrationBytes = 16u << 20;
    const auto allocate = [](auto& made) {
        void* block = VirtualAlloc(nullptr, kCalibrationBytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        if (block != nullptr) std::memset(block, 1, kCalibrationBytes);
        made.push_back(block);
    };
    const auto release = [](HANDLE block) { VirtualFree(block, 0, MEM_RELEASE); };
    m.privateBytes = Moves(&Counters::privateKb, allocate, release);
    m.commit = !m.privateBytes && Moves(&Counters::commitKb, allocate, release);
    return m;
}

void PrintFigure(const char* name, bool movable, long long value) {
    if (movable && value >= 0) {
        std::printf("%s %lld", name, value);
    } else {
        std::printf("%s n/a", name);
    }
}

// The program's process, opened again whenever its main window belongs to another one.
class Target {
public:
    ~Target() { Close(); }
    bool Find() {
        DWORD id = 0;
        if (HWND window = FindWindowW(kProgramWindowClass, nullptr)) GetWindowThreadProcessId(window, &id);
        if (id == 0) return false;
        if (id != processId || process == nullptr) {
            Close();
            process = OpenProcess(kProcessAccess, FALSE, id);
            processId = id;
        }
        return process != nullptr;
    }
    HANDLE process = nullptr;
    DWORD processId = 0;

private:
    void Close() {
        if (process != nullptr) CloseHandle(process);
        process = nullptr;
    }
};

void Sample(Target& target, const Movable& movable) {
    if (!target.Find()) {
        std::printf("no program\n");
    } else {
        const Counters c = Read(target.process, target.processId);
        PrintFigure("private", movable.privateBytes || movable.commit, movable.privateBytes ? c.privateKb : c.commitKb);
        PrintFigure(" handles", movable.handles, c.handles);
        PrintFigure(" gdi", movable.gdi, c.gdi);
        PrintFigure(" user", movable.user, c.user);
        PrintFigure(" threads", movable.threads, c.threads);
        std::printf("\n");
    }
    std::fflush(stdout);  // a pipe is read line by line
}

}  // namespace

int main(int argc, char** argv) {
    double every = 0.0;
    if (argc == 3 && std::strcmp(argv[1], "--every") == 0) every = std::atof(argv[2]);
    if (argc != 1 && every <= 0.0) {
        std::fprintf(stderr, "usage: resource_probe [--every SECONDS]\n");
        return 2;
    }
    const Movable movable = Calibrate();
    Target target;
    Sample(target, movable);
    while (every > 0.0) {
        Sleep(static_cast<DWORD>(every * 1000.0));
        Sample(target, movable);
    }
    return 0;
}
