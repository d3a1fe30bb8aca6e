// LineBuffers.h - views of bytes the holder does not own, a queue of such views with the total bytes
// they cover (so data lying in several places can be walked without copying), and a reader that
// walks a queue as length-prefixed records.
#pragma once

#include "VeloraUtils/Export.h"

// A view: length and pointer to bytes owned elsewhere. An empty view has length 0.
class VELORA_API LineBuffer {
public:
    LineBuffer() noexcept = default;
    LineBuffer(unsigned int length, const char* data) noexcept : length_(length), data_(data) {}

    void SetBuffer(unsigned int length, const char* data) noexcept {
        length_ = length;
        data_ = data;
    }
    void Reset() noexcept { SetBuffer(0, nullptr); }
    bool isEmpty() const noexcept { return length_ == 0; }
    const unsigned int& GetLength() const noexcept { return length_; }
    const char* const& GetData() const noexcept { return data_; }
    // Consumes `count` bytes from the front. Below the length: 0. Otherwise the view becomes empty
    // (length 0, null data) and the bytes asked beyond its length, count - length, are returned.
    unsigned int IncrementCursor(unsigned int count) noexcept;
    // The position just past the last byte (the name is kept), or null for a null view.
    const char* GetLastChar() const noexcept { return data_ == nullptr ? nullptr : data_ + length_; }
    // Adds `n` bytes to the view's length (the bytes must follow in the same storage).
    void IncrementLength(unsigned int n) noexcept { length_ += n; }

private:
    unsigned int length_ = 0;
    const char* data_ = nullptr;
};

// A growable ring-shaped queue of views: front is the earliest pushed, back the latest. A push into
// a full queue doubles the capacity and keeps the order (unless growth is forbidden, when the push
// is refused). Indices return to 0 when the queue becomes empty.
class VELORA_API LineBufferVector {
public:
    explicit LineBufferVector(unsigned int capacity);
    LineBufferVector(const LineBufferVector& other);
    LineBufferVector& operator=(const LineBufferVector& other);
    ~LineBufferVector();

    // False only when the queue is full and growth is forbidden.
    bool PushBack(const LineBuffer& view);
    // Removes the front view; nothing happens on an empty queue.
    void PopFront() noexcept;
    void Clear() noexcept;
    LineBuffer& Front() noexcept { return slots_[front_]; }
    const LineBuffer& Front() const noexcept { return slots_[front_]; }
    // The view `index` places from the front (index below GetCount()).
    const LineBuffer& At(unsigned int index) const noexcept { return slots_[(front_ + index) % capacity_]; }
    unsigned int GetCapacity() const noexcept { return capacity_; }
    unsigned int GetCount() const noexcept { return count_; }
    unsigned int GetFrontIndex() const noexcept { return front_; }
    unsigned int GetBackIndex() const noexcept { return back_; }
    bool isGrowthForbidden() const noexcept { return growthForbidden_; }
    void SetGrowthForbidden(bool forbidden) noexcept { growthForbidden_ = forbidden; }

private:
    unsigned int capacity_;
    unsigned int count_ = 0;
    unsigned int front_ = 0;
    unsigned int back_ = 0;
    bool growthForbidden_ = false;
    LineBuffer* slots_;
};

// A queue of views with the total number of bytes they cover.
class VELORA_API LineBufferArray {
public:
    // A capacity of 0 is taken as 1.
    explicit LineBufferArray(unsigned int capacity);
    LineBufferArray(const LineBufferArray& other);
    LineBufferArray& operator=(const LineBufferArray& other);
    ~LineBufferArray(); // releases the queue, never the viewed bytes

    // Pushes a view at the back; totalSize grows by `length`.
    void AddLineBuffer(const char* data, unsigned int length);
    unsigned int GetBufferCount() const noexcept { return vector_->GetCapacity(); }
    unsigned int GetFilledBufferCount() const noexcept { return vector_->GetCount(); }
    const unsigned int& GetTotalSize() const noexcept { return totalSize_; }
    void IncrementTotalSize(unsigned int n) noexcept { totalSize_ += n; }
    void DecrementTotalSize(unsigned int n) noexcept { totalSize_ -= n; }
    LineBufferVector& GetRingVector() noexcept { return *vector_; }
    const LineBufferVector& GetRingVector() const noexcept { return *vector_; }
    // The FRONT view (the earliest queued; the name is kept); an empty view is pushed first when the
    // queue is empty.
    LineBuffer& GetLastFilledLineBuffer();
    // Adds `n` to the front view's length and to totalSize.
    void IncrementLastFilledLineBufferLength(unsigned int n);
    // Empties the queue; totalSize becomes 0.
    void Clear() noexcept;
    // Consumes `count` bytes of the front view: below its length the view shrinks; equal to it the
    // view is removed. A count beyond the front view's length is a caller error: the view is emptied
    // and left at the front, and nothing further is consumed. Does nothing on an empty queue.
    void IncrementCursor(unsigned int count) noexcept;

private:
    unsigned int totalSize_ = 0;
    LineBufferVector* vector_;
};

// Walks a LineBufferArray as records: an unsigned 16-bit little-endian length counting the whole
// record (its own two bytes included), then the rest. Subclasses handle each record.
class VELORA_API LineBufferArrayReader {
public:
    // The record handler, the first virtual operation: true counts the record as processed.
    virtual bool ProcessRecord(const char* record, unsigned short length) const = 0;
    virtual ~LineBufferArrayReader() = default;
    LineBufferArrayReader(const LineBufferArrayReader&) = default;
    LineBufferArrayReader& operator=(const LineBufferArrayReader&) = default;

    void SetLineBufferArray(const LineBufferArray* array) noexcept { array_ = array; }
    const LineBufferArray* GetLineBufferArray() const noexcept { return array_; }
    // Hands every whole record of every view (front to back) to ProcessRecord and returns how many
    // it accepted; with stopOnFailure the walk ends at the first refusal. Records are never joined
    // across views: one running past its view's end is not read, nor are stray bytes. A record
    // length below 2 ends the walk of its view (it could not move the walk on). No array: 0.
    unsigned int ProcessAllData() const;

protected:
    LineBufferArrayReader(const LineBufferArray* array, bool stopOnFailure) noexcept
        : array_(array), stopOnFailure_(stopOnFailure) {}

private:
    const LineBufferArray* array_;
    bool stopOnFailure_;
};
