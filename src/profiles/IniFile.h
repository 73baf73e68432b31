#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace veltor {

// What tells one version of a file from another without reading it.
struct IniFileStamp {
    bool exists = false;
    uint64_t size = 0;
    int64_t modified = 0;  // in the platform's own unit
    bool operator==(const IniFileStamp&) const = default;
};

// A file larger than this is no profile store of ours: it is neither read nor replaced. Twenty profiles with
// settings for every car of the simulator take about 4 MB.
constexpr uint64_t kMaxIniFileBytes = 16u << 20;

enum class IniFileRead { Read, Missing, Failed };

// The whole file. Missing: no such file, `bytes` empty. Failed: it exists but could not be read whole
// (locked, unreadable, too large), `bytes` empty. Windows: CreateFileW and ReadFile; hosts: POSIX.
IniFileRead ReadIniFile(const std::wstring& path, std::string& bytes, IniFileStamp& stamp);

IniFileStamp StampIniFile(const std::wstring& path);

// Writes `bytes` to a temporary file beside `path`, flushes it to the disk and moves it over `path` in one
// step, so that a reader, a crash or a power cut finds the old file or the new one, whole. False, with the
// old file as it was, when any step fails or the file is marked read-only.
bool ReplaceIniFile(const std::wstring& path, std::string_view bytes);

// Deletes the file at `path` unless it is the file `keep` names, under whatever spelling of its path: a
// handed-over file must never take the profile store's own file with it. Windows: DeleteFileW.
void DeleteFileUnless(const std::wstring& path, const std::wstring& keep);

}  // namespace veltor
