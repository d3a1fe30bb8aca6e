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
#include <string_view>
#include <tuple>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

using U64 = std::uint64_t;
constexpr U64 kMaxU64 = std::numeric_limits<U64>::max();
const std::string kGuard(16, '\x5a');

// A caller buffer of `size` bytes between guard bytes that no writer may touch.
struct GuardedBuffer {
    explicit GuardedBuffer(unsigned int n) : size(n), storage(kGuard + std::string(n, '\x5a') + kGuard) {}
    char* data() { return storage.data() + kGuard.size(); }
    bool GuardsIntact() const { return storage.starts_with(kGuard) && storage.ends_with(kGuard); }
    // The text from `first` up to the terminator at the buffer's last byte.
    std::string TextFrom(const char* first) { return {first, static_cast<const char*>(data()) + size - 1}; }
    unsigned int size;
    std::string storage;
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
// terminator in buf[size - 1]; size 0 leaves the buffer untouched and returns it. So a sign without
// room is left out rather than written before the buffer. Checked at every size up to a little past
// the text (the character-by-character path) and in roomy buffers (the fast path).
template <class Writer> void ExpectSuffixAtEverySize(const std::string& full, Writer write) {
    std::vector<unsigned int> sizes{32, 48, 64, 128};
    for (unsigned int size = 0; size <= full.size() + 3; ++size) sizes.push_back(size);
    for (unsigned int size : sizes) {
        GuardedBuffer buffer(size);
        char* result = write(buffer.data(), size);
        SCOPED_TRACE("size " + std::to_string(size) + ", full text '" + full + "'");
        ASSERT_TRUE(buffer.GuardsIntact());
        const std::size_t kept = size == 0 ? 0 : std::min<std::size_t>(size - 1, full.size());
        ASSERT_EQ(result, buffer.data() + (size == 0 ? 0 : size - 1 - kept));
        ASSERT_EQ(size == 0 ? "" : buffer.TextFrom(result), full.substr(full.size() - kept));
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
    using HexWrite = char* (*)(U64, char*, unsigned, char);
    // clang-format off
    const std::pair<U64, HexWrite> writers[] = {
        {kMaxU64, [](U64 v, char* b, unsigned s, char p) { return U_UInt64HexToStr(v, b, s, p); }},
        {0xFFFFFFFF, [](U64 v, char* b, unsigned s, char p) { return U_UIntHexToStr(static_cast<unsigned>(v), b, s, p); }},
        {0xFFFF, [](U64 v, char* b, unsigned s, char p) { return U_UShortHexToStr(static_cast<unsigned short>(v), b, s, p); }},
        {0xFF, [](U64 v, char* b, unsigned s, char p) { return U_UCharHexToStr(static_cast<unsigned char>(v), b, s, p); }},
    };
    // clang-format on
    for (U64 value : SampleMagnitudes(kMaxU64))
        for (char sep : {'\0', ' '})
            for (const auto& writer : writers)
                ExpectSuffixAtEverySize(HexText(value & writer.first, sep),
                                        [&](char* b, unsigned s) { return writer.second(value, b, s, sep); });
}

// The text a writer leaves in a fresh guarded buffer of `size` bytes, or "<outside>" when it wrote
// outside the buffer or (with `startsAtBuf`) did not start at its first byte.
template <class Writer> std::string TextOf(unsigned size, Writer write, bool startsAtBuf) {
    GuardedBuffer buffer(size);
    char* first = write(buffer.data(), size);
    if (!buffer.GuardsIntact() || first < buffer.data() || (startsAtBuf && first != buffer.data()))
        return "<outside>";
    return size == 0 ? "" : buffer.TextFrom(first);
}

// The fixed-width writers (how the width counts dropped zeros, the fill down to the buffer's start),
// and the sign at the buffer's first byte.
TEST(BufferFormatting, PadPrependedAndSignKeepTheirWidthFillAndRoom) {
#define W(call) [](char* b, unsigned s) { return call; }
    // name, writer, size, whether the text starts at the buffer's first byte, text
    const std::vector<std::tuple<const char*, char* (*)(char*, unsigned), unsigned, bool, const char*>>
        cases = {
            // clang-format off
        {"sign fits exactly in buf[0]", W(U_IntToStr(-5, b, s, 0, ',')), 4, true, "-5,"},
        {"no room for the sign: left out", W(U_IntToStr(-5, b, s, 0, ',')), 3, true, "5,"},
        {"price fraction shown short", W(U_UIntToStrPad(500, b, s, 4, true, 0)), 16, false, "05"},
        {"price fraction shown full", W(U_UIntToStrPad(500, b, s, 4, false, 0)), 16, false, "0500"},
        {"zero with flag loses its dropped digit", W(U_UIntToStrPad(0, b, s, 4, true, 0)), 16, false, "000"},
        {"zero without flag", W(U_UIntToStrPad(0, b, s, 4, false, 0)), 16, false, "0000"},
        {"width below the digit count", W(U_UIntToStrPad(123456, b, s, 2, false, 0)), 16, false, "123456"},
        {"width zero drops zeros only", W(U_UIntToStrPad(1200, b, s, 0, true, 0)), 16, false, "12"},
        {"pad separator after the digits", W(U_UIntToStrPad(7, b, s, 3, false, ';')), 16, false, "007;"},
        {"pad width bounded by room", W(U_UIntToStrPad(5, b, s, 9, false, 0)), 4, true, "005"},
        {"pad digits truncated by room", W(U_UIntToStrPad(987654, b, s, 0, false, 0)), 4, true, "654"},
        {"pad separator alone", W(U_UIntToStrPad(5, b, s, 4, false, ';')), 2, true, ";"},
        {"pad terminator alone", W(U_UIntToStrPad(5, b, s, 4, false, 0)), 1, true, ""},
        {"zero filled", W(U_UIntToStrPrepended(42, b, s, '0', 0)), 6, true, "00042"},
        {"blank filled, separator", W(U_UIntToStrPrepended(42, b, s, ' ', '|')), 6, true, "  42|"},
        {"zero writes one digit", W(U_UIntToStrPrepended(0, b, s, '*', 0)), 5, true, "***0"},
        {"prepended high digits dropped", W(U_UInt64ToStrPrepended(123456, b, s, '0', 0)), 4, true, "456"},
        {"hex filled", W(U_UIntHexToStrPrepended(0xab, b, s, '0', 0)), 9, true, "000000ab"},
        {"hex 64 full width", W(U_UInt64HexToStrPrepended(0x1f, b, s, '0', 0)), 17, true, "000000000000001f"},
        {"prepended separator only", W(U_UIntToStrPrepended(42, b, s, '0', ',')), 2, true, ","},
            // clang-format on
        };
#undef W
    for (const auto& [name, write, size, startsAtBuf, expected] : cases)
        EXPECT_EQ(TextOf(size, write, startsAtBuf), expected) << name;
}

TEST(BufferFormatting, TwoDigitsToBufWritesForwardWithinSize) {
    // name, size, value, separator, whether terminated, result offset (-1: null), bytes written from the
    // start
    const std::vector<std::tuple<const char*, unsigned, unsigned, char, bool, int, std::string>> cases = {
        // clang-format off
        {"size zero returns null", 0, 42, ':', true, -1, ""},
        {"size one writes only a terminator", 1, 42, ':', true, 0, {"\0", 1}},
        {"size two writes only a terminator", 2, 42, ':', true, 0, {"\0", 1}},
        {"size three has no room for the separator", 3, 42, ':', true, 2, {"42\0", 3}},
        {"size four takes the separator", 4, 42, ':', true, 3, {"42:\0", 4}},
        {"leading zero", 4, 7, 0, true, 2, {"07\0", 3}},
        {"hundreds give a non-digit", 4, 123, 0, true, 2, {"<3\0", 3}},
        {"no terminator form", 3, 59, 0, false, 2, "59"},
        {"no terminator form small", 2, 59, 0, false, 0, {"\0", 1}},
        {"no terminator form empty", 0, 59, 0, false, -1, ""},
        // clang-format on
    };
    for (const auto& [name, size, value, sep, terminated, offset, bytes] : cases) {
        GuardedBuffer buffer(size);
        char* result = terminated ? U_AppendTwoDigitsToBuf(buffer.data(), size, value, sep)
                                  : U_AppendTwoDigitsToBufWithNoTerm0(buffer.data(), size, value);
        EXPECT_EQ(std::tuple(result, std::string(buffer.data(), bytes.size()), buffer.GuardsIntact()),
                  std::tuple(offset < 0 ? nullptr : buffer.data() + offset, bytes, true))
            << name;
    }
}

TEST(BufferFormatting, MarkSectionEndCutsAtTheFirstDelimiter) {
    // text, delimiter, found, offset of the result, first section
    const std::vector<std::tuple<const char*, char, bool, std::ptrdiff_t, std::string>> cases = {
        {"ab;cd;ef", ';', true, 2, "ab"}, {";cd", ';', true, 0, ""},      {"abcd", ';', false, 4, "abcd"},
        {"", ';', false, 0, ""},          {"abc", '\0', false, 3, "abc"}, // a zero delimiter is never found
    };
    for (const auto& [input, delimiter, expectFound, offset, firstSection] : cases) {
        std::string text(input, std::strlen(input) + 1);
        bool found = !expectFound;
        const char* result = U_MarkSectionEnd(text.data(), delimiter, &found);
        EXPECT_EQ(std::tuple(found, result - text.data(), std::string(text.c_str())),
                  std::tuple(expectFound, offset, firstSection))
            << input;
    }
}

} // namespace
