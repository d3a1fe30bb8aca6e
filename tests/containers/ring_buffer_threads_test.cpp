// Ring buffer list across threads: the wake-up protocol (window messages, events, both), the event
// calls, and a one-writer one-reader stress run that checks every byte arrives once and in order
// and that no wake-up is lost or sent without a drain.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "VeloraUtils/Events.h"
#include "VeloraUtils/RingBuffers.h"
#include "platform/Events.h"

#ifndef VELORA_RING_STRESS_MIB
#define VELORA_RING_STRESS_MIB 256
#endif

namespace {

using velora::platform::MessageWindow;
using velora::platform::WindowMessage;

constexpr std::uint64_t kParameter = 0xABCDEF0123456789ull;

TEST(RingBufferEvents, SetWaitResetAndTimeout) {
    const struct Case {
        const char* name;
        bool manualReset, initiallySet;
        const char* script; // s set, r reset; digits: expected wait result (0 timeout, 1 set)
    } cases[] = {
        {"auto-reset: one wait per set", false, false, "0s10ss10"},
        {"manual-reset: set until reset", true, false, "0s11r0"},
        {"created set", false, true, "10"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HANDLE event = U_CreateEvent(c.manualReset, c.initiallySet);
        ASSERT_NE(event, nullptr);
        for (const char* p = c.script; *p != '\0'; ++p)
            EXPECT_TRUE(*p == 's'   ? U_SetEvent(event)
                        : *p == 'r' ? U_ResetEvent(event)
                                    : U_WaitForEvent(event, *p == '0' ? 10 : 0) == *p - '0')
                << p;
        EXPECT_TRUE(U_CloseEvent(event));
    }
    EXPECT_EQ(U_WaitForEvent(nullptr, 0), -1);
    EXPECT_FALSE(U_SetEvent(nullptr));
    EXPECT_EQ(U_GetEventDescriptor(nullptr), -1);
    // Another thread's set releases a waiter without a time limit.
    HANDLE event = U_CreateEvent(false, false);
    std::thread setter([event] { U_SetEvent(event); });
    EXPECT_EQ(U_WaitForEvent(event, kVeloraWaitForever), 1);
    setter.join();
    U_CloseEvent(event);
}

// What a step of a notification script produced.
struct Outcome {
    std::vector<WindowMessage> messages;
    bool eventSet = false;
};

TEST(RingBufferNotification, FirstWriteAfterADrainWakesTheReaderOnce) {
    enum Kind { kWindow, kEvent, kBoth };
    // Steps: w write a byte, g fill the write ring in place, d drain, F write until overflow,
    // x a refused write, R drain and ResetOverflow, n clear the window, W set a second window.
    // Expected per step: M one message (next counter), E the event set, . nothing.
    const struct Case {
        const char* name;
        Kind kind;
        const char* script;
        const char* expected;
    } cases[] = {
        {"window: one message per drain", kWindow, "wwdww", "M..M."},
        {"event: one set per drain", kEvent, "wwdww", "E..E."},
        {"both: the window while one is set", kBoth, "wwdw", "M..M"},
        {"both: clearing the window switches the waiter to the event", kBoth, "wndwWw", "ME.EM."},
        {"window: with no window the wake-up waits for one", kWindow, "nwdwWw", ".....M"},
        {"overflow wakes nobody; ResetOverflow asks again", kWindow, "dFxdxRw", ".M....M"},
        {"a new ring started in place asks for a wake-up", kWindow, "gg", "MM"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MessageWindow first, second;
        ASSERT_NE(first.Handle(), nullptr);
        HANDLE event = U_CreateEvent(false, false);
        std::unique_ptr<RingBufferList> list;
        if (c.kind == kEvent)
            list = std::make_unique<RingBufferListEventNotification>(8, 8, 2, 0, false, event);
        else if (c.kind == kWindow)
            list = std::make_unique<RingBufferListWindowsNotification>(8, 8, 2, 0, false, first.Handle(),
                                                                       kParameter);
        else
            list = std::make_unique<RingBufferListEventAndWindowsNotification>(
                8, 8, 2, 0, false, first.Handle(), kParameter, event);
        auto* windowed =
            c.kind == kEvent ? nullptr : static_cast<RingBufferListWindowsNotification*>(list.get());
        std::int64_t counter = 0;
        for (std::size_t i = 0; c.script[i] != '\0'; ++i) {
            SCOPED_TRACE(i);
            unsigned int available = 0;
            switch (c.script[i]) {
            case 'w':
                EXPECT_EQ(list->Write("a", 1), 0u);
                break;
            case 'g':
                if (char* place = list->GetWriteBuffer(available)) {
                    std::memset(place, 'g', available);
                    list->IncrementWriteCursor(available);
                }
                break;
            case 'd':
            case 'R':
                EXPECT_FALSE(list->IncrementReadCursor(1000));
                if (c.script[i] == 'R') {
                    EXPECT_TRUE(list->ResetOverflow());
                }
                break;
            case 'F':
                while (list->Write("fffff", 5) == 0) {
                }
                break;
            case 'x':
                EXPECT_EQ(list->Write("x", 1), 1u);
                break;
            case 'n':
                windowed->SetNotificationWindow(nullptr);
                break;
            case 'W':
                windowed->SetNotificationWindow(second.Handle());
                break;
            }
            WindowMessage message;
            std::string got;
            for (MessageWindow* window : {&first, &second}) {
                while (window->WaitForMessage(message, 0)) {
                    got += 'M';
                    EXPECT_EQ(message.message, 1424u);
                    EXPECT_EQ(message.wparam, kParameter);
                    EXPECT_EQ(message.lparam, counter++) << "the counter grows by one per message";
                }
            }
            if (U_WaitForEvent(event, 0) == 1) got += 'E';
            EXPECT_EQ(got, std::string(c.expected[i] == '.' ? "" : std::string(1, c.expected[i])));
        }
        list.reset();
        U_CloseEvent(event);
    }
}

// ---------------------------------------------------------------------------------------------
// Two threads: the writer sends a known byte stream in random chunks by block, slot and in-place
// writes; the reader takes it by in-place and LineBufferArray reads, consuming whole or partial
// runs, and waits for the wake-up whenever it has drained everything.
// ---------------------------------------------------------------------------------------------

constexpr unsigned int kPeriod = 251; // stream byte i is i % 251
constexpr unsigned int kMaxChunk = 8192;
constexpr unsigned int kWaitLimitMs = 20000; // a lost wake-up shows as a wait this long

struct StressResult {
    unsigned long long received = 0, mismatches = 0;
    unsigned long long drains = 0, waits = 0, timeouts = 0, resets = 0, messages = 0, badMessages = 0;
    unsigned long long refusals = 0, ringMovesInPlace = 0;
};

void RunStress(bool useWindow, unsigned long long total, StressResult& result) {
    std::vector<char> pattern(kPeriod * (kMaxChunk / kPeriod + 2));
    for (std::size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<char>(i % kPeriod);
    HANDLE event = U_CreateEvent(false, false);
    std::unique_ptr<RingBufferList> list;
    RingBufferListWindowsNotification* windowed = nullptr;
    if (useWindow) {
        windowed =
            new RingBufferListWindowsNotification(1 << 12, 1 << 15, 3, 256, false, nullptr, kParameter);
        list.reset(windowed);
    } else {
        list = std::make_unique<RingBufferListEventNotification>(1 << 12, 1 << 15, 3, 256, false, event);
    }
    std::atomic<bool> ready{false}, writerDone{false};

    std::thread reader([&] {
        MessageWindow window; // created on the thread that waits on it
        if (windowed != nullptr) windowed->SetNotificationWindow(window.Handle());
        ready.store(true);
        std::minstd_rand rng(7);
        LineBufferArray views(8);
        auto check = [&](const char* data, unsigned int length, unsigned long long at) {
            for (unsigned int done = 0, piece = 0; done < length; done += piece, at += piece) {
                piece = std::min(length - done, kMaxChunk);
                if (std::memcmp(data + done, pattern.data() + at % kPeriod, piece) != 0) ++result.mismatches;
            }
        };
        std::int64_t counter = 0;
        auto takeMessage = [&](unsigned int timeout) {
            WindowMessage message;
            if (!window.WaitForMessage(message, timeout)) return false;
            ++result.messages;
            if (message.message != 1424 || message.wparam != kParameter || message.lparam != counter++)
                ++result.badMessages;
            return true;
        };
        while (result.received < total) {
            bool more = false;
            if (rng() % 2 == 0) {
                unsigned int length = 0, secondLength = 0;
                char* second = nullptr;
                if (const char* first = list->Read(length, second, secondLength)) {
                    check(first, length, result.received);
                    if (second != nullptr) check(second, secondLength, result.received + length);
                    const unsigned int held = length + secondLength;
                    const unsigned int consume =
                        rng() % 4 == 0 ? 1 + static_cast<unsigned int>(rng() % held) : held;
                    more = list->IncrementReadCursor(consume);
                    result.received += consume;
                } else {
                    more = list->IncrementReadCursor(0);
                }
            } else {
                list->Read(views);
                unsigned long long at = result.received;
                for (unsigned int i = 0; i < views.GetFilledBufferCount(); ++i) {
                    const LineBuffer& view = views.GetRingVector().At(i);
                    check(view.GetData(), view.GetLength(), at);
                    at += view.GetLength();
                }
                more = list->IncrementReadCursor(views.GetTotalSize());
                result.received += views.GetTotalSize();
            }
            if (more) continue;
            ++result.drains;
            if (result.received >= total) break;
            if (list->isOverflow() && list->ResetOverflow()) ++result.resets;
            const bool woken =
                useWindow ? takeMessage(kWaitLimitMs) : U_WaitForEvent(event, kWaitLimitMs) == 1;
            if (!woken) {
                ++result.timeouts;
                break;
            }
            ++result.waits;
        }
        while (!writerDone.load()) std::this_thread::yield();
        while (useWindow && takeMessage(0)) {
        }
    });

    std::thread writer([&] {
        while (!ready.load()) std::this_thread::yield();
        std::minstd_rand rng(11);
        unsigned long long sent = 0;
        while (sent < total) {
            const unsigned int limit = rng() % 8 == 0 ? kMaxChunk : 64;
            const auto chunk =
                static_cast<unsigned int>(std::min<unsigned long long>(1 + rng() % limit, total - sent));
            const char* source = pattern.data() + sent % kPeriod;
            unsigned int left = chunk;
            switch (rng() % 3) {
            case 0:
                left = list->Write(source, chunk);
                break;
            case 1: {
                const unsigned int a = chunk / 3, b = chunk / 2;
                WSABUF slots[] = {{a, const_cast<char*>(source)},
                                  {b - a, const_cast<char*>(source + a)},
                                  {chunk - b, const_cast<char*>(source + b)}};
                left = list->Write(slots, 3, 0);
                break;
            }
            default: {
                unsigned int available = 0;
                const unsigned int ringBefore = list->GetWriteRing();
                if (char* place = list->GetWriteBuffer(available)) {
                    const unsigned int n = std::min(available, chunk);
                    std::memcpy(place, source, n);
                    list->IncrementWriteCursor(n);
                    left = chunk - n;
                }
                if (list->GetWriteRing() != ringBefore) ++result.ringMovesInPlace;
                break;
            }
            }
            sent += chunk - left;
            if (left != 0) {
                ++result.refusals;
                std::this_thread::yield(); // overflow (or no room in place): let the reader drain
            }
        }
        writerDone.store(true);
    });
    writer.join();
    reader.join();
    if (windowed != nullptr) {
        EXPECT_EQ(result.messages, windowed->GetMessageCounter());
    }
    list.reset();
    U_CloseEvent(event);
}

TEST(RingBufferListThreads, EveryByteArrivesOnceInOrderAndNoWakeUpIsLost) {
    const unsigned long long total = static_cast<unsigned long long>(VELORA_RING_STRESS_MIB) << 20;
    for (const bool useWindow : {true, false}) {
        SCOPED_TRACE(useWindow ? "window messages" : "event");
        StressResult r;
        RunStress(useWindow, total, r);
        std::printf(
            "%s: %llu MiB, %llu drains, %llu waits, %llu messages, %llu overflow resets, %llu refusals\n",
            useWindow ? "window" : "event", total >> 20, r.drains, r.waits, r.messages, r.resets, r.refusals);
        EXPECT_EQ(r.received, total);
        EXPECT_EQ(r.mismatches, 0u);
        EXPECT_EQ(r.timeouts, 0u) << "the reader waited after a drain and no wake-up came";
        EXPECT_LE(r.waits, r.drains);
        if (useWindow) {
            EXPECT_EQ(r.badMessages, 0u);
            EXPECT_GE(r.messages, r.waits);
            // Every message answers a request: a drain, an overflow reset, or a ring started in place.
            EXPECT_LE(r.messages, r.drains + r.resets + r.ringMovesInPlace);
        }
    }
}

} // namespace
