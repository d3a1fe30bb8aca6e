// Monetary.cpp - the members of the fixed-point templates, compiled once here for the five
// instantiations the library exports. All intermediate arithmetic is 128-bit and narrowed at the end,
// so a whole part that overflows wraps in its own type and no step has undefined behaviour.
#include "VeloraUtils/Monetary.h"

#include <type_traits>

#include "money/detail/WideArithmetic.h"

using namespace velora::money::detail;

namespace {

constexpr char kModeNearest = 0;
constexpr char kModeUp = 1;
constexpr char kModeDown = static_cast<char>(-1);

// Moves the whole part one unit: down for a negative value, up otherwise.
template <class D> void StepWhole(D& dollars, bool negative) noexcept {
    dollars = Narrow<D>(Wide(dollars) + (negative ? -1 : 1));
}

// The steps of Round shared by the signed and unsigned templates: the fraction's magnitude is
// rounded to a grid of `parts` steps per whole unit; `negative` is decided by the caller.
template <class D, class F, int N>
bool RoundFraction(D& dollars, F& fraction, std::uint64_t parts, char mode, bool negative) noexcept {
    using UF = std::make_unsigned_t<F>;
    constexpr std::uint64_t kOne = Pow10(N);
    if (parts > kOne / 10) return false;
    const UF magnitude = fraction < 0 ? Narrow<UF>(-Wide(fraction)) : static_cast<UF>(fraction);
    if (parts == 0) {
        if (fraction == 0) return false;
        if (mode == kModeNearest) {
            if (magnitude >= kOne / 2) StepWhole(dollars, negative);
        } else if (mode == kModeUp) {
            if (!negative) StepWhole(dollars, false);
        } else if (mode == kModeDown) {
            if (negative) StepWhole(dollars, true);
        }
        fraction = 0;
        return true;
    }
    const auto step = static_cast<UF>(kOne / parts);
    auto q = static_cast<UF>(magnitude / step);
    const auto r = static_cast<UF>(magnitude % step);
    if (r == 0) return false;
    // Deliberate: a negative value decrements the step count in modes 0 and -1, one grid step more
    // toward zero than truncation; from zero the count wraps in the fraction's unsigned type.
    const auto up = static_cast<UF>(q + 1u);
    const auto down = static_cast<UF>(q - 1u);
    if (mode == kModeNearest) {
        if (r >= (step >> 1)) q = negative ? down : up;
    } else if (mode == kModeUp) {
        if (!negative) q = up;
    } else if (mode == kModeDown) {
        if (negative) q = down;
    }
    auto rounded = Narrow<UF>(static_cast<UInt128>(q) * step);
    if (rounded >= kOne) {
        rounded = static_cast<UF>(rounded - kOne);
        StepWhole(dollars, negative);
    }
    fraction = negative ? Narrow<F>(-Wide(rounded)) : static_cast<F>(rounded);
    return true;
}

} // namespace

// ---- Monetary ------------------------------------------------------------------------------------

template <class D, class F, int N>
D Monetary<D, F, N>::GetNumericValue(const unsigned char& digits) const noexcept {
    if (digits >= N) return Narrow<D>(Wide(dollars) * Wide(One()) + Wide(fraction));
    return Narrow<D>(Wide(dollars) * Wide(Pow10(digits)) + Wide(fraction) / Wide(Pow10(N - digits)));
}

template <class D, class F, int N>
F Monetary<D, F, N>::GetTruncatedFraction(const unsigned char& digits) const noexcept {
    if (digits >= N) return fraction;
    return Narrow<F>(Wide(fraction) / Wide(Pow10(N - digits)));
}

template <class D, class F, int N> double Monetary<D, F, N>::toDouble() const noexcept {
    return static_cast<double>(dollars) + static_cast<double>(fraction) / static_cast<double>(Pow10(N));
}

