// RingBuffers.h - byte rings that carry data from one writer thread to one reader thread without
// locks, and a list of such rings that grows instead of blocking the writer, optionally waking the
// reader by a window message or an event when data arrives after it has drained everything.
#pragma once

#include <atomic>
#include <cstdint>

#include "VeloraUtils/Export.h"
#include "VeloraUtils/LineBuffers.h"
#include "VeloraUtils/PlatformTypes.h"

namespace velora::containers::detail {
struct ByteSource;
} // namespace velora::containers::detail

// A byte ring for exactly one writer thread and one reader thread, which share the cursors without
// locks. readCursor == writeCursor means empty; one byte always stays free. When the writer has
// wrapped to the start the data runs from the read cursor to the end point, then from 0 to the
// write cursor. The reader consumes in place: Read hands out pointers into the ring and
// IncrementReadCursor gives the bytes back.
//
// Threads: the writer calls the Write family, GetWriteBuffer and IncrementWriteCursor; the reader
// calls the Read family, PeepNextChar, IncrementReadCursor and Skip; the getters and SetDirty may
// be called by either. Reset, assignment and destruction need both sides to be idle.
class VELORA_API RingBuffer {
public:
    // A ring of max(size, minWriteSpace + 2) bytes. `minWriteSpace` is the smallest space
    // GetWriteBuffer hands out; in `contiguous` mode a block write is never split at the wrap.
    RingBuffer(unsigned int size, unsigned int minWriteSpace, bool contiguous);
    // Deep copies: the copy has its own buffer with the same bytes, cursors and flags.
    RingBuffer(const RingBuffer& other);
    RingBuffer& operator=(const RingBuffer& other);
    ~RingBuffer();

    // Empties the ring: both cursors become 0.
    void Reset() noexcept;

    // Writes `length` bytes of `data` (see the class notes on wrapping) and returns how many were
    // NOT written: 0 when all fit. Not contiguous: as much as fits goes in. Contiguous: a block
    // that does not fit before the wrap goes whole to position 0 when it fits before the reader,
    // else nothing is written and `length` is returned.
    unsigned int Write(const char* data, unsigned int length) noexcept;
    // Writes the NUL-terminated `text` byte by byte (as Write(char)) until it ends or the ring is
    // full. Returns null when all was written, else the first byte not written.
    const char* Write(const char* text) noexcept;
    // Writes one byte; true when the ring was full and nothing was written. The last position of
    // the ring is never used by this write: at it the byte goes to position 0 instead.
    bool Write(char c) noexcept;
    // Writes the bytes of the slots[0..slotCount-1] run as one block of `totalLength` bytes (0:
    // the sum of the slot lengths; never more than that sum) by the rules of the block Write, and
    // returns how many of them were NOT written. `slots` and `slotCount` move past the slots written
    // whole (and past empty slots); a slot written in part is changed in place to describe its
    // unwritten rest.
    unsigned int Write(WSABUF*& slots, unsigned int& slotCount, unsigned int totalLength) noexcept;

    // The first readable run and its `length`; when the data wraps, the second run (from the
    // buffer start) in `secondPart`/`secondLength`, else null and 0. Null and length 0 when empty
    // (the ring is then marked dirty). Does not consume: see IncrementReadCursor.
    char* Read(unsigned int& length, char*& secondPart, unsigned int& secondLength) noexcept;
    // The same from `cursor`, a position within the readable data (e.g. the read cursor plus what
    // has been looked at), for looking ahead without consuming. A cursor at the end point of
    // wrapped data is moved to 0. Null and 0 when no data lies at or after the cursor.
    char* ReadFromCursor(unsigned int& cursor, unsigned int& length, char*& secondPart,
                         unsigned int& secondLength) const noexcept;
    // The next byte in `c` without consuming it; false (c unchanged) when empty.
    bool Read(char& c) noexcept;
    // The byte at the read cursor, with no test for emptiness.
    char PeepNextChar() const noexcept;

    // Consumes `count` bytes. When that is more than the ring holds, all is consumed and the
    // excess is left in `count` (0 otherwise). Returns whether data remains; false also marks the
    // ring dirty.
    bool IncrementReadCursor(unsigned int& count) noexcept;
    // Discards all unread data.
    void Skip() noexcept;

