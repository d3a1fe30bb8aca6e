// Cursor readers: value, cursor offset, remaining count and digit count, row by row. Every text is an
// exactly sized heap copy (ASan reports a read past its NUL); a row whose count is shorter than its text
// runs again with junk right after the characters the count allows. Delimiters '|' and ';', default 77.
#include "VeloraUtils/TokenReading.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

constexpr unsigned kNoLimit = 0xC0FFEEu; // a count no row reaches: the reader is unbounded

using U = std::uint64_t; // every result, widened (signed ones sign-extended) so one table holds all widths

// Calls a reader with delimiters D and ';', default 77 and the row's counters.
template <auto F, char D = '|'> U Call(const char** c, unsigned* r, unsigned char* n) {
    const auto value = [&] {
        if constexpr (requires { F(c, r, n, D, 77); }) return F(c, r, n, D, 77);
        if constexpr (requires { F(c, r, D, ';', 77); }) return F(c, r, D, ';', 77);
        if constexpr (requires { F(c, n, D, 77); }) return F(c, n, D, 77);
        if constexpr (requires { F(c, r, D, 77); }) return F(c, r, D, 77);
        if constexpr (requires { F(c, D, ';', 77); }) return F(c, D, ';', 77);
        if constexpr (requires { F(c, D, 77); }) return F(c, D, 77);
        if constexpr (requires { F(c, D); }) return F(c, D);
        if constexpr (std::is_same_v<decltype(F), bool (*)(const char**, unsigned*, char)>) return F(c, r, D);
        if constexpr (std::is_same_v<decltype(F), char (*)(const char**, unsigned*, char)>)
            return F(c, r, 77);
    }();
    return static_cast<U>(value);
}

// String readers, appending to "pre:": what they append must be exactly what they consumed, less a
// consumed delimiter or stop character.
template <auto F> U Str(const char** c, unsigned* r, unsigned char*) {
    const char* const start = *c;
    std::string s = "pre:";
    bool result = false;
    if constexpr (requires { F(s, c, r, '|'); }) result = F(s, c, r, '|');
    if constexpr (requires { F(s, c, '|', ';'); }) result = F(s, c, '|', ';');
    if constexpr (requires { F(s, c, '|'); }) result = F(s, c, '|');
    const std::string consumed(start, *c);
    EXPECT_EQ(s, "pre:" + consumed.substr(0, consumed.find_first_of("|;")));
    return result;
}

struct Row {
    U (*read)(const char**, unsigned*, unsigned char*);
    std::string_view text;
    U expected;
    long offset;
    unsigned remaining = kNoLimit, remainingAfter = kNoLimit;
    unsigned char digits = 0, digitsAfter = 0;
};

void RunRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        std::vector<std::string> variants{std::string(row.text)};
        if (row.remaining < row.text.size())
            variants.push_back(std::string(row.text.substr(0, row.remaining)) + "9|;,7x\x01");
        for (const std::string& variant : variants) {
            SCOPED_TRACE(testing::Message() << "row " << &row - rows.data() << " on \"" << variant << '"');
            const std::vector<char> text(variant.c_str(), variant.c_str() + variant.size() + 1);
            const char* cursor = text.data();
            unsigned remaining = row.remaining;
            unsigned char digits = row.digits;
            const U value = row.read(&cursor, &remaining, &digits);
            EXPECT_EQ(std::tuple(value, cursor - text.data(), remaining, int{digits}),
                      std::tuple(row.expected, row.offset, row.remainingAfter, int{row.digitsAfter}));
        }
    }
}

