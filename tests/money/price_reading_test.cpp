// Amount readers, row by row: each row runs on an exactly sized heap copy of its text (ASan reports a
// read past the NUL); an unbounded row runs again through the UpToLength form with the text's length
// as the count and digits placed right after it, which must not be read. Then random amounts go
// through writer and reader and are compared with a rounding computed here in integer arithmetic.
#include "VeloraUtils/PriceText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace {

enum Kind { Price, Signed, Money };

struct Result {
    std::int64_t whole = 0, fraction = 0;
    std::ptrdiff_t offset = 0; // where the cursor ends
    bool operator==(const Result&) const = default;
};

// Reads `text` (an exactly sized heap copy) with the reader of `kind`; null `remaining` is unbounded.
Result Read(Kind kind, const std::string& text, unsigned* remaining, unsigned char maxDecimals,
            char delimiter) {
    const auto copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    const char* cursor = copy.get();
    const auto read = [&](auto unbounded, auto bounded, auto w, auto f) { // parts start at 9
        remaining ? bounded(w, f, cursor, *remaining, maxDecimals, delimiter)
                  : unbounded(w, f, cursor, maxDecimals, delimiter);
        return Result{w, f, cursor - copy.get()};
    };
    if (kind == Price)
        return read(U_StrToPriceDollarsAndFraction, U_StrToPriceDollarsAndFractionUpToLength, 9u, 9u);
    if (kind == Signed)
        return read(U_StrToSignedPriceDollarsAndFraction, U_StrToSignedPriceDollarsAndFractionUpToLength, 9,
                    9);
    return read(U_StrToMoneyDollarsAndFraction, U_StrToMoneyDollarsAndFractionUpToLength, std::int64_t{9},
                short{9});
}

constexpr unsigned kUnbounded = ~0u;

TEST(PriceReader, Rows) {
    // clang-format off
    struct Row { const char* name; Kind kind; std::string text; unsigned char maxDecimals; char delimiter;
                 Result expected; unsigned limit = kUnbounded; };
    // clang-format on
    const std::string fraction256 = "5" + std::string(255, '0');
    const auto wrapped = static_cast<unsigned>(123456789123ull),
               wrapped256 = static_cast<unsigned>(500000000ull * 1000000000ull);
    // clang-format off
    const Row rows[] = {
        {"FractionScaledToNineDigits", Price, "12.345|7", 9, '|', {12, 345000000, 7}},
        {"FractionBeyondMaxDecimalsSkipped", Price, "12.34567", 2, '|', {12, 340000000, 8}},
        {"EmptyTokenConsumesDelimiter", Price, "|5", 9, '|', {0, 0, 1}},
        {"EmptyTextStays", Price, "", 9, '|', {0, 0, 0}},
        {"WholeOnlyConsumesDelimiter", Price, "12|3", 9, '|', {12, 0, 3}},
        {"PointThenDelimiter", Price, "12.|3", 9, '|', {12, 0, 4}},
        {"PointThenNul", Price, "12.", 9, '|', {12, 0, 3}},
        {"NoWholeDigits", Price, ".5", 9, '|', {0, 500000000, 2}},
        {"TenthDigitTruncatedNotRounded", Price, "1.0000000019", 9, '|', {1, 1, 12}},
        {"ZeroMaxDecimalsReadsNoFraction", Price, "1.5|", 0, '|', {1, 0, 4}},
        {"MaxDecimalsAboveNineUnscaledWrapped", Price, "1.123456789123", 12, '|', {1, wrapped, 14}},
        {"NonDigitsAddTheirCode", Price, "1a.5", 9, '|', {59, 500000000, 4}},
        {"UnsignedTakesMinusAsDigit", Price, "-1", 9, '|', {static_cast<unsigned>(-3 * 10 + 1), 0, 2}},
        {"DelimiterPointEndsWholePart", Price, "12.5", 9, '.', {12, 0, 3}},
        {"ZeroDelimiterRunsToNul", Price, "12.5", 9, '\0', {12, 500000000, 4}},
        {"FractionCountWrapsAt256", Price, "1." + fraction256, 9, '|', {1, wrapped256, 258}},
        {"SignedLoneMinusConsumed", Signed, "-", 9, '|', {0, 0, 1}},
        {"SignedMinusThenDelimiter", Signed, "-|1", 9, '|', {0, 0, 2}},
        {"SignedMostNegative", Signed, "-2147483648", 9, '|', {INT32_MIN, 0, 11}},
        {"MoneyScaledToFourDigitsMaxDecimalsTruncates", Money, "-12.34567;", 4, ';', {-12, -3456, 10}},
        {"MoneyFractionWraps16Bits", Money, "1.234567", 6, '|', {1, static_cast<short>(234567 % 65536), 8}},
        {"MoneyWhole64", Money, "9223372036854775807.9999", 4, '|', {INT64_MAX, 9999, 24}},
        // Bounded rows: the count ends reading before the text does.
        {"ZeroCountReadsNothing", Price, "12.5|", 9, '|', {0, 0, 0}, 0},
        {"CountEndsWholePart", Price, "1234.5|", 9, '|', {12, 0, 2}, 2},
        {"CountEndsJustAfterPoint", Price, "12.5|", 9, '|', {12, 0, 3}, 3},
        {"CountEndsFraction", Price, "12.345|", 9, '|', {12, 340000000, 5}, 5},
        {"DelimiterLeftAtCount", Price, "12.5|", 9, '|', {12, 500000000, 4}, 4},
        {"CountEndsAfterMinus", Signed, "-5", 9, '|', {0, 0, 1}, 1},
    };
    // clang-format on
    for (const auto& r : rows) {
        unsigned remaining = r.limit == kUnbounded ? static_cast<unsigned>(r.text.size()) : r.limit;
        const unsigned given = remaining;
        const bool bounded = r.limit != kUnbounded;
        if (!bounded) {
            EXPECT_EQ(Read(r.kind, r.text, nullptr, r.maxDecimals, r.delimiter), r.expected) << r.name;
        }
        const std::string junk = bounded ? "" : "98.76|5"; // a reader that passes its count takes these
        EXPECT_EQ(Read(r.kind, r.text + junk, &remaining, r.maxDecimals, r.delimiter), r.expected)
            << r.name << " (bounded)";
        EXPECT_EQ(given - remaining, static_cast<unsigned>(r.expected.offset)) << r.name << " (bounded)";
    }
}

