// RingVector.h - a double-ended sequence held in one circular array: constant-time adds and removals
// at both ends, positions from either end, middle inserts that move the shorter side, growth by
// doubling or a fixed size that drops the far end. The exported VeloraRingVector holds owned
// polymorphic items; the iterators walk it front to back or back to front.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

#include "VeloraUtils/Export.h"

// The ring. Slots outside the held range are value-initialised (null for pointers). What happens to
// an element when its slot is vacated is the element policy: the virtual operations below, which
// RingVectorOwn and RingVectorPtr replace. One thread at a time; the caller serialises access.
template <class T> class RingVector {
public:
    // A walk position: the ring, a slot index and the slot, which is null once past the end. The
    // forward walk ends after the back slot, the reverse walk after the front slot. Any add, removal
    // or reserve invalidates positions.
    template <bool Reverse> class Position {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        Position() noexcept = default;
        Position(const RingVector* owner, std::uint64_t index, const T* slot) noexcept
            : owner_(owner), index_(index), slot_(slot) {}
        const T& operator*() const noexcept { return *slot_; }
        Position& operator++() noexcept;
        Position operator++(int) noexcept {
            Position before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Position& other) const noexcept = default;
        bool isEnd() const noexcept { return slot_ == nullptr; }
        const std::uint64_t& GetIndex() const noexcept { return index_; }

    private:
        const RingVector* owner_ = nullptr;
        std::uint64_t index_ = 0;
        const T* slot_ = nullptr;
    };
    using const_iterator = Position<false>;
    using const_reverse_iterator = Position<true>;

    // `capacity` slots (a requested 0 is taken as 1), empty. A fixed-size ring never grows when full:
    // an add at one end drops the item at the other end. keepNewestOnShrink decides which items a
    // shrinking reserve keeps. Allocation failure throws std::bad_alloc.
    explicit RingVector(std::uint64_t capacity = 1, bool fixedSize = false, bool keepNewestOnShrink = false);
    // Copies capacity, flags, indices and the held elements, each through the source's CopyElement.
    // Copy a ring as its own class: a plain copy of an owning ring would not own its copies.
    RingVector(const RingVector& other);
    RingVector& operator=(const RingVector& other);
    // Releases the array. A class whose DestroyElement does something empties the ring in its own
    // destructor (here the class's own policy is no longer reachable).
    virtual ~RingVector();

    // Called on every slot the ring vacates or overwrites as a drop; does nothing here.
    virtual void DestroyElement(T& slot) const;
    // Whether clear, reserve and the destructor destroy the held elements; false here.
    virtual bool OwnsElements() const;
    // The value a copy of this ring holds for `element`; here the element itself (numbers, views
    // and borrowed pointers are shared).
    virtual T CopyElement(const T& element) const;

    // Adds at the back (front). When full: a growing ring doubles first; a fixed ring drops the
    // item at the other end with DestroyElement.
    void push_back(const T& item);
    void push_front(const T& item);
    // Move the indices as push_back (push_front) and return the slot for the caller to fill. They
    // never call DestroyElement: in a full fixed ring the slot still holds the dropped item.
    T& push_back_empty();
    T& push_front_empty();
    // Removes the back (front) element with DestroyElement; nothing happens on an empty ring.
    void pop_back();
    void pop_front();
    // Inserts at `index` from the front, moving the shorter side by one slot; an index at or past
    // size() appends. Kept as they always were: on an empty ring the item lands one slot after the
    // front slot (at(0) and front() then read that front slot, back() the item); on a full fixed
    // ring index 0 overwrites the first item without destroying it. A middle insert on a full fixed
    // ring drops the oldest item when the back side moves (index > size / 2), else the newest.
    void insert(std::uint64_t index, const T& item);
    // Destroys the held elements (when owning) and empties the ring; the capacity is kept.
    void clear();

    // The element `index` places from the front (back); T{} (null) when index >= size().
    T at(std::uint64_t index) const;
    T fromBack(std::uint64_t index) const;
    // The first (last) element; T{} (null) when empty.
    T front() const { return size_ == 0 ? T{} : slots_[front_]; }
    T back() const { return size_ == 0 ? T{} : slots_[back_]; }

    // Re-allocates to `n` slots (0 is taken as 1; nothing when n equals the capacity) and moves the
    // held elements to the start of the new array. Shrinking below size() keeps the newest items
    // when keepNewestOnShrink is set, the oldest otherwise; the others are destroyed when owning.
    void reserve(std::uint64_t n);
    // Doubles the capacity until size() + additional elements fit (stopping before it would
    // overflow) and reserves that; nothing when they already fit.
    void ReserveAdditional(std::uint64_t additional);

    std::uint64_t capacity() const noexcept { return capacity_; }
    std::uint64_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    const std::uint64_t& GetFrontIndex() const noexcept { return front_; }
    const std::uint64_t& GetBackIndex() const noexcept { return back_; }
    const bool& isFixedSize() const noexcept { return fixedSize_; }
    const bool& isKeepingNewestOnShrink() const noexcept { return keepNewestOnShrink_; }

    // Forward walk from the front slot to the back slot, reverse walk from the back to the front.
    const_iterator begin() const noexcept { return {this, size_ == 0 ? back_ : front_, FirstSlot(front_)}; }
    const_iterator end() const noexcept { return {this, back_, nullptr}; }
    const_reverse_iterator rbegin() const noexcept {
        return {this, size_ == 0 ? front_ : back_, FirstSlot(back_)};
    }
    const_reverse_iterator rend() const noexcept { return {this, front_, nullptr}; }

private:
    std::uint64_t Next(std::uint64_t i) const noexcept { return i + 1 == capacity_ ? 0 : i + 1; }
    std::uint64_t Prev(std::uint64_t i) const noexcept { return i == 0 ? capacity_ - 1 : i - 1; }
    // The slot `index` places after the front slot (index at most the capacity; no division).
    std::uint64_t FromFront(std::uint64_t index) const noexcept {
        return index < capacity_ - front_ ? front_ + index : index - (capacity_ - front_);
    }
    const T* FirstSlot(std::uint64_t i) const noexcept { return size_ == 0 ? nullptr : slots_ + i; }
    // Slots from the front that may hold elements: size() of them, or the front-to-back span when
    // the insert-on-empty placement left an element beyond the first size() slots.
    std::uint64_t HeldSpan() const noexcept;
    // Slots from `first` to `last` inclusive, walking toward the back.
    std::uint64_t Count(std::uint64_t first, std::uint64_t last) const noexcept {
        return (last >= first ? last - first : last + capacity_ - first) + 1;
    }
    // `n` value-initialised slots; a count no array can have fails as an allocation.
    static T* Allocate(std::uint64_t n) {
        if (n > static_cast<std::uint64_t>(PTRDIFF_MAX) / sizeof(T)) throw std::bad_array_new_length();
        return new T[n]();
    }
    void GrowIfFull();
    T& AddAtBack(bool destroyDropped);
    T& AddAtFront(bool destroyDropped);
    // Destroys `count` slots from `first` onward (owning rings only).
    void DestroySlots(std::uint64_t first, std::uint64_t count);
    // Rotates the slots first..last (wrapping) one place toward the back (front): the element of the
    // slot the shift runs into lands in the opened slot at the other end.
    void ShiftTowardBack(std::uint64_t first, std::uint64_t last);
    void ShiftTowardFront(std::uint64_t first, std::uint64_t last);

    std::uint64_t capacity_;
    T* slots_;
    std::uint64_t size_ = 0;
    std::uint64_t front_ = 0;
    std::uint64_t back_ = 0;
    bool fixedSize_;
    bool keepNewestOnShrink_;
};