    // In-place writing: the place to write at and the contiguous space there in `available`, or
    // null when that space is 0 or below minWriteSpace (then `available` may still be nonzero).
    // When the tail is below minWriteSpace the writer wraps early to position 0 if the space there
    // is enough. Write there, then call IncrementWriteCursor.
    char* GetWriteBuffer(unsigned int& available) noexcept;
    // Publishes `count` bytes written in place (at most the `available` last handed out). Returns
    // true when the ring was empty before (the reader may be waiting).
    bool IncrementWriteCursor(unsigned int count) noexcept;

    bool isEmpty() const noexcept;
    unsigned int GetReadCursor() const noexcept { return readCursor.load(std::memory_order_relaxed); }
    unsigned int GetWriteCursor() const noexcept { return writeCursor.load(std::memory_order_relaxed); }
    unsigned int GetEndPoint() const noexcept { return endPoint.load(std::memory_order_relaxed); }
    const unsigned int& GetSize() const noexcept { return size; }
    const unsigned int& GetMinWriteSpace() const noexcept { return minWriteSpace; }
    const bool& isContiguous() const noexcept { return contiguous; }
    bool isDirty() const noexcept { return dirty.load(std::memory_order_relaxed); }
    void SetDirty(const bool& value) noexcept {
        if (dirty.load(std::memory_order_relaxed) != value) dirty.store(value, std::memory_order_relaxed);
    }

private:
    friend class RingBufferList;
    // The block write when it fits whole by the cached read cursor; false (nothing written) otherwise.
    bool AppendFast(const char* data, unsigned int length) noexcept;
    // The block-write rules with the bytes taken from `source`.
    unsigned int WriteFrom(velora::containers::detail::ByteSource& source, unsigned int length) noexcept;
    // The byte-write rules for [begin, end), or up to a NUL when `end` is null; returns the first
    // byte not written (`end`, or the NUL, when all fit).
    const char* WriteBytes(const char* begin, const char* end) noexcept;
    // The readable runs between read position `r` and write position `w` (the first run returned).
    char* Runs(std::uint32_t r, std::uint32_t w, unsigned int& length, char*& secondPart,
               unsigned int& secondLength) const noexcept;

    // Fixed at construction.
    unsigned int size;
    unsigned int minWriteSpace;
    char* buffer;
    // The fields are grouped by the side that writes them, each group on its own cache line, so
    // that one side's stores do not take the other side's line away on every operation.
    // Written by the reader only; the writer reads it to find the free space.
    alignas(64) std::atomic<std::uint32_t> readCursor{0};
    // Set by the reader when it finds the ring empty (only when not set already), cleared by the
    // list when it notifies.
    std::atomic<bool> dirty{true};
    // The reader's last sight of writeCursor, so that consuming seen data costs no cache-line trip.
    std::uint32_t readerSeenWrite = 0;
    // Written by the writer only.
    alignas(64) std::atomic<std::uint32_t> writeCursor{0};
    std::atomic<std::uint32_t> endPoint;
    bool contiguous;
    // The writer's last sight of readCursor: the reader only ever adds free space, so a stale value
    // is a safe underestimate; it is refreshed before any result that depends on the exact space.
    std::uint32_t writerSeenRead = 0;
};

// A chain of up to maxRings rings used circularly for one writer and one reader: when the write
// ring is full the writer starts a new, larger ring (2x, 4x, ... the initial size, capped at the
// high size; a block larger than that gets a ring of its own size). When every place is in use the
// list is in overflow: writes are refused, wake nobody, and stay refused until the reader has
// drained everything and calls ResetOverflow. Data written before the overflow stays readable.
//
// Notification protocol: the reader asks for a wake-up whenever it drains everything (notifyPending);
// the writer calls Notify after every write, and the first write after a drain sends exactly one
// wake-up (the subclasses post a window message or set an event). A reader that saw
// IncrementReadCursor return false may therefore wait for that wake-up without missing data.
//
// Threads: as for RingBuffer; ResetOverflow, isEmpty, GetReadCursor and PeepNextChar belong to the
// reader (which frees rings), GetWriteCursor and CreateRing to the writer. Reset, destruction and
// Cleanup need both sides to be idle.
class VELORA_API RingBufferList {
public:
    // Ring places: max(maxRings, 2). The first ring has max(initialSize, minWriteSpace + 2) bytes;
    // new rings grow from initialSize up to max(highSize, initialSize).
    RingBufferList(unsigned int initialSize, unsigned int highSize, unsigned int maxRings,
                   unsigned int minWriteSpace, bool contiguous);
    RingBufferList(const RingBufferList&) = delete;
    RingBufferList& operator=(const RingBufferList&) = delete;
    virtual ~RingBufferList();

