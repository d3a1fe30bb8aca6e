// Events and window messages on POSIX: an event is a library object over a non-blocking eventfd
// (readable while set), a window is the caller's message sink.
#include "platform/Events.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <new>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace velora::platform {

namespace {

// What a POSIX HANDLE of an event points at.
struct EventObject {
    int fd;
    bool manualReset;
};

EventObject* ToEvent(HANDLE event) noexcept {
    return static_cast<EventObject*>(event);
}

// Empties the eventfd counter; true when it held a set (nonzero) value.
bool Drain(int fd) noexcept {
    std::uint64_t value = 0;
    ssize_t n;
    do n = ::read(fd, &value, sizeof value);
    while (n < 0 && errno == EINTR);
    return n == static_cast<ssize_t>(sizeof value);
}

} // namespace

HANDLE CreateEventObject(bool manualReset, bool initiallySet) noexcept {
    const int fd = ::eventfd(initiallySet ? 1u : 0u, EFD_CLOEXEC | EFD_NONBLOCK);
    if (fd < 0) return nullptr;
    auto* event = new (std::nothrow) EventObject{fd, manualReset};
    if (event == nullptr) ::close(fd);
    return event;
}

bool SignalEvent(HANDLE event) noexcept {
    if (event == nullptr) return false;
    const std::uint64_t one = 1;
    ssize_t n;
    do n = ::write(ToEvent(event)->fd, &one, sizeof one);
    while (n < 0 && errno == EINTR);
    // EAGAIN only when the counter is at its limit, which means set already.
    return n == static_cast<ssize_t>(sizeof one) || (n < 0 && errno == EAGAIN);
}

bool UnsignalEvent(HANDLE event) noexcept {
    if (event == nullptr) return false;
    Drain(ToEvent(event)->fd);
    return true;
}

int WaitForEvent(HANDLE event, unsigned int timeoutMilliseconds) noexcept {
    if (event == nullptr) return -1;
    const EventObject& e = *ToEvent(event);
    using Clock = std::chrono::steady_clock;
    const bool forever = timeoutMilliseconds == 0xFFFFFFFFu;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    for (;;) {
        int wait = -1;
        if (!forever) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            wait = left > 0 ? static_cast<int>(left) : 0;
        }
        pollfd p{e.fd, POLLIN, 0};
        const int ready = ::poll(&p, 1, wait);
        if (ready < 0 && errno != EINTR) return -1;
        if (ready > 0) {
            if ((p.revents & POLLIN) == 0) return -1;
            // An auto-reset event is taken by the waiter that empties the counter; another waiter
            // that saw it readable too finds it empty and waits on.
            if (e.manualReset || Drain(e.fd)) return 1;
        }
        if (ready == 0 && wait == 0) return 0;
    }
}

bool CloseEvent(HANDLE event) noexcept {
    if (event == nullptr) return false;
    ::close(ToEvent(event)->fd);
    delete ToEvent(event);
    return true;
}

int EventDescriptor(HANDLE event) noexcept {
    return event == nullptr ? -1 : ToEvent(event)->fd;
}

bool PostWindowMessage(HWND window, unsigned int message, std::uint64_t wparam, std::int64_t lparam) {
    if (window == nullptr) return false;
    return window->Post(message, static_cast<WPARAM>(wparam), static_cast<LPARAM>(lparam));
}

} // namespace velora::platform
