// Buffer-family number writers: exact texts, right alignment, truncation of the most significant
// characters, and never a byte written outside the caller's buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

// A caller buffer of `size` bytes with guard bytes on both sides that no writer may touch.
class GuardedBuffer {
public:
    explicit GuardedBuffer(unsigned int size) : size_(size), storage_(size + 2 * kGuard, kPoison) {}
    char* data() { return storage_.data() + kGuard; }
    unsigned int size() const { return size_; }
    bool GuardsIntact() const {
        for (std::size_t i = 0; i < kGuard; ++i)
            if (storage_[i] != kPoison || storage_[kGuard + size_ + i] != kPoison)
                return false;
        return true;
    }
    // The text from `first` up to the terminator at the buffer's last byte.
    std::string TextFrom(const char* first) { return std::string(first, static_cast<const char*>(data() + size_ - 1)); }

private:
    static constexpr std::size_t kGuard = 16;
    static constexpr char kPoison = '\x5a';
    unsigned int size_;
    std::vector<char> storage_;
};

// Reference text built with plain string operations: digits of the magnitude, point, grouping.
std::string ReferenceText(std::uint64_t magnitude, bool negative, unsigned decimals, bool commas, char sep) {
    std::string digits = std::to_string(magnitude);
    if (digits.size() <= decimals)
        digits.insert(0, decimals + 1 - digits.size(), '0');
    std::string whole = digits.substr(0, digits.size() - decimals);
    if (commas)
        for (std::size_t i = whole.size(); i > 3; i -= 3)
            whole.insert(i - 3, ",");
    std::string text = (negative ? "-" : "") + whole;
    if (decimals != 0)
        text += "." + digits.substr(digits.size() - decimals);
    if (sep != '\0')
        text += sep;
    return text;
}

std::string HexText(std::uint64_t value, char sep) {
    char tmp[32];
    std::snprintf(tmp, sizeof tmp, "%" PRIx64, value);
    std::string text = tmp;
    if (sep != '\0')
        text += sep;
    return text;
}

// Every buffer-family writer keeps the least significant characters of its full text: in a
// buffer of `size` bytes the result is the last min(size - 1, length) characters, ending at the
// terminator in buf[size - 1]; size 0 leaves the buffer untouched and returns it.
template <class Writer> void ExpectSuffixAtEverySize(const std::string& full, Writer write, const char* what) {
    // Every size up to a little past the text, then roomy buffers such as callers usually pass.
    std::vector<unsigned int> sizes;
    for (unsigned int size = 0; size <= full.size() + 3; ++size)
        sizes.push_back(size);
    for (unsigned int size : {32u, 48u, 64u, 128u})
        sizes.push_back(size);
    for (unsigned int size : sizes) {
        GuardedBuffer buffer(size);
        char* result = write(buffer.data(), size);
        SCOPED_TRACE(std::string(what) + " size " + std::to_string(size) + " full '" + full + "'");
        ASSERT_TRUE(buffer.GuardsIntact());
        if (size == 0) {
            ASSERT_EQ(result, buffer.data());
            continue;
        }
        const std::size_t kept = std::min<std::size_t>(size - 1, full.size());
        ASSERT_EQ(buffer.data()[size - 1], '\0');
        ASSERT_EQ(result, buffer.data() + size - 1 - kept);
        ASSERT_EQ(buffer.TextFrom(result), full.substr(full.size() - kept));
    }
}

std::vector<std::uint64_t> SampleMagnitudes(std::uint64_t max, std::mt19937_64& rng) {
    std::vector<std::uint64_t> values{0, 1, 9, 10, 99, 100, 999, 1000, 65535, max, max - 1};
    for (std::uint64_t p = 10; p <= max / 10 * 9 && p != 0; p *= 10) {
        values.push_back(p - 1);
        values.push_back(p);
    }
    for (int i = 0; i < 40; ++i) {
        const auto bits = static_cast<int>(rng() % 64) + 1;
        std::uint64_t v = rng() >> (64 - bits);
        values.push_back(v > max ? v % (max + 1 == 0 ? max : max + 1) : v);
    }
    return values;
}

