#include <windows.h>

#include "recording/RecordingFile.h"

namespace veltor {
namespace {

HANDLE AsHandle(intptr_t value) { return reinterpret_cast<HANDLE>(value); }

}  // namespace

bool RecordingFile::Create(const std::wstring& path) {
    FlushAndClose();
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    handle = reinterpret_cast<intptr_t>(file);
    return true;
}

bool RecordingFile::Write(const void* data, size_t bytes) {
    if (!IsOpen()) return false;
    DWORD written = 0;
    const DWORD wanted = static_cast<DWORD>(bytes);
    return WriteFile(AsHandle(handle), data, wanted, &written, nullptr) != 0 && written == wanted;
}

void RecordingFile::FlushAndClose() {
    if (!IsOpen()) return;
    FlushFileBuffers(AsHandle(handle));
    CloseHandle(AsHandle(handle));
    handle = kNoFile;
}

}  // namespace veltor