TEST(TokenReaders, ValueCursorAndCounts) {
    // 100 zeros then 200 nines: only the first 100 characters may count, and 300 wraps to 44 in 8 bits.
    const std::string wrapsDigitCount = std::string(100, '0') + std::string(200, '9') + "|";
    RunRows({
        {Call<U_SkipToDelimiter>, "ab|cd", true, 3},
        {Call<U_SkipDelimiters>, "||a|", true, 2},
        {Call<U_SkipToDelimiterUpToLength>, "ab|cd", true, 3, 3, 0},
        {Call<U_SkipToDelimiterUpToLength>, "ab|", false, 0, 0, 0},
        {Call<U_SkipToDelimiterUpToLength>, "abc|d", true, 4, 2, 0xFFFFFFFE}, // tested on entry only
        {Call<U_SkipDelimitersUpToLength>, "||x", true, 2, 5, 3},
        {Str<U_ReadStrToken>, "ab|cd", true, 3},
        {Str<U_ReadStrToken>, "|x", true, 1},
        {Str<U_ReadStrToken>, "", false, 0},
        {Str<U_ReadStrTokenUpToLength>, "ab|cd", true, 2, 2, 0},
        {Str<U_ReadStrTokenUpToLength>, "ab|cd", true, 3, 3, 0},
        {Str<U_ReadStrTokenUpToLength>, "ab|", false, 0, 0, 0},
        {Str<U_ReadStrTokenWith2Delimiters>, "ab;c|", true, 3},
        {Str<U_ReadStrTokenToMandatoryDel>, "ab|c", true, 3},
        {Str<U_ReadStrTokenToMandatoryDel>, "ab;c|", false, 3},
        {Str<U_ReadStrTokenToMandatoryDel>, "ab", false, 2},
        {Call<U_ReadUIntToken>, "|5", 77, 1},
        {Call<U_ReadUIntToken>, "1a|", 59, 3},
        {Call<U_ReadUIntToken>, "1\xe9|", 4294967235u, 3}, // signed 8-bit code minus 48
        {Call<U_ReadUIntToken, '\0'>, "12|3", 1963, 4},
        {Call<U_ReadUInt64Token>, "18446744073709551615|", UINT64_MAX, 21},
        {Call<U_ReadUShortToken>, "65537|", 1, 6},
        {Call<U_ReadUCharToken>, "300|", 44, 4},
        {Call<U_ReadIntToken>, "|5", 77, 0}, // kept: the delimiter is not consumed
        {Call<U_ReadIntToken>, "-|", 0, 2},
        {Call<U_ReadIntToken>, "-2147483648|", U(INT_MIN), 12},
        {Call<U_ReadIntToken>, "+5|", U(-45), 3},
        {Call<U_ReadInt64Token>, "|5", 77, 1},
        {Call<U_ReadBoolToken>, "1x|y", true, 3},
        {Call<U_ReadBoolToken, ','>, "true,", false, 5},
        {Call<U_ReadUInt64HexToken>, "|1F|", 77, 1},
        {Call<U_ReadUInt64HexToken>, "ffFFffFFffFFffFF|", UINT64_MAX, 17},
        {Call<U_ReadUShortHexToken>, "12345|", 0x2345, 6},
        {Call<U_ReadUCharHexToken>, "1fG|", 0xF0, 4},
        {Call<U_ReadUIntHexToken>, "|1F|x", 31, 4}, // kept: an empty token reads the next one
        {Call<U_ReadUIntHexToken>, "|", 0, 1},
        {Call<U_ReadCharToken>, " bc|d", ' ', 4},
        {Call<U_ReadCharToken>, "\xe9|", 77, 2},
        {Call<U_ReadCharToken>, "\x7f", 77, 1},
        {Call<U_ReadStrAsUShortToken>, "ABC|d", 0x4241, 4},
        {Call<U_ReadStrAsUIntToken>, "\xff\x80|", 0x80FF, 3},
        {Call<U_ReadStrAsUInt64Token>, "ABCDEFGHIJ|", 0x4847464544434241, 11},
        {Call<U_ReadUIntTokenWithDigitCount>, "2019|", 20, 5, kNoLimit, kNoLimit, 2, 2},
        {Call<U_ReadUIntTokenWithDigitCount>, "|9", 77, 1, kNoLimit, kNoLimit, 5, 0},
        {Call<U_ReadUIntTokenWithDigitCount>, wrapsDigitCount, 0, 301, kNoLimit, kNoLimit, 100, 44},
        {Call<U_ReadUShortTokenWithDigitCount>, "70000|", 4464, 6, kNoLimit, kNoLimit, 9, 5},
        {Call<U_ReadUIntTokenUpToLengthWithDigitCount>, "12|5", 12, 3, 3, 0, 9, 2},
        {Call<U_ReadUIntTokenUpToLengthWithDigitCount>, "12|5", 12, 2, 2, 0, 9, 2},
        {Call<U_ReadUIntTokenUpToLengthWithDigitCount>, "12|", 77, 0, 0, 0, 9, 0},
        {Call<U_ReadUIntTokenUpToLengthWithDigitCount>, "|5", 77, 1, 4, 3, 9, 0},
        {Call<U_ReadUShortTokenUpToLengthWithDigitCount>, "65536|", 0, 6, 9, 3, 9, 5},
        {Call<U_ReadUIntTokenWith2Delimiters>, "12;3", 12, 2}, // kept: the cursor stays on the delimiter
        {Call<U_ReadUIntTokenWith2Delimiters>, ";5", 77, 0},
        {Call<U_ReadUInt64TokenWith2Delimiters>, "18446744073709551615|", UINT64_MAX, 20},
        {Call<U_ReadUShortTokenWith2Delimiters>, "65536|", 0, 5},
        {Call<U_ReadIntTokenWith2Delimiters>, "-;", 0, 1},
        {Call<U_ReadInt64TokenWith2Delimiters>, "-9223372036854775808|", U(INT64_MIN), 20},
        {Call<U_ReadUIntTokenWith2DelimitersUpToLength>, "1234|", 12, 2, 2, 0},
        {Call<U_ReadUIntTokenWith2DelimitersUpToLength>, "12|", 12, 2, 5, 3},
        {Call<U_ReadUIntTokenWith2DelimitersUpToLength>, "12|", 77, 0, 0, 0},
        {Call<U_ReadUInt64TokenWith2DelimitersUpToLength>, "99999999999;", 99999999999, 11, 11, 0},
        {Call<U_ReadCharTokenUpToLength>, "abc|d", 'a', 4, 9, 7},
        {Call<U_ReadCharTokenUpToLength>, "ab|", 'a', 1, 1, 0},
        {Call<U_ReadCharTokenUpToLength>, "|x", 77, 1, 3, 2},
        {Call<U_ReadCharTokenUpToLength>, "\x1f|", 77, 2, 5, 3},
        {Call<U_ReadCharTokenUpToLength>, "a", 77, 0, 0, 0},
        {Call<U_ReadCharTokenAndUpdateLength>, "\x01z", 1, 1, 2, 1},
        {Call<U_ReadCharTokenAndUpdateLength>, "a", 77, 0, 0, 0},
        {Call<U_ReadCharTokenAndUpdateLength>, "", 77, 0, 3, 3},
    });
}

TEST(PackedCodes, LittleEndianBytesUpToNulOrLength) {
    EXPECT_EQ(U_StringToUShort("ABC"), 0x4241);
    EXPECT_EQ(U_StringToUInt("AB"), 0x4241u);
    EXPECT_EQ(U_StringToUInt(""), 0u);
    EXPECT_EQ(U_StringToUInt64("ABCDEFGHI"), 0x4847464544434241u);
    EXPECT_EQ(U_StringToUInt64Term0("ABCDEFGHI"), 0x47464544434241u);
    EXPECT_EQ(U_StringOfLengthToUInt64("ABCDEFGHI", 3), 0x434241u);
    EXPECT_EQ(U_StringOfLengthToUInt64("AB", 9), 0x4241u);
    EXPECT_EQ(U_StringOfLengthToUInt64Term0("ABCDEFGHI", 99), 0x47464544434241u);
}

} // namespace
