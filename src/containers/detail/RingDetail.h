// RingDetail.h - what the ring buffer and the ring buffer list share: the source of the bytes of a
// block write (one block or a run of WSABUF slots) and size arithmetic that cannot wrap.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "VeloraUtils/PlatformTypes.h"
#include "VeloraUtils/RingBuffers.h"

namespace velora::containers::detail {

// Copies `n` bytes; blocks of up to 32 bytes (records, short messages) by a few overlapping word
// moves instead of a call into the C library.
inline void CopyBytes(char* dest, const char* src, std::size_t n) noexcept {
    if (n <= 16) {
        if (n >= 8) {
            std::uint64_t head, tail;
            std::memcpy(&head, src, 8);
            std::memcpy(&tail, src + n - 8, 8);
            std::memcpy(dest, &head, 8);
            std::memcpy(dest + n - 8, &tail, 8);
        } else if (n >= 4) {
            std::uint32_t head, tail;
            std::memcpy(&head, src, 4);
            std::memcpy(&tail, src + n - 4, 4);
            std::memcpy(dest, &head, 4);
            std::memcpy(dest + n - 4, &tail, 4);
        } else if (n != 0) {
            const char first = src[0], middle = src[n / 2], last = src[n - 1];
            dest[0] = first;
            dest[n / 2] = middle;
            dest[n - 1] = last;
        }
    } else if (n <= 32) {
        char head[16], tail[16];
        std::memcpy(head, src, 16);
        std::memcpy(tail, src + n - 16, 16);
        std::memcpy(dest, head, 16);
        std::memcpy(dest + n - 16, tail, 16);
    } else {
        std::memcpy(dest, src, n);
    }
}

// The bytes of a block write, taken in order: from `block` when it is set, else from the slots
// (`slotsLeft` of them from `slot`, the first `offset` bytes of *slot already taken).
struct ByteSource {
    const char* block = nullptr;
    const WSABUF* slot = nullptr;
    unsigned int slotsLeft = 0;
    unsigned int offset = 0;

    // Copies the next `n` bytes to `dest` (the source holds at least `n` more).
    void CopyTo(char* dest, unsigned int n) noexcept {
        if (n == 0) return;
        if (block != nullptr) {
            CopyBytes(dest, block, n);
            block += n;
            return;
        }
        while (n != 0) {
            const unsigned int take = std::min(n, static_cast<unsigned int>(slot->len) - offset);
            if (take != 0) std::memcpy(dest, slot->buf + offset, take);
            dest += take;
            n -= take;
            offset += take;
            if (offset == slot->len) {
                ++slot;
                --slotsLeft;
                offset = 0;
            }
        }
    }
};

// max(size, minWriteSpace + 2), the size every ring really has; capped at 2^32 - 1.
inline unsigned int RaisedRingSize(unsigned int size, unsigned int minWriteSpace) noexcept {
    const std::uint64_t least = std::uint64_t{minWriteSpace} + 2u;
    return size >= least ? size : static_cast<unsigned int>(std::min<std::uint64_t>(least, 0xFFFFFFFFu));
}

// a + b, capped at 2^32 - 1.
inline unsigned int SaturatingAdd(std::uint64_t a, std::uint64_t b) noexcept {
    return static_cast<unsigned int>(std::min<std::uint64_t>(a + b, 0xFFFFFFFFu));
}

} // namespace velora::containers::detail

// The common case of a block write, kept inline for the list's Write: the block fits whole by the
// cached read cursor (see RingBuffer::WriteFrom, whose first step this is). False: nothing was
// written; take the full path.
inline bool RingBuffer::AppendFast(const char* data, unsigned int length) noexcept {
    const std::uint32_t w = writeCursor.load(std::memory_order_relaxed);
    const std::uint64_t end = std::uint64_t{w} + length;
    if (w < writerSeenRead ? end >= writerSeenRead : end >= size) return false;
    velora::containers::detail::CopyBytes(buffer + w, data, length);
    // Release: the reader that loads this cursor sees the bytes.
    writeCursor.store(static_cast<std::uint32_t>(end), std::memory_order_release);
    return true;
}