template <class D, class F, int N> void Monetary<D, F, N>::SetDoubleValue(const double& value) noexcept {
    const std::int64_t whole = TruncateToInt64(value);
    dollars = static_cast<D>(whole);
    // d minus its truncation is exact; only the scaling by ONE rounds.
    const double x = (value - static_cast<double>(whole)) * static_cast<double>(Pow10(N));
    std::uint64_t f;
    double cut;
    if constexpr (N > 9) {
        f = TruncateToUInt64(x);
        cut = static_cast<double>(f);
    } else {
        const std::int64_t signedCut = TruncateToInt64(x);
        f = static_cast<std::uint64_t>(signedCut);
        cut = static_cast<double>(signedCut);
    }
    if (x - cut >= 0.5) {
        ++f;
        if (f >= Pow10(N)) {
            f = 0;
            dollars = Narrow<D>(Wide(dollars) + 1);
        }
    }
    fraction = static_cast<F>(f);
}

template <class D, class F, int N>
void Monetary<D, F, N>::SetDollarsAndCents(const D& whole, const F& cents) noexcept {
    Int128 w = Wide(whole);
    Int128 c = Wide(cents);
    if (c >= 100) {
        w += c / 100;
        c %= 100;
    }
    dollars = Narrow<D>(w);
    fraction = Narrow<F>(c * Wide(Pow10(N - 2)));
}

template <class D, class F, int N> void Monetary<D, F, N>::SetValue1814(const unsigned int& value) noexcept {
    dollars = static_cast<D>(value >> 14);
    fraction = Narrow<F>(Wide(value & 0x3FFFu) * Wide(Pow10(N - 4)));
}

template <class D, class F, int N>
void Monetary<D, F, N>::SetCompactValue(const unsigned int& value) noexcept {
    if ((value & 0x40000000u) == 0) {
        SetValue1814(value);
        return;
    }
    dollars = static_cast<D>((value >> 7) & 0x7FFFFFu);
    fraction = Narrow<F>(Wide(value & 0x7Fu) * Wide(Pow10(N - 2)));
}

template <class D, class F, int N> void Monetary<D, F, N>::Canonicalize() noexcept {
    const Int128 one = Wide(One());
    if (Wide(fraction) < one) return;
    if (Wide(fraction) >= 2 * one) {
        CanonicalizeBigFraction();
    } else {
        FractionMinusDollar();
    }
}

template <class D, class F, int N> void Monetary<D, F, N>::CanonicalizeBigFraction() noexcept {
    const Int128 one = Wide(One());
    dollars = Narrow<D>(Wide(dollars) + Wide(fraction) / one);
    fraction = Narrow<F>(Wide(fraction) % one);
}

template <class D, class F, int N> void Monetary<D, F, N>::HalfPositive() noexcept {
    Int128 f = Wide(fraction);
    if (Wide(dollars) % 2 != 0) f += Wide(One());
    dollars = Narrow<D>(Wide(dollars) >> 1);
    fraction = Narrow<F>(f >> 1);
}

template <class D, class F, int N> void Monetary<D, F, N>::FractionPlusDollar() noexcept {
    dollars = Narrow<D>(Wide(dollars) - 1);
    fraction = Narrow<F>(Wide(fraction) + Wide(One()));
}

template <class D, class F, int N> void Monetary<D, F, N>::FractionMinusDollar() noexcept {
    dollars = Narrow<D>(Wide(dollars) + 1);
    fraction = Narrow<F>(Wide(fraction) - Wide(One()));
}

// ---- SignedMonetary ------------------------------------------------------------------------------

template <class D, class F, int N> void SignedMonetary<D, F, N>::Negate() noexcept {
    this->dollars = Narrow<D>(-Wide(this->dollars));
    this->fraction = Narrow<F>(-Wide(this->fraction));
}

template <class D, class F, int N> void SignedMonetary<D, F, N>::Half() noexcept {
    if (!isNegative()) {
        this->HalfPositive();
        return;
    }
    Negate();
    this->HalfPositive();
    Negate();
}

