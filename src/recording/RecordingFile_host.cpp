#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "recording/RecordingFile.h"
#include "platform/TextConversion.h"

namespace veltor {

bool RecordingFile::Create(const std::wstring& path) {
    FlushAndClose();
    const std::string narrow = WideToUtf8(path);
    const int fd = open(narrow.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    handle = fd;
    return true;
}

bool RecordingFile::Write(const void* data, size_t bytes) {
    if (!IsOpen()) return false;
    const char* next = static_cast<const char*>(data);
    size_t left = bytes;
    while (left > 0) {
        const ssize_t written = write(static_cast<int>(handle), next, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        next += written;
        left -= static_cast<size_t>(written);
    }
    return true;
}

void RecordingFile::FlushAndClose() {
    if (!IsOpen()) return;
    fsync(static_cast<int>(handle));
    close(static_cast<int>(handle));
    handle = kNoFile;
}

}  // namespace veltor
