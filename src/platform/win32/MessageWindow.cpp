// The message window on Windows: a message-only window (parent HWND_MESSAGE) of the creating
// thread, whose posted messages WaitForMessage takes from the thread's queue.
#include "platform/Events.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace velora::platform {

namespace {

constexpr char kClassName[] = "VeloraMessageWindow";

// Registers the window class once per process (a second registration fails harmlessly).
void RegisterClassOnce() noexcept {
    static const bool registered = [] {
        WNDCLASSEXA cls{};
        cls.cbSize = sizeof cls;
        cls.lpfnWndProc = ::DefWindowProcA;
        cls.hInstance = ::GetModuleHandleA(nullptr);
        cls.lpszClassName = kClassName;
        return ::RegisterClassExA(&cls) != 0;
    }();
    (void)registered;
}

} // namespace

struct MessageWindow::State {
    HWND window = nullptr;
};

MessageWindow::MessageWindow() : state_(new State) {
    RegisterClassOnce();
    state_->window = ::CreateWindowExA(0, kClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       ::GetModuleHandleA(nullptr), nullptr);
}

MessageWindow::~MessageWindow() {
    if (state_->window != nullptr) ::DestroyWindow(state_->window);
    delete state_;
}

HWND MessageWindow::Handle() const noexcept {
    return state_->window;
}

bool MessageWindow::WaitForMessage(WindowMessage& out, unsigned int timeoutMilliseconds) {
    if (state_->window == nullptr) return false;
    const ULONGLONG deadline = ::GetTickCount64() + timeoutMilliseconds;
    for (;;) {
        MSG msg;
        if (::PeekMessageA(&msg, state_->window, 0, 0, PM_REMOVE)) {
            out.message = msg.message;
            out.wparam = static_cast<std::uint64_t>(msg.wParam);
            out.lparam = static_cast<std::int64_t>(msg.lParam);
            return true;
        }
        const ULONGLONG now = ::GetTickCount64();
        if (now >= deadline) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(deadline - now), QS_ALLPOSTMESSAGE);
    }
}

} // namespace velora::platform
