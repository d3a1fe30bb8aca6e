// RingBufferList.cpp - the growing chain of rings and its notifying subclasses.
//
// Memory ordering: the writer creates a ring, stores it in its place and then stores writeRing with
// release; the reader loads writeRing with acquire, so once it sees that the writer has left a
// ring, everything the writer put into that ring is visible and the ring is final. The reader frees
// a ring, clears its place and then stores readRing with release; the writer loads readRing with
// acquire before it reuses a place. The wake-up handshake is a store-then-load on each side
// (reader: notifyPending, then the cursors; writer: the cursors, then notifyPending) and needs a
// sequentially consistent fence on both sides; see TakeNotifyRequest and IncrementReadCursor.
#include <algorithm>
#include <cstring>
#include <memory>

#include "VeloraUtils/RingBuffers.h"
#include "containers/detail/RingDetail.h"
#include "platform/Events.h"

using velora::containers::detail::ByteSource;
using velora::containers::detail::RaisedRingSize;
using velora::containers::detail::SaturatingAdd;

namespace {
constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr auto kAcquire = std::memory_order_acquire;
constexpr auto kRelease = std::memory_order_release;
} // namespace

RingBufferList::RingBufferList(unsigned int initialSize, unsigned int high, unsigned int places,
                               unsigned int minSpace, bool contiguousMode)
    : firstRingSize(RaisedRingSize(initialSize, minSpace)), highSize(std::max(high, initialSize)),
      nextRingSize(initialSize), maxRings(std::max(places, 2u)), minWriteSpace(minSpace),
      rings(new std::atomic<RingBuffer*>[maxRings]()), contiguous(contiguousMode) {
    try {
        rings[0].store(new RingBuffer(initialSize, minSpace, contiguousMode), kRelaxed);
    } catch (...) {
        delete[] rings;
        throw;
    }
}

RingBufferList::~RingBufferList() {
    Cleanup();
    delete[] rings;
}

void RingBufferList::Cleanup() noexcept {
    std::uint32_t place = readRing.load(kRelaxed);
    const std::uint32_t last = writeRing.load(kRelaxed);
    for (;;) {
        delete rings[place].exchange(nullptr, kRelaxed);
        if (place == last) break;
        place = (place + 1) % maxRings;
    }
    readRing.store(0, kRelaxed);
    writeRing.store(0, kRelaxed);
    notifyPending.store(true, kRelaxed);
}

void RingBufferList::Reset() {
    std::unique_ptr<RingBuffer> fresh(new RingBuffer(nextRingSize, minWriteSpace, contiguous));
    Cleanup();
    rings[0].store(fresh.release(), kRelaxed);
}

// ---------------------------------------------------------------------------------------------
// Writer side
// ---------------------------------------------------------------------------------------------

RingBuffer* RingBufferList::WriteRingBuffer() const noexcept {
    return rings[writeRing.load(kRelaxed)].load(kRelaxed);
}

RingBuffer* RingBufferList::CreateRing(unsigned int minSize) {
    if (nextRingSize < highSize)
        nextRingSize = static_cast<unsigned int>(
            std::min<std::uint64_t>(std::uint64_t{nextRingSize} * 2u, std::uint64_t{highSize}));
    return new RingBuffer(std::max(nextRingSize, minSize), minWriteSpace, contiguous);
}

RingBuffer* RingBufferList::AllocateNextRing(unsigned int minSize) {
    const std::uint32_t next = (writeRing.load(kRelaxed) + 1) % maxRings;
    // Acquire: the reader clears a place before it moves readRing past it.
    if (next == readRing.load(kAcquire)) {
        notifyPending.store(false, kRelaxed);
        overflow.store(true, kRelease);
        // The reader may have drained and moved on since readRing was loaded, and be waiting without
        // having seen the overflow. Store-then-load on both sides (here overflow then readRing, in
        // the reader readRing then overflow, with the drain's fence between): if the reader missed
        // the flag, this load sees it moved, and the wake-up request is restored so that the
        // caller's Notify wakes it to reset the overflow.
        std::atomic_thread_fence(std::memory_order_seq_cst);
        if (readRing.load(kRelaxed) != next) notifyPending.store(true, kRelaxed);
        return nullptr;
    }
    RingBuffer* ring = CreateRing(minSize);
    rings[next].store(ring, kRelease);
    // Release: a reader that sees the new index sees the ring and all data left in the old one.
    writeRing.store(next, kRelease);
    return ring;
}

