// The message window on POSIX: a message sink that queues what is posted to it.
#include "platform/Events.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace velora::platform {

struct MessageWindow::State final : VeloraMessageSink {
    bool Post(unsigned int message, WPARAM wparam, LPARAM lparam) override {
        {
            std::lock_guard<std::mutex> lock(mutex);
            queue.push_back({message, static_cast<std::uint64_t>(wparam), static_cast<std::int64_t>(lparam)});
        }
        arrived.notify_one();
        return true;
    }

    std::mutex mutex;
    std::condition_variable arrived;
    std::deque<WindowMessage> queue;
};

MessageWindow::MessageWindow() : state_(new State) {}

MessageWindow::~MessageWindow() {
    delete state_;
}

HWND MessageWindow::Handle() const noexcept {
    return state_;
}

bool MessageWindow::WaitForMessage(WindowMessage& out, unsigned int timeoutMilliseconds) {
    std::unique_lock<std::mutex> lock(state_->mutex);
    if (!state_->arrived.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                                  [this] { return !state_->queue.empty(); }))
        return false;
    out = state_->queue.front();
    state_->queue.pop_front();
    return true;
}

} // namespace velora::platform
