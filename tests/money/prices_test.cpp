// The price and money classes: conversions (rounding versus truncation, negative to zero), mixed
// arithmetic, saturation of unsigned prices, division rounding, percent changes and hashes.
#include <gtest/gtest.h>

#include "VeloraUtils/Prices.h"
#include "money/reference_model.h"

using namespace model;

namespace {

constexpr auto Add = [](auto v, const auto& o) { return v += o, Parts(v); };
constexpr auto Sub = [](auto v, const auto& o) { return v -= o, Parts(v); };
constexpr auto Hash = [](const auto& v) { return static_cast<long long>(v.GetHashValue()); };
constexpr auto Value = [](long long v) { return Got{v, 0, 0}; };

// Rounding into Money, truncation of precise into Price, same-type arithmetic, Price times or over an
// integer, precise with nine-digit prices and percent changes are the properties below; these rows are
// the other mixes, the saturation and the quirks.
// clang-format off
TEST(Prices, EdgeRows) {
    const Price implicitFromMoney = Money(-1, 0);
    const PricePrecise implicitFromSigned = SignedPricePrecise(-1, 0);
    const long long cent = Money::oneCent.GetDollarFraction(), priceCent = Price::oneCent.GetDollarFraction(),
                    preciseCent = static_cast<long long>(PricePrecise::oneCent.GetDollarFraction());
    const long long one = SignedPricePrecise::oneDollar.GetDollars();
    const bool zeros = Price::priceZero.isZero() && SignedPrice::signedPriceZero.isZero();
    RunTable({
        {"PriceFromNegativeFractionOnlyIsZero", Parts(Price(SignedPrice(0, -1))), {0, 0, 0}},
        {"ImplicitMoneyToPriceNegativeIsZero", Parts(implicitFromMoney), {0, 0, 0}},
        {"SignedPriceFromMoney", Parts(SignedPrice(Money(-2, -5))), {-2, -500000, 0}},
        {"SignedPriceFromPriceCopiesParts", Parts(SignedPrice(Price(4000000000u, 1))), {-294967296, 1, 0}},
        {"PreciseFromPrice", Parts(PricePrecise(Price(1, 2))), {1, 2000000000, 0}},
        {"PreciseFromNegativeMoneyIsZero", Parts(PricePrecise(Money(-1, 0))), {0, 0, 0}},
        {"SignedPreciseFromMoney", Parts(SignedPricePrecise(Money(-1, -5))), {-1, -500000000000000, 0}},
        {"ImplicitSignedPreciseToPreciseNegativeIsZero", Parts(implicitFromSigned), {0, 0, 0}},
        {"UnaryMinusOfPrecise", Parts(-PricePrecise(1, 5)), {-1, -5, 0}},
        {"ServerFormatIsTheFloorForm", Parts(SignedPrice(-1, -250000000).ConvertToServerFormat()),
         {-2, 750000000, 0}},
        {"DifferenceIsSigned", Parts(Price(1, 500000000) - Price(2, 0)), {0, -500000000, 0}},
        {"AddNegativeSaturates", Add(Price(2, 0), SignedPrice(-3, 0)), {0, 0, 0}},
        {"AddNegativeSubtracts", Add(Price(5, 0), SignedPrice(-1, -500000000)), {3, 500000000, 0}},
        {"SubtractNegativeAdds", Sub(Price(1, 0), SignedPrice(-1, -500000000)), {2, 500000000, 0}},
        {"PriceMinusMoney", Parts(Price(1, 0) - Money(2, 5000)), {-1, -500000000, 0}},
        {"MoneyPlusPriceRoundsFirst", Parts(Money(1, 0) + Price(0, 50000)), {1, 1, 0}},
        {"MoneyOverMoneyInTenThousandths", Value(Money(1, 0) / Money(3, 0)), Value(3333)},
        {"MoneyOverZeroIsZero", Value(Money(1, 0) / Money()), Value(0)},
        {"PriceTimesPrice", Parts(Price(1, 500000000) * Price(1, 500000000)), {2, 250000000, 0}},
        {"PriceTimesSignedPrice", Parts(Price(1, 0) * SignedPrice(-1, -500000000)), {-1, -500000000, 0}},
        {"SignedTimesSignedIsMoney", Parts(SignedPrice(-2, 0) * SignedPrice(-1, -500000000)), {3, 0, 0}},
        {"BitwiseOrCanonicalises", Parts(Price(1, 600000000) | Price(2, 500000000)), {4, 70556928, 0}},
        {"BitwiseOrCarriesMoney", Parts(Money(0, 8192) | Money(0, 2048)), {1, 240, 0}},
        {"AbsDiff", Parts(Price(1, 0).GetAbsDiff(Price(2, 500000000))), {1, 500000000, 0}},
        {"PositiveDiffOfLesserIsZero", Parts(Price(1, 0).GetPositivePriceDiff(Price(2, 0))), {0, 0, 0}},
        // Precise with a nine-digit price: the saturation and the product's cut of the price's fraction.
        {"PreciseMinusGreaterSaturates", Sub(PricePrecise(1, 999999999999999999), Price(2, 0)), {0, 0, 0}},
        {"PreciseTimesPriceCutsItsFraction", Parts(PricePrecise(1, 0) * Price(0, 99999)), {0, 0, 0}},
        {"Hashes", {Hash(Money(1, 2)), Hash(Money(-1, -1)), Hash(Price(1, 0x12345678))},
         {0x10002, -1, 0x11234}},
        {"PreciseHashes", {Hash(PricePrecise(2, 0x123456789)), Hash(SignedPricePrecise(-1, 0)), 0},
         {0x32345, -65536, 0}},
        {"OneCents", {cent, priceCent, preciseCent}, {100, 10000000, 10000000000000000}},
        {"PercentOfZeroIsZero", Parts(Money().GetPercentChange(Money(1, 0))), {0, 0, 0}},
        {"OneDollarsAndZeros", {one, Money::moneyZero.isZero(), zeros}, {1, 1, 1}},
    });
}
// clang-format on

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
            const I128 x = Units(a), y = Units(b), k = RandomInt(rng, 30, IsSigned<T>()),
                       small = RandomInt(rng, 1 + static_cast<int>(rng() % 3), IsSigned<T>());
            ExpectValue(sum += b, x + y, "sum");
            ExpectValue(difference -= b, IsSigned<T>() ? x - y : std::max<I128>(0, x - y),
                        "saturating difference");
            ExpectValue(quotient /= static_cast<D>(k), Sign(k) * RoundHalfAway(x, Abs(k)), "quotient");
            ExpectValue(product *= static_cast<D>(small), x * small, "product");
            if constexpr (IsSigned<T>()) ExpectValue(a - b, x - y, "signed difference");
        }
    });
}

TEST(PricesProperties, PriceIntoMoneyAndConversionsMatchTheModel) {
    ForEachType(PriceTypes{}, []<class T>() {
        std::mt19937_64 rng(12);
        const I128 toMoney = One<T>() / One<Money>();
        for (int i = 0; i < kCases; ++i) {
            const T a = Random<T>(rng, 30);
            const I128 x = Units(a), k = RandomInt(rng, 30, true);
            const auto k64 = static_cast<std::int64_t>(k);
            ExpectValue(a * k64, RoundHalfAway(x * k, toMoney), "times into Money");
            ExpectValue(a / k64, Sign(k) * RoundHalfAway(x, Abs(k) * toMoney), "over into Money");
            ExpectValue(Money(a), RoundHalfAway(x, toMoney), "Money from price");
            const I128 truncated = std::max<I128>(0, x) / (One<T>() / One<Price>());
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
