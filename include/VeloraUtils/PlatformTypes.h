// PlatformTypes.h - the operating-system types that appear in the public API.
// On Windows these are the system's own; on POSIX the library defines same-named stand-ins with
// the same field names, so code using them compiles unchanged on both.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <winsock2.h>
#else
#include <sys/uio.h>

// One scatter-gather slot: `len` bytes starting at `buf`. Same layout of fields as the Windows
// Sockets descriptor, so gather lists are written the same way on both systems.
struct WSABUF {
    std::uint32_t len;
    char* buf;
};

namespace velora {

// Fills out[0..count-1] from the WSABUF slots, for writev/sendmsg. `out` holds at least `count`
// entries. The iovecs point at the slots' bytes; nothing is copied.
inline void FillIovecs(const WSABUF* slots, unsigned count, struct iovec* out) noexcept {
    for (unsigned i = 0; i < count; ++i) {
        out[i].iov_base = slots[i].buf;
        out[i].iov_len = slots[i].len;
    }
}

} // namespace velora
#endif
