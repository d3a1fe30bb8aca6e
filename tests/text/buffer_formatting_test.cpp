// Buffer-family number writers: exact texts, right alignment, truncation of the most significant
// characters, and never a byte written outside the caller's buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

using U64 = std::uint64_t;
constexpr U64 kMaxU64 = std::numeric_limits<U64>::max();

// A caller buffer of `size` bytes with guard bytes on both sides that no writer may touch.
class GuardedBuffer {
public:
    explicit GuardedBuffer(unsigned int size) : size_(size), storage_(size + 2 * kGuard, kPoison) {}
    char* data() { return storage_.data() + kGuard; }
    bool GuardsIntact() const {
        return std::all_of(storage_.begin(), storage_.begin() + kGuard,
                           [](char c) { return c == kPoison; }) &&
               std::all_of(storage_.end() - kGuard, storage_.end(), [](char c) { return c == kPoison; });
    }
    // The text from `first` up to the terminator at the buffer's last byte.
    std::string TextFrom(const char* first) {
        return std::string(first, static_cast<const char*>(data() + size_ - 1));
    }

private:
    static constexpr std::size_t kGuard = 16;
    static constexpr char kPoison = '\x5a';
    unsigned int size_;
    std::vector<char> storage_;
};

// Reference text built with plain string operations: digits of the magnitude, point, grouping.
std::string DecimalText(U64 magnitude, bool negative, unsigned decimals, bool commas, char sep) {
    std::string digits = std::to_string(magnitude);
    if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
    std::string whole = digits.substr(0, digits.size() - decimals);
    for (std::size_t i = whole.size(); commas && i > 3; i -= 3) whole.insert(i - 3, ",");
    std::string text = (negative ? "-" : "") + whole;
    if (decimals != 0) text += "." + digits.substr(digits.size() - decimals);
    return sep != '\0' ? text + sep : text;
}

std::string HexText(U64 value, char sep) {
    char tmp[32];
    std::snprintf(tmp, sizeof tmp, "%" PRIx64 "%c", value, sep);
    return tmp;
}

// Every buffer-family writer keeps the least significant characters of its full text: in a
// buffer of `size` bytes the result is the last min(size - 1, length) characters, ending at the
// terminator in buf[size - 1]; size 0 leaves the buffer untouched and returns it. Checked at every
// size up to a little past the text (the character-by-character path) and in roomy buffers such
// as callers usually pass (the fast path).
template <class Writer> void ExpectSuffixAtEverySize(const std::string& full, Writer write) {
    std::vector<unsigned int> sizes{32, 48, 64, 128};
    for (unsigned int size = 0; size <= full.size() + 3; ++size) sizes.push_back(size);
    for (unsigned int size : sizes) {
        GuardedBuffer buffer(size);
        char* result = write(buffer.data(), size);
        SCOPED_TRACE("size " + std::to_string(size) + ", full text '" + full + "'");
        ASSERT_TRUE(buffer.GuardsIntact());
        if (size == 0) {
            ASSERT_EQ(result, buffer.data());
            continue;
        }
        const std::size_t kept = std::min<std::size_t>(size - 1, full.size());
        ASSERT_EQ(result, buffer.data() + size - 1 - kept);
        ASSERT_EQ(buffer.TextFrom(result), full.substr(full.size() - kept));
    }
}

std::vector<U64> SampleMagnitudes(U64 max) {
    std::mt19937_64 rng(20261121);
    std::vector<U64> values{0, 1, 9, max, max - 1};
    for (U64 p = 10; p != 0 && p <= max / 10 * 9; p *= 10) {
        values.push_back(p - 1);
        values.push_back(p);
    }
    for (int i = 0; i < 24; ++i) values.push_back((rng() >> (rng() % 64)) % (max == kMaxU64 ? max : max + 1));
    return values;
}

// The value's magnitude and sign go in; each writer casts them to its own type.
using DecimalWrite = char* (*)(U64 magnitude, bool negative, char* buf, unsigned size, unsigned char decimals,
                               char sep);
template <class S> S Signed(U64 m, bool negative) {
    return static_cast<S>(negative ? U64{0} - m : m);
}

