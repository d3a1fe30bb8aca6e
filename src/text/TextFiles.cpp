// TextFiles.cpp - whole files as strings: existence (names and wildcard patterns), reading up to
// the first NUL, and writing through a temporary file that replaces the old one in one step. Files
// are read and written as stored bytes, so both products see and produce the same bytes.
#include "VeloraUtils/DelimitedText.h"

#include "platform/Files.h"

#include <cstddef>
#include <cstring>
#include <fstream>
#include <ios>

bool U_FileExists(const char* path) {
    if (path == nullptr || *path == '\0') return false;
    return velora::platform::PathExists(path);
}

bool U_ReadFileToString(const char* path, std::string& out) {
    if (path == nullptr || *path == '\0') return false;
    std::ifstream in(path, std::ios::binary);
    if (!in.is_open()) return false;
    const std::size_t start = out.size();
    char buffer[16384];
    for (;;) {
        in.read(buffer, sizeof buffer);
        const auto got = static_cast<std::size_t>(in.gcount());
        if (const void* nul = std::memchr(buffer, '\0', got)) {
            out.append(buffer, static_cast<std::size_t>(static_cast<const char*>(nul) - buffer));
            return true; // the file is text: its first NUL ends it
        }
        out.append(buffer, got);
        if (in.bad()) {
            // A read error (or a directory, which some systems let one open): nothing is kept.
            out.resize(start);
            return false;
        }
        if (!in) return true; // the end of the file
    }
}

bool U_WriteStringToFile(const char* path, const std::string& text) {
    if (path == nullptr || *path == '\0') return false;
    return velora::platform::ReplaceFileContents(path, text.data(), text.size());
}
