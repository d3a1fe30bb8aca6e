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

// Window-message parameters, as wide as the Windows ones on a 64-bit system.
typedef std::uintptr_t WPARAM;
typedef std::intptr_t LPARAM;

// The POSIX form of a window that receives posted messages: a sink the caller implements. Its
// Post is called on the posting thread (for ring-buffer notification: the writer's thread) and
// must not block for long; it returns false when the message could not be queued. The library
// never deletes a sink.
class VeloraMessageSink {
public:
    virtual ~VeloraMessageSink() = default;
    virtual bool Post(unsigned int message, WPARAM wparam, LPARAM lparam) = 0;
};

// A window handle: the sink that receives the messages, or null for none.
typedef VeloraMessageSink* HWND;

// A handle of a library object; for events, one made by U_CreateEvent (VeloraUtils/Events.h),
// which is pollable: its descriptor is readable while the event is set.
typedef void* HANDLE;

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
