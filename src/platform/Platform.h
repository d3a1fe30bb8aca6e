// Platform.h - the library's one internal interface to the operating system.
// Every OS call of the library goes through these functions; the Windows implementation lives in
// src/platform/win32/ and the POSIX one in src/platform/posix/, with matching file names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VeloraUtils/PlatformTypes.h"
#include "platform/Events.h"
#include "platform/Files.h"

namespace velora::platform {

// Identifier of the calling thread as the OS knows it (Windows thread id, Linux tid).
// Stable for the thread's lifetime and distinct between live threads.
std::uint32_t CurrentThreadId() noexcept;

// Gives up the rest of the calling thread's time slice (Sleep(0) / sched_yield).
void YieldThread() noexcept;

// Short name of the backend compiled in: "win32" or "posix".
const char* BackendName() noexcept;

// ---------------------------------------------------------------------------------------------
// Stream sockets. A SocketHandle holds a Windows SOCKET or a POSIX descriptor; kInvalidSocket
// marks none. Blocking sockets throughout; any thread may call, one socket per thread at a time.
// ---------------------------------------------------------------------------------------------
using SocketHandle = std::uintptr_t;
inline constexpr SocketHandle kInvalidSocket = ~SocketHandle{0};

// Opens a connected pair of TCP sockets over 127.0.0.1 (a listener on an ephemeral port accepts
// one connection and is closed again). Starts the socket layer on first use where the system
// needs that. On failure both handles are kInvalidSocket and false is returned.
bool OpenLoopbackPair(SocketHandle& a, SocketHandle& b) noexcept;

// Sends the bytes of slots[0..count-1] in order as one gathered send (WSASend / sendmsg with the
// slots as its vector; lists over 1024 slots in calls of 1024), continuing after a partial send
// until everything is out. Returns the
// number of bytes sent, or -1 when the system reports an error. Never raises SIGPIPE.
long long GatherSend(SocketHandle socket, const WSABUF* slots, unsigned count) noexcept;

// Receives at most `size` bytes into `buffer`. Returns the count received, 0 when the peer has
// closed the connection, -1 on error.
long long Receive(SocketHandle socket, char* buffer, std::size_t size) noexcept;

// Closes the socket; kInvalidSocket is ignored.
void CloseSocket(SocketHandle socket) noexcept;

} // namespace velora::platform