TEST(BufferFormatting, DocumentedExamples) {
    struct Case {
        const char* name;
        std::string expected;
        std::function<char*(char*, unsigned int)> write;
        unsigned int size;
    };
    const Case cases[] = {
        {"zero", "0", [](char* b, unsigned s) { return U_UIntToStr(0, b, s, 0, 0); }, 16},
        {"zero with two decimals", "0.00", [](char* b, unsigned s) { return U_UIntToStr(0, b, s, 2, 0); }, 16},
        {"high digits dropped", "456", [](char* b, unsigned s) { return U_UIntToStr(123456, b, s, 0, 0); }, 4},
        {"negative fraction and separator", "-0.05,",
         [](char* b, unsigned s) { return U_IntToStr(-5, b, s, 2, ','); }, 16},
        {"five with three decimals", "0.005", [](char* b, unsigned s) { return U_UIntToStr(5, b, s, 3, 0); }, 16},
        {"fixed point", "123.45", [](char* b, unsigned s) { return U_UIntToStr(12345, b, s, 2, 0); }, 16},
        {"one thousand grouped", "1,000", [](char* b, unsigned s) { return U_UIntToStrWithCommas(1000, b, s, 0, 0); }, 16},
        {"below a group", "999", [](char* b, unsigned s) { return U_UIntToStrWithCommas(999, b, s, 0, 0); }, 16},
        {"zero grouped", "0", [](char* b, unsigned s) { return U_UIntToStrWithCommas(0, b, s, 0, 0); }, 16},
        {"million grouped", "1,234,567",
         [](char* b, unsigned s) { return U_UIntToStrWithCommas(1234567, b, s, 0, 0); }, 16},
        {"fraction never grouped", "1,234,567.89",
         [](char* b, unsigned s) { return U_UIntToStrWithCommas(123456789, b, s, 2, 0); }, 16},
        {"short grouped", "65,535", [](char* b, unsigned s) { return U_UShortToStrWithCommas(65535, b, s, 0, 0); }, 16},
        {"negative grouped", "-1,234.5",
         [](char* b, unsigned s) { return U_Int64ToStrWithCommas(-12345, b, s, 1, 0); }, 16},
        {"char code above 127 is negative", "-23",
         [](char* b, unsigned s) { return U_CharAsIntToStr(static_cast<char>(0xE9), b, s, 0); }, 8},
        {"char code", "65|", [](char* b, unsigned s) { return U_CharAsIntToStr('A', b, s, '|'); }, 8},
        {"short negative", "-32768", [](char* b, unsigned s) { return U_ShortToStr(-32768, b, s, 0); }, 8},
        {"hex lowercase", "ff", [](char* b, unsigned s) { return U_UCharHexToStr(255, b, s, 0); }, 8},
        {"hex 64", "deadbeefcafe0001",
         [](char* b, unsigned s) { return U_UInt64HexToStr(0xdeadbeefcafe0001ULL, b, s, 0); }, 20},
        {"hex zero", "0", [](char* b, unsigned s) { return U_UShortHexToStr(0, b, s, 0); }, 8},
        {"most negative 32", "-2147483648",
         [](char* b, unsigned s) { return U_IntToStr(std::numeric_limits<int>::min(), b, s, 0, 0); }, 16},
        {"decimals beyond 64-bit digits", "0.0000000000000000000000042",
         [](char* b, unsigned s) { return U_UInt64ToStr(42, b, s, 25, 0); }, 40},
    };
    for (const Case& c : cases) {
        GuardedBuffer buffer(c.size);
        char* first = c.write(buffer.data(), c.size);
        EXPECT_EQ(buffer.TextFrom(first), c.expected) << c.name;
        EXPECT_TRUE(buffer.GuardsIntact()) << c.name;
    }
}

