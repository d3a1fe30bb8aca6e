// Platform.h - the library's one internal interface to the operating system.
// Every OS call of the library goes through these functions; the Windows implementation lives in
// src/platform/win32/ and the POSIX one in src/platform/posix/, with matching file names.
#pragma once

#include <cstdint>

namespace velora::platform {

// Identifier of the calling thread as the OS knows it (Windows thread id, Linux tid).
// Stable for the thread's lifetime and distinct between live threads.
std::uint32_t CurrentThreadId() noexcept;

// Gives up the rest of the calling thread's time slice (Sleep(0) / sched_yield).
void YieldThread() noexcept;

// Short name of the backend compiled in: "win32" or "posix".
const char* BackendName() noexcept;

} // namespace velora::platform
