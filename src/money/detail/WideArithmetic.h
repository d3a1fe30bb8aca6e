// WideArithmetic.h - 128-bit integer steps shared by every monetary type: exact products and
// quotients of the parts, narrowing that wraps like the target type, and the x86-64 semantics of
// the double-to-integer conversions.
#pragma once

#include <cassert>
#include <cstdint>
#include <limits>

#include "VeloraUtils/Monetary.h"

namespace velora::money::detail {

__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

// Any part of any monetary type, widened without loss.
template <class T> constexpr Int128 Wide(T value) noexcept {
    return static_cast<Int128>(value);
}

// Narrowing keeps the low bits, as the part's own arithmetic would wrap.
template <class T> constexpr T Narrow(Int128 value) noexcept {
    return static_cast<T>(value);
}
template <class T> constexpr T Narrow(UInt128 value) noexcept {
    return static_cast<T>(value);
}

constexpr UInt128 Magnitude(Int128 value) noexcept {
    return value < 0 ? UInt128{0} - static_cast<UInt128>(value) : static_cast<UInt128>(value);
}

// The value of a type in its own fraction units: dollars x ONE + fraction, exact.
template <class T> constexpr Int128 Units(const T& v) noexcept {
    return Wide(v.GetDollars()) * Wide(T::One()) + Wide(v.GetDollarFraction());
}

// Double to signed 64 bits as the x86-64 truncating conversion does: NaN and values outside the
// range give the 64-bit minimum (the "integer indefinite" value) instead of undefined behaviour.
inline std::int64_t TruncateToInt64(double value) noexcept {
    if (value >= -0x1p63 && value < 0x1p63) return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

// Double to unsigned 64 bits: values at or above 2^63 are shifted down by 2^63 before the signed
// conversion and shifted back after it.
inline std::uint64_t TruncateToUInt64(double value) noexcept {
    constexpr std::uint64_t kHigh = std::uint64_t{1} << 63;
    if (value >= 0x1p63) return static_cast<std::uint64_t>(TruncateToInt64(value - 0x1p63)) + kHigh;
    return static_cast<std::uint64_t>(TruncateToInt64(value));
}

} // namespace velora::money::detail