unsigned int RingBufferList::WriteBlock(ByteSource& source, unsigned int length) {
    // Acquire: pairs with ResetOverflow, which resets the cursors before clearing the flag.
    if (overflow.load(kAcquire)) return length;
    unsigned int left = WriteRingBuffer()->WriteFrom(source, length);
    if (left != 0) {
        if (RingBuffer* next = AllocateNextRing(SaturatingAdd(length, 1)))
            left = next->WriteFrom(source, left);
    }
    Notify();
    return left;
}

unsigned int RingBufferList::Write(const char* data, unsigned int length) {
    if (!overflow.load(kAcquire) && WriteRingBuffer()->AppendFast(data, length)) {
        Notify();
        return 0;
    }
    ByteSource source;
    source.block = data;
    return WriteBlock(source, length);
}

unsigned int RingBufferList::Write(WSABUF* slots, unsigned int slotCount, unsigned int totalLength) {
    std::uint64_t sum = 0;
    for (unsigned int i = 0; i < slotCount; ++i) sum += slots[i].len;
    const unsigned int total = totalLength == 0 || totalLength > sum ? SaturatingAdd(sum, 0) : totalLength;
    ByteSource source;
    source.slot = slots;
    source.slotsLeft = slotCount;
    return WriteBlock(source, total);
}

const char* RingBufferList::Write(const char* text) {
    if (text == nullptr) return nullptr;
    if (overflow.load(kAcquire)) return *text == '\0' ? nullptr : text;
    const char* rest = WriteRingBuffer()->Write(text);
    if (rest != nullptr) {
        if (RingBuffer* next = AllocateNextRing(SaturatingAdd(std::strlen(rest), 1)))
            rest = next->Write(rest);
    }
    Notify();
    return rest;
}

bool RingBufferList::Write(char c) {
    if (overflow.load(kAcquire)) return true;
    bool full = WriteRingBuffer()->Write(c);
    if (full) {
        if (RingBuffer* next = AllocateNextRing(2)) full = next->Write(c);
    }
    Notify();
    return full;
}

char* RingBufferList::GetWriteBuffer(unsigned int& available) {
    available = 0;
    if (overflow.load(kAcquire)) return nullptr;
    char* place = WriteRingBuffer()->GetWriteBuffer(available);
    if (available != 0) return place; // null when below minWriteSpace: the reader must make room
    RingBuffer* next = AllocateNextRing(0);
    if (next == nullptr) {
        Notify(); // wakes nobody unless the overflow raced with a drain (see AllocateNextRing)
        return nullptr;
    }
    notifyPending.store(true, kRelaxed);
    return next->GetWriteBuffer(available);
}

bool RingBufferList::IncrementWriteCursor(unsigned int count) {
    const bool wasEmpty = WriteRingBuffer()->IncrementWriteCursor(count);
    Notify();
    return wasEmpty;
}

