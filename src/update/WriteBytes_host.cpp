#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/TextConversion.h"
#include "update/WriteBytes.h"

namespace veltor {
namespace {

bool WriteFileWhole(const std::wstring& path, const void* data, size_t size) {
    const int fd = open(WideToUtf8(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    const char* next = static_cast<const char*>(data);
    size_t left = size;
    while (left > 0) {
        const ssize_t written = write(fd, next, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        next += written;
        left -= static_cast<size_t>(written);
    }
    return close(fd) == 0 && left == 0;
}

}  // namespace

bool WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes) {
    return WriteFileWhole(path, bytes.data(), bytes.size());
}

bool WriteText(const std::wstring& path, std::string_view text) {
    return WriteFileWhole(path, text.data(), text.size());
}

}  // namespace veltor