    // Writer side. Each write moves on to a new ring for what the write ring cannot take and then
    // calls Notify. In overflow nothing is written.
    // Returns how many bytes were NOT written (0, or `length` in overflow).
    unsigned int Write(const char* data, unsigned int length);
    // Returns null when all of `text` was written, else the first byte not written.
    const char* Write(const char* text);
    // Returns true when nothing was written (overflow).
    bool Write(char c);
    // The bytes of slots[0..slotCount-1] as one block of `totalLength` bytes (0: the slots' sum).
    // The slots are not changed. Returns how many bytes were NOT written.
    unsigned int Write(WSABUF* slots, unsigned int slotCount, unsigned int totalLength);
    // In-place writing: the write ring's buffer (see RingBuffer::GetWriteBuffer). A full write ring
    // makes the list move on to a new ring, which also asks for a wake-up. Null and 0 in overflow.
    char* GetWriteBuffer(unsigned int& available);
    // Publishes `count` bytes written in place, then calls Notify. True when the write ring was
    // empty before.
    bool IncrementWriteCursor(unsigned int count);
    // The next ring for a block of `minSize` bytes: see the class notes. The caller owns it.
    RingBuffer* CreateRing(unsigned int minSize);

    // Reader side. Rings the writer has left are freed once read or found empty.
    // The read ring's first run and, when it wraps, its second (see RingBuffer::Read).
    char* Read(unsigned int& length, char*& secondPart, unsigned int& secondLength);
    // The next byte without consuming it; false when there is none.
    bool Read(char& c);
    // The byte at the read ring's read cursor, with no test for emptiness.
    char PeepNextChar() const noexcept;
    // Consumes `count` bytes, carrying what the read ring does not hold into the following rings.
    // When everything is drained it asks the writer for a wake-up. Returns whether data remains to
    // be read (false: wait for the wake-up).
    bool IncrementReadCursor(unsigned int count);
    // Discards all unread data and asks for a wake-up.
    void Skip();
    // Empties `out` and fills it with the readable runs of all rings in order; true when there is
    // any. Consume them with IncrementReadCursor(out.GetTotalSize()) (or less).
    bool Read(LineBufferArray& out);
    // Appends the readable runs of all rings in order to `out`; returns how many bytes they hold.
    unsigned int GetAllData(LineBufferArray& out) const;
    // Leaves overflow when the reader has drained everything: both cursors of the one ring left
    // become 0, a wake-up is asked for and writes are accepted again. False (nothing changed)
    // otherwise. A reader whose IncrementReadCursor returned false checks isOverflow() and calls
    // this before it waits for the wake-up.
    bool ResetOverflow();

    // Frees every ring and starts again with one empty ring of the current next-ring size. An
    // overflow is kept: ResetOverflow is still needed.
    void Reset();

    // True when no ring holds unread data.
    bool isEmpty() const noexcept;
    // The read ring's read cursor and the write ring's write cursor.
    unsigned int GetReadCursor() const noexcept;
    unsigned int GetWriteCursor() const noexcept;
    // The ring places being read and written.
    unsigned int GetReadRing() const noexcept { return readRing.load(std::memory_order_relaxed); }
    unsigned int GetWriteRing() const noexcept { return writeRing.load(std::memory_order_relaxed); }
    const unsigned int& GetHighSize() const noexcept { return highSize; }
    const unsigned int& GetFirstRingSize() const noexcept { return firstRingSize; }
    const unsigned int& GetMaxRings() const noexcept { return maxRings; }
    bool isOverflow() const noexcept { return overflow.load(std::memory_order_relaxed); }
    bool isNotifyPending() const noexcept { return notifyPending.load(std::memory_order_relaxed); }
    const bool& isContiguous() const noexcept { return contiguous; }

protected:
    // Called by the writer after every write; wakes the reader in the subclasses.
    virtual void Notify() {}
    // Writer: moves to the next ring place with a new ring for `minSize` bytes and returns it; when
    // that place is the reader's, clears notifyPending, sets overflow and returns null.
    RingBuffer* AllocateNextRing(unsigned int minSize);
    // Frees every ring from the read ring to the write ring; both indices become 0 and a wake-up is
    // pending again.
    void Cleanup() noexcept;
    // Writer, for Notify: true when the reader has drained and asked for a wake-up; the request is
    // taken (cleared) and the write ring's dirty flag cleared.
    bool TakeNotifyRequest() noexcept;

private:
    unsigned int WriteBlock(velora::containers::detail::ByteSource& source, unsigned int length);
    RingBuffer* WriteRingBuffer() const noexcept;
    // Reader: frees the read ring (which the writer has left) and moves on to the next place.
    RingBuffer* LeaveReadRing() noexcept;
    // Reader: the read ring after freeing the empty rings the writer has left.
    RingBuffer* SkipFinishedRings() noexcept;

