// RingBuffer.cpp - the single-writer, single-reader byte ring.
//
// Memory ordering, once for the whole file: the writer copies bytes (and moves endPoint when it
// wraps) and then stores writeCursor with release; the reader loads writeCursor with acquire before
// it touches those bytes or endPoint. The reader stores readCursor with release once it is done with
// the bytes it gives back; the writer loads readCursor with acquire before it overwrites them.
// Fields only their owner writes are read back by the owner with relaxed loads.
#include "VeloraUtils/RingBuffers.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "containers/detail/RingDetail.h"

using velora::containers::detail::ByteSource;
using velora::containers::detail::RaisedRingSize;

namespace {
constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr auto kAcquire = std::memory_order_acquire;
constexpr auto kRelease = std::memory_order_release;

// The bytes of a ring start on a cache-line boundary: a block written at a multiple of its own
// size (records) then never straddles more lines than it must, and the copy stores stay aligned.
constexpr std::align_val_t kBufferAlignment{64};

char* AllocateBuffer(unsigned int size) {
    return static_cast<char*>(::operator new[](size, kBufferAlignment));
}

void FreeBuffer(char* buffer) noexcept {
    ::operator delete[](buffer, kBufferAlignment);
}
} // namespace

RingBuffer::RingBuffer(unsigned int requestedSize, unsigned int minSpace, bool contiguousMode)
    : size(RaisedRingSize(requestedSize, minSpace)), minWriteSpace(minSpace),
      // The whole raised size is allocated: a smaller buffer would let writes run past its end.
      buffer(AllocateBuffer(size)), endPoint(size), contiguous(contiguousMode) {
    std::memset(buffer, 0, size);
}

// The members below mark the ring dirty through SetDirty, which stores only on a change: a reader
// polling an empty ring then writes nothing to shared memory.

RingBuffer::RingBuffer(const RingBuffer& other)
    : size(other.size), minWriteSpace(other.minWriteSpace), buffer(AllocateBuffer(other.size)),
      readCursor(other.readCursor.load(kRelaxed)), dirty(other.dirty.load(kRelaxed)),
      readerSeenWrite(other.readerSeenWrite), writeCursor(other.writeCursor.load(kRelaxed)),
      endPoint(other.endPoint.load(kRelaxed)), contiguous(other.contiguous),
      writerSeenRead(other.writerSeenRead) {
    std::memcpy(buffer, other.buffer, size);
}

RingBuffer& RingBuffer::operator=(const RingBuffer& other) {
    if (this == &other) return *this;
    char* copy = AllocateBuffer(other.size);
    std::memcpy(copy, other.buffer, other.size);
    FreeBuffer(buffer);
    buffer = copy;
    size = other.size;
    minWriteSpace = other.minWriteSpace;
    readCursor.store(other.readCursor.load(kRelaxed), kRelaxed);
    readerSeenWrite = other.readerSeenWrite;
    writeCursor.store(other.writeCursor.load(kRelaxed), kRelaxed);
    endPoint.store(other.endPoint.load(kRelaxed), kRelaxed);
    dirty.store(other.dirty.load(kRelaxed), kRelaxed);
    contiguous = other.contiguous;
    writerSeenRead = other.writerSeenRead;
    return *this;
}

RingBuffer::~RingBuffer() {
    FreeBuffer(buffer);
}

void RingBuffer::Reset() noexcept {
    readCursor.store(0, kRelaxed);
    writeCursor.store(0, kRelaxed);
    readerSeenWrite = 0;
    writerSeenRead = 0;
}

// ---------------------------------------------------------------------------------------------
// Writer side
// ---------------------------------------------------------------------------------------------

unsigned int RingBuffer::Write(const char* data, unsigned int length) noexcept {
    ByteSource source;
    source.block = data;
    return WriteFrom(source, length);
}

