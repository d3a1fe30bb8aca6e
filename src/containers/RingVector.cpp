// RingVector.cpp - the exported ring vector of owned items, its iterators (whose memory comes from
// the installed nedmalloc/nedfree pair) and the plain functions that create and walk them.
#include "VeloraUtils/RingVector.h"

#include <new>

#include "VeloraUtils/MemoryHooks.h"

RingVectorBaseItem::~RingVectorBaseItem() = default;

VeloraRingVectorBase::~VeloraRingVectorBase() = default;

VeloraRingVector::VeloraRingVector(std::uint64_t capacity, bool fixedSize, bool keepNewestOnShrink)
    : ring_(capacity, fixedSize, keepNewestOnShrink) {}

VeloraRingVector::VeloraRingVector(const VeloraRingVector& other) = default;

VeloraRingVector& VeloraRingVector::operator=(const VeloraRingVector& other) = default;

VeloraRingVector::~VeloraRingVector() = default;

void VeloraRingVector::push_back(RingVectorBaseItem* const& item) {
    ring_.push_back(item);
}

void VeloraRingVector::push_front(RingVectorBaseItem* const& item) {
    ring_.push_front(item);
}

void VeloraRingVector::pop_back() {
    ring_.pop_back();
}

void VeloraRingVector::pop_front() {
    ring_.pop_front();
}

RingVectorBaseItem*& VeloraRingVector::push_back_empty() {
    return ring_.push_back_empty();
}

RingVectorBaseItem*& VeloraRingVector::push_front_empty() {
    return ring_.push_front_empty();
}

void VeloraRingVector::insert(std::uint64_t index, RingVectorBaseItem* item) {
    ring_.insert(index, item);
}

void VeloraRingVector::clear() {
    ring_.clear();
}

RingVectorBaseItem* VeloraRingVector::at(std::uint64_t index) {
    return ring_.at(index);
}

const RingVectorBaseItem* VeloraRingVector::at(std::uint64_t index) const {
    return ring_.at(index);
}

RingVectorBaseItem* VeloraRingVector::fromBack(std::uint64_t index) {
    return ring_.fromBack(index);
}

const RingVectorBaseItem* VeloraRingVector::fromBack(std::uint64_t index) const {
    return ring_.fromBack(index);
}

RingVectorBaseItem* VeloraRingVector::front() {
    return ring_.front();
}

const RingVectorBaseItem* VeloraRingVector::front() const {
    return ring_.front();
}

RingVectorBaseItem* VeloraRingVector::back() {
    return ring_.back();
}

const RingVectorBaseItem* VeloraRingVector::back() const {
    return ring_.back();
}

void VeloraRingVector::ReserveAdditional(std::uint64_t additional) {
    ring_.ReserveAdditional(additional);
}

void VeloraRingVector::reserve(std::uint64_t n) {
    ring_.reserve(n);
}

std::uint64_t VeloraRingVector::capacity() const {
    return ring_.capacity();
}

std::uint64_t VeloraRingVector::size() const {
    return ring_.size();
}

bool VeloraRingVector::operator==(const VeloraRingVector& other) const {
    return ring_.SameElements(other.ring_);
}

VeloraIterator::~VeloraIterator() = default;

namespace {

void* IteratorMemory(std::size_t size) {
    void* memory = VeloraMemory::nedmalloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

// Placement into nedmalloc memory, so that a failed allocation is a null result, not an exception.
template <class Iterator>
VeloraRingVectorItemIterator* CreateIterator(VeloraRingVector* ringVector) noexcept {
    if (ringVector == nullptr) return nullptr;
    void* memory = VeloraMemory::nedmalloc(sizeof(Iterator));
    if (memory == nullptr) return nullptr;
    return new (memory) Iterator(ringVector->GetRing());
}

} // namespace

VeloraRingVectorIterator::VeloraRingVectorIterator(const RingVector<RingVectorBaseItem*>& ring) noexcept
    : VeloraIteratorStdSet(ring) {}

VeloraRingVectorIterator::~VeloraRingVectorIterator() = default;

void* VeloraRingVectorIterator::operator new(std::size_t size) {
    return IteratorMemory(size);
}

void VeloraRingVectorIterator::operator delete(void* memory) noexcept {
    VeloraMemory::nedfree(memory);
}

VeloraRingVectorReverseIterator::VeloraRingVectorReverseIterator(
    const RingVector<RingVectorBaseItem*>& ring) noexcept
    : VeloraIteratorStdSetReverse(ring) {}

VeloraRingVectorReverseIterator::~VeloraRingVectorReverseIterator() = default;

void* VeloraRingVectorReverseIterator::operator new(std::size_t size) {
    return IteratorMemory(size);
}

void VeloraRingVectorReverseIterator::operator delete(void* memory) noexcept {
    VeloraMemory::nedfree(memory);
}

VeloraRingVector* U_CreateVeloraRingVector(std::uint64_t capacity, bool fixedSize, bool keepNewestOnShrink) {
    return new VeloraRingVector(capacity, fixedSize, keepNewestOnShrink);
}

VeloraRingVectorItemIterator* U_CreateVeloraRingVectorIterator(VeloraRingVector* ringVector) {
    return CreateIterator<VeloraRingVectorIterator>(ringVector);
}

VeloraRingVectorItemIterator* U_CreateReverseVeloraRingVectorIterator(VeloraRingVector* ringVector) {
    return CreateIterator<VeloraRingVectorReverseIterator>(ringVector);
}

RingVectorBaseItem* U_GetNextVeloraRingVectorItem(VeloraRingVectorItemIterator* iterator) {
    return iterator == nullptr ? nullptr : iterator->Next();
}
