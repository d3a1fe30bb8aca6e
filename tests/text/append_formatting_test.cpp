// Append-family number writers: the text appended, the separator rule, and chaining.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

std::string Hex(std::uint64_t value, char sep) {
    char text[32];
    std::snprintf(text, sizeof text, "%" PRIx64 "%c", value, sep);
    return text;
}

// Every decimal and hexadecimal appender against std::to_string and printf, on the limits of each
// type and on random values of every magnitude (negated for the signed ones), each with its separator.
TEST(AppendFormatting, NumbersMatchReferenceOnLimitsAndRandomValues) {
    std::vector<std::uint64_t> values{0, 1, 9, 10, ~0ull};
    for (int bits : {7, 8, 15, 16, 31, 32, 63})
        values.insert(values.end(), {(1ull << bits) - 1, 1ull << bits});
    std::mt19937_64 rng(1234);
    for (int i = 0; i < 20000; ++i) values.push_back(rng() >> (rng() % 64));
    for (const std::uint64_t v : values) {
        const auto u32 = static_cast<unsigned>(v);
        const auto u16 = static_cast<unsigned short>(v);
        const auto u8 = static_cast<unsigned char>(v);
        const auto s64 = static_cast<std::int64_t>(v), n64 = static_cast<std::int64_t>(0 - v);
        const auto s32 = static_cast<int>(v), n32 = static_cast<int>(0 - v);
        std::string s = "x";
        U_AppendInt(U_AppendInt(U_AppendInt64(U_AppendInt64(s, s64, ' '), n64, ' '), s32, ' '), n32, ';');
        U_AppendUChar(U_AppendUShort(U_AppendUInt(U_AppendUInt64(s, v, ' '), u32, ' '), u16, ' '), u8, ';');
        U_AppendUCharHex(U_AppendUShortHex(U_AppendUIntHex(U_AppendUInt64Hex(s, v, ','), u32, ','), u16, ','),
                         u8, 0);
        ASSERT_EQ(s, "x" + std::to_string(s64) + " " + std::to_string(n64) + " " + std::to_string(s32) + " " +
                         std::to_string(n32) + ";" + std::to_string(v) + " " + std::to_string(u32) + " " +
                         std::to_string(u16) + " " + std::to_string(u8) + ";" + Hex(v, ',') + Hex(u32, ',') +
                         Hex(u16, ',') + Hex(u8, '\0'));
    }
}

// The fixed-width forms, zero padded, each followed by its separator (0 appends nothing). Kept: a value
// past the width is not cut to its low digits; the leading place gets 0 (123 gives "03").
TEST(AppendFormatting, FixedWidthDigitsPutZeroInTheLeadingPlaceOfAValuePastTheWidth) {
    const auto lead = [](unsigned digit) { return digit < 10 ? digit : 0; };
    for (unsigned v = 0; v < 123456; v += v < 1100 ? 1 : 997) {
        std::string s = "x";
        U_AppendFourDigits(U_AppendThreeDigits(U_AppendTwoDigits(s, v, 0), v, '.'), v, '-');
        char expected[32];
        std::snprintf(expected, sizeof expected, "x%u%u%u%02u.%u%u%02u-", lead(v / 10), v % 10, lead(v / 100),
                      v % 100, lead(v / 1000), v % 1000 / 100, v % 100);
        ASSERT_EQ(s, expected) << v;
    }
    std::string s;
    EXPECT_EQ(&U_AppendBool(U_AppendBool(s, true, 0), false, '|'), &s); // the appenders return the string
    EXPECT_EQ(s, "10|");
}

// Codes 33..126 are shown as themselves, every other code (blank, controls, 127 and up) as '#' and
// its unsigned decimal value; the IfValid form appends nothing for those.
TEST(AppendFormatting, PrintableCharShowsOtherCodesAsNumbers) {
    for (int code = 0; code < 256; ++code) {
        const auto c = static_cast<char>(code);
        const bool printable = code >= 33 && code <= 126;
        std::string s = "x";
        EXPECT_EQ(U_AppendPrintableCharIfValid(s, c, '|'), printable) << code;
        EXPECT_EQ(s, printable ? std::string("x") + c + "|" : std::string("x")) << code;
        std::string shown = "x";
        U_AppendPrintableChar(shown, c, '|');
        EXPECT_EQ(shown, "x" + (printable ? std::string(1, c) : "#" + std::to_string(code)) + "|") << code;
    }
}

} // namespace
