// Monetary.h - exact decimal fixed-point values held as a whole part and a fraction counted in
// units of 10^-N. Monetary carries the representation, comparisons and conversions; SignedMonetary
// adds negative values, UnsignedMonetary the 64-bit packing. The concrete classes are in Prices.h.
#pragma once

#include <cstdint>
#include <type_traits>

#include "VeloraUtils/Export.h"

namespace velora::money::detail {

// 10^n for n up to 19.
constexpr std::uint64_t Pow10(int n) noexcept {
    std::uint64_t p = 1;
    while (n-- > 0) p *= 10;
    return p;
}

// Type of the grid argument of Round: wide enough for ONE / 10 of the type.
template <int N>
using RoundPartsType =
    std::conditional_t<(N <= 4), unsigned short, std::conditional_t<(N <= 9), unsigned int, std::uint64_t>>;

} // namespace velora::money::detail

// A value dollars + fraction / ONE with ONE = 10^N. Both parts are stored as given; Canonicalize
// brings the fraction back into 0..ONE-1 (signed types: the fraction takes the whole part's sign).
// Plain data: no heap, no virtual members, copyable bytewise; default construction gives zero.
template <class D, class F, int N> class Monetary {
public:
    using DollarType = D;
    using FractionType = F;
    using RoundParts = velora::money::detail::RoundPartsType<N>;
    static constexpr int kDigits = N;
    // The divisor 10^N: 10000, 10^9 or 10^18.
    static constexpr F One() noexcept { return static_cast<F>(velora::money::detail::Pow10(N)); }

    constexpr Monetary() noexcept = default;

    // Store both parts unchanged (no canonicalisation).
    void SetValue(const Monetary& other) noexcept { *this = other; }
    void SetValue(const D& whole, const F& frac) noexcept {
        dollars = whole;
        fraction = frac;
    }
    void SetZero() noexcept {
        dollars = 0;
        fraction = 0;
    }

    const D& GetDollars() const noexcept { return dollars; }
    const F& GetDollarFraction() const noexcept { return fraction; }

    bool isZero() const noexcept { return dollars == 0 && fraction == 0; }
    bool operator!() const noexcept { return isZero(); }
    // True when either part is above zero.
    bool isPositive() const noexcept { return dollars > 0 || fraction > 0; }

    // Same-type comparisons: whole parts first, then fractions (meaningful for canonical values).
    bool operator==(const Monetary& o) const noexcept {
        return dollars == o.dollars && fraction == o.fraction;
    }
    bool operator!=(const Monetary& o) const noexcept { return !(*this == o); }
    bool operator<(const Monetary& o) const noexcept {
        return dollars < o.dollars || (dollars == o.dollars && fraction < o.fraction);
    }
    bool operator<=(const Monetary& o) const noexcept { return !(o < *this); }
    bool operator>(const Monetary& o) const noexcept { return o < *this; }
    bool operator>=(const Monetary& o) const noexcept { return !(*this < o); }

    // Comparisons with a whole number: the fraction's sign decides when the whole parts are equal,
    // so whole 5 and fraction -1 (not canonical) is below 5.
    bool operator==(const D& n) const noexcept { return dollars == n && fraction == 0; }
    bool operator!=(const D& n) const noexcept { return !(*this == n); }
    bool operator<(const D& n) const noexcept { return dollars < n || (dollars == n && fraction < 0); }
    bool operator<=(const D& n) const noexcept { return dollars < n || (dollars == n && fraction <= 0); }
    bool operator>(const D& n) const noexcept { return dollars > n || (dollars == n && fraction > 0); }
    bool operator>=(const D& n) const noexcept { return dollars > n || (dollars == n && fraction >= 0); }

    // The value as a count of 10^-digits units, computed in D and wrapping silently when it does not
    // fit (for the 18-digit types any digits >= 10 overflows). The fraction is truncated toward zero.
    D GetNumericValue(const unsigned char& digits) const noexcept;
    // The fraction cut to `digits` decimal places (unchanged when digits >= N).
    F GetTruncatedFraction(const unsigned char& digits) const noexcept;
    double toDouble() const noexcept;

    // From a double: whole part by truncation, fraction rounded half up at the N-th digit with a
    // carry into the whole part. Unsigned rule: a negative value is not rejected, its truncation is
    // narrowed into the whole part as it is. NaN and out-of-range values convert as the x86-64
    // truncating instruction does (to the 64-bit minimum) before narrowing.
    void SetDoubleValue(const double& value) noexcept;
    // Whole units and hundredths; cents of 100 or more carry into the whole part.
    void SetDollarsAndCents(const D& whole, const F& cents) noexcept;
    // The 18.14 packed form: whole part in bits 14-31, ten-thousandths in bits 0-13.
    void SetValue1814(const unsigned int& value) noexcept;
    // The compact price: bit 30 clear is the 18.14 form; bit 30 set holds the whole part in bits
    // 7-29 and hundredths in bits 0-6.
    void SetCompactValue(const unsigned int& value) noexcept;
    // Carries a fraction of ONE or more into the whole part (unsigned rule).
    void Canonicalize() noexcept;

protected:
    constexpr Monetary(const D& whole, const F& frac) noexcept : dollars(whole), fraction(frac) {}

    // dollars += fraction / ONE, fraction %= ONE, both truncated toward zero; no sign reconciliation.
    void CanonicalizeBigFraction() noexcept;
    // Halves a non-negative value, truncating the last unit.
    void HalfPositive() noexcept;
    // Moves one whole unit into the fraction, or one out of it.
    void FractionPlusDollar() noexcept;
    void FractionMinusDollar() noexcept;

    D dollars{};
    F fraction{};
};

