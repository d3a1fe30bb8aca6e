// File services on POSIX: existence through lstat or a directory scan for wildcard patterns, and
// replacement through a temporary file that rename() puts in place.
#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

namespace velora::platform {
namespace {

// '*' matches any run of characters, '?' any one; every other character matches itself (case
// counts, as it does in POSIX file names). One backtrack point suffices for '*'-only patterns.
bool MatchesPattern(const char* name, const char* pattern) {
    const char* afterStar = nullptr;
    const char* starName = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            afterStar = ++pattern;
            starName = name;
        } else if (*pattern != '\0' && (*pattern == '?' || *pattern == *name)) {
            ++pattern;
            ++name;
        } else if (afterStar != nullptr) {
            pattern = afterStar;
            name = ++starName;
        } else {
            return false;
        }
    }
    while (*pattern == '*') ++pattern;
    return *pattern == '\0';
}

bool WriteAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, std::min<std::size_t>(size, std::size_t{1} << 30));
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// A device, a pipe or a socket is written in place: it cannot be replaced by a file.
bool WriteInPlace(const char* path, const char* data, std::size_t size) {
    const int fd = ::open(path, O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = WriteAll(fd, data, size);
    return ::close(fd) == 0 && ok;
}

} // namespace

bool PathExists(const char* path) {
    const char* slash = std::strrchr(path, '/');
    const char* last = slash != nullptr ? slash + 1 : path;
    if (*last == '\0') return false;
    if (std::strpbrk(last, "*?") == nullptr) {
        struct stat info;
        return ::lstat(path, &info) == 0;
    }
    const std::string directory =
        slash == nullptr ? std::string(".")
                         : std::string(path, slash == path ? 1 : static_cast<std::size_t>(slash - path));
    DIR* entries = ::opendir(directory.c_str());
    if (entries == nullptr) return false;
    bool found = false;
    while (!found) {
        const dirent* entry = ::readdir(entries);
        if (entry == nullptr) break;
        found = MatchesPattern(entry->d_name, last);
    }
    ::closedir(entries);
    return found;
}

bool ReplaceFileContents(const char* path, const char* data, std::size_t size) {
    // Through a symbolic link the file it points to is replaced, not the link.
    std::string target = path;
    if (char* real = ::realpath(path, nullptr)) {
        target = real;
        std::free(real);
    }
    struct stat info;
    const bool existed = ::stat(target.c_str(), &info) == 0;
    if (existed) {
        if (S_ISDIR(info.st_mode)) return false;
        if (!S_ISREG(info.st_mode)) return WriteInPlace(target.c_str(), data, size);
        // Opening the file for writing would fail, so replacing it must too.
        if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return false;
    }

    static std::atomic<unsigned int> serial{0};
    std::string temporary;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        temporary =
            target + '.' + std::to_string(::getpid()) + '.' + std::to_string(serial.fetch_add(1)) + ".tmp";
        fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST) return false;
    }
    if (fd < 0) return false;
    // The replacement keeps the old file's permissions (best effort: only its owner may set them).
    if (existed) static_cast<void>(::fchmod(fd, info.st_mode & 07777));
    bool ok = WriteAll(fd, data, size) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (ok && ::rename(temporary.c_str(), target.c_str()) == 0) return true;
    ::unlink(temporary.c_str());
    return false;
}

} // namespace velora::platform
