#include <windows.h>

#include "update/WriteBytes.h"

namespace veltor {
namespace {

bool WriteFileWhole(const std::wstring& path, const void* data, size_t size) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    bool ok = true;
    if (size > 0) {
        // One WriteFile takes at most 4 GiB; an update file is far below that.
        const DWORD wanted = static_cast<DWORD>(size);
        DWORD written = 0;
        ok = size <= MAXDWORD && WriteFile(file, data, wanted, &written, nullptr) != 0 && written == wanted;
    }
    CloseHandle(file);
    return ok;
}

}  // namespace

bool WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes) {
    return WriteFileWhole(path, bytes.data(), bytes.size());
}

bool WriteText(const std::wstring& path, std::string_view text) {
    return WriteFileWhole(path, text.data(), text.size());
}

}  // namespace veltor