template <class T> class RingVectorOwn;
template <class T> class RingVectorPtr;

// A ring that owns its items: a vacated or dropped slot's item is deleted and the slot set to null;
// clear, reserve and the destructor delete the items they remove. Copies hold copies of the items.
template <class T> class RingVectorOwn<T*> : public RingVector<T*> {
public:
    explicit RingVectorOwn(std::uint64_t capacity = 1, bool fixedSize = false,
                           bool keepNewestOnShrink = false)
        : RingVector<T*>(capacity, fixedSize, keepNewestOnShrink) {}
    RingVectorOwn(const RingVectorOwn&) = default;
    RingVectorOwn& operator=(const RingVectorOwn&) = default;
    ~RingVectorOwn() override { this->clear(); }

    void DestroyElement(T*& slot) const override {
        delete slot;
        slot = nullptr;
    }
    bool OwnsElements() const override { return true; }
    T* CopyElement(T* const& element) const override {
        return element == nullptr ? nullptr : CloneElement(element);
    }
    // A new copy of `item` for a copied ring: T's copy constructor when T has one (derived parts of a
    // polymorphic item are not copied: override). Items of a type that cannot be copied are held as
    // null in the copy.
    virtual T* CloneElement(const T* item) const;
    // Whether two held items are equal: both null, or T's == (the same item when T has none).
    virtual bool ElementsEqual(const T* a, const T* b) const;

    // True when both rings hold the same number of items and ElementsEqual holds position by position.
    bool SameElements(const RingVectorOwn& other) const;
};