struct DecimalWriter {
    const char* name;
    DecimalWrite write;
    U64 maxMagnitude;
    bool isSigned, commas, takesDecimals;
};

// One row per writer: the lambda turns magnitude and sign into the writer's own argument type.
// clang-format off
#define WITH_DECIMALS(fn, T) [](U64 m, bool n, char* b, unsigned s, unsigned char d, char p) { return fn(Signed<T>(m, n), b, s, d, p); }
#define NO_DECIMALS(fn, T) [](U64 m, bool n, char* b, unsigned s, unsigned char, char p) { return fn(Signed<T>(m, n), b, s, p); }
const DecimalWriter kDecimalWriters[] = {
    {"U_UIntToStr", WITH_DECIMALS(U_UIntToStr, unsigned), 0xFFFFFFFF, false, false, true},
    {"U_UInt64ToStr", WITH_DECIMALS(U_UInt64ToStr, U64), kMaxU64, false, false, true},
    {"U_IntToStr", WITH_DECIMALS(U_IntToStr, int), 0x7FFFFFFF, true, false, true},
    {"U_Int64ToStr", WITH_DECIMALS(U_Int64ToStr, std::int64_t), 0x7FFFFFFFFFFFFFFF, true, false, true},
    {"U_ShortToStr", NO_DECIMALS(U_ShortToStr, short), 0x7FFF, true, false, false},
    {"U_UShortToStr", NO_DECIMALS(U_UShortToStr, unsigned short), 0xFFFF, false, false, false},
    {"U_UCharToStr", NO_DECIMALS(U_UCharToStr, unsigned char), 0xFF, false, false, false},
    {"U_CharAsIntToStr", NO_DECIMALS(U_CharAsIntToStr, char), 0x7F, true, false, false},
    {"U_IntToStrWithCommas", WITH_DECIMALS(U_IntToStrWithCommas, int), 0x7FFFFFFF, true, true, true},
    {"U_UIntToStrWithCommas", WITH_DECIMALS(U_UIntToStrWithCommas, unsigned), 0xFFFFFFFF, false, true, true},
    {"U_UShortToStrWithCommas", WITH_DECIMALS(U_UShortToStrWithCommas, unsigned short), 0xFFFF, false, true, true},
    {"U_Int64ToStrWithCommas", WITH_DECIMALS(U_Int64ToStrWithCommas, std::int64_t), 0x7FFFFFFFFFFFFFFF, true, true, true},
    {"U_UInt64ToStrWithCommas", WITH_DECIMALS(U_UInt64ToStrWithCommas, U64), kMaxU64, false, true, true},
};
#undef WITH_DECIMALS
#undef NO_DECIMALS
// clang-format on

TEST(BufferFormatting, DecimalWritersKeepLeastSignificantCharactersAtEverySize) {
    for (const DecimalWriter& w : kDecimalWriters) {
        SCOPED_TRACE(w.name);
        const std::vector<unsigned> decimalCounts =
            w.takesDecimals ? std::vector<unsigned>{0, 1, 2, 4, 9, 19, 21} : std::vector<unsigned>{0};
        for (U64 m : SampleMagnitudes(w.maxMagnitude))
            for (unsigned d : decimalCounts)
                for (char sep : {'\0', ','})
                    for (bool negative : {false, w.isSigned && m != 0}) {
                        const auto decimals = static_cast<unsigned char>(d);
                        ExpectSuffixAtEverySize(
                            DecimalText(m, negative, d, w.commas, sep),
                            [&](char* b, unsigned s) { return w.write(m, negative, b, s, decimals, sep); });
                    }
    }
}

TEST(BufferFormatting, HexWritersKeepLeastSignificantDigitsAtEverySize) {
    for (U64 v : SampleMagnitudes(kMaxU64)) {
        for (char sep : {'\0', ' '}) {
            const auto v32 = static_cast<unsigned>(v);
            const auto v16 = static_cast<unsigned short>(v);
            const auto v8 = static_cast<unsigned char>(v);
            ExpectSuffixAtEverySize(HexText(v, sep),
                                    [&](char* b, unsigned s) { return U_UInt64HexToStr(v, b, s, sep); });
            ExpectSuffixAtEverySize(HexText(v32, sep),
                                    [&](char* b, unsigned s) { return U_UIntHexToStr(v32, b, s, sep); });
            ExpectSuffixAtEverySize(HexText(v16, sep),
                                    [&](char* b, unsigned s) { return U_UShortHexToStr(v16, b, s, sep); });
            ExpectSuffixAtEverySize(HexText(v8, sep),
                                    [&](char* b, unsigned s) { return U_UCharHexToStr(v8, b, s, sep); });
        }
    }
}

