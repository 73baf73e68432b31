#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "profiles/IniFile.h"
#include "platform/TextConversion.h"

namespace veltor {
namespace {

IniFileStamp StampOf(const struct stat& info) {
    return {true, static_cast<uint64_t>(info.st_size),
            static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec};
}

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

std::string Folder(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

IniFileRead ReadIniFile(const std::wstring& path, std::string& bytes, IniFileStamp& stamp) {
    bytes.clear();
    stamp = {};
    const int fd = open(WideToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return errno == ENOENT || errno == ENOTDIR ? IniFileRead::Missing : IniFileRead::Failed;
    struct stat info {};
    bool whole = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && static_cast<uint64_t>(info.st_size) <= kMaxIniFileBytes;
    if (whole) {
        bytes.resize(static_cast<size_t>(info.st_size));
        size_t got = 0;
        while (whole && got < bytes.size()) {
            const ssize_t n = read(fd, bytes.data() + got, bytes.size() - got);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) whole = false;
            else got += static_cast<size_t>(n);
        }
    }
    close(fd);
    if (!whole) {
        bytes.clear();
        return IniFileRead::Failed;
    }
    stamp = StampOf(info);
    return IniFileRead::Read;
}

IniFileStamp StampIniFile(const std::wstring& path) {
    struct stat info {};
    return stat(WideToUtf8(path).c_str(), &info) == 0 ? StampOf(info) : IniFileStamp{};
}

bool ReplaceIniFile(const std::wstring& path, std::string_view bytes) {
    const std::string target = WideToUtf8(path);
    mode_t mode = 0644;
    struct stat info {};
    if (stat(target.c_str(), &info) == 0) {
        // Root may write anything: the owner's write bit is what says the user made the file read-only.
        if (!S_ISREG(info.st_mode) || (info.st_mode & S_IWUSR) == 0) return false;
        mode = info.st_mode & 07777;
    }
    const std::string temporary = target + ".tmp";
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0) return false;
    const bool written = WriteAll(fd, bytes) && fsync(fd) == 0;
    const bool closed = close(fd) == 0;
    if (!written || !closed || rename(temporary.c_str(), target.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    // The rename itself reaches the disk only with its folder.
    const int folder = open(Folder(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
    return true;
}

void DeleteFileUnless(const std::wstring& path, const std::wstring& keep) {
    const std::string target = WideToUtf8(path);
    struct stat file {};
    struct stat kept {};
    if (stat(target.c_str(), &file) == 0 && stat(WideToUtf8(keep).c_str(), &kept) == 0 && file.st_dev == kept.st_dev &&
        file.st_ino == kept.st_ino) {
        return;
    }
    unlink(target.c_str());
}

}  // namespace veltor