// A ring that borrows its items: a vacated slot is set to null, nothing is deleted, copies share.
template <class T> class RingVectorPtr<T*> : public RingVector<T*> {
public:
    explicit RingVectorPtr(std::uint64_t capacity = 1, bool fixedSize = false,
                           bool keepNewestOnShrink = false)
        : RingVector<T*>(capacity, fixedSize, keepNewestOnShrink) {}
    void DestroyElement(T*& slot) const override { slot = nullptr; }
};

// An item held by a VeloraRingVector: created with plain new, deleted by the ring when it leaves.
class VELORA_API RingVectorBaseItem {
public:
    virtual ~RingVectorBaseItem();
    // A new heap copy of this item (of its full type) for a copied ring vector; null when the item
    // cannot be copied (the copy then holds null in its place).
    virtual RingVectorBaseItem* Clone() const = 0;
    // Whether this item equals `other` in value (VeloraRingVector comparison).
    virtual bool IsEqual(const RingVectorBaseItem& other) const = 0;

protected:
    RingVectorBaseItem() = default;
    RingVectorBaseItem(const RingVectorBaseItem&) = default;
    RingVectorBaseItem& operator=(const RingVectorBaseItem&) = default;
};

// The ring inside VeloraRingVector: items are copied with Clone and compared with IsEqual.
class RingVectorItems final : public RingVectorOwn<RingVectorBaseItem*> {
public:
    explicit RingVectorItems(std::uint64_t capacity = 1, bool fixedSize = false,
                             bool keepNewestOnShrink = false)
        : RingVectorOwn(capacity, fixedSize, keepNewestOnShrink) {}
    RingVectorBaseItem* CloneElement(const RingVectorBaseItem* item) const override { return item->Clone(); }
    bool ElementsEqual(const RingVectorBaseItem* a, const RingVectorBaseItem* b) const override {
        return a == nullptr || b == nullptr ? a == b : a->IsEqual(*b);
    }
};

// The ring vector's interface; every operation as in RingVector.
class VELORA_API VeloraRingVectorBase {
public:
    virtual ~VeloraRingVectorBase();
    virtual void push_back(RingVectorBaseItem* const& item) = 0;
    virtual void push_front(RingVectorBaseItem* const& item) = 0;
    virtual void pop_back() = 0;
    virtual void pop_front() = 0;
    virtual RingVectorBaseItem*& push_back_empty() = 0;
    virtual RingVectorBaseItem*& push_front_empty() = 0;
    virtual void insert(std::uint64_t index, RingVectorBaseItem* item) = 0;
    virtual void clear() = 0;
    virtual RingVectorBaseItem* at(std::uint64_t index) = 0;
    virtual const RingVectorBaseItem* at(std::uint64_t index) const = 0;
    virtual RingVectorBaseItem* fromBack(std::uint64_t index) = 0;
    virtual const RingVectorBaseItem* fromBack(std::uint64_t index) const = 0;
    virtual RingVectorBaseItem* front() = 0;
    virtual const RingVectorBaseItem* front() const = 0;
    virtual RingVectorBaseItem* back() = 0;
    virtual const RingVectorBaseItem* back() const = 0;
    virtual void ReserveAdditional(std::uint64_t additional) = 0;
    virtual void reserve(std::uint64_t n) = 0;
    virtual std::uint64_t capacity() const = 0;
    virtual std::uint64_t size() const = 0;

    RingVectorBaseItem* operator[](std::uint64_t index) { return at(index); }
    const RingVectorBaseItem* operator[](std::uint64_t index) const { return at(index); }

protected:
    VeloraRingVectorBase() = default;
    VeloraRingVectorBase(const VeloraRingVectorBase&) = default;
    VeloraRingVectorBase& operator=(const VeloraRingVectorBase&) = default;
};

