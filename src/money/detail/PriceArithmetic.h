// PriceArithmetic.h - the arithmetic shared by the five price and money classes, written once over
// any of them: part-wise sums, multiplication with carry, rounded division, products and quotients of
// a price into Money, percent changes and rescaling between the 4-, 9- and 18-digit types.
#pragma once

#include <cassert>
#include <cstdint>
#include <type_traits>

#include "VeloraUtils/Prices.h"
#include "money/detail/WideArithmetic.h"

namespace velora::money::detail {

// Ten-thousandths: the Money scale every price product and percent change passes through.
constexpr std::uint64_t kMoneyOne = 10000;

// A value of T from wide parts, each narrowed (wrapping) into its type.
template <class T> T MakeParts(Int128 whole, Int128 frac) noexcept {
    T result;
    result.SetValue(Narrow<typename T::DollarType>(whole), Narrow<typename T::FractionType>(frac));
    return result;
}

// Part-wise sum of wide parts, canonicalised by T's own rule (signed or unsigned).
template <class T> T Canonical(Int128 whole, Int128 frac) noexcept {
    T result = MakeParts<T>(whole, frac);
    result.Canonicalize();
    return result;
}

template <class T, class U> T AddParts(const T& a, const U& b) noexcept {
    return Canonical<T>(Wide(a.GetDollars()) + Wide(b.GetDollars()),
                        Wide(a.GetDollarFraction()) + Wide(b.GetDollarFraction()));
}

template <class T, class U> T SubtractParts(const T& a, const U& b) noexcept {
    return Canonical<T>(Wide(a.GetDollars()) - Wide(b.GetDollars()),
                        Wide(a.GetDollarFraction()) - Wide(b.GetDollarFraction()));
}

template <class T> T BitwiseAnd(const T& a, const T& b) noexcept {
    return Canonical<T>(Wide(a.GetDollars()) & Wide(b.GetDollars()),
                        Wide(a.GetDollarFraction()) & Wide(b.GetDollarFraction()));
}

template <class T> T BitwiseOr(const T& a, const T& b) noexcept {
    return Canonical<T>(Wide(a.GetDollars()) | Wide(b.GetDollars()),
                        Wide(a.GetDollarFraction()) | Wide(b.GetDollarFraction()));
}

// v x k exactly: whole x k plus the whole units of fraction x k (truncated toward zero); the rest
// of fraction x k stays the fraction. Nothing rounds; the whole part wraps in its type.
template <class T> void MultiplyWithCarry(T& v, Int128 k) noexcept {
    const Int128 one = Wide(T::One());
    const Int128 product = Wide(v.GetDollarFraction()) * k;
    v = MakeParts<T>(Wide(v.GetDollars()) * k + product / one, product % one);
}

// v / k rounded half away from zero. The whole part is divided in its own type first, so k = 0 is
// the processor's division fault, as it always was.
template <class T> void DivideRounded(T& v, const typename T::DollarType& k) noexcept {
    assert(k != 0);
    const Int128 one = Wide(T::One());
    const auto whole = v.GetDollars();
    Int128 q = Wide(static_cast<typename T::DollarType>(whole / k));
    const Int128 n = (Wide(whole) - q * Wide(k)) * one + Wide(v.GetDollarFraction());
    const bool negative = (n < 0) != (Wide(k) < 0);
    const UInt128 t = Magnitude(n) * 2 / Magnitude(Wide(k));
    UInt128 f = t / 2 + (t & 1);
    const Int128 direction = negative ? -1 : 1;
    if (f >= static_cast<UInt128>(one)) {
        if (f < static_cast<UInt128>(2 * one)) {
            f -= static_cast<UInt128>(one);
            q += direction;
        } else {
            q += direction * static_cast<Int128>(f / static_cast<UInt128>(one));
            f %= static_cast<UInt128>(one);
        }
    }
    v = MakeParts<T>(q, negative ? -static_cast<Int128>(f) : static_cast<Int128>(f));
}

// Carries whole ten-thousandths of `f` into `whole`.
inline Money MoneyFromMagnitude(UInt128 whole, UInt128 f, bool negative) noexcept {
    whole += f / kMoneyOne;
    f %= kMoneyOne;
    Money result = MakeParts<Money>(static_cast<Int128>(whole), static_cast<Int128>(f));
    if (negative) result.Negate();
    return result;
}

// A price magnitude (fraction in `one` units) as Money: the fraction's cut-off digits round half up.
inline Money MoneyFromPrice(UInt128 whole, UInt128 frac, std::uint64_t one, bool negative) noexcept {
    const std::uint64_t scale = one / kMoneyOne;
    UInt128 f = frac / scale;
    if ((frac % scale) * 2 / scale != 0) ++f;
    return MoneyFromMagnitude(whole, f, negative);
}

// A price magnitude times k into Money: whole x |k|, the fraction's ten-thousandths times |k| plus
// the cut-off digits times |k| rounded half up; negative when exactly one of `negative` and k < 0.
inline Money PriceTimes(UInt128 whole, UInt128 frac, std::uint64_t one, std::int64_t k,
                        bool negative) noexcept {
    const std::uint64_t scale = one / kMoneyOne;
    const UInt128 m = Magnitude(k);
    const UInt128 r = (frac % scale) * m * 2;
    const UInt128 f = (frac / scale) * m + r / (2 * UInt128{scale}) + ((r / scale) & 1);
    return MoneyFromMagnitude(whole * m, f, negative != (k < 0));
}

// A price magnitude divided by k into Money, rounded half up on the magnitude. The whole part is
// divided in 64 bits first, so k = 0 is the processor's division fault.
inline Money PriceDividedBy(std::uint64_t whole, UInt128 frac, std::uint64_t one, std::int64_t k,
                            bool negative) noexcept {
    assert(k != 0);
    const std::uint64_t scale = one / kMoneyOne;
    const auto m = static_cast<std::uint64_t>(Magnitude(k));
    const std::uint64_t q = whole / m;
    const UInt128 n = UInt128{whole % m} * one + frac;
    const UInt128 t = n * 2 / m / scale;
    return MoneyFromMagnitude(q, t / 2 + (t & 1), negative != (k < 0));
}

// The magnitudes of a value's parts.
template <class T> UInt128 WholeMagnitude(const T& v) noexcept {
    return Magnitude(Wide(v.GetDollars()));
}
template <class T> UInt128 FractionMagnitude(const T& v) noexcept {
    return Magnitude(Wide(v.GetDollarFraction()));
}

template <class T> Money ValueTimes(const T& v, std::int64_t k) noexcept {
    return PriceTimes(WholeMagnitude(v), FractionMagnitude(v), static_cast<std::uint64_t>(T::One()), k,
                      v.isNegative());
}

template <class T> Money ValueDividedBy(const T& v, std::int64_t k) noexcept {
    return PriceDividedBy(static_cast<std::uint64_t>(WholeMagnitude(v)), FractionMagnitude(v),
                          static_cast<std::uint64_t>(T::One()), k, v.isNegative());
}

template <class T> Money ValueAsMoney(const T& v) noexcept {
    return MoneyFromPrice(WholeMagnitude(v), FractionMagnitude(v), static_cast<std::uint64_t>(T::One()),
                          v.isNegative());
}

// this x other through Money: this x other's whole part, plus this x (other's fraction cut to four
// decimals) / 10000, summed and canonicalised.
template <class T, class U> Money ProductThroughMoney(const T& a, const U& b) noexcept {
    const auto scale = static_cast<std::int64_t>(static_cast<std::uint64_t>(U::One()) / kMoneyOne);
    const Money whole = ValueTimes(a, static_cast<std::int64_t>(b.GetDollars()));
    Money part = ValueTimes(a, static_cast<std::int64_t>(b.GetDollarFraction()) / scale);
    DivideRounded(part, static_cast<std::int64_t>(kMoneyOne));
    return AddParts(whole, part);
}

// 100 x other / this with four decimals, rounded half up, as R; R's zero when either value is zero.
template <class R, class T, class U> R PercentChange(const T& self, const U& other) noexcept {
    const Int128 a = Units(self);
    const Int128 b = Units(other);
    if (a == 0 || b == 0) return R();
    const UInt128 t = Magnitude(b) * 2000000 / Magnitude(a);
    const UInt128 p = t / 2 + (t & 1);
    const Int128 sign = (a < 0) != (b < 0) ? -1 : 1;
    const auto scale = static_cast<std::uint64_t>(R::One()) / kMoneyOne;
    return MakeParts<R>(sign * static_cast<Int128>(p / kMoneyOne),
                        sign * static_cast<Int128>(p % kMoneyOne * scale));
}

// A copy of `v` in T with the fraction multiplied by `factor` (to more decimals), signs kept.
template <class T, class U> T ScaledUp(const U& v, std::uint64_t factor) noexcept {
    return MakeParts<T>(Wide(v.GetDollars()), Wide(v.GetDollarFraction()) * Wide(factor));
}

// As ScaledUp, but a negative value gives zero (unsigned targets).
template <class T, class U> T ScaledUpOrZero(const U& v, std::uint64_t factor) noexcept {
    return v.isNegative() ? T() : ScaledUp<T>(v, factor);
}

// To fewer decimals by truncation; a negative value gives zero (unsigned targets).
template <class T, class U> T TruncatedOrZero(const U& v, std::uint64_t divisor) noexcept {
    if (v.isNegative()) return T();
    return MakeParts<T>(Wide(v.GetDollars()), Wide(v.GetDollarFraction()) / Wide(divisor));
}

// Compact price of a whole part and a fraction magnitude in `one` units (truncating).
inline unsigned int EncodeCompact(unsigned int whole, UInt128 frac, std::uint64_t one) noexcept {
    if (whole > 65535u) return ((whole | 0x800000u) << 7) | Narrow<unsigned int>(frac / (one / 100));
    return (whole << 14) | Narrow<unsigned int>(frac / (one / 10000));
}

// Signed compact price: a negative part makes both parts negated, encoded, and the code negated.
template <class D, class F>
int EncodeSignedCompact(const D& whole, const F& frac, std::uint64_t one) noexcept {
    if (whole >= 0 && frac >= 0)
        return static_cast<int>(
            EncodeCompact(static_cast<unsigned int>(whole), static_cast<UInt128>(frac), one));
    const auto magnitudeWhole = Narrow<unsigned int>(-Wide(whole));
    const auto magnitudeFrac = static_cast<UInt128>(Narrow<std::make_unsigned_t<F>>(-Wide(frac)));
    return static_cast<int>(0u - EncodeCompact(magnitudeWhole, magnitudeFrac, one));
}

// Decodes a signed compact code into a signed value: a negative code by its magnitude, negated.
template <class T> void DecodeSignedCompact(T& v, const int& code) noexcept {
    if (code >= 0) {
        v.SetCompactValue(static_cast<unsigned int>(code));
    } else {
        v.SetCompactValue(0u - static_cast<unsigned int>(code));
        v.Negate();
    }
}

} // namespace velora::money::detail
