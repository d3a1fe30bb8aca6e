// Events and window messages on Windows: the system's event objects and PostMessageA.
#include "platform/Events.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace velora::platform {

HANDLE CreateEventObject(bool manualReset, bool initiallySet) noexcept {
    return ::CreateEventA(nullptr, manualReset ? TRUE : FALSE, initiallySet ? TRUE : FALSE, nullptr);
}

bool SignalEvent(HANDLE event) noexcept {
    return event != nullptr && ::SetEvent(event) != FALSE;
}

bool UnsignalEvent(HANDLE event) noexcept {
    return event != nullptr && ::ResetEvent(event) != FALSE;
}

int WaitForEvent(HANDLE event, unsigned int timeoutMilliseconds) noexcept {
    if (event == nullptr) return -1;
    switch (
        ::WaitForSingleObject(event, timeoutMilliseconds == 0xFFFFFFFFu ? INFINITE : timeoutMilliseconds)) {
    case WAIT_OBJECT_0:
        return 1;
    case WAIT_TIMEOUT:
        return 0;
    default:
        return -1;
    }
}

bool CloseEvent(HANDLE event) noexcept {
    return event != nullptr && ::CloseHandle(event) != FALSE;
}

int EventDescriptor(HANDLE) noexcept {
    return -1;
}

bool PostWindowMessage(HWND window, unsigned int message, std::uint64_t wparam, std::int64_t lparam) {
    return window != nullptr &&
           ::PostMessageA(window, message, static_cast<WPARAM>(wparam), static_cast<LPARAM>(lparam)) != FALSE;
}

} // namespace velora::platform