// The exported ring vector of owned items. Its destructor deletes the items still held. Copies are
// deep: each item is copied with its Clone, so the two ring vectors never share an item.
class VELORA_API VeloraRingVector : public VeloraRingVectorBase {
public:
    explicit VeloraRingVector(std::uint64_t capacity, bool fixedSize = false,
                              bool keepNewestOnShrink = false);
    VeloraRingVector(const VeloraRingVector& other);
    VeloraRingVector& operator=(const VeloraRingVector& other);
    ~VeloraRingVector() override;

    void push_back(RingVectorBaseItem* const& item) override;
    void push_front(RingVectorBaseItem* const& item) override;
    void pop_back() override;
    void pop_front() override;
    RingVectorBaseItem*& push_back_empty() override;
    RingVectorBaseItem*& push_front_empty() override;
    void insert(std::uint64_t index, RingVectorBaseItem* item) override;
    void clear() override;
    RingVectorBaseItem* at(std::uint64_t index) override;
    const RingVectorBaseItem* at(std::uint64_t index) const override;
    RingVectorBaseItem* fromBack(std::uint64_t index) override;
    const RingVectorBaseItem* fromBack(std::uint64_t index) const override;
    RingVectorBaseItem* front() override;
    const RingVectorBaseItem* front() const override;
    RingVectorBaseItem* back() override;
    const RingVectorBaseItem* back() const override;
    void ReserveAdditional(std::uint64_t additional) override;
    void reserve(std::uint64_t n) override;
    std::uint64_t capacity() const override;
    std::uint64_t size() const override;

    // Same number of items, equal (IsEqual) position by position.
    bool operator==(const VeloraRingVector& other) const;
    const RingVectorItems& GetRing() const noexcept { return ring_; }

private:
    RingVectorItems ring_;
};

// Iterators. An iterator belongs to the caller, who deletes it through its virtual destructor.
class VELORA_API VeloraIterator {
public:
    virtual ~VeloraIterator();
    // Back to the first position (of the ring as it is now).
    virtual void Reset() = 0;
    // The number of items of the walked collection.
    virtual unsigned int GetCount() const = 0;
    // Advances up to `count` positions, stopping at the end.
    virtual void Skip(unsigned int count) = 0;

protected:
    VeloraIterator() = default;
    VeloraIterator(const VeloraIterator&) = default;
    VeloraIterator& operator=(const VeloraIterator&) = default;
};

template <class Value> class VeloraIteratorBaseValue : public VeloraIterator {
public:
    // The item at the current position, then advance; Value{} (null) at the end.
    virtual Value GetNextItem() = 0;
    // The item at the current position; Value{} (null) at the end.
    virtual Value GetCurrentItem() const = 0;
};

// An iterator over a collection `Set` (which it does not own); GetNextItem and GetCurrentItem are
// Next and Current.
template <class Set, class Value> class VeloraIteratorSet : public VeloraIteratorBaseValue<Value> {
public:
    Value GetNextItem() override { return Next(); }
    Value GetCurrentItem() const override { return Current(); }
    unsigned int GetCount() const override { return static_cast<unsigned int>(set_->size()); }
    virtual Value Next() = 0;
    virtual Value Current() const = 0;

protected:
    explicit VeloraIteratorSet(const Set& set) noexcept : set_(&set) {}
    const Set* set_;
};

// Walks a collection through its own positions (begin/end, or rbegin/rend when Reverse).
template <class Set, class Value, bool Reverse = false>
class VeloraIteratorStdSet : public VeloraIteratorSet<Set, Value> {
public:
    void Reset() override {
        current_ = Start(*this->set_);
        end_ = Stop(*this->set_);
    }
    void Skip(unsigned int count) override {
        for (; count > 0 && current_ != end_; --count) ++current_;
    }
    Value Next() override {
        if (current_ == end_) return Value{};
        Value item = *current_;
        ++current_;
        return item;
    }
    Value Current() const override { return current_ == end_ ? Value{} : *current_; }

protected:
    using Position =
        std::conditional_t<Reverse, typename Set::const_reverse_iterator, typename Set::const_iterator>;
    explicit VeloraIteratorStdSet(const Set& set) noexcept
        : VeloraIteratorSet<Set, Value>(set), current_(Start(set)), end_(Stop(set)) {}
    static Position Start(const Set& set) noexcept {
        if constexpr (Reverse)
            return set.rbegin();
        else
            return set.begin();
    }
    static Position Stop(const Set& set) noexcept {
        if constexpr (Reverse)
            return set.rend();
        else
            return set.end();
    }
    Position current_;
    Position end_;
};