// Grouped by three from the right, as the reference for `commas`.
std::string Grouped(std::uint64_t whole) {
    std::string digits = std::to_string(whole);
    for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(static_cast<std::size_t>(at), ",");
    return digits;
}

// Random amounts written with every decimals (one past the type's digits too) and round mode: the text
// must show the sign and (grouped) whole part of the reference rounding, the asked number of fraction
// digits (fewer only by trimmed zeros), and read back to the reference value.
template <unsigned N> void RoundTrip(Kind kind, std::uint64_t wholeRange) {
    constexpr std::uint64_t one = N == 9 ? 1000000000u : 10000u;
    std::mt19937_64 rng(N * 10 + static_cast<unsigned>(kind));
    for (unsigned i = 0; i < 100000; ++i) {
        const std::uint64_t whole = rng() % (i % 2 ? 100000 : wholeRange), fraction = rng() % one;
        const auto decimals = static_cast<unsigned char>(i % (N + 2));
        const auto round = static_cast<char>(static_cast<int>(i / 16 % 3) - 1);
        const bool commas = i % 7 < 3, trim = i % 5 < 2, negative = kind != Price && i % 3 == 0;
        std::uint64_t unit = 1;
        for (unsigned d = decimals; d < N; ++d) unit *= 10;
        const std::uint64_t rest = fraction % unit,
                            up = (round == 0 && 2 * rest >= unit) || (round > 0 && rest);
        const std::uint64_t total = (whole * one + fraction) / unit * unit + up * unit;

        std::string s;
        const auto w = negative ? 0 - whole : whole, f = negative ? 0 - fraction : fraction;
        const auto args = [&](auto write, auto wholePart, auto fractionPart) {
            write(s, static_cast<decltype(wholePart)>(w), static_cast<decltype(fractionPart)>(f), decimals,
                  round, commas, '\0', trim);
        };
        if (kind == Price) args(U_PriceDollarsAndFractionToStr, 0u, 0u);
        if (kind == Signed) args(U_SignedPriceDollarsAndFractionToStr, 0, 0);
        if (kind == Money) args(U_MoneyDollarsAndFractionToStr, std::int64_t{0}, short{0});

        const std::string wholeText =
            (negative ? "-" : "") + (commas ? Grouped(total / one) : std::to_string(total / one));
        ASSERT_EQ(s.substr(0, wholeText.size()), wholeText) << s;
        const std::size_t shown = decimals < N ? decimals : N,
                          digits = s.size() - std::min(s.size(), wholeText.size() + 1);
        ASSERT_TRUE(shown == 0           ? s.size() == wholeText.size()
                    : !trim || shown < 2 ? digits == shown
                                         : digits >= 2 && digits <= shown && (digits == 2 || s.back() != '0'))
            << s;

        std::erase(s, ',');
        const Result read = Read(kind, s, nullptr, static_cast<unsigned char>(N), '|');
        ASSERT_EQ(read.offset, static_cast<std::ptrdiff_t>(s.size())) << s;
        const auto value = read.whole * static_cast<std::int64_t>(one) + read.fraction;
        ASSERT_EQ(value, static_cast<std::int64_t>(negative ? 0 - total : total)) << s;
    }
}

TEST(PriceReader, RoundTripThroughWriterMatchesIntegerRounding) {
    RoundTrip<9>(Price, UINT_MAX); // below UINT_MAX, so the carry never wraps (pinned by a writer row)
    RoundTrip<9>(Signed, INT_MAX);
    RoundTrip<4>(Money, 100000000000000ull);
}

} // namespace
