// The price and money classes: conversions (rounding versus truncation, negative to zero), mixed
// arithmetic, saturation of unsigned prices, division rounding, percent changes and hashes.
#include <gtest/gtest.h>

#include "VeloraUtils/Prices.h"
#include "money/reference_model.h"

using namespace model;

namespace {

constexpr auto Add = [](auto v, const auto& o) { return v += o, Parts(v); };
constexpr auto Sub = [](auto v, const auto& o) { return v -= o, Parts(v); };
constexpr auto Mul = [](auto v, const auto& k) { return v *= k, Parts(v); };
constexpr auto Div = [](auto v, const auto& k) { return v /= k, Parts(v); };
constexpr auto Hash = [](const auto& v) { return static_cast<long long>(v.GetHashValue()); };
constexpr auto Value = [](long long v) { return Got{v, 0, 0}; };

TEST(Prices, ConversionsRoundHalfAwayExceptPreciseToPriceAndNegativeToZero) {
    const Price implicitFromMoney = Money(-1, 0);
    const PricePrecise implicitFromSigned = SignedPricePrecise(-1, 0);
    RunTable({
        {"MoneyFromPriceRoundsUpAndCarries", Parts(Money(Price(1, 999950000))), {2, 0, 0}},
        {"MoneyFromSignedPriceHalfAwayFromZero", Parts(Money(SignedPrice(-1, -50000))), {-1, -1, 0}},
        {"MoneyFromPreciseHalfUp", Parts(Money(PricePrecise(0, 50000000000000))), {0, 1, 0}},
        {"MoneyFromSignedPreciseBelowHalf",
         Parts(Money(SignedPricePrecise(-2, -49999999999999))),
         {-2, 0, 0}},
        {"MoneyFromSignedCompact", Parts(Money(-static_cast<int>((12u << 14) | 3456u))), {-12, -3456, 0}},
        {"PriceFromSmallNegativeMoneyIsZero", Parts(Price(Money(0, -1))), {0, 0, 0}},
        {"PriceFromPreciseTruncates", Parts(Price(PricePrecise(1, 999999999999999999))), {1, 999999999, 0}},
        {"PriceFromSignedPreciseTruncates",
         Parts(Price(SignedPricePrecise(2, 999999999999999999))),
         {2, 999999999, 0}},
        {"PriceFromNegativeFractionOnlyIsZero", Parts(Price(SignedPrice(0, -1))), {0, 0, 0}},
        {"ImplicitMoneyToPriceNegativeIsZero", Parts(implicitFromMoney), {0, 0, 0}},
        {"SignedPriceFromMoney", Parts(SignedPrice(Money(-2, -5))), {-2, -500000, 0}},
        {"SignedPriceFromPriceCopiesParts", Parts(SignedPrice(Price(4000000000u, 1))), {-294967296, 1, 0}},
        {"PreciseFromPrice", Parts(PricePrecise(Price(1, 2))), {1, 2000000000, 0}},
        {"PreciseFromNegativeMoneyIsZero", Parts(PricePrecise(Money(-1, 0))), {0, 0, 0}},
        {"SignedPreciseFromMoney", Parts(SignedPricePrecise(Money(-1, -5))), {-1, -500000000000000, 0}},
        {"ImplicitSignedPreciseToPreciseNegativeIsZero", Parts(implicitFromSigned), {0, 0, 0}},
        {"UnaryMinusOfPrecise", Parts(-PricePrecise(1, 5)), {-1, -5, 0}},
        {"ServerFormatIsTheFloorForm",
         Parts(SignedPrice(-1, -250000000).ConvertToServerFormat()),
         {-2, 750000000, 0}},
    });
}

TEST(Prices, ArithmeticSaturatesUnsignedAndSignsDifferences) {
    RunTable({
        {"SubtractGreaterSaturates", Sub(Price(1, 500000000), Price(2, 0)), {0, 0, 0}},
        {"DifferenceIsSigned", Parts(Price(1, 500000000) - Price(2, 0)), {0, -500000000, 0}},
        {"SubtractBorrows", Sub(Price(2, 100000000), Price(1, 500000000)), {0, 600000000, 0}},
        {"AddNegativeSaturates", Add(Price(2, 0), SignedPrice(-3, 0)), {0, 0, 0}},
        {"AddNegativeSubtracts", Add(Price(5, 0), SignedPrice(-1, -500000000)), {3, 500000000, 0}},
        {"SubtractNegativeAdds", Sub(Price(1, 0), SignedPrice(-1, -500000000)), {2, 500000000, 0}},
        {"PriceMinusMoney", Parts(Price(1, 0) - Money(2, 5000)), {-1, -500000000, 0}},
        {"MoneyPlusPriceRoundsFirst", Parts(Money(1, 0) + Price(0, 50000)), {1, 1, 0}},
        {"MoneyTimesNegative", Parts(Money(1, 5) * -3), {-3, -15, 0}},
        {"MoneyDivision", Parts(Money(10, 0) / 3), {3, 3333, 0}},
        {"MoneyNegativeDivision", Parts(Money(-10, 0) / 3), {-3, -3333, 0}},
        {"MoneyDivisionRoundsUp", Parts(Money(2, 0) / 3), {0, 6667, 0}},
        {"MoneyDivisionRoundingCarriesNegative", Parts(Money(1, 9999) / -2), {-1, 0, 0}},
        {"MoneyOverMoneyInTenThousandths", Value(Money(1, 0) / Money(3, 0)), Value(3333)},
        {"MoneyOverZeroIsZero", Value(Money(1, 0) / Money()), Value(0)},
        {"PriceTimesOneFarBelowHalfUnit", Parts(Price(0, 5) * 1), {0, 0, 0}},
        {"PriceTimesOneHalfUnitRoundsUp", Parts(Price(0, 50000) * 1), {0, 1, 0}},
        {"PriceTimesNegative", Parts(Price(2, 500000000) * -3), {-7, -5000, 0}},
        {"PriceOverNegativeInt", Parts(Price(1, 0) / -8), {0, -1250, 0}},
        {"PriceTimesAssignCarries", Mul(Price(2, 500000000), 3u), {7, 500000000, 0}},
        {"PriceDivideAssignRoundsUp", Div(Price(2, 0), 3u), {0, 666666667, 0}},
        {"SignedTimesAssign", Mul(SignedPrice(1, 500000000), -3), {-4, -500000000, 0}},
        {"PriceTimesPrice", Parts(Price(1, 500000000) * Price(1, 500000000)), {2, 250000000, 0}},
        {"PriceTimesSignedPrice", Parts(Price(1, 0) * SignedPrice(-1, -500000000)), {-1, -500000000, 0}},
        {"SignedTimesSignedIsMoney", Parts(SignedPrice(-2, 0) * SignedPrice(-1, -500000000)), {3, 0, 0}},
        {"PreciseTimesAssignCarries",
         Mul(PricePrecise(0, 400000000000000000), 3u),
         {1, 200000000000000000, 0}},
        {"PreciseDivideAssignHalfUpAtDigit18", Div(PricePrecise(2, 0), 3u), {0, 666666666666666667, 0}},
        {"PreciseTimesIntoMoneyHalfUp", Parts(PricePrecise(0, 50000000000000) * 1), {0, 1, 0}},
        {"SignedPreciseTimesAssign",
         Mul(SignedPricePrecise(1, 500000000000000000), -3),
         {-4, -500000000000000000, 0}},
        {"BitwiseOrCanonicalises", Parts(Price(1, 600000000) | Price(2, 500000000)), {4, 70556928, 0}},
        {"BitwiseOrCarriesMoney", Parts(Money(0, 8192) | Money(0, 2048)), {1, 240, 0}},
        {"AbsDiff", Parts(Price(1, 0).GetAbsDiff(Price(2, 500000000))), {1, 500000000, 0}},
        {"PositiveDiffOfLesserIsZero", Parts(Price(1, 0).GetPositivePriceDiff(Price(2, 0))), {0, 0, 0}},
    });
}

TEST(Prices, PreciseWithNineDigitPricesScalesExactlyThenFollowsThePreciseRules) {
    RunTable({
        {"PlusPriceCarries", Parts(PricePrecise(1, 500000000000000001) + Price(1, 500000000)), {3, 1, 0}},
        {"AddAssignPriceKeepsAllDigits",
         Add(PricePrecise(0, 1), Price(0, 999999999)),
         {0, 999999999000000001, 0}},
        {"SubtractGreaterPriceSaturates", Sub(PricePrecise(1, 999999999999999999), Price(2, 0)), {0, 0, 0}},
        {"SubtractPriceBorrows", Sub(PricePrecise(2, 1), Price(0, 1)), {1, 999999999000000001, 0}},
        {"MinusPriceIsSigned", Parts(PricePrecise(1, 1) - Price(1, 1)), {0, -999999999, 0}},
        {"AddNegativeSignedPriceSaturates", Add(PricePrecise(1, 0), SignedPrice(-1, -1)), {0, 0, 0}},
        {"AddNegativeSignedPriceSubtracts",
         Add(PricePrecise(2, 0), SignedPrice(0, -1)),
         {1, 999999999000000000, 0}},
        {"SubtractNegativeSignedPriceAdds",
         Sub(PricePrecise(0, 500000000000000000), SignedPrice(-1, -500000000)),
         {2, 0, 0}},
        {"PlusSignedPriceIsSigned", Parts(PricePrecise(1, 0) + SignedPrice(-2, -1)), {-1, -1000000000, 0}},
        {"TimesPriceRoundsThroughMoney",
         Parts(PricePrecise(0, 50000000000000) * Price(1, 0)),
         {0, 100000000000000, 0}},
        {"TimesPriceCutsItsFraction", Parts(PricePrecise(1, 0) * Price(0, 99999)), {0, 0, 0}},
        {"TimesSignedPrice",
         Parts(PricePrecise(2, 0) * SignedPrice(-1, -250000000)),
         {-2, -500000000000000000, 0}},
        {"SignedPlusSignedPrice", Parts(SignedPricePrecise(-1, -1) + SignedPrice(1, 1)), {0, 999999999, 0}},
        {"SignedAddAssignSignedPrice",
         Add(SignedPricePrecise(1, 0), SignedPrice(-2, -500000000)),
         {-1, -500000000000000000, 0}},
        {"SignedPlusPrice", Parts(SignedPricePrecise(-5, 0) + Price(2, 1)), {-2, -999999999000000000, 0}},
        {"SignedTimesSignedPriceIsMoney",
         Parts(SignedPricePrecise(-2, 0) * SignedPrice(-1, -500000000)),
         {3, 0, 0}},
        {"SignedTimesSignedPriceHalfAway",
         Parts(SignedPricePrecise(0, -50000000000000) * SignedPrice(1, 0)),
         {0, -1, 0}},
    });
}

TEST(Prices, PercentChangeHashesAndConstants) {
    RunTable({
        {"MoneyPercent", Parts(Money(1, 0).GetPercentChange(Money(1, 5000))), {150, 0, 0}},
        {"MoneyPercentNegative", Parts(Money(-3, 0).GetPercentChange(Money(2, 0))), {-66, -6667, 0}},
        {"PercentOfZeroIsZero", Parts(Money().GetPercentChange(Money(1, 0))), {0, 0, 0}},
        {"PricePercent", Parts(Price(3, 0).GetPercentChange(Price(1, 0))), {33, 333300000, 0}},
        {"PricePercentOfSigned", Parts(Price(2, 0).GetPercentChange(SignedPrice(-1, 0))), {-50, 0, 0}},
        {"PrecisePercentIsPrice",
         Parts(PricePrecise(3, 0).GetPercentChange(PricePrecise(2, 0))),
         {66, 666700000, 0}},
        {"SignedPrecisePercentIsSignedPrice",
         Parts(SignedPricePrecise(-3, 0).GetPercentChange(SignedPricePrecise(1, 0))),
         {-33, -333300000, 0}},
        {"Hashes",
         {Hash(Money(1, 2)), Hash(Money(-1, -1)), Hash(Price(1, 0x12345678))},
         {0x10002, -1, 0x11234}},
        {"PreciseHashes",
         {Hash(PricePrecise(2, 0x123456789)), Hash(SignedPricePrecise(-1, 0)), 0},
         {0x32345, -65536, 0}},
        {"OneCents",
         {Money::oneCent.GetDollarFraction(), Price::oneCent.GetDollarFraction(),
          static_cast<long long>(PricePrecise::oneCent.GetDollarFraction())},
         {100, 10000000, 10000000000000000}},
        {"OneDollarsAndZeros",
         {SignedPricePrecise::oneDollar.GetDollars(), Money::moneyZero.isZero(),
          Price::priceZero.isZero() && SignedPrice::signedPriceZero.isZero()},
         {1, 1, 1}},
    });
}

// ---- Properties against the reference model ----------------------------------------------------

using AllTypes = Types<Money, Price, SignedPrice, PricePrecise, SignedPricePrecise>;
using PriceTypes = Types<Price, SignedPrice, PricePrecise, SignedPricePrecise>;
constexpr int kCases = 3000;

template <class T> void ExpectValue(const T& v, I128 units, const char* what) {
    ASSERT_EQ(Text(Units(v)), Text(units)) << what;
    ASSERT_TRUE(IsCanonical(v)) << what;
}

I128 RandomInt(std::mt19937_64& rng, int bits, bool allowNegative) {
    const I128 k = I128(rng() >> (63 - rng() % static_cast<unsigned>(bits))) + 1; // every size up to 2^bits
    return allowNegative && rng() % 2 ? -k : k;
}

TEST(PricesProperties, SumsDifferencesProductsAndQuotientsMatchTheModel) {
    ForEachType(AllTypes{}, []<class T>() {
        using D = typename T::DollarType;
        std::mt19937_64 rng(11);
        for (int i = 0; i < kCases; ++i) {
            const T a = Random<T>(rng, 27), b = Random<T>(rng, 27);
            T sum = a, difference = a, product = a, quotient = a;
            sum += b;
            ExpectValue(sum, Units(a) + Units(b), "sum");
            difference -= b;
            ExpectValue(difference,
                        IsSigned<T>() ? Units(a) - Units(b) : std::max<I128>(0, Units(a) - Units(b)),
                        "difference, saturating when unsigned");
            const I128 k = RandomInt(rng, 30, IsSigned<T>());
            quotient /= static_cast<D>(k);
            ExpectValue(quotient, Sign(k) * RoundHalfAway(Units(a), Abs(k)), "quotient");
            const I128 small = RandomInt(rng, 1 + static_cast<int>(rng() % 3), IsSigned<T>());
            product *= static_cast<D>(small);
            ExpectValue(product, Units(a) * small, "product");
            if constexpr (IsSigned<T>()) ExpectValue(a - b, Units(a) - Units(b), "signed difference");
        }
    });
}

TEST(PricesProperties, PriceIntoMoneyAndConversionsMatchTheModel) {
    ForEachType(PriceTypes{}, []<class T>() {
        std::mt19937_64 rng(12);
        const I128 toMoney = One<T>() / One<Money>();
        for (int i = 0; i < kCases; ++i) {
            const T a = Random<T>(rng, 30);
            const I128 k = RandomInt(rng, 30, true);
            ExpectValue(a * static_cast<std::int64_t>(k), RoundHalfAway(Units(a) * k, toMoney),
                        "times into Money");
            ExpectValue(a / static_cast<std::int64_t>(k), Sign(k) * RoundHalfAway(Units(a), Abs(k) * toMoney),
                        "over into Money");
            ExpectValue(Money(a), RoundHalfAway(Units(a), toMoney), "Money from price");
            const I128 truncated = std::max<I128>(0, Units(a)) / (One<T>() / One<Price>());
            if constexpr (T::kDigits == 18) ExpectValue(Price(a), truncated, "Price truncates");
            const Money m = Random<Money>(rng, 30);
            ExpectValue(Price(m), std::max<I128>(0, Units(m)) * (One<Price>() / One<Money>()),
                        "Price from Money");
        }
    });
}

TEST(PricesProperties, PreciseWithNineDigitPricesMatchesTheModel) {
    ForEachType(Types<PricePrecise, SignedPricePrecise>{}, []<class T>() {
        ForEachType(Types<Price, SignedPrice>{}, []<class U>() {
            std::mt19937_64 rng(14);
            // A signed precise left side takes a Price only in + and -, as SignedPrice does.
            constexpr bool allOperators = IsSigned<U>() || !IsSigned<T>();
            const auto saturated = [](I128 v) { return IsSigned<T>() ? v : std::max<I128>(0, v); };
            for (int i = 0; i < kCases; ++i) {
                const T a = Random<T>(rng, 27);
                const U b = Random<U>(rng, 27);
                const I128 x = Units(a), y = Units(b) * P10(9);
                ExpectValue(a + b, x + y, "sum");
                ExpectValue(a - b, x - y, "difference");
                if constexpr (allOperators) {
                    T sum = a, difference = a;
                    ExpectValue(sum += b, saturated(x + y), "sum, saturating when unsigned");
                    ExpectValue(difference -= b, saturated(x - y), "difference, saturating when unsigned");
                    const auto product = a * b;
                    using R = std::remove_const_t<decltype(product)>;
                    const I128 expected = MoneyProduct<T>(x, b) * (One<R>() / One<Money>());
                    if (Fits<R>(expected)) ExpectValue(product, expected, "product through Money");
                }
            }
        });
    });
}

TEST(PricesProperties, PercentChangeIsHundredTimesTheRatioRoundedHalfUp) {
    std::mt19937_64 rng(13);
    const auto check = [&]<class R, class T, class U>(const R& got, const T& self, const U& other) {
        const I128 a = Units(self), b = Units(other);
        const I128 p = a == 0 || b == 0 ? 0 : Sign(a) * Sign(b) * RoundHalfAway(P10(6) * Abs(b), Abs(a));
        if (!Fits<R>(p * (One<R>() / One<Money>()))) return; // the whole part would wrap
        ExpectValue(got, p * (One<R>() / One<Money>()), "percent change");
    };
    for (int i = 0; i < kCases; ++i) {
        const Money m1 = Random<Money>(rng, 20), m2 = Random<Money>(rng, 20);
        check(m1.GetPercentChange(m2), m1, m2);
        const Price p1 = Random<Price>(rng, 12), p2 = Random<Price>(rng, 12);
        const SignedPrice s2 = Random<SignedPrice>(rng, 12);
        check(p1.GetPercentChange(p2), p1, p2);
        check(p1.GetPercentChange(s2), p1, s2);
        check(s2.GetPercentChange(SignedPrice(p1)), s2, p1);
        const PricePrecise q1 = Random<PricePrecise>(rng, 12), q2 = Random<PricePrecise>(rng, 12);
        const SignedPricePrecise r2 = Random<SignedPricePrecise>(rng, 12);
        check(q1.GetPercentChange(q2), q1, q2);
        check(q1.GetPercentChange(r2), q1, r2);
        check(r2.GetPercentChange(SignedPricePrecise(q1)), r2, q1);
    }
}

} // namespace