// Writes into a fresh guarded buffer of `size` bytes and returns the text (or "<outside>").
template <class Writer> std::string TextOf(unsigned size, Writer write, bool expectStartAtBuf = false) {
    GuardedBuffer buffer(size);
    char* first = write(buffer.data(), size);
    if (!buffer.GuardsIntact() || first < buffer.data() || (expectStartAtBuf && first != buffer.data()))
        return "<outside>";
    return size == 0 ? "" : buffer.TextFrom(first);
}

TEST(BufferFormatting, DocumentedExamplesAndSignPlacement) {
    using Write = char* (*)(char*, unsigned);
    const struct {
        const char* name;
        Write write;
        unsigned size;
        bool startsAtBuf;
        const char* expected;
    } cases[] = {
        // clang-format off
        {"zero with decimals", [](char* b, unsigned s) { return U_UIntToStr(0, b, s, 2, 0); }, 16, false, "0.00"},
        {"high digits dropped", [](char* b, unsigned s) { return U_UIntToStr(123456, b, s, 0, 0); }, 4, true, "456"},
        {"negative fraction", [](char* b, unsigned s) { return U_IntToStr(-5, b, s, 2, ','); }, 16, false, "-0.05,"},
        {"fraction not grouped", [](char* b, unsigned s) { return U_UIntToStrWithCommas(123456789, b, s, 2, 0); }, 16, false, "1,234,567.89"},
        {"char code above 127", [](char* b, unsigned s) { return U_CharAsIntToStr('\xe9', b, s, 0); }, 8, false, "-23"},
        {"more decimals than digits", [](char* b, unsigned s) { return U_UInt64ToStr(42, b, s, 25, 0); }, 40, false, "0.0000000000000000000000042"},
        // Sign, digits and separator fit exactly: the sign lands in buf[0].
        {"sign fits exactly", [](char* b, unsigned s) { return U_IntToStr(-5, b, s, 0, ','); }, 4, true, "-5,"},
        // No room for the sign: it has no place inside the buffer and is left out.
        {"no room for the sign", [](char* b, unsigned s) { return U_IntToStr(-5, b, s, 0, ','); }, 3, true, "5,"},
        {"separator only", [](char* b, unsigned s) { return U_ShortToStr(-5, b, s, ','); }, 2, true, ","},
        {"size zero untouched", [](char* b, unsigned s) { return U_Int64ToStr(-5, b, s, 0, 0); }, 0, true, ""},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(TextOf(c.size, c.write, c.startsAtBuf), c.expected) << c.name;
}

TEST(BufferFormatting, PadCountsDroppedZerosTowardsTheWidth) {
    struct Case {
        const char* name;
        unsigned value, size, width;
        bool drop;
        char sep;
        const char* expected;
    };
    const Case cases[] = {
        {"price fraction shown short", 500, 16, 4, true, 0, "05"},
        {"price fraction shown full", 500, 16, 4, false, 0, "0500"},
        {"zero with flag loses its dropped digit", 0, 16, 4, true, 0, "000"},
        {"zero without flag", 0, 16, 4, false, 0, "0000"},
        {"width below the digit count", 123456, 16, 2, false, 0, "123456"},
        {"width zero drops zeros only", 1200, 16, 0, true, 0, "12"},
        {"separator after the digits", 7, 16, 3, false, ';', "007;"},
        {"width bounded by room", 5, 4, 9, false, 0, "005"},
        {"digits truncated by room", 987654, 4, 0, false, 0, "654"},
        {"separator alone", 5, 2, 4, false, ';', ";"},
        {"terminator alone", 5, 1, 4, false, 0, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(
            TextOf(c.size, [&](char* b,
                               unsigned s) { return U_UIntToStrPad(c.value, b, s, c.width, c.drop, c.sep); }),
            c.expected)
            << c.name;
}

TEST(BufferFormatting, PrependedFillsTheWholeBufferDownToItsStart) {
    using Write = char* (*)(char*, unsigned);
    const struct {
        const char* name;
        Write write;
        unsigned size;
        const char* expected;
    } cases[] = {
        {"zero filled", [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, '0', 0); }, 6,
         "00042"},
        {"blank filled, separator",
         [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, ' ', '|'); }, 6, "  42|"},
        {"zero writes one digit", [](char* b, unsigned s) { return U_UIntToStrPrepended(0, b, s, '*', 0); },
         5, "***0"},
        {"high digits dropped",
         [](char* b, unsigned s) { return U_UInt64ToStrPrepended(123456, b, s, '0', 0); }, 4, "456"},
        {"hex filled", [](char* b, unsigned s) { return U_UIntHexToStrPrepended(0xab, b, s, '0', 0); }, 9,
         "000000ab"},
        {"hex 64 full width",
         [](char* b, unsigned s) { return U_UInt64HexToStrPrepended(0x1f, b, s, '0', 0); }, 17,
         "000000000000001f"},
        {"separator only", [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, '0', ','); }, 2,
         ","},
    };
    for (const auto& c : cases) EXPECT_EQ(TextOf(c.size, c.write, true), c.expected) << c.name;
}

