// LineBuffers.cpp - views, the queue of views and the record reader.
#include "VeloraUtils/LineBuffers.h"

#include <algorithm>

unsigned int LineBuffer::IncrementCursor(unsigned int count) noexcept {
    if (count < length_) {
        length_ -= count;
        data_ += count;
        return 0;
    }
    const unsigned int beyond = count - length_;
    Reset();
    return beyond;
}

LineBufferVector::LineBufferVector(unsigned int capacity)
    : capacity_(capacity == 0 ? 1 : capacity), slots_(new LineBuffer[capacity_]) {}

LineBufferVector::LineBufferVector(const LineBufferVector& other)
    : capacity_(other.capacity_), count_(other.count_), front_(other.front_), back_(other.back_),
      growthForbidden_(other.growthForbidden_), slots_(new LineBuffer[other.capacity_]) {
    std::copy_n(other.slots_, capacity_, slots_);
}

LineBufferVector& LineBufferVector::operator=(const LineBufferVector& other) {
    if (this != &other) {
        LineBufferVector copy(other);
        std::swap(capacity_, copy.capacity_);
        std::swap(count_, copy.count_);
        std::swap(front_, copy.front_);
        std::swap(back_, copy.back_);
        std::swap(growthForbidden_, copy.growthForbidden_);
        std::swap(slots_, copy.slots_);
    }
    return *this;
}

LineBufferVector::~LineBufferVector() {
    delete[] slots_;
}

bool LineBufferVector::PushBack(const LineBuffer& view) {
    if (count_ == capacity_) {
        const unsigned int grownCapacity = capacity_ * 2u;
        if (growthForbidden_ || grownCapacity <= capacity_) return false; // or past 2^32 views
        // Double the capacity, laying the views out from index 0 in queue order.
        auto* grown = new LineBuffer[grownCapacity];
        std::copy(slots_ + front_, slots_ + capacity_, grown);
        std::copy(slots_, slots_ + front_, grown + (capacity_ - front_));
        delete[] slots_;
        slots_ = grown;
        capacity_ = grownCapacity;
        front_ = 0;
        back_ = count_ - 1;
    }
    if (count_ != 0) back_ = (back_ + 1) % capacity_;
    slots_[back_] = view;
    ++count_;
    return true;
}

void LineBufferVector::PopFront() noexcept {
    if (count_ == 0) return;
    slots_[front_].Reset();
    if (--count_ == 0)
        front_ = back_ = 0;
    else
        front_ = (front_ + 1) % capacity_;
}

void LineBufferVector::Clear() noexcept {
    while (count_ != 0) PopFront();
}

LineBufferArray::LineBufferArray(unsigned int capacity) : vector_(new LineBufferVector(capacity)) {}

LineBufferArray::LineBufferArray(const LineBufferArray& other)
    : totalSize_(other.totalSize_), vector_(new LineBufferVector(*other.vector_)) {}

LineBufferArray& LineBufferArray::operator=(const LineBufferArray& other) {
    if (this != &other) {
        *vector_ = *other.vector_;
        totalSize_ = other.totalSize_;
    }
    return *this;
}

LineBufferArray::~LineBufferArray() {
    delete vector_;
}

void LineBufferArray::AddLineBuffer(const char* data, unsigned int length) {
    vector_->PushBack(LineBuffer(length, data));
    totalSize_ += length;
}

LineBuffer& LineBufferArray::GetLastFilledLineBuffer() {
    if (vector_->GetCount() == 0) vector_->PushBack(LineBuffer());
    return vector_->Front();
}

void LineBufferArray::IncrementLastFilledLineBufferLength(unsigned int n) {
    GetLastFilledLineBuffer().IncrementLength(n);
    totalSize_ += n;
}

void LineBufferArray::Clear() noexcept {
    vector_->Clear();
    totalSize_ = 0;
}

void LineBufferArray::IncrementCursor(unsigned int count) noexcept {
    if (vector_->GetCount() == 0) return;
    LineBuffer& front = vector_->Front();
    const unsigned int length = front.GetLength();
    totalSize_ -= length;
    if (count < length) {
        front.IncrementCursor(count);
        totalSize_ += front.GetLength();
        return;
    }
    front.Reset();
    if (count == length) vector_->PopFront();
    // A count beyond the view's length is a caller error; the view stays, emptied, at the front.
}

unsigned int LineBufferArrayReader::ProcessAllData() const {
    if (array_ == nullptr) return 0;
    unsigned int accepted = 0;
    const LineBufferVector& views = array_->GetRingVector();
    for (unsigned int v = 0; v < views.GetCount(); ++v) {
        const char* place = views.At(v).GetData();
        unsigned int remaining = views.At(v).GetLength();
        while (remaining >= 2) {
            const auto recordLength = static_cast<unsigned short>(static_cast<unsigned char>(place[0]) |
                                                                  static_cast<unsigned char>(place[1]) << 8);
            if (recordLength < 2 || recordLength > remaining) break;
            if (ProcessRecord(place, recordLength))
                ++accepted;
            else if (stopOnFailure_)
                return accepted;
            place += recordLength;
            remaining -= recordLength;
        }
    }
    return accepted;
}
