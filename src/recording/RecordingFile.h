#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace veltor {

// The recording's file on disk. Windows: CreateFileW, WriteFile, FlushFileBuffers, CloseHandle; the host
// twin does the same over POSIX. One thread at a time: the GUI thread opens and closes it, the writer
// thread writes between the two.
class RecordingFile {
public:
    RecordingFile() = default;
    ~RecordingFile() { FlushAndClose(); }
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates the file for writing, others may read; an existing file is overwritten.
    bool Create(const std::wstring& path);
    // True when all `bytes` were written.
    bool Write(const void* data, size_t bytes);
    void FlushAndClose();
    bool IsOpen() const { return handle != kNoFile; }

private:
    static constexpr intptr_t kNoFile = -1;  // INVALID_HANDLE_VALUE, or no descriptor
    intptr_t handle = kNoFile;
};

}  // namespace veltor