template <class Set, class Value>
class VeloraIteratorStdSetReverse : public VeloraIteratorStdSet<Set, Value, true> {
protected:
    explicit VeloraIteratorStdSetReverse(const Set& set) noexcept
        : VeloraIteratorStdSet<Set, Value, true>(set) {}
};

// What the creating functions return: Next (U_GetNextVeloraRingVectorItem) walks the ring.
using VeloraRingVectorItemIterator = VeloraIteratorSet<RingVector<RingVectorBaseItem*>, RingVectorBaseItem*>;

// The two iterators of a VeloraRingVector. Their memory comes from VeloraMemory::nedmalloc and goes
// back with nedfree when they are deleted.
class VELORA_API VeloraRingVectorIterator final
    : public VeloraIteratorStdSet<RingVector<RingVectorBaseItem*>, RingVectorBaseItem*> {
public:
    explicit VeloraRingVectorIterator(const RingVector<RingVectorBaseItem*>& ring) noexcept;
    ~VeloraRingVectorIterator() override;
    // nedmalloc; throws std::bad_alloc when it fails.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* memory) noexcept { return memory; }
    static void operator delete(void* memory) noexcept;
    static void operator delete(void*, void*) noexcept {}
};

class VELORA_API VeloraRingVectorReverseIterator final
    : public VeloraIteratorStdSetReverse<RingVector<RingVectorBaseItem*>, RingVectorBaseItem*> {
public:
    explicit VeloraRingVectorReverseIterator(const RingVector<RingVectorBaseItem*>& ring) noexcept;
    ~VeloraRingVectorReverseIterator() override;
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* memory) noexcept { return memory; }
    static void operator delete(void* memory) noexcept;
    static void operator delete(void*, void*) noexcept {}
};

// A new empty ring vector as VeloraRingVector's constructor makes it (plain new; the caller deletes
// it). Allocation failure throws std::bad_alloc.
VELORA_C_API VeloraRingVector* U_CreateVeloraRingVector(std::uint64_t capacity, bool fixedSize,
                                                        bool keepNewestOnShrink);
// A new iterator over `ringVector`, front to back, in memory from nedmalloc; the caller deletes it
// (before changing the ring: adds, removals and reserves invalidate it). Null when `ringVector` is
// null or nedmalloc fails.
VELORA_C_API VeloraRingVectorItemIterator* U_CreateVeloraRingVectorIterator(VeloraRingVector* ringVector);
// As U_CreateVeloraRingVectorIterator, back to front.
VELORA_C_API VeloraRingVectorItemIterator* U_CreateReverseVeloraRingVectorIterator(VeloraRingVector* ring);
// The iterator's Next: the item at its position, advancing; null at the end or for a null iterator.
VELORA_C_API RingVectorBaseItem* U_GetNextVeloraRingVectorItem(VeloraRingVectorItemIterator* iterator);

// ---- RingVector members ----

template <class T>
template <bool Reverse>
typename RingVector<T>::template Position<Reverse>& RingVector<T>::Position<Reverse>::operator++() noexcept {
    const std::uint64_t last = Reverse ? owner_->front_ : owner_->back_;
    if (index_ == last) {
        slot_ = nullptr;
    } else {
        index_ = Reverse ? owner_->Prev(index_) : owner_->Next(index_);
        slot_ = owner_->slots_ + index_;
    }
    return *this;
}

template <class T>
RingVector<T>::RingVector(std::uint64_t capacity, bool fixedSize, bool keepNewestOnShrink)
    : capacity_(capacity == 0 ? 1 : capacity), slots_(Allocate(capacity_)), fixedSize_(fixedSize),
      keepNewestOnShrink_(keepNewestOnShrink) {}

template <class T>
RingVector<T>::RingVector(const RingVector& other)
    : capacity_(other.capacity_), slots_(Allocate(other.capacity_)), size_(other.size_), front_(other.front_),
      back_(other.back_), fixedSize_(other.fixedSize_), keepNewestOnShrink_(other.keepNewestOnShrink_) {
    const std::uint64_t span = other.HeldSpan();
    std::uint64_t copied = 0;
    try {
        for (std::uint64_t i = front_; copied < span; ++copied, i = Next(i))
            slots_[i] = other.CopyElement(other.slots_[i]);
    } catch (...) {
        if (other.OwnsElements())
            for (std::uint64_t i = front_; copied > 0; --copied, i = Next(i)) other.DestroyElement(slots_[i]);
        delete[] slots_;
        throw;
    }
}

