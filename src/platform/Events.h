// Events.h - events and window messages in the platform layer: event objects (Windows events /
// eventfd objects), posting a message to a window (PostMessageA / the caller's message sink), and a
// message window that test programs wait on.
#pragma once

#include <cstdint>

#include "VeloraUtils/PlatformTypes.h"

namespace velora::platform {

// A new event (see U_CreateEvent for the meaning of the flags), or null on failure.
HANDLE CreateEventObject(bool manualReset, bool initiallySet) noexcept;
// Sets / resets the event; false for a null handle or when the system refuses.
bool SignalEvent(HANDLE event) noexcept;
bool UnsignalEvent(HANDLE event) noexcept;
// 1 when set within `timeoutMilliseconds` (0xFFFFFFFF: no limit), 0 on timeout, -1 on failure.
int WaitForEvent(HANDLE event, unsigned int timeoutMilliseconds) noexcept;
// Releases the event; false for a null handle.
bool CloseEvent(HANDLE event) noexcept;
// The pollable descriptor of a POSIX event; -1 on Windows or for a null handle.
int EventDescriptor(HANDLE event) noexcept;

// Posts `message` with its two parameters to `window` without waiting for it to be handled
// (PostMessageA on Windows, the sink's Post on POSIX). False for a null window or when the post is
// refused. An exception thrown by a POSIX sink reaches the caller.
bool PostWindowMessage(HWND window, unsigned int message, std::uint64_t wparam, std::int64_t lparam);

// One message as a MessageWindow received it.
struct WindowMessage {
    unsigned int message = 0;
    std::uint64_t wparam = 0;
    std::int64_t lparam = 0;
};

// A window that only receives posted messages, for programs (tests) that check what was posted to
// them: a message-only window on Windows, an in-memory queue behind a message sink on POSIX.
// On Windows the window belongs to the creating thread: create it, wait on it and destroy it on
// one thread. Posting to Handle() is allowed from any thread.
class MessageWindow {
public:
    MessageWindow();
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    // The handle to post to; null when the window could not be created.
    HWND Handle() const noexcept;
    // Takes the next message posted to this window, waiting up to `timeoutMilliseconds` for one
    // (0: only what has arrived). False on timeout.
    bool WaitForMessage(WindowMessage& out, unsigned int timeoutMilliseconds);

private:
    struct State;
    State* state_;
};

} // namespace velora::platform