TEST(BufferFormatting, TwoDigitsToBufWritesForwardWithinSize) {
    const struct {
        const char* name;
        unsigned size, value;
        char sep;
        bool terminated;
        int resultOffset;    // -1: null
        std::size_t written; // bytes expected at the buffer's start
        const char* bytes;
    } cases[] = {
        {"size zero returns null", 0, 42, ':', true, -1, 0, ""},
        {"size one writes only a terminator", 1, 42, ':', true, 0, 1, "\0"},
        {"size two writes only a terminator", 2, 42, ':', true, 0, 1, "\0"},
        {"size three has no room for the separator", 3, 42, ':', true, 2, 3, "42\0"},
        {"size four takes the separator", 4, 42, ':', true, 3, 4, "42:\0"},
        {"leading zero", 4, 7, 0, true, 2, 3, "07\0"},
        {"hundreds give a non-digit", 4, 123, 0, true, 2, 3, "<3\0"},
        {"no terminator form", 3, 59, 0, false, 2, 2, "59"},
        {"no terminator form small", 2, 59, 0, false, 0, 1, "\0"},
        {"no terminator form empty", 0, 59, 0, false, -1, 0, ""},
    };
    for (const auto& c : cases) {
        GuardedBuffer buffer(c.size);
        char* result = c.terminated ? U_AppendTwoDigitsToBuf(buffer.data(), c.size, c.value, c.sep)
                                    : U_AppendTwoDigitsToBufWithNoTerm0(buffer.data(), c.size, c.value);
        EXPECT_EQ(result, c.resultOffset < 0 ? nullptr : buffer.data() + c.resultOffset) << c.name;
        EXPECT_EQ(std::string(buffer.data(), c.written), std::string(c.bytes, c.written)) << c.name;
        EXPECT_TRUE(buffer.GuardsIntact()) << c.name;
    }
}

TEST(BufferFormatting, MarkSectionEndCutsAtTheFirstDelimiter) {
    const struct {
        const char* text;
        char delimiter;
        bool found;
        std::size_t offset;
        const char* firstSection;
    } cases[] = {
        {"ab;cd;ef", ';', true, 2, "ab"}, {";cd", ';', true, 0, ""},      {"abcd", ';', false, 4, "abcd"},
        {"", ';', false, 0, ""},          {"abc", '\0', false, 3, "abc"}, // a zero delimiter is never found
    };
    for (const auto& c : cases) {
        std::string text(c.text, std::strlen(c.text) + 1);
        bool found = !c.found;
        char* result = U_MarkSectionEnd(text.data(), c.delimiter, &found);
        EXPECT_EQ(found, c.found) << c.text;
        EXPECT_EQ(result, text.data() + c.offset) << c.text;
        EXPECT_STREQ(text.data(), c.firstSection) << c.text;
    }
}

} // namespace
