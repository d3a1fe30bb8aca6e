// Thermograph.h - a fixed-length history of unsigned 16-bit readings, newest first, with their
// running sum, for showing or averaging recent activity without summing the history each time.
#pragma once

#include "VeloraUtils/Export.h"

namespace velora::containers::detail {
struct ThermographState;
} // namespace velora::containers::detail

// The history keeps the last capacity() values; a new value overwrites the oldest when it is full.
// The handle owns its state (copies are deep). One thread at a time: the iteration cursor is part
// of the object, so iteration is not re-entrant even through the const members.
class VELORA_API Thermograph {
public:
    // A capacity of 0 is taken as 1.
    explicit Thermograph(unsigned short capacity);
    Thermograph(const Thermograph& other);
    Thermograph& operator=(const Thermograph& other);
    ~Thermograph();

    // Stores `value` as the newest; when full the oldest value leaves the history and the sum.
    void AddValue(unsigned short value);
    // Adds `value` `count` times (0 does nothing); a count above the capacity fills the history.
    void AddValue(unsigned short value, unsigned short count);
    // Empties the history; the sum becomes 0.
    void clear();

    unsigned short capacity() const;
    unsigned short size() const;
    unsigned int GetSum() const;

    // The value `index` places back from the newest (0 is the newest, size() - 1 the oldest). An
    // index at or beyond size() refers to a constant 0 (callers keep the index below size()).
    const unsigned short& operator[](unsigned short index) const;

    // Puts the internal cursor on the newest value, or `skip` places further back (past the end
    // when that is beyond the oldest).
    void ResetIterator() const;
    void ResetIterator(unsigned short skip) const;
    // Resets the cursor and returns the newest value (0 when empty); the cursor moves on to the next.
    unsigned short GetFirstValue() const;
    // The value under the cursor, moving the cursor one place back towards older values; 0 once
    // the oldest value has been returned.
    unsigned short GetNextValue() const;

private:
    velora::containers::detail::ThermographState* state_;
};