unsigned int RingBuffer::WriteFrom(ByteSource& source, unsigned int length) noexcept {
    const std::uint32_t w = writeCursor.load(kRelaxed);
    const std::uint64_t end = std::uint64_t{w} + length;
    // Fast path on the cached read cursor. The reader only moves it on, so whenever the block fits
    // whole by the cached value it fits whole by the current one too, at the same place.
    if (w < writerSeenRead ? end < writerSeenRead : end < size) {
        source.CopyTo(buffer + w, length);
        writeCursor.store(static_cast<std::uint32_t>(end), kRelease);
        return 0;
    }
    const std::uint32_t r = writerSeenRead = readCursor.load(kAcquire);
    if (w < r) { // the data wraps: the free space runs from w to r - 1
        if (end < r) {
            source.CopyTo(buffer + w, length);
            writeCursor.store(static_cast<std::uint32_t>(end), kRelease);
            return 0;
        }
        if (contiguous) return length;
        const std::uint32_t n = r - w - 1;
        if (n == 0) return length;
        source.CopyTo(buffer + w, n);
        writeCursor.store(w + n, kRelease);
        return length - n;
    }
    if (end < size) {
        source.CopyTo(buffer + w, length);
        writeCursor.store(static_cast<std::uint32_t>(end), kRelease);
        return 0;
    }
    // The block reaches the end of the ring.
    if (contiguous) {
        if (r <= length) return length;
        source.CopyTo(buffer, length);
        endPoint.store(w, kRelaxed); // published by the release store of writeCursor below
        writeCursor.store(length, kRelease);
        return 0;
    }
    const std::uint32_t tail = size - w - (r == 0 ? 1u : 0u);
    source.CopyTo(buffer + w, tail);
    if (r == 0) {
        if (tail != 0) writeCursor.store(w + tail, kRelease);
        return length - tail;
    }
    const std::uint32_t rest = length - tail;
    const std::uint32_t n = std::min(rest, r - 1);
    source.CopyTo(buffer, n);
    endPoint.store(size, kRelaxed);
    writeCursor.store(n, kRelease);
    return rest - n;
}

const char* RingBuffer::WriteBytes(const char* begin, const char* end) noexcept {
    const std::uint32_t start = writeCursor.load(kRelaxed);
    std::uint32_t w = start;
    std::uint32_t r = writerSeenRead = readCursor.load(kAcquire);
    const char* p = begin;
    while (p != end && (end != nullptr || *p != '\0')) {
        if (w < r ? w + 1 < r : w + 1 < size) {
            buffer[w++] = *p++;
        } else if (r <= w && r > 1) {
            // At the last byte: wrap early to position 0, leaving the last byte unused. The reader
            // cannot be looking at endPoint now (the data does not wrap until writeCursor says so).
            endPoint.store(w, kRelaxed);
            buffer[0] = *p++;
            w = 1;
        } else {
            // Full by the cursor seen; look again once, since the reader may have moved on.
            const std::uint32_t fresh = readCursor.load(kAcquire);
            if (fresh == r) break;
            r = writerSeenRead = fresh;
        }
    }
    if (w != start) writeCursor.store(w, kRelease);
    return p;
}

const char* RingBuffer::Write(const char* text) noexcept {
    if (text == nullptr) return nullptr;
    const char* stop = WriteBytes(text, nullptr);
    return *stop == '\0' ? nullptr : stop;
}

bool RingBuffer::Write(char c) noexcept {
    return WriteBytes(&c, &c + 1) == &c;
}

unsigned int RingBuffer::Write(WSABUF*& slots, unsigned int& slotCount, unsigned int totalLength) noexcept {
    std::uint64_t sum = 0;
    for (unsigned int i = 0; i < slotCount; ++i) sum += slots[i].len;
    const unsigned int total = totalLength == 0 || totalLength > sum
                                   ? static_cast<unsigned int>(std::min<std::uint64_t>(sum, 0xFFFFFFFFu))
                                   : totalLength;
    ByteSource source;
    source.slot = slots;
    source.slotsLeft = slotCount;
    const unsigned int left = WriteFrom(source, total);
    // Hand the caller what is left: skip the slots written whole and empty ones, and narrow a slot
    // written in part to its rest.
    WSABUF* next = slots + (source.slot - slots);
    unsigned int nextCount = source.slotsLeft;
    if (nextCount != 0 && source.offset != 0) {
        next->buf += source.offset;
        next->len -= source.offset;
    }
    while (nextCount != 0 && next->len == 0) {
        ++next;
        --nextCount;
    }
    slots = next;
    slotCount = nextCount;
    return left;
}

char* RingBuffer::GetWriteBuffer(unsigned int& available) noexcept {
    std::uint32_t w = writeCursor.load(kRelaxed);
    const std::uint32_t r = writerSeenRead = readCursor.load(kAcquire);
    if (r <= w) {
        available = size - w - (r == 0 ? 1u : 0u);
        if (r != 0 && available < minWriteSpace) {
            available = r - 1;
            if (available >= minWriteSpace) {
                // Wrap early; endPoint reaches the reader with the release store of writeCursor.
                endPoint.store(w, kRelaxed);
                w = 0;
                writeCursor.store(0, kRelease);
            }
        }
    } else {
        available = r - w - 1;
    }
    if (available == 0 || available < minWriteSpace) return nullptr;
    return buffer + w;
}