bool RingBufferList::TakeNotifyRequest() noexcept {
    // The write just published its data; this fence orders that before the load of notifyPending.
    // It pairs with the reader's fence in IncrementReadCursor (store notifyPending, fence, look at
    // the cursors), so at least one side sees the other: no wake-up is lost after a drain.
    std::atomic_thread_fence(std::memory_order_seq_cst);
    if (!notifyPending.load(kRelaxed)) return false;
    // Only the reader sets the flag and only the writer clears it, so a load and a store suffice.
    notifyPending.store(false, kRelaxed);
    WriteRingBuffer()->SetDirty(false);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Reader side
// ---------------------------------------------------------------------------------------------

RingBuffer* RingBufferList::LeaveReadRing() noexcept {
    const std::uint32_t place = readRing.load(kRelaxed);
    delete rings[place].exchange(nullptr, kRelaxed);
    const std::uint32_t next = (place + 1) % maxRings;
    // Release: the writer may take the freed place only after it is cleared.
    readRing.store(next, kRelease);
    return rings[next].load(kAcquire);
}

RingBuffer* RingBufferList::SkipFinishedRings() noexcept {
    RingBuffer* ring = rings[readRing.load(kRelaxed)].load(kAcquire);
    // writeRing is loaded before the ring is tested: a ring the writer had left by then is final,
    // so finding it empty means it stays empty.
    while (readRing.load(kRelaxed) != writeRing.load(kAcquire) && ring->isEmpty()) ring = LeaveReadRing();
    return ring;
}

char* RingBufferList::Read(unsigned int& length, char*& secondPart, unsigned int& secondLength) {
    for (;;) {
        const bool last = readRing.load(kRelaxed) == writeRing.load(kAcquire);
        RingBuffer* ring = rings[readRing.load(kRelaxed)].load(kAcquire);
        char* first = ring->Read(length, secondPart, secondLength);
        if (first != nullptr || last) return first;
        LeaveReadRing();
    }
}

bool RingBufferList::Read(char& c) {
    for (;;) {
        const bool last = readRing.load(kRelaxed) == writeRing.load(kAcquire);
        if (rings[readRing.load(kRelaxed)].load(kAcquire)->Read(c)) return true;
        if (last) return false;
        LeaveReadRing();
    }
}

char RingBufferList::PeepNextChar() const noexcept {
    return rings[readRing.load(kRelaxed)].load(kAcquire)->PeepNextChar();
}

bool RingBufferList::IncrementReadCursor(unsigned int count) {
    RingBuffer* ring = rings[readRing.load(kRelaxed)].load(kAcquire);
    unsigned int excess = count;
    for (;;) {
        // Loaded first: if the writer had left this ring, the cut at its end is final and the
        // excess belongs to the next ring.
        const bool left = readRing.load(kRelaxed) != writeRing.load(kAcquire);
        if (ring->IncrementReadCursor(excess)) return true;
        if (excess == 0 || !left) break;
        ring = LeaveReadRing();
    }
    // `ring` was just found empty (no need to look at its cursors again before the request).
    for (bool knownEmpty = true;; knownEmpty = false) {
        RingBuffer* current = SkipFinishedRings();
        if ((current != ring || !knownEmpty) && !current->isEmpty()) return true;
        ring = current;
        // Stored only when not set already, so that a reader polling an empty list does not keep
        // taking this line from the writer.
        if (!notifyPending.load(kRelaxed)) notifyPending.store(true, kRelaxed);
        // Pairs with the writer's fence in TakeNotifyRequest: after it, either the cursors loaded
        // below show the writer's new data (or its new ring), or the writer sees notifyPending.
        std::atomic_thread_fence(std::memory_order_seq_cst);
        if (readRing.load(kRelaxed) == writeRing.load(kAcquire)) return !ring->isEmpty();
    }
}

void RingBufferList::Skip() {
    for (;;) {
        const bool last = readRing.load(kRelaxed) == writeRing.load(kAcquire);
        rings[readRing.load(kRelaxed)].load(kAcquire)->Skip();
        if (last) break;
        LeaveReadRing();
    }
    notifyPending.store(true, kRelaxed);
    // As in IncrementReadCursor: a later isEmpty() on this thread and the writer's next
    // TakeNotifyRequest cannot both miss each other.
    std::atomic_thread_fence(std::memory_order_seq_cst);
}

unsigned int RingBufferList::GetAllData(LineBufferArray& out) const {
    unsigned int total = 0;
    std::uint32_t place = readRing.load(kRelaxed);
    for (;;) {
        const std::uint32_t last = writeRing.load(kAcquire);
        const RingBuffer* ring = rings[place].load(kAcquire);
        unsigned int length = 0, secondLength = 0;
        char* secondPart = nullptr;
        const char* first = ring->Runs(ring->readCursor.load(kRelaxed), ring->writeCursor.load(kAcquire),
                                       length, secondPart, secondLength);
        if (first != nullptr) {
            out.AddLineBuffer(first, length);
            total += length;
            if (secondPart != nullptr) {
                out.AddLineBuffer(secondPart, secondLength);
                total += secondLength;
            }
        }
        if (place == last) return total;
        place = (place + 1) % maxRings;
    }
}

bool RingBufferList::Read(LineBufferArray& out) {
    out.Clear();
    SkipFinishedRings();
    return GetAllData(out) != 0;
}

bool RingBufferList::ResetOverflow() {
    if (!overflow.load(kAcquire)) return false;
    const std::uint32_t place = readRing.load(kRelaxed);
    if (place != writeRing.load(kAcquire)) return false;
    RingBuffer* ring = rings[place].load(kAcquire);
    if (!ring->isEmpty()) return false;
    // The writer refuses every write while overflow is set, so the cursors can be reset here.
    ring->Reset();
    // Everything is drained: ask again for the wake-up that the overflow cleared (the writer cleared
    // it before setting the flag this thread has seen, so this store comes after).
    notifyPending.store(true, kRelaxed);
    // Release: a writer that sees the flag cleared also sees the reset cursors.
    overflow.store(false, kRelease);
    return true;
}

bool RingBufferList::isEmpty() const noexcept {
    std::uint32_t place = readRing.load(kRelaxed);
    for (;;) {
        const std::uint32_t last = writeRing.load(kAcquire);
        if (!rings[place].load(kAcquire)->isEmpty()) return false;
        if (place == last) return true;
        place = (place + 1) % maxRings;
    }
}

unsigned int RingBufferList::GetReadCursor() const noexcept {
    return rings[readRing.load(kRelaxed)].load(kAcquire)->GetReadCursor();
}

unsigned int RingBufferList::GetWriteCursor() const noexcept {
    return WriteRingBuffer()->GetWriteCursor();
}

// ---------------------------------------------------------------------------------------------
// Notifying subclasses
// ---------------------------------------------------------------------------------------------

RingBufferListWindowsNotification::RingBufferListWindowsNotification(unsigned int initialSize,
                                                                     unsigned int high, unsigned int places,
                                                                     unsigned int minSpace,
                                                                     bool contiguousMode, HWND target,
                                                                     std::uint64_t parameter)
    : RingBufferList(initialSize, high, places, minSpace, contiguousMode), window(target),
      messageParameter(parameter) {}

void RingBufferListWindowsNotification::SetNotificationWindow(HWND target) {
    window.store(target, kRelease);
}

void RingBufferListWindowsNotification::PostNotification(HWND target) {
    const std::uint64_t counter = messageCounter.fetch_add(1, kRelaxed);
    velora::platform::PostWindowMessage(target, kRingBufferMessage, messageParameter,
                                        static_cast<std::int64_t>(counter));
}

void RingBufferListWindowsNotification::Notify() {
    HWND target = window.load(kAcquire);
    if (target != nullptr && TakeNotifyRequest()) PostNotification(target);
}

RingBufferListEventNotification::RingBufferListEventNotification(unsigned int initialSize, unsigned int high,
                                                                 unsigned int places, unsigned int minSpace,
                                                                 bool contiguousMode, HANDLE target)
    : RingBufferList(initialSize, high, places, minSpace, contiguousMode), event(target) {}

void RingBufferListEventNotification::Notify() {
    HANDLE target = event.load(kAcquire);
    if (target != nullptr && TakeNotifyRequest()) velora::platform::SignalEvent(target);
}

RingBufferListEventAndWindowsNotification::RingBufferListEventAndWindowsNotification(
    unsigned int initialSize, unsigned int high, unsigned int places, unsigned int minSpace,
    bool contiguousMode, HWND targetWindow, std::uint64_t parameter, HANDLE target)
    : RingBufferListWindowsNotification(initialSize, high, places, minSpace, contiguousMode, targetWindow,
                                        parameter),
      event(target) {}

void RingBufferListEventAndWindowsNotification::SetNotificationWindow(HWND target) {
    if (window.load(kAcquire) == target) return;
    if (target != nullptr) {
        PostNotification(target);
        window.store(target, kRelease);
    } else {
        window.store(nullptr, kRelease);
        HANDLE waiter = event.load(kAcquire);
        if (waiter != nullptr) velora::platform::SignalEvent(waiter);
    }
}

void RingBufferListEventAndWindowsNotification::Notify() {
    HWND target = window.load(kAcquire);
    HANDLE waiter = event.load(kAcquire);
    if ((target == nullptr && waiter == nullptr) || !TakeNotifyRequest()) return;
    if (target != nullptr)
        PostNotification(target);
    else
        velora::platform::SignalEvent(waiter);
}