TEST(BufferFormatting, UnsignedDecimalKeepsLeastSignificantCharactersAtEverySize) {
    std::mt19937_64 rng(20261121);
    const char seps[] = {'\0', ','};
    for (std::uint64_t v : SampleMagnitudes(std::numeric_limits<std::uint64_t>::max(), rng)) {
        for (unsigned decimals : {0u, 1u, 2u, 4u, 9u, 19u, 21u}) {
            for (char sep : seps) {
                const auto d = static_cast<unsigned char>(decimals);
                ExpectSuffixAtEverySize(ReferenceText(v, false, decimals, false, sep),
                                        [&](char* b, unsigned s) { return U_UInt64ToStr(v, b, s, d, sep); },
                                        "U_UInt64ToStr");
                ExpectSuffixAtEverySize(ReferenceText(v, false, decimals, true, sep),
                                        [&](char* b, unsigned s) { return U_UInt64ToStrWithCommas(v, b, s, d, sep); },
                                        "U_UInt64ToStrWithCommas");
                if (v <= std::numeric_limits<unsigned int>::max()) {
                    const auto v32 = static_cast<unsigned int>(v);
                    ExpectSuffixAtEverySize(ReferenceText(v, false, decimals, false, sep),
                                            [&](char* b, unsigned s) { return U_UIntToStr(v32, b, s, d, sep); },
                                            "U_UIntToStr");
                    ExpectSuffixAtEverySize(
                        ReferenceText(v, false, decimals, true, sep),
                        [&](char* b, unsigned s) { return U_UIntToStrWithCommas(v32, b, s, d, sep); },
                        "U_UIntToStrWithCommas");
                }
                if (v <= 0xFFFF) {
                    const auto v16 = static_cast<unsigned short>(v);
                    ExpectSuffixAtEverySize(
                        ReferenceText(v, false, decimals, true, sep),
                        [&](char* b, unsigned s) { return U_UShortToStrWithCommas(v16, b, s, d, sep); },
                        "U_UShortToStrWithCommas");
                    if (decimals == 0)
                        ExpectSuffixAtEverySize(ReferenceText(v, false, 0, false, sep),
                                                [&](char* b, unsigned s) { return U_UShortToStr(v16, b, s, sep); },
                                                "U_UShortToStr");
                }
                if (v <= 0xFF && decimals == 0)
                    ExpectSuffixAtEverySize(ReferenceText(v, false, 0, false, sep),
                                            [&](char* b, unsigned s) {
                                                return U_UCharToStr(static_cast<unsigned char>(v), b, s, sep);
                                            },
                                            "U_UCharToStr");
            }
        }
    }
}

TEST(BufferFormatting, SignedDecimalNeverWritesTheSignOutsideTheBuffer) {
    std::mt19937_64 rng(7);
    for (std::uint64_t m : SampleMagnitudes(std::uint64_t{1} << 63, rng)) {
        for (unsigned decimals : {0u, 2u, 6u}) {
            for (char sep : {'\0', '|'}) {
                const auto d = static_cast<unsigned char>(decimals);
                const auto v64 = static_cast<std::int64_t>(std::uint64_t{0} - m); // -m, wrapping at 2^63
                ExpectSuffixAtEverySize(ReferenceText(m, m != 0, decimals, false, sep),
                                        [&](char* b, unsigned s) { return U_Int64ToStr(v64, b, s, d, sep); },
                                        "U_Int64ToStr");
                ExpectSuffixAtEverySize(ReferenceText(m, m != 0, decimals, true, sep),
                                        [&](char* b, unsigned s) { return U_Int64ToStrWithCommas(v64, b, s, d, sep); },
                                        "U_Int64ToStrWithCommas");
                if (m <= (std::uint64_t{1} << 31)) {
                    const auto v32 = static_cast<int>(static_cast<std::int64_t>(0) - static_cast<std::int64_t>(m));
                    ExpectSuffixAtEverySize(ReferenceText(m, m != 0, decimals, false, sep),
                                            [&](char* b, unsigned s) { return U_IntToStr(v32, b, s, d, sep); },
                                            "U_IntToStr");
                    ExpectSuffixAtEverySize(
                        ReferenceText(m, m != 0, decimals, true, sep),
                        [&](char* b, unsigned s) { return U_IntToStrWithCommas(v32, b, s, d, sep); },
                        "U_IntToStrWithCommas");
                }
                if (m <= 32768 && decimals == 0) {
                    const auto v16 = static_cast<short>(-static_cast<int>(m));
                    ExpectSuffixAtEverySize(ReferenceText(m, m != 0, 0, false, sep),
                                            [&](char* b, unsigned s) { return U_ShortToStr(v16, b, s, sep); },
                                            "U_ShortToStr");
                }
            }
        }
    }
}