// Adds negative values. A negative value carries its sign in both parts: -1.25 is whole -1 and
// fraction -0.25 x ONE.
template <class D, class F, int N> class SignedMonetary : public Monetary<D, F, N> {
    using Base = Monetary<D, F, N>;

public:
    using typename Base::RoundParts;

    constexpr SignedMonetary() noexcept = default;

    void Negate() noexcept;
    // True when either part is below zero.
    bool isNegative() const noexcept { return this->dollars < 0 || this->fraction < 0; }
    // Divides by two truncating the last unit; a negative value is halved by magnitude.
    void Half() noexcept;
    // Rounds the fraction to a grid of `parts` steps per whole unit; see Monetary.cpp for the steps.
    // Returns true when the value changed; `parts` above ONE / 10 changes nothing. `mode`: 0 nearest
    // (half away from zero), 1 up, -1 (255) down, anything else truncates. Kept for compatibility
    // with stored values: a negative value rounded in mode 0 or -1 steps one grid step further
    // toward zero than truncation, and from a zero step count wraps into the whole part.
    bool Round(const RoundParts& parts, const char& mode) noexcept;
    // Brings the fraction into -(ONE-1)..ONE-1 with the whole part's sign.
    void Canonicalize() noexcept;
    // A negative value converts by magnitude and is negated (NaN takes the non-negative path).
    void SetDoubleValue(const double& value) noexcept;
    // Negative cents count by magnitude against the whole part; signs are then reconciled.
    void SetDollarsAndCents(const D& whole, const F& cents) noexcept;
    // The floor form: a negative fraction borrows one whole unit and becomes non-negative.
    void toPositiveFraction() noexcept;

protected:
    constexpr SignedMonetary(const D& whole, const F& frac) noexcept : Base(whole, frac) {}
    explicit SignedMonetary(const double& value) noexcept { SetDoubleValue(value); }
};

// Values that are never negative. Negate and isNegative exist so that generic code treats both
// kinds alike.
template <class D, class F, int N> class UnsignedMonetary : public Monetary<D, F, N> {
    using Base = Monetary<D, F, N>;

public:
    using typename Base::RoundParts;

    constexpr UnsignedMonetary() noexcept = default;

    void Half() noexcept { this->HalfPositive(); }
    // As SignedMonetary::Round for a value that is never negative.
    bool Round(const RoundParts& parts, const char& mode) noexcept;
    // Whole part in the high 32 bits or-ed with the fraction. For the 18-digit type the whole 64-bit
    // fraction is or-ed in unshifted, so its high bits mix with the whole part (kept as it is).
    std::uint64_t GetPriceAsUInt64() const noexcept;
    // Whole part from the high 32 bits, fraction from the low 32 bits.
    void SetPriceAsUInt64(const std::uint64_t& value) noexcept;
    void Negate() noexcept {}
    bool isNegative() const noexcept { return false; }

protected:
    constexpr UnsignedMonetary(const D& whole, const F& frac) noexcept : Base(whole, frac) {}
    explicit UnsignedMonetary(const double& value) noexcept { this->SetDoubleValue(value); }
};

// The five instantiations are compiled once, in the library, and exported with every member.
extern template class VELORA_API Monetary<std::int64_t, short, 4>;
extern template class VELORA_API Monetary<unsigned int, unsigned int, 9>;
extern template class VELORA_API Monetary<int, int, 9>;
extern template class VELORA_API Monetary<unsigned int, std::uint64_t, 18>;
extern template class VELORA_API Monetary<int, std::int64_t, 18>;
extern template class VELORA_API SignedMonetary<std::int64_t, short, 4>;
extern template class VELORA_API SignedMonetary<int, int, 9>;
extern template class VELORA_API SignedMonetary<int, std::int64_t, 18>;
extern template class VELORA_API UnsignedMonetary<unsigned int, unsigned int, 9>;
extern template class VELORA_API UnsignedMonetary<unsigned int, std::uint64_t, 18>;
