// Thread identity and yielding on Windows.
#include "platform/Platform.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace velora::platform {

std::uint32_t CurrentThreadId() noexcept {
    return static_cast<std::uint32_t>(::GetCurrentThreadId());
}

void YieldThread() noexcept {
    ::Sleep(0);
}

const char* BackendName() noexcept {
    return "win32";
}

} // namespace velora::platform
