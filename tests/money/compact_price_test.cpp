// Compact prices: the fine and coarse layouts, the 18.14 and strike-price forms, signed codes.
#include <gtest/gtest.h>

#include "VeloraUtils/Prices.h"
#include "money/reference_model.h"

using namespace model;
using P = Price;
using S = SignedPrice;
using SP = SignedPricePrecise;

namespace {

constexpr unsigned kFine = (12u << 14) | 3456u;                 // 12.3456, 200064
constexpr unsigned kCoarse = ((70000u | 0x800000u) << 7) | 34u; // 70000.34, 1082701858
constexpr unsigned kStrikeCoarse = ((70000u | 0x800000u) << 7) | 12u, k1814 = (70000u << 14) | 3456u;
constexpr int kMinusOneHalf = -((1 << 14) | 5000);

Got Components(unsigned code) {
    unsigned whole = 0, big = 0, whole2 = 0;
    unsigned short small = 0;
    Price::CalculateCompactPriceComponents(code, whole, small);
    Price::CalculateCompactPriceComponentsWithBigFraction(code, whole2, big);
    return {whole == whole2 ? whole : -1ll, small, big};
}
constexpr auto Code = [](long long code) { return Got{code, 0, 0}; };
template <class T> Got Decoded(int code) {
    T v;
    v.SetCompactPrice(code);
    return Parts(v);
}

// clang-format off
TEST(CompactPrice, LayoutsEncodeAndDecodeAndSignedCodesNegateTheMagnitudesCode) {
    RunTable({
        {"FineEncoding", Code(P::CalculateCompactPrice(12, 345600000)), Code(kFine)},
        {"FineDecoding", Components(kFine), {12, 3456, 345600000}},
        {"CoarseEncodingTruncates", Code(P::CalculateCompactPrice(70000, 345699999)), Code(kCoarse)},
        // The 23-bit field leaves the marker (bit 30) out, so the whole part reads back as encoded.
        {"CoarseDecodingMasksTheMarker", Components(kCoarse), {70000, 3400, 340000000}},
        {"WholePart65535StaysFine", Code(P::CalculateCompactPrice(65535, 0)), Code(65535ll << 14)},
        {"WholePart65536IsCoarse", Code(P::CalculateCompactPrice(65536, 0)), Code((65536ll | 0x800000) << 7)},
        {"PriceConstructorDecodes", Parts(Price(kCoarse)), {70000, 340000000, 0}},
        {"MoneyFromCoarseCode", Parts(Money(kCoarse)), {70000, 3400, 0}},
        {"MoneyFromNegativeCode", Parts(Money(-static_cast<int>(kFine))), {-12, -3456, 0}},
        {"From1814BelowMarkerUnchanged", Code(P::CalculateCompactPriceFromPrice1814(kFine)), Code(kFine)},
        {"From1814AboveBecomesCoarse", Code(P::CalculateCompactPriceFromPrice1814(k1814)), Code(kCoarse)},
        {"FromStrikeFine", Code(P::CalculateCompactPriceFromStrikePrice(12500)), Code((12 << 14) | 5000)},
        {"StrikeFromFine", Code(P::CalculateStrikePriceFromCompactPrice((12u << 14) | 5000u)), Code(12500)},
        {"FromStrikeCoarse", Code(P::CalculateCompactPriceFromStrikePrice(70000123)), Code(kStrikeCoarse)},
        {"StrikeFromCoarse", Code(P::CalculateStrikePriceFromCompactPrice(kStrikeCoarse)), Code(70000120)},
        // Signed codes negate the magnitude's code.
        {"NegativePartsEncodeNegated", Code(S::CalculatIntCompactPrice(-1, -500000000)), Code(kMinusOneHalf)},
        {"LostDigitsMakeZero", Code(SignedPrice(0, -1).GetIntCompactPrice()), Code(0)},
        {"UnsignedRuleOnRawNegatives", Code(S(-1, -500000000).GetUIntCompactPrice()), Code(0xFFFFFFFB)},
        {"NegativeCodeDecodes", Decoded<SignedPrice>(-static_cast<int>(kFine)), {-12, -345600000, 0}},
        {"ConstructorDecodes", Parts(SignedPrice(static_cast<int>(kCoarse))), {70000, 340000000, 0}},
        {"PreciseNegated", Code(SP(-1, -500000000000000000).GetIntCompactPrice()), Code(kMinusOneHalf)},
        {"PreciseUnsignedRule", Code(SP(12, 345600000000000000).GetUIntCompactPrice()), Code(kFine)},
        {"PreciseCoarseDecodes", Decoded<SP>(static_cast<int>(kCoarse)), {70000, 340000000000000000, 0}},
    });
}
// clang-format on

TEST(CompactPriceProperties, RoundTripKeepsFourDecimalsFineAndTwoCoarse) {
    std::mt19937_64 rng(31);
    for (int i = 0; i < 4000; ++i) {
        const SignedPrice v = Random<SignedPrice>(rng, 1 + static_cast<int>(rng() % 23));
        const I128 whole = Abs(v.GetDollars());
        const I128 kept = whole > 65535 ? P10(7) : P10(5); // fraction units per code step
        const I128 expected = Sign(Units(v)) * (Abs(Units(v)) / kept * kept);
        ASSERT_EQ(Text(Units(SignedPrice(v.GetIntCompactPrice()))), Text(expected));
        ASSERT_EQ(Text(Units(SP(v.GetIntCompactPrice()))), Text(expected * P10(9)));
        if (!v.isNegative()) {
            ASSERT_EQ(Text(Units(Price(Price(v).GetCompactPrice()))), Text(expected));
        }
    }
}

} // namespace