template <class T> RingVector<T>& RingVector<T>::operator=(const RingVector& other) {
    if (this != &other) {
        RingVector copy(other);
        DestroySlots(front_, HeldSpan());
        std::swap(capacity_, copy.capacity_);
        std::swap(slots_, copy.slots_);
        std::swap(size_, copy.size_);
        std::swap(front_, copy.front_);
        std::swap(back_, copy.back_);
        fixedSize_ = other.fixedSize_;
        keepNewestOnShrink_ = other.keepNewestOnShrink_;
    }
    return *this;
}

template <class T> RingVector<T>::~RingVector() {
    delete[] slots_;
}

template <class T> void RingVector<T>::DestroyElement(T&) const {}

template <class T> bool RingVector<T>::OwnsElements() const {
    return false;
}

template <class T> T RingVector<T>::CopyElement(const T& element) const {
    return element;
}

template <class T> std::uint64_t RingVector<T>::HeldSpan() const noexcept {
    if (size_ == 0) return 0;
    const std::uint64_t span = Count(front_, back_);
    return span > size_ ? span : size_;
}

template <class T> void RingVector<T>::GrowIfFull() {
    if (size_ == capacity_ && !fixedSize_)
        reserve(capacity_ > UINT64_MAX / 2 ? UINT64_MAX : capacity_ * 2); // the allocation fails first
}

template <class T> T& RingVector<T>::AddAtBack(bool destroyDropped) {
    GrowIfFull();
    if (size_ == 0) {
        size_ = 1;
        return slots_[back_];
    }
    back_ = Next(back_);
    if (size_ == capacity_) {
        if (front_ == back_) front_ = Next(front_);
        if (destroyDropped) DestroyElement(slots_[back_]);
    } else {
        ++size_;
    }
    return slots_[back_];
}

template <class T> T& RingVector<T>::AddAtFront(bool destroyDropped) {
    GrowIfFull();
    if (size_ == 0) {
        size_ = 1;
        return slots_[front_];
    }
    front_ = Prev(front_);
    if (size_ == capacity_) {
        if (back_ == front_) back_ = Prev(back_);
        if (destroyDropped) DestroyElement(slots_[front_]);
    } else {
        ++size_;
    }
    return slots_[front_];
}

template <class T> void RingVector<T>::push_back(const T& item) {
    T value(item); // `item` may live in this ring
    AddAtBack(true) = std::move(value);
}

template <class T> void RingVector<T>::push_front(const T& item) {
    T value(item);
    AddAtFront(true) = std::move(value);
}

template <class T> T& RingVector<T>::push_back_empty() {
    return AddAtBack(false);
}

template <class T> T& RingVector<T>::push_front_empty() {
    return AddAtFront(false);
}

// When the last element goes, an element the insert-on-empty placement left past the popped slot
// goes with it rather than being stranded outside the held range.
template <class T> void RingVector<T>::pop_back() {
    if (size_ == 0) return;
    DestroyElement(slots_[back_]);
    if (--size_ != 0) {
        back_ = Prev(back_);
        return;
    }
    if (front_ != back_) DestroySlots(front_, Count(front_, Prev(back_)));
    front_ = back_ = 0;
}

template <class T> void RingVector<T>::pop_front() {
    if (size_ == 0) return;
    DestroyElement(slots_[front_]);
    if (--size_ != 0) {
        front_ = Next(front_);
        return;
    }
    if (front_ != back_) DestroySlots(Next(front_), Count(Next(front_), back_));
    front_ = back_ = 0;
}