bool RingBuffer::IncrementWriteCursor(unsigned int count) noexcept {
    const std::uint32_t w = writeCursor.load(kRelaxed);
    const bool wasEmpty = readCursor.load(kRelaxed) == w;
    std::uint64_t next = std::uint64_t{w} + count;
    if (next >= size) {
        next -= size;
        // The data now runs to the very end of the ring; the reader learns it with writeCursor.
        endPoint.store(size, kRelaxed);
    }
    writeCursor.store(static_cast<std::uint32_t>(next), kRelease);
    return wasEmpty;
}

// ---------------------------------------------------------------------------------------------
// Reader side
// ---------------------------------------------------------------------------------------------

char* RingBuffer::Runs(std::uint32_t r, std::uint32_t w, unsigned int& length, char*& secondPart,
                       unsigned int& secondLength) const noexcept {
    secondPart = nullptr;
    secondLength = 0;
    if (w < r) {
        // endPoint is loaded after the acquire load that gave `w`, so it is the one published with it.
        const std::uint32_t e = endPoint.load(kRelaxed);
        if (r >= e) r = 0;
    }
    if (r == w) {
        length = 0;
        return nullptr;
    }
    if (r < w) {
        length = w - r;
        return buffer + r;
    }
    length = endPoint.load(kRelaxed) - r;
    if (w != 0) {
        secondPart = buffer;
        secondLength = w;
    }
    return buffer + r;
}

char* RingBuffer::Read(unsigned int& length, char*& secondPart, unsigned int& secondLength) noexcept {
    const std::uint32_t w = readerSeenWrite = writeCursor.load(kAcquire);
    const std::uint32_t r = readCursor.load(kRelaxed);
    if (w < r && r >= endPoint.load(kRelaxed)) readCursor.store(0, kRelease);
    char* first = Runs(r, w, length, secondPart, secondLength);
    if (first == nullptr) SetDirty(true);
    return first;
}

char* RingBuffer::ReadFromCursor(unsigned int& cursor, unsigned int& length, char*& secondPart,
                                 unsigned int& secondLength) const noexcept {
    const std::uint32_t w = writeCursor.load(kAcquire);
    if (w < cursor && cursor >= endPoint.load(kRelaxed)) cursor = 0;
    return Runs(cursor, w, length, secondPart, secondLength);
}

bool RingBuffer::Read(char& c) noexcept {
    unsigned int length = 0, secondLength = 0;
    char* secondPart = nullptr;
    const char* first = Read(length, secondPart, secondLength);
    if (first == nullptr) return false;
    c = *first;
    return true;
}

char RingBuffer::PeepNextChar() const noexcept {
    return buffer[readCursor.load(kRelaxed)];
}

bool RingBuffer::IncrementReadCursor(unsigned int& count) noexcept {
    const std::uint32_t r = readCursor.load(kRelaxed);
    // Where `count` bytes from r lead with the data ending at w; the excess beyond w is set aside.
    auto advance = [&](std::uint32_t w, std::uint64_t& excess) {
        std::uint64_t position = std::uint64_t{r} + count;
        excess = 0;
        if (w < r) {
            const std::uint32_t e = endPoint.load(kRelaxed);
            if (position < e) return position;
            position -= e; // continue from the start of the ring
        }
        if (position > w) {
            excess = position - w;
            position = w;
        }
        return position;
    };
    std::uint64_t excess = 0;
    std::uint64_t position = advance(readerSeenWrite, excess);
    // Consuming data already seen needs no look at the writer's cursor (nor its cache line). Only
    // when the count reaches the end of what was seen is the current writeCursor needed.
    std::uint32_t w = readerSeenWrite;
    if (excess != 0 || position == w) {
        w = readerSeenWrite = writeCursor.load(kAcquire);
        position = advance(w, excess);
    }
    // Release: the writer may reuse these bytes only after this thread is done reading them.
    readCursor.store(static_cast<std::uint32_t>(position), kRelease);
    count = static_cast<unsigned int>(excess);
    if (position == w) {
        SetDirty(true);
        return false;
    }
    return true;
}

void RingBuffer::Skip() noexcept {
    const std::uint32_t w = readerSeenWrite = writeCursor.load(kAcquire);
    readCursor.store(w, kRelease);
    SetDirty(true);
}

bool RingBuffer::isEmpty() const noexcept {
    return readCursor.load(kRelaxed) == writeCursor.load(kAcquire);
}
