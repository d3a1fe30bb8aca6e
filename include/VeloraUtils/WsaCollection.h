// WsaCollection.h - an outgoing message held as an ordered list of WSABUF slots, ready for one
// gathered socket send without copying the pieces into one buffer. The collection keeps the total
// byte count and frees the slot buffers it owns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>

#include "VeloraUtils/Export.h"
#include "VeloraUtils/PlatformTypes.h"

// Slots in order, each pointing at a caller's buffer (mode 0), at a buffer the caller handed over
// (mode 1, allocated with new[]; the collection frees it with delete[]) or at a copy the collection
// made (mode 2). A trailing character (in practice SOH) may follow a value: mode 2 puts it into
// the copy, the other modes give it a slot of its own that points at the caller's character.
//
// Capacity grows by doubling up to 0x8000 slots; beyond that appends fail and leave the collection
// unchanged. One collection is used by one thread at a time.
//
// Copies are views. Copy construction and assignment copy capacity, count, totalLength, the slot
// array pointer and the owned set as they are: the copy shares the slot array and the owned
// buffers with its source and is valid only while the source lives and is not changed. Only the
// original frees: a view frees nothing when destroyed, and its changing operations (Append,
// SetTagAt, Reset) do nothing and report failure, so no buffer is ever freed twice. Assigning to
// an original first frees what it owns, then makes it a view of the right-hand side.
class VELORA_API WsaCollection {
public:
    // `capacity` zeroed slots (0 is allowed: the first append grows the array to one slot).
    explicit WsaCollection(const unsigned short& capacity);
    WsaCollection(const WsaCollection& other);
    WsaCollection& operator=(const WsaCollection& other);
    // An original frees the slot array and every owned buffer; a view frees nothing.
    virtual ~WsaCollection();

    // Appends `buffer` (length 0 with a non-null buffer: its NUL-terminated length) in `mode`
    // 0 reference, 1 hand-over, 2 copy; then `trailingChar` when given (see above). Returns the
    // 1-based ordinal of the value's slot, or 0 when the slot array cannot grow or on a view; a
    // refused append changes nothing. A null or empty buffer gets a slot of length 0 in any mode.
    unsigned short Append(const char* buffer, unsigned int length, const char* trailingChar,
                          unsigned char mode);

    // Replaces slot `index` (< count; an owned old buffer is freed) or appends (== count) the value
    // as Append does. A trailing character gets its own slot only when the slot is the last one in
    // use (mode 2 with a value puts it into the copy); for a slot in the middle it is ignored.
    // False for index > count, when the array cannot grow, or on a view.
    virtual bool SetTagAt(unsigned int index, const char* buffer, unsigned int length,
                          const char* trailingChar, unsigned char mode);

    // Frees the owned buffers; count and totalLength become 0. Slots keep their stale contents and
    // the capacity is kept. Does nothing on a view.
    virtual void Reset();

    const unsigned short& GetCount() const { return count; }
    const unsigned short& GetCapacity() const { return capacity; }
    // Sum of the lengths of the slots in use (FixTagCollection also counts its trailer from the start).
    const unsigned int& GetTotalLength() const { return totalLength; }
    // True for a copy (see above).
    const bool& isView() const { return view; }

    // Slot `index`, or null when `index` is not below count. Slots are contiguous: slot 0's address
    // with GetCount() is the gather list for WSASend/writev. Do not change slots through it.
    WSABUF* GetWsaBufAt(const unsigned short& index) { return index < count ? slots + index : nullptr; }
    const WSABUF* GetWsaBufAt(const unsigned short& index) const {
        return index < count ? slots + index : nullptr;
    }

    // FIX checksum sums: the bytes each taken as a signed 8-bit value, added without reduction
    // (take the result modulo 256). A null slot or buffer sums to 0.
    static unsigned int CalculateItemControlSum(const WSABUF* const& slot);
    // Sum of slot `index`; 0 when `index` is not below count.
    unsigned int CalculateControlSumAt(const unsigned short& index) const;
    // Sum of all slots in use.
    unsigned int CalculateControlSum() const;

protected:
    // Doubles the slot array (from 0 to 1), copying the slots in use. False at 0x8000 slots or
    // more, and on a view.
    bool AllocateMore();
    // Grows until `needed` slots are free; false (nothing changed but capacity) when it cannot.
    bool EnsureFree(unsigned int needed);

    unsigned short capacity;
    unsigned short count;
    unsigned int totalLength;
    WSABUF* slots;
    std::unordered_set<char*> owned;

private:
    void ClearWSABUF();
    void DestroyOwn();
    // Stores `buffer` into slot `index` as Append step 3 says; returns the slot length and clears
    // `trailingChar` when a mode-2 copy consumed it.
    unsigned int FillSlot(unsigned int index, const char* buffer, unsigned int length,
                          const char*& trailingChar, unsigned char mode);

    bool view = false;
};

namespace velora::fix::detail {

// Sum of `length` bytes, each as a signed 8-bit value, in 32-bit unsigned arithmetic (so that a
// later reduction modulo 256 is exact however the sum wrapped). Reads exactly `length` bytes. A
// plain loop: for the short pieces of a FIX message it measured as fast as word-at-a-time sums.
inline unsigned int SumBytes(const char* data, std::size_t length) noexcept {
    unsigned int sum = 0;
    for (std::size_t i = 0; i < length; ++i)
        sum += static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(data[i])));
    return sum;
}

} // namespace velora::fix::detail