template <class T> void RingVector<T>::insert(std::uint64_t index, const T& item) {
    T value(item);
    GrowIfFull();
    if (size_ < capacity_) {
        std::uint64_t p;
        if (index >= size_) {
            p = back_ = Next(back_);
        } else if (index == 0) {
            p = front_ = Prev(front_);
        } else if (index > size_ / 2) {
            p = FromFront(index);
            back_ = Next(back_);
            ShiftTowardBack(p, back_);
        } else {
            p = Prev(FromFront(index));
            front_ = Prev(front_);
            ShiftTowardFront(front_, p);
        }
        slots_[p] = std::move(value);
        ++size_;
        return;
    }
    // Full and fixed: one item leaves, from the end whose side moved.
    std::uint64_t p = front_;
    if (index == 0) { // overwritten without DestroyElement, as it always was
        slots_[p] = std::move(value);
        return;
    }
    if (index >= size_) {
        p = back_ = front_;
        front_ = Next(front_);
    } else if (index > size_ / 2) {
        p = FromFront(index);
        back_ = front_;
        front_ = Next(front_);
        ShiftTowardBack(p, back_);
    } else {
        p = Prev(FromFront(index));
        front_ = Prev(front_);
        back_ = Prev(back_);
        ShiftTowardFront(front_, p);
    }
    DestroyElement(slots_[p]);
    slots_[p] = std::move(value);
}

template <class T> void RingVector<T>::ShiftTowardBack(std::uint64_t first, std::uint64_t last) {
    T displaced = std::move(slots_[last]);
    for (std::uint64_t i = last; i != first; i = Prev(i)) slots_[i] = std::move(slots_[Prev(i)]);
    slots_[first] = std::move(displaced);
}

template <class T> void RingVector<T>::ShiftTowardFront(std::uint64_t first, std::uint64_t last) {
    T displaced = std::move(slots_[first]);
    for (std::uint64_t i = first; i != last; i = Next(i)) slots_[i] = std::move(slots_[Next(i)]);
    slots_[last] = std::move(displaced);
}

template <class T> void RingVector<T>::DestroySlots(std::uint64_t first, std::uint64_t count) {
    if (count == 0 || !OwnsElements()) return;
    for (std::uint64_t i = first; count > 0; --count, i = Next(i)) DestroyElement(slots_[i]);
}

template <class T> void RingVector<T>::clear() {
    DestroySlots(front_, HeldSpan());
    size_ = front_ = back_ = 0;
}

template <class T> T RingVector<T>::at(std::uint64_t index) const {
    return index >= size_ ? T{} : slots_[FromFront(index)];
}

template <class T> T RingVector<T>::fromBack(std::uint64_t index) const {
    return index >= size_ ? T{} : slots_[back_ >= index ? back_ - index : back_ + capacity_ - index];
}

template <class T> void RingVector<T>::reserve(std::uint64_t n) {
    if (n == 0) n = 1;
    if (n == capacity_) return;
    T* const target = Allocate(n);
    const std::uint64_t span = HeldSpan();
    const std::uint64_t skipped = keepNewestOnShrink_ && n < size_ ? size_ - n : 0;
    const std::uint64_t moved = n < size_ ? n : size_;
    DestroySlots(front_, skipped);
    std::uint64_t from = FromFront(skipped);
    for (std::uint64_t i = 0; i < moved; ++i, from = Next(from)) target[i] = std::move(slots_[from]);
    DestroySlots(from, span - skipped - moved);
    delete[] slots_;
    slots_ = target;
    capacity_ = n;
    size_ = moved;
    front_ = 0;
    back_ = moved == 0 ? 0 : moved - 1;
}

template <class T> void RingVector<T>::ReserveAdditional(std::uint64_t additional) {
    const std::uint64_t needed = additional > UINT64_MAX - size_ ? UINT64_MAX : size_ + additional;
    std::uint64_t n = capacity_;
    while (n < needed && n <= UINT64_MAX / 2) n *= 2;
    reserve(n);
}

// ---- RingVectorOwn members ----

template <class T> T* RingVectorOwn<T*>::CloneElement(const T* item) const {
    if constexpr (std::is_copy_constructible_v<T> && !std::is_abstract_v<T>)
        return new T(*item);
    else
        return nullptr;
}

template <class T> bool RingVectorOwn<T*>::ElementsEqual(const T* a, const T* b) const {
    if (a == nullptr || b == nullptr) return a == b;
    if constexpr (std::equality_comparable<T>)
        return a == b || static_cast<bool>(*a == *b);
    else
        return a == b;
}

template <class T> bool RingVectorOwn<T*>::SameElements(const RingVectorOwn& other) const {
    if (this->size() != other.size()) return false;
    for (std::uint64_t i = 0; i < this->size(); ++i)
        if (!ElementsEqual(this->at(i), other.at(i))) return false;
    return true;
}
