// Thread identity and yielding on POSIX (Linux).
#include "platform/Platform.h"

#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velora::platform {

std::uint32_t CurrentThreadId() noexcept {
    // The kernel thread id: what tools such as top and gdb show, and unique among live threads.
    thread_local const std::uint32_t tid = static_cast<std::uint32_t>(::syscall(SYS_gettid));
    return tid;
}

void YieldThread() noexcept {
    ::sched_yield();
}

const char* BackendName() noexcept {
    return "posix";
}

} // namespace velora::platform
