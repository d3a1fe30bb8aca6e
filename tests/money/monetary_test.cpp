// The fixed-point templates: canonical form, comparisons, rounding (with the negative-value quirk
// kept for stored values), halving, conversions from doubles, cents and packed words.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <iterator>
#include <limits>
#include <type_traits>

#include "VeloraUtils/Prices.h"
#include "money/reference_model.h"

using namespace model;

namespace {

using AllTypes = Types<Money, Price, SignedPrice, PricePrecise, SignedPricePrecise>;
static_assert(std::is_trivially_copyable_v<Money> && std::is_trivially_copyable_v<Price> &&
              std::is_trivially_copyable_v<SignedPrice> && std::is_trivially_copyable_v<PricePrecise> &&
              std::is_trivially_copyable_v<SignedPricePrecise> && sizeof(Price) == 8);

constexpr auto Canon = [](auto v) { return v.Canonicalize(), Parts(v); };
constexpr auto Halved = [](auto v) { return v.Half(), Parts(v); };
constexpr auto Rounded = [](auto v, unsigned parts, int mode) {
    return Parts(v, v.Round(static_cast<typename decltype(v)::RoundParts>(parts), static_cast<char>(mode)));
};
constexpr auto FromDouble = [](auto v, double d) { return v.SetDoubleValue(d), Parts(v, v.isNegative()); };
// The value's own parts are the whole units and cents given.
constexpr auto Cents = [](auto in, auto v) {
    return v.SetDollarsAndCents(in.GetDollars(), in.GetDollarFraction()), Parts(v);
};
constexpr auto Packed = [](auto v, unsigned word, bool compact) {
    return compact ? v.SetCompactValue(word) : v.SetValue1814(word), Parts(v);
};
constexpr auto Flags = [](bool a, bool b, bool c) { return Got{a, b, c}; };
constexpr auto U64 = [](std::uint64_t v) { return static_cast<long long>(v); };

// Rows per edge: canonical form, comparisons, the rounding edges and quirks (ordinary grids and modes
// are the property below), halving, doubles, cents, packed words and numeric values.
// clang-format off
TEST(Monetary, EdgeRows) {
    const Money below(5, -1), exact(5, 0), above(5, 1);
    const Price five(5, 1), p(12, 345678900);
    const unsigned fine = (12u << 14) | 3456u, coarse = ((70000u | 0x800000u) << 7) | 34u;
    const std::uint64_t q = 100000000000000000; // 10^17
    const long long m = Money(-1, -2345).GetNumericValue(2), big = PricePrecise(1, 5 * q).GetNumericValue(10);
    const long long p2 = p.GetNumericValue(2), p9 = p.GetNumericValue(9);
    const auto packed = U64(PricePrecise(1, 1ull << 40).GetPriceAsUInt64());
    RunTable({
        {"PositiveFractionUnderNegativeWholeBorrows", Canon(SignedPrice(-1, 250000000)), {0, -750000000, 0}},
        {"UnsignedFractionOfTwoOnesCarriesByDivision", Canon(Price(0, 2500000000u)), {2, 500000000, 0}},
        {"UnsignedFractionBelowTwoOnesCarriesOnce", Canon(Price(3, 1500000000u)), {4, 500000000, 0}},
        {"NegativeFractionUnderPositiveWholeBorrows", Canon(Money(2, -3)), {1, 9997, 0}},
        {"BigNegativeFractionCarriesTowardZero", Canon(Money(0, -25000)), {-2, -5000, 0}},
        // Literal steps on non-canonical input: the reconciliation runs after the carry and can leave
        // a fraction of exactly ONE (the value is still right).
        {"ExactOneUnderNegativeWholeLeavesMinusOne", Canon(Money(-3, 10000)), {-1, -10000, 0}},
        {"ExactMinusOneUnderPositiveWholeLeavesOne", Canon(Money(5, -10000)), {3, 10000, 0}},
        // Comparing with a whole number lets the fraction's sign decide.
        {"NegativeFractionIsBelow", Flags(below < 5, below <= 5, below == 5), {1, 1, 0}},
        {"NegativeFractionIsNotAtOrAbove", Flags(below >= 5, below > 5, below != 5), {0, 0, 1}},
        {"ZeroFractionIsEqual", Flags(exact == 5, exact <= 5, exact >= 5), {1, 1, 1}},
        {"PositiveFractionIsAbove", Flags(above > 5, above >= 5, above < 5), {1, 1, 0}},
        {"UnsignedReducesToWholeParts", Flags(five >= 5u, five < 6u, five <= 5u), {1, 1, 0}},
        {"SameTypeOrder", Flags(Money(-1, -1) < Money(-1, 0), five > Price(5, 0), !Price()), {1, 1, 1}},
        {"GridAboveOneTenthIsRefused", Rounded(Money(1, 1234), 1001, 0), {1, 1234, 0}},
        // Kept for stored values: negative values step one grid step past truncation toward zero.
        {"NegativeNearestAtHalfStepsIn", Rounded(SignedPrice(-1, -235000000), 100, 0), {-1, -220000000, 1}},
        // From a zero step count the decrement wraps in the fraction's unsigned type.
        {"NegativeZeroStepsWrapsSignedPrice", Rounded(SignedPrice(0, -5000000), 100, 0), {-1, 1010000000, 1}},
        // Half truncates the last unit.
        {"MoneyOddWholeMovesHalfIntoFraction", Halved(Money(3, 1)), {1, 5000, 0}},
        {"MoneyNegativeByMagnitude", Halved(Money(-3, -1)), {-1, -5000, 0}},
        {"PreciseNegativeFractionOnly", Halved(SignedPricePrecise(0, -3)), {0, -1, 0}},
        {"RoundedFractionReachingOneCarries", FromDouble(Price(), 2.9999999999), {3, 0, 0}},
        // Not rejected: the truncation of a negative double is narrowed into the unsigned whole part.
        {"UnsignedFromNegativeWrapsAndIsNeverNegative", FromDouble(Price(), -1.0), {4294967295, 0, 0}},
        // NaN takes the non-negative path and converts as the x86-64 instruction does (64-bit minimum).
        {"NaNIntoThirtyTwoBitWholeIsZero", FromDouble(SignedPrice(), std::nan("")), {0, 0, 0}},
        {"NaNIntoMoneyIsTheMinimum", FromDouble(Money(), std::nan("")), {LLONG_MIN, 0, 1}},
        {"CentsAbove100Carry", Cents(Money(3, 250), Money()), {5, 5000, 0}},
        {"NegativeCentsByMagnitudeThenBorrow", Cents(Money(3, -250), Money()), {0, 5000, 0}},
        {"PositiveCentsUnderNegativeWhole", Cents(Money(-3, 25), Money()), {-2, -7500, 0}},
        {"NegativeCentsOnly", Cents(SignedPrice(0, -5), SignedPrice()), {0, -50000000, 0}},
        {"PreciseCentsCarry", Cents(PricePrecise(1, 199), PricePrecise()), {2, 990000000000000000, 0}},
        {"MoneyFine1814", Packed(Money(), fine, false), {12, 3456, 0}},
        {"PreciseFine1814", Packed(PricePrecise(), fine, false), {12, 345600000000000000, 0}},
        {"1814UsesAllEighteenBits", Packed(Price(), 0xFFFFC000u, false), {262143, 0, 0}},
        {"CompactCoarseMasksTheMarker", Packed(Price(), coarse, true), {70000, 340000000, 0}},
        {"CompactCoarsePrecise", Packed(SignedPricePrecise(), coarse, true), {70000, 340000000000000000, 0}},
        {"NumericValueCutsWrapsInDAndTruncatesTowardZero", {p2, p9, m}, {1234, 3755744308, -123}},
        {"PreciseNumericValueAtTenDigitsOverflows", {big, 0, 0}, {2115098112, 0, 0}},
        {"Truncated", {p.GetTruncatedFraction(3), p.GetTruncatedFraction(12), 0}, {345, 345678900, 0}},
        // The 18-digit fraction is or-ed in unshifted, so its high bits mix with the whole part.
        {"PackedPriceAndPreciseMixing", {U64(Price(1, 2).GetPriceAsUInt64()), packed, 0},
         {0x100000002, (1ll << 32) | (1ll << 40), 0}},
        {"UnpackTakesLow32BitsAsFraction", Parts(PricePrecise(std::uint64_t{0x0000000500000007})), {5, 7, 0}},
    });
    Price negated(-1.5);
    negated.Negate();
    EXPECT_FALSE(negated.isNegative());
    EXPECT_EQ(negated.GetDollars(), 4294967295u);
    EXPECT_EQ(Money(-1, -2500).toDouble(), -1.25);
    EXPECT_EQ(PricePrecise(3, 250000000000000000).toDouble(), 3.25);
}
// clang-format on

// ---- Properties against the reference model ----------------------------------------------------

template <class T> constexpr int kWholeBits = sizeof(typename T::DollarType) == 8 ? 40 : 30;

TEST(MonetaryProperties, RoundMovesToTheGridAsTheModelSays) {
    ForEachType(AllTypes{}, []<class T>() {
        std::mt19937_64 rng(2024);
        const I128 one = One<T>(),
                   grids[] = {0, 1, 2, 3, 4, 8, 10, 16, 25, 100, 1000, one / 10, one / 10 + 1};
        for (int i = 0; i < 6000; ++i) {
            T v = Random<T>(rng, kWholeBits<T>);
            const I128 parts =
                rng() % 4 == 0 ? I128(rng()) % (one / 10) + 1 : grids[rng() % std::size(grids)];
            const int mode = std::array{0, 1, -1, 2, 100}[rng() % 5];
            const I128 units = Units(v), f = v.GetDollarFraction(), mag = Abs(f);
            const bool neg = v.isNegative(), up = (mode == 1 && !neg) || (mode == -1 && neg);
            // Whole units: drop the fraction, then maybe one unit away from zero. Grids: truncation toward
            // zero, then one step up in value (toward zero for negatives).
            const bool grid = parts != 0 && parts <= one / 10;
            const I128 step = parts == 0 ? one : one / parts, r = parts == 0 ? mag : mag % step;
            const bool bump = mode == 0 ? 2 * r >= step - (parts == 0 ? 0 : step % 2) : up;
            if (grid && neg && bump && mag < step) continue; // the wrap, pinned by the table above
            const bool changed = parts <= one / 10 && r != 0;
            const I128 expected = !changed     ? units
                                  : parts == 0 ? units - f + (bump ? (neg ? -one : one) : 0)
                                               : units - (neg ? -r : r) + (bump ? step : 0);
            const Got before = Parts(v);
            const bool result = v.Round(static_cast<typename T::RoundParts>(parts), static_cast<char>(mode));
            ASSERT_EQ(Text(Units(v)), Text(expected))
                << ::testing::PrintToString(before) << " parts " << Text(parts) << " mode " << mode;
            ASSERT_EQ(result, changed);
            ASSERT_TRUE(IsCanonical(v));
        }
    });
}

TEST(MonetaryProperties, SetDoubleValueRoundsTheExactDoubleHalfAwayFromZero) {
    ForEachType(AllTypes{}, []<class T>() {
        std::mt19937_64 rng(77);
        for (int i = 0; i < 6000; ++i) {
            const int e = static_cast<int>(rng() % 61);
            const I128 m = I128(rng() >> (11 + rng() % 53)); // below 2^53, so the double is exact
            if ((m >> e) >= (I128(1) << 30)) continue;
            const bool neg = IsSigned<T>() && rng() % 2 == 0;
            const double d = std::ldexp(static_cast<double>(m) * (neg ? -1 : 1), -e);
            T v;
            v.SetDoubleValue(d);
            const I128 num = m * One<T>(), den = I128(1) << e, got = Abs(Units(v));
            ASSERT_TRUE(IsCanonical(v) && (got == 0 || v.isNegative() == neg)) << d;
            // Precise: the scaled fraction is a double near 10^18, whose own rounding (128 apart) shows.
            if constexpr (T::kDigits > 9) {
                ASSERT_LE(Abs(got - num / den), 66) << d;
            } else if (Abs(2 * (num % den) - den) >= (den >> 20)) { // skip ties blurred by the scaling
                ASSERT_EQ(Text(got), Text((2 * num + den) / (2 * den))) << d;
            }
        }
    });
}

} // namespace