    unsigned int firstRingSize;
    unsigned int highSize;
    unsigned int nextRingSize; // writer only
    unsigned int maxRings;
    unsigned int minWriteSpace;
    // Places used circularly; a place holds a ring from the writer's creating it until the reader
    // frees it, null otherwise.
    std::atomic<RingBuffer*>* rings;
    bool contiguous;
    // Written by the reader (each group of fields on its own cache line, as in RingBuffer).
    alignas(64) std::atomic<std::uint32_t> readRing{0};
    // Set by the reader when it drains everything (only when not set already); cleared by the
    // writer when it notifies or overflows.
    std::atomic<bool> notifyPending{true};
    // Written by the writer, with the flag it reads on every write.
    alignas(64) std::atomic<std::uint32_t> writeRing{0};
    // Set by the writer when every place is in use; cleared by the reader in ResetOverflow.
    std::atomic<bool> overflow{false};
};

// Posts window message 1424 (kRingBufferMessage) to a window when data arrives after a drain; the
// message carries the message parameter as its first parameter and a counter, grown by 1 per
// message and starting at 0, as its second. On POSIX the window is the caller's message sink. With
// no window the wake-up stays pending until one is set.
class VELORA_API RingBufferListWindowsNotification : public RingBufferList {
public:
    static constexpr unsigned int kRingBufferMessage = 1424;

    RingBufferListWindowsNotification(unsigned int initialSize, unsigned int highSize, unsigned int maxRings,
                                      unsigned int minWriteSpace, bool contiguous, HWND window,
                                      std::uint64_t messageParameter);
    // Replaces the window; any thread may call.
    virtual void SetNotificationWindow(HWND window);
    HWND GetNotificationWindow() const noexcept { return window.load(std::memory_order_acquire); }
    const std::uint64_t& GetMessageParameter() const noexcept { return messageParameter; }
    std::uint64_t GetMessageCounter() const noexcept {
        return messageCounter.load(std::memory_order_relaxed);
    }

protected:
    void Notify() override;
    // Posts the message with the next counter value to `target`.
    void PostNotification(HWND target);

    std::atomic<HWND> window;
    std::uint64_t messageParameter;
    std::atomic<std::uint64_t> messageCounter{0};
};

// Sets an event (U_CreateEvent, or a Windows event) when data arrives after a drain. With no event
// the wake-up stays pending until one is set.
class VELORA_API RingBufferListEventNotification : public RingBufferList {
public:
    RingBufferListEventNotification(unsigned int initialSize, unsigned int highSize, unsigned int maxRings,
                                    unsigned int minWriteSpace, bool contiguous, HANDLE event);
    // Replaces the event; any thread may call. The list never closes an event.
    void SetNotificationEvent(const HANDLE& target) noexcept {
        event.store(target, std::memory_order_release);
    }
    HANDLE GetNotificationEvent() const noexcept { return event.load(std::memory_order_acquire); }

protected:
    void Notify() override;

    std::atomic<HANDLE> event;
};

// Posts the window message while a window is set, else sets the event. Setting a new window sends
// it one message at once; clearing the window sets the event, so that a waiter switches over.
class VELORA_API RingBufferListEventAndWindowsNotification : public RingBufferListWindowsNotification {
public:
    RingBufferListEventAndWindowsNotification(unsigned int initialSize, unsigned int highSize,
                                              unsigned int maxRings, unsigned int minWriteSpace,
                                              bool contiguous, HWND window, std::uint64_t messageParameter,
                                              HANDLE event);
    void SetNotificationWindow(HWND window) override;
    void SetNotificationEvent(const HANDLE& target) noexcept {
        event.store(target, std::memory_order_release);
    }
    HANDLE GetNotificationEvent() const noexcept { return event.load(std::memory_order_acquire); }

protected:
    void Notify() override;

    std::atomic<HANDLE> event;
};
