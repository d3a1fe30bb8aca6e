// Amount and fraction writers, row by row (the random round trip through writer and reader is with the
// reader tests).
#include "VeloraUtils/NumberFormatting.h"
#include "VeloraUtils/PriceText.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace {

enum Kind { Price, Signed, Money, Compact, SignedCompact };

// clang-format off
// Compact rows carry the code in `whole`.
struct AmountRow { const char* name; Kind kind; std::int64_t whole, fraction; unsigned char decimals;
                   char round, sep; bool commas, trim; const char* expected; };
// clang-format on

std::string Write(const AmountRow& r) {
    std::string s = "x="; // writers append
    const auto i = static_cast<int>(r.whole), f = static_cast<int>(r.fraction);
    const auto u = static_cast<unsigned>(r.whole), uf = static_cast<unsigned>(r.fraction);
    const auto args = [&](auto write, auto... v) {
        write(s, v..., r.decimals, r.round, r.commas, r.sep, r.trim);
    };
    if (r.kind == Price) args(U_PriceDollarsAndFractionToStr, u, uf);
    if (r.kind == Signed) args(U_SignedPriceDollarsAndFractionToStr, i, f);
    if (r.kind == Money) args(U_MoneyDollarsAndFractionToStr, r.whole, static_cast<short>(r.fraction));
    if (r.kind == Compact) args(U_CompactPriceToStr, u);
    if (r.kind == SignedCompact) args(U_CompactSignedPriceToStr, i);
    return s.substr(2);
}

constexpr auto Fine = [](unsigned whole, unsigned tenThousandths) { return whole << 14 | tenThousandths; };
constexpr auto Coarse = [](unsigned whole, unsigned hundredths) {
    return (whole | 0x800000u) << 7 | hundredths;
};

// Rounding, grouping, trimming and the sign of ordinary amounts are the round trip with the reader
// tests; these rows are the edges.
// clang-format off
TEST(PriceWriter, AmountRows) {
    const int fineNegative = -static_cast<int>(Fine(1, 5000));
    const AmountRow rows[] = {
        {"CarryRegroupsCommas", Price, 999999, 995000000, 2, 0, '|', true, false, "1,000,000.00|"},
        {"CarryWrapsMaxWholePart", Price, UINT_MAX, 999999999, 0, 0, 0, false, false, "0"},
        {"MaxWholeWithCommas", Price, UINT_MAX, 0, 9, 0, 0, true, false, "4,294,967,295.000000000"},
        {"ZeroDecimalsSeparatorOnly", Price, 1, 500000000, 0, 0, ';', true, false, "2;"},
        {"TrimZeroFractionNineDigits", Price, 0, 0, 9, 0, 0, false, true, "0.00"},
        {"FractionOverOneShowsLowDigits", Price, 1, 4000000000u, 9, 0, 0, false, false, "1.000000000"},
        {"FractionOverOneCarriesOnce", Price, 1, 3000000000u, 2, 0, 0, false, false, "2.00"},
        {"SignFromEitherPart", Signed, 1, -5, 9, 0, 0, false, false, "-1.000000005"},
        {"SignDecidedBeforeRounding", Signed, 0, -1, 2, 0, 0, false, false, "-0.00"},
        {"MostNegativeWholePart", Signed, INT_MIN, 0, 2, 0, 0, true, false, "-2,147,483,648.00"},
        {"MoneyMostNegative64", Money, INT64_MIN, 0, 1, 0, 0, true, false, "-9,223,372,036,854,775,808.0"},
        {"CompactFineRounded", Compact, Fine(12, 3456), 0, 2, 0, 0, false, false, "12.35"},
        {"CompactLargestFineWhole", Compact, Fine(65535, 1), 0, 9, 0, 0, true, true, "65,535.0001"},
        {"CompactCoarseHundredths", Compact, Coarse(70000, 34), 0, 4, 0, 0, true, false, "70,000.3400"},
        {"CompactFineFieldAboveDenomination", Compact, Fine(0, 16383), 0, 2, 0, 0, false, false, "1.64"},
        {"CompactSignedNegative", SignedCompact, fineNegative, 0, 4, 0, 0, false, true, "-1.50"},
        {"CompactSignedMostNegative", SignedCompact, INT_MIN, 0, 1, 0, 0, false, false, "-131072.0"},
    };
    for (const auto& r : rows) EXPECT_EQ(Write(r), r.expected) << r.name;
}
// clang-format on

TEST(PriceWriter, FractionRows) {
    // clang-format off
    // `str` from U_DollarFractionToStdStr with sep '|', `buf` from U_DollarFractionToStr.
    struct Row { const char* id; unsigned value; unsigned char digits; bool trim; const char *str, *buf; };
    const Row rows[] = {
        {"NoDigits", 5, 0, true, "|", ""},
        {"OneDigitNeverTrimmed", 0, 1, true, "0|", "0"},
        {"TwoDigitsNeverTrimmed", 0, 2, true, "00|", "00"},
        {"ThreeDigitsTrimThird", 100, 3, true, "10|", "10"},
        {"FourDigitsZeroThenFourth", 5, 4, true, "0005|", "0005"},
        {"FourDigitsUntrimmed", 500, 4, false, "0500|", "0500"},
        {"FiveDigitsKeepTwo", 50000, 5, true, "50|", "50"},
        {"SixDigitsBufferKeepsOne", 500000, 6, true, "50|", "5"},
        {"NineDigitsZeroBufferKeepsOne", 0, 9, true, "00|", "0"},
        {"LowDigitsOfOversizeFraction", 1234, 2, false, "34|", "34"},
        {"DigitsAboveNine", 123456789, 10, false, "123456789|", ""},
    };
    // clang-format on
    for (const auto& r : rows) {
        std::string s;
        U_DollarFractionToStdStr(r.value, r.digits, s, '|', r.trim);
        EXPECT_EQ(s, r.str) << r.id;
        char buf[16];
        std::memset(buf, '#', sizeof buf);
        char* end = U_DollarFractionToStr(r.value, r.digits, buf, r.trim, '!');
        EXPECT_EQ(std::string(buf, static_cast<std::size_t>(end - buf)), r.buf) << r.id;
        EXPECT_EQ(*end, '!') << r.id;
        for (const char* p = end + 1; p != buf + sizeof buf; ++p) ASSERT_EQ(*p, '#') << r.id; // nothing past
    }
    std::string money;
    U_MoneyFractionToStdStr(500, 9, money, 0, true); // digits above 4 mean 4
    EXPECT_EQ(money, "05");
}

// The trailing digits of a long fraction are those the pad writer gives for width digits - 2.
TEST(PriceWriter, FractionTailMatchesPadWriter) {
    std::mt19937 rng(7);
    for (int i = 0; i < 20000; ++i) {
        const auto digits = static_cast<unsigned char>(5 + i % 5);
        unsigned scale = 1;
        for (unsigned d = 0; d < digits; ++d) scale *= 10;
        unsigned f = static_cast<unsigned>(rng() % scale);
        if (i % 3 == 0) f -= f % 1000; // plenty of trailing zeros
        const bool trim = i % 2 == 0;
        std::string s;
        U_DollarFractionToStdStr(f, digits, s, 0, trim);
        const unsigned tailScale = scale / 100, tail = f % tailScale;
        char pad[16];
        std::string expected = std::to_string(f / tailScale + 100).substr(1);
        if (!(trim && tail == 0)) expected += U_UIntToStrPad(tail, pad, sizeof pad, digits - 2u, trim, 0);
        ASSERT_EQ(s, expected) << f << " at " << int{digits};
    }
}

} // namespace