template <class D, class F, int N>
bool SignedMonetary<D, F, N>::Round(const RoundParts& parts, const char& mode) noexcept {
    return RoundFraction<D, F, N>(this->dollars, this->fraction, parts, mode, isNegative());
}

template <class D, class F, int N> void SignedMonetary<D, F, N>::Canonicalize() noexcept {
    const Int128 one = Wide(Base::One());
    const Int128 f = Wide(this->fraction);
    if (f >= 1) {
        if (f >= 2 * one) {
            this->CanonicalizeBigFraction();
        } else if (f >= one) {
            this->FractionMinusDollar();
        }
        if (this->dollars < 0) this->FractionMinusDollar();
    } else if (f < 0) {
        if (f <= -2 * one) {
            this->CanonicalizeBigFraction();
        } else if (f <= -one) {
            this->FractionPlusDollar();
        }
        if (this->dollars > 0) this->FractionPlusDollar();
    }
}

template <class D, class F, int N>
void SignedMonetary<D, F, N>::SetDoubleValue(const double& value) noexcept {
    if (value < 0) {
        Base::SetDoubleValue(-value);
        Negate();
    } else {
        Base::SetDoubleValue(value);
    }
}

template <class D, class F, int N>
void SignedMonetary<D, F, N>::SetDollarsAndCents(const D& whole, const F& cents) noexcept {
    if (cents >= 0) {
        Base::SetDollarsAndCents(whole, cents);
    } else {
        Int128 w = Wide(whole);
        Int128 c = -Wide(cents);
        if (c >= 100) {
            w -= c / 100;
            c %= 100;
        }
        this->dollars = Narrow<D>(w);
        this->fraction = Narrow<F>(-c * Wide(Pow10(N - 2)));
    }
    if (this->fraction < 0 && this->dollars > 0) {
        this->FractionPlusDollar();
    } else if (this->fraction > 0 && this->dollars < 0) {
        this->FractionMinusDollar();
    }
}

template <class D, class F, int N> void SignedMonetary<D, F, N>::toPositiveFraction() noexcept {
    if (this->fraction < 0) this->FractionPlusDollar();
}

// ---- UnsignedMonetary ----------------------------------------------------------------------------

template <class D, class F, int N>
bool UnsignedMonetary<D, F, N>::Round(const RoundParts& parts, const char& mode) noexcept {
    return RoundFraction<D, F, N>(this->dollars, this->fraction, parts, mode, false);
}

template <class D, class F, int N>
std::uint64_t UnsignedMonetary<D, F, N>::GetPriceAsUInt64() const noexcept {
    return (static_cast<std::uint64_t>(this->dollars) << 32) | static_cast<std::uint64_t>(this->fraction);
}

template <class D, class F, int N>
void UnsignedMonetary<D, F, N>::SetPriceAsUInt64(const std::uint64_t& value) noexcept {
    this->dollars = static_cast<D>(value >> 32);
    this->fraction = static_cast<F>(value & 0xFFFFFFFFu);
}

// ---- The exported instantiations -----------------------------------------------------------------
// The export attribute comes from the extern declarations in the header, seen first; repeating it
// here would be ignored (and warned about) by g++.

template class Monetary<std::int64_t, short, 4>;
template class Monetary<unsigned int, unsigned int, 9>;
template class Monetary<int, int, 9>;
template class Monetary<unsigned int, std::uint64_t, 18>;
template class Monetary<int, std::int64_t, 18>;
template class SignedMonetary<std::int64_t, short, 4>;
template class SignedMonetary<int, int, 9>;
template class SignedMonetary<int, std::int64_t, 18>;
template class UnsignedMonetary<unsigned int, unsigned int, 9>;
template class UnsignedMonetary<unsigned int, std::uint64_t, 18>;