TEST(BufferFormatting, SignGoesJustBeforeTheDigitsWhenTheyDoNotReachTheBufferStart) {
    // Sign, digits and separator fit exactly: the sign lands in buf[0].
    GuardedBuffer exact(4);
    EXPECT_EQ(exact.TextFrom(U_IntToStr(-5, exact.data(), 4, 0, ',')), "-5,");
    EXPECT_EQ(U_IntToStr(-5, exact.data(), 4, 0, ','), exact.data());
    // No room for the sign: the digits keep buf[0] and the byte before the buffer stays untouched.
    GuardedBuffer tight(3);
    EXPECT_EQ(tight.TextFrom(U_IntToStr(-5, tight.data(), 3, 0, ',')), "5,");
    EXPECT_TRUE(tight.GuardsIntact());
    GuardedBuffer separatorOnly(2);
    EXPECT_EQ(separatorOnly.TextFrom(U_ShortToStr(-5, separatorOnly.data(), 2, ',')), ",");
    EXPECT_EQ(separatorOnly.TextFrom(U_CharAsIntToStr('\xff', separatorOnly.data(), 2, ',')), ",");
    EXPECT_TRUE(separatorOnly.GuardsIntact());
}

TEST(BufferFormatting, HexKeepsLeastSignificantDigitsAtEverySize) {
    std::mt19937_64 rng(99);
    for (std::uint64_t v : SampleMagnitudes(std::numeric_limits<std::uint64_t>::max(), rng)) {
        for (char sep : {'\0', ' '}) {
            ExpectSuffixAtEverySize(HexText(v, sep), [&](char* b, unsigned s) { return U_UInt64HexToStr(v, b, s, sep); },
                                    "U_UInt64HexToStr");
            const auto v32 = static_cast<unsigned int>(v);
            ExpectSuffixAtEverySize(HexText(v32, sep),
                                    [&](char* b, unsigned s) { return U_UIntHexToStr(v32, b, s, sep); },
                                    "U_UIntHexToStr");
            const auto v16 = static_cast<unsigned short>(v);
            ExpectSuffixAtEverySize(HexText(v16, sep),
                                    [&](char* b, unsigned s) { return U_UShortHexToStr(v16, b, s, sep); },
                                    "U_UShortHexToStr");
            const auto v8 = static_cast<unsigned char>(v);
            ExpectSuffixAtEverySize(HexText(v8, sep), [&](char* b, unsigned s) { return U_UCharHexToStr(v8, b, s, sep); },
                                    "U_UCharHexToStr");
        }
    }
}

TEST(BufferFormatting, PadCountsDroppedZerosTowardsTheWidth) {
    struct Case {
        const char* name;
        unsigned int value, size, width;
        bool drop;
        char sep;
        const char* expected;
    };
    const Case cases[] = {
        {"price fraction shown short", 500, 16, 4, true, 0, "05"},
        {"price fraction shown full", 500, 16, 4, false, 0, "0500"},
        {"zero with flag keeps width minus the dropped digit", 0, 16, 4, true, 0, "000"},
        {"zero without flag", 0, 16, 4, false, 0, "0000"},
        {"no trailing zeros", 1234, 16, 6, true, 0, "001234"},
        {"width below the digit count", 123456, 16, 2, false, 0, "123456"},
        {"width zero drops zeros without padding", 1200, 16, 0, true, 0, "12"},
        {"separator after the digits", 7, 16, 3, false, ';', "007;"},
        {"width bounded by room", 5, 4, 9, false, 0, "005"},
        {"digits truncated by room", 987654, 4, 0, false, 0, "654"},
        {"separator alone", 5, 2, 4, false, ';', ";"},
        {"terminator alone", 5, 1, 4, false, 0, ""},
    };
    for (const Case& c : cases) {
        GuardedBuffer buffer(c.size);
        const char* first = U_UIntToStrPad(c.value, buffer.data(), c.size, c.width, c.drop, c.sep);
        EXPECT_EQ(buffer.TextFrom(first), c.expected) << c.name;
        EXPECT_TRUE(buffer.GuardsIntact()) << c.name;
    }
    GuardedBuffer empty(0);
    EXPECT_EQ(U_UIntToStrPad(5, empty.data(), 0, 4, false, 0), empty.data());
    EXPECT_TRUE(empty.GuardsIntact());
}

