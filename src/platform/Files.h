// Files.h - the file services of the platform layer: whether a path (or a wildcard pattern) names
// anything, and replacing a file's contents in one step. Paths are 8-bit (ANSI) strings; any thread
// may call; only allocation failure throws.
#pragma once

#include <cstddef>

namespace velora::platform {

// True when `path` names an existing directory entry (a file, a directory, a link), or when its
// last component holds '*' (any run of characters) or '?' (any one character) and matches at
// least one entry of its directory, "." and ".." included. False for an empty last component (a
// path ending in a separator). The Windows form is a find-first-file search.
bool PathExists(const char* path);

// Writes `size` bytes of `data` to a new file in the directory of `path` and makes it the file at
// `path` in one atomic step (the data is flushed to the disk first). Fails, with the old file
// untouched and no temporary file left behind, when the directory is missing or not writable, the
// target is a directory or read-only, or any write fails. On POSIX a symbolic link is followed (the
// file it points to is replaced) and a device or pipe is written in place.
bool ReplaceFileContents(const char* path, const char* data, std::size_t size);

} // namespace velora::platform
