// Thermograph.cpp - the history ring behind the Thermograph handle. The newest value moves
// backwards through the array (stored at head - 1, wrapping), so the value k places back from the
// newest is at (head + k) mod capacity.
#include "VeloraUtils/Thermograph.h"

#include <algorithm>
#include <memory>

namespace velora::containers::detail {

struct ThermographState {
    explicit ThermographState(unsigned short cap)
        : capacity(cap == 0 ? 1 : cap), values(new unsigned short[capacity]()), tail(capacity - 1u) {}
    ThermographState(const ThermographState& other)
        : capacity(other.capacity), values(new unsigned short[other.capacity]), size(other.size),
          head(other.head), tail(other.tail), cursor(other.cursor), sum(other.sum) {
        std::copy_n(other.values.get(), capacity, values.get());
    }

    unsigned int Slot(unsigned int placesBack) const { return (head + placesBack) % capacity; }

    void Add(unsigned short value) {
        if (size == capacity) {
            sum -= values[tail]; // the oldest leaves; its slot takes the new value
            tail = tail == 0 ? capacity - 1u : tail - 1u;
        } else {
            ++size;
        }
        head = head == 0 ? capacity - 1u : head - 1u;
        values[head] = value;
        sum += value;
    }

    void Clear() {
        size = 0;
        head = 0;
        tail = capacity - 1u;
        cursor = 0;
        sum = 0;
    }

    const unsigned int capacity;
    std::unique_ptr<unsigned short[]> values;
    unsigned int size = 0;
    unsigned int head = 0;   // the newest value
    unsigned int tail;       // the oldest value
    unsigned int cursor = 0; // places back from the newest; at or past size: the end
    unsigned int sum = 0;
    static constexpr unsigned short endValue = 0;
};

} // namespace velora::containers::detail

using velora::containers::detail::ThermographState;

Thermograph::Thermograph(unsigned short capacity) : state_(new ThermographState(capacity)) {}

Thermograph::Thermograph(const Thermograph& other) : state_(new ThermographState(*other.state_)) {}

Thermograph& Thermograph::operator=(const Thermograph& other) {
    if (this != &other) {
        auto* copy = new ThermographState(*other.state_);
        delete state_;
        state_ = copy;
    }
    return *this;
}

Thermograph::~Thermograph() {
    delete state_;
}

void Thermograph::AddValue(unsigned short value) {
    state_->Add(value);
}

void Thermograph::AddValue(unsigned short value, unsigned short count) {
    ThermographState& s = *state_;
    if (count <= s.capacity) {
        for (unsigned short i = 0; i < count; ++i) s.Add(value);
        return;
    }
    // More repeats than places: the history ends up full of `value`, as the repetition would leave it.
    std::fill_n(s.values.get(), s.capacity, value);
    s.size = s.capacity;
    s.head = 0;
    s.tail = s.capacity - 1u;
    s.sum = static_cast<unsigned int>(value) * s.capacity;
}

void Thermograph::clear() {
    state_->Clear();
}

unsigned short Thermograph::capacity() const {
    return static_cast<unsigned short>(state_->capacity);
}
unsigned short Thermograph::size() const {
    return static_cast<unsigned short>(state_->size);
}
unsigned int Thermograph::GetSum() const {
    return state_->sum;
}

const unsigned short& Thermograph::operator[](unsigned short index) const {
    if (index >= state_->size) return ThermographState::endValue;
    return state_->values[state_->Slot(index)];
}

void Thermograph::ResetIterator() const {
    state_->cursor = 0;
}
void Thermograph::ResetIterator(unsigned short skip) const {
    state_->cursor = skip;
}

unsigned short Thermograph::GetFirstValue() const {
    ResetIterator();
    return GetNextValue();
}

unsigned short Thermograph::GetNextValue() const {
    ThermographState& s = *state_;
    if (s.cursor >= s.size) return ThermographState::endValue;
    return s.values[s.Slot(s.cursor++)];
}