TEST(BufferFormatting, PrependedFillsTheWholeBufferDownToItsStart) {
    struct Case {
        const char* name;
        std::function<char*(char*, unsigned int)> write;
        unsigned int size;
        const char* expected;
    };
    const Case cases[] = {
        {"zero filled", [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, '0', 0); }, 6, "00042"},
        {"blank filled with separator", [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, ' ', '|'); }, 6,
         "  42|"},
        {"zero writes one digit", [](char* b, unsigned s) { return U_UIntToStrPrepended(0, b, s, '*', 0); }, 5, "***0"},
        {"high digits dropped", [](char* b, unsigned s) { return U_UInt64ToStrPrepended(123456, b, s, '0', 0); }, 4,
         "456"},
        {"exact fit", [](char* b, unsigned s) { return U_UInt64ToStrPrepended(123, b, s, '0', 0); }, 4, "123"},
        {"hex filled", [](char* b, unsigned s) { return U_UIntHexToStrPrepended(0xab, b, s, '0', 0); }, 9, "000000ab"},
        {"hex 64 full width", [](char* b, unsigned s) { return U_UInt64HexToStrPrepended(0x1f, b, s, '0', 0); }, 17,
         "000000000000001f"},
        {"separator only", [](char* b, unsigned s) { return U_UIntToStrPrepended(42, b, s, '0', ','); }, 2, ","},
    };
    for (const Case& c : cases) {
        GuardedBuffer buffer(c.size);
        char* first = c.write(buffer.data(), c.size);
        EXPECT_EQ(first, buffer.data()) << c.name;
        EXPECT_EQ(buffer.TextFrom(first), c.expected) << c.name;
        EXPECT_TRUE(buffer.GuardsIntact()) << c.name;
    }
}

TEST(BufferFormatting, TwoDigitsToBufWritesForwardWithinSize) {
    struct Case {
        const char* name;
        unsigned int size, value;
        char sep;
        bool terminated;
        int resultOffset;    // -1: null
        std::size_t written; // bytes expected at the buffer's start
        const char* bytes;
    };
    const Case cases[] = {
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
    for (const Case& c : cases) {
        GuardedBuffer buffer(c.size);
        char* result = c.terminated ? U_AppendTwoDigitsToBuf(buffer.data(), c.size, c.value, c.sep)
                                    : U_AppendTwoDigitsToBufWithNoTerm0(buffer.data(), c.size, c.value);
        if (c.resultOffset < 0) {
            EXPECT_EQ(result, nullptr) << c.name;
        } else {
            EXPECT_EQ(result, buffer.data() + c.resultOffset) << c.name;
        }
        EXPECT_EQ(std::string(buffer.data(), c.written), std::string(c.bytes, c.written)) << c.name;
        EXPECT_TRUE(buffer.GuardsIntact()) << c.name;
    }
}

TEST(BufferFormatting, MarkSectionEndCutsAtTheFirstDelimiter) {
    struct Case {
        const char* name;
        const char* text;
        char delimiter;
        bool found;
        std::size_t offset;
        const char* firstSection;
    };
    const Case cases[] = {
        {"cut at the first delimiter", "ab;cd;ef", ';', true, 2, "ab"},
        {"delimiter first", ";cd", ';', true, 0, ""},
        {"absent", "abcd", ';', false, 4, "abcd"},
        {"empty text", "", ';', false, 0, ""},
        {"zero delimiter is never found", "abc", '\0', false, 3, "abc"},
    };
    for (const Case& c : cases) {
        std::string text = c.text;
        text.push_back('\0');
        bool found = !c.found;
        char* result = U_MarkSectionEnd(text.data(), c.delimiter, &found);
        EXPECT_EQ(found, c.found) << c.name;
        EXPECT_EQ(result, text.data() + c.offset) << c.name;
        EXPECT_EQ(*result, '\0') << c.name;
        EXPECT_STREQ(text.data(), c.firstSection) << c.name;
    }
    // Section by section through a whole line.
    char line[] = "a=1;b=2;c=3";
    std::vector<std::string> sections;
    for (char* section = line;;) {
        bool found = false;
        char* end = U_MarkSectionEnd(section, ';', &found);
        sections.emplace_back(section);
        if (!found)
            break;
        section = end + 1;
    }
    EXPECT_EQ(sections, (std::vector<std::string>{"a=1", "b=2", "c=3"}));
}

} // namespace
