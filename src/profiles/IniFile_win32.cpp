#include <windows.h>

#include <algorithm>

#include "profiles/IniFile.h"

namespace veltor {
namespace {

int64_t Ticks(FILETIME time) { return static_cast<int64_t>((uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime); }

uint64_t Size(DWORD high, DWORD low) { return (uint64_t{high} << 32) | low; }

}  // namespace

IniFileRead ReadIniFile(const std::wstring& path, std::string& bytes, IniFileStamp& stamp) {
    bytes.clear();
    stamp = {};
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? IniFileRead::Missing
                                                                              : IniFileRead::Failed;
    }
    BY_HANDLE_FILE_INFORMATION info{};
    const bool known = GetFileInformationByHandle(file, &info) != 0;
    const uint64_t size = Size(info.nFileSizeHigh, info.nFileSizeLow);
    bool whole = known && size <= kMaxIniFileBytes;
    if (whole) {
        bytes.resize(static_cast<size_t>(size));
        size_t got = 0;
        while (whole && got < bytes.size()) {
            DWORD n = 0;
            whole = ReadFile(file, bytes.data() + got, static_cast<DWORD>(bytes.size() - got), &n, nullptr) != 0 && n > 0;
            got += n;
        }
    }
    CloseHandle(file);
    if (!whole) {
        bytes.clear();
        return IniFileRead::Failed;
    }
    stamp = {true, size, Ticks(info.ftLastWriteTime)};
    return IniFileRead::Read;
}

IniFileStamp StampIniFile(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return {};
    return {true, Size(data.nFileSizeHigh, data.nFileSizeLow), Ticks(data.ftLastWriteTime)};
}

bool ReplaceIniFile(const std::wstring& path, std::string_view bytes) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) {
        return false;
    }
    const std::wstring temporary = path + L".tmp";
    HANDLE file = CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                              nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    bool written = true;
    while (written && !bytes.empty()) {
        DWORD n = 0;
        const DWORD chunk = static_cast<DWORD>(std::min<size_t>(bytes.size(), 1u << 20));
        written = WriteFile(file, bytes.data(), chunk, &n, nullptr) != 0 && n == chunk;
        bytes.remove_prefix(n);
    }
    written = written && FlushFileBuffers(file) != 0;
    CloseHandle(file);
    // Write-through: the move is on the disk when the call returns.
    if (!written || !MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        DeleteFileW(temporary.c_str());
        return false;
    }
    return true;
}

// The same file has the same volume and index, however its path is written (relative, short names, case).
void DeleteFileUnless(const std::wstring& path, const std::wstring& keep) {
    auto identify = [](const std::wstring& file, BY_HANDLE_FILE_INFORMATION& info) {
        HANDLE handle = CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) return false;
        const bool known = GetFileInformationByHandle(handle, &info) != 0;
        CloseHandle(handle);
        return known;
    };
    BY_HANDLE_FILE_INFORMATION file{};
    BY_HANDLE_FILE_INFORMATION kept{};
    if (identify(path, file) && identify(keep, kept) && file.dwVolumeSerialNumber == kept.dwVolumeSerialNumber &&
        file.nFileIndexHigh == kept.nFileIndexHigh && file.nFileIndexLow == kept.nFileIndexLow) {
        return;
    }
    DeleteFileW(path.c_str());
}

}  // namespace veltor
