// File services on Windows: existence through a find-first-file search, and replacement through
// a temporary file that MoveFileExA puts in place.
#include "platform/Files.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <string>

namespace velora::platform {
namespace {

bool WriteAll(HANDLE file, const char* data, std::size_t size) {
    while (size > 0) {
        const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(size, std::size_t{1} << 30));
        DWORD written = 0;
        if (!::WriteFile(file, data, chunk, &written, nullptr) || written == 0) return false;
        data += written;
        size -= written;
    }
    return true;
}

} // namespace

bool PathExists(const char* path) {
    WIN32_FIND_DATAA found;
    const HANDLE search = ::FindFirstFileA(path, &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    ::FindClose(search);
    return true;
}

bool ReplaceFileContents(const char* path, const char* data, std::size_t size) {
    const DWORD attributes = ::GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return false;

    static std::atomic<unsigned int> serial{0};
    const std::string target = path;
    std::string temporary;
    HANDLE file = INVALID_HANDLE_VALUE;
    for (int attempt = 0; file == INVALID_HANDLE_VALUE && attempt < 100; ++attempt) {
        temporary = target + '.' + std::to_string(::GetCurrentProcessId()) + '.' +
                    std::to_string(serial.fetch_add(1)) + ".tmp";
        file = ::CreateFileA(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                             nullptr);
        if (file == INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_FILE_EXISTS &&
            ::GetLastError() != ERROR_ALREADY_EXISTS)
            return false;
    }
    if (file == INVALID_HANDLE_VALUE) return false;
    bool ok = WriteAll(file, data, size) && ::FlushFileBuffers(file);
    ok = ::CloseHandle(file) && ok;
    if (ok && ::MoveFileExA(temporary.c_str(), path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return true;
    ::DeleteFileA(temporary.c_str());
    return false;
}

} // namespace velora::platform
