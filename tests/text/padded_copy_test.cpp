// Writers into fixed buffers (padded-field copiers, U_ReadCharBufferToken, U_CopyUppercase): the buffer
// bytes and a guard byte past them, the source position reached and the remaining count. A row whose
// count stops the copy runs again with junk right after the characters the count allows.
#include "VeloraUtils/TokenReading.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

constexpr unsigned kNoLimit = 0xC0FFEEu;
constexpr long kNoResult = -1; // the copier returns nothing

// Pad '.', extra character '+', delimiter '|'. Token: U_ReadCharBufferToken returning true.
enum W { Delim, DelimPlus, UpTo, UpToPlus, Reserve, Full, Plus, NoPlus, Token, TokenFalse, Upper, UpperZero };

const char* Write(W w, char* d, unsigned n, const char* s, unsigned* r) {
    if (w == Delim) return U_CopyToDelimiterAndPad(d, n, s, '.', '|');
    if (w == DelimPlus) return U_CopyToDelimiterPlusOneCharAndPad(d, n, s, '+', '.', '|');
    if (w == UpTo) return U_CopyToDelimiterUpToLengthAndPad(d, n, s, r, '.', '|');
    if (w == UpToPlus) return U_CopyToDelimiterUpToLengthPlusOneCharAndPad(d, n, s, r, '+', '.', '|');
    if (w == Reserve || w == Full) U_CopyAndPad(d, n, s, '.', w == Reserve);
    if (w == Plus || w == NoPlus) U_CopyPlusOneCharAndPad(d, n, s, w == Plus ? '+' : '\0', '.');
    if (w < Token) return nullptr;
    if (w >= Upper)
        U_CopyUppercase(d, static_cast<unsigned short>(n), &s, '|', w == UpperZero);
    else
        EXPECT_EQ(U_ReadCharBufferToken(d, n, &s, '|'), w == Token);
    return s;
}

TEST(FixedBufferWriters, BytesGuardSourcePositionAndCount) {
    const struct {
        W writer;
        std::string_view src;
        unsigned size;
        std::string_view bytes; // the buffer afterwards, '#' = untouched
        long offset;
        unsigned remaining = kNoLimit, remainingAfter = kNoLimit;
        bool countBoundsTheRead = true;
    } rows[] = {
        {Delim, "AB|CD", 5, "AB...", 3},
        {Delim, "ABCDEF|G", 3, "ABC", 7},
        {Delim, "ABC|D", 3, "ABC", 4},
        {Delim, "AB", 4, "AB..", 2},
        {DelimPlus, "AB|CD", 5, "AB+..", 3},
        {UpTo, "ABCD|E", 8, "AB......", 2, 2, 0},
        {UpTo, "AB|C", 8, "AB......", 3, 3, 0},
        {UpTo, "AB|C", 4, "####", 0, 0, 0},
        {UpTo, "ABCDE|F", 2, "AB", 6, 9, 4}, // kept: the first skipped character is not counted
        {UpTo, "ABCDE|F", 2, "AB", 4, 3, 0, false},
        {UpToPlus, "ABCD|E", 8, "ABCD+...", 5, 2, 0xFFFFFFFDu, false}, // the copy does not test the count
        {UpToPlus, "AB|C", 8, "AB+.....", 3, 9, 6},
        {UpToPlus, "AB|C", 3, "###", 0, 0, 0},
        {Reserve, "AB", 5, "AB...", kNoResult},
        {Reserve, "ABCDEF", 3, "AB.", kNoResult},
        {Full, "ABCDEF", 3, "ABC", kNoResult},
        {Reserve, "AB", 0, "", kNoResult},
        {Plus, "AB", 5, "AB+..", kNoResult},
        {Plus, "AB", 3, "AB+", kNoResult},
        {Plus, "ABC", 3, "ABC", kNoResult},
        {NoPlus, "AB", 4, "AB..", kNoResult},
        {TokenFalse, "ABCDE|F", 4, {"ABC\0", 4}, 6},
        {Token, "ABC|F", 4, {"ABC\0", 4}, 4},
        {Token, "AB", 4, {"AB\0#", 4}, 2},
        {Token, "|F", 1, {"\0", 1}, 1},
        {TokenFalse, "A|F", 1, {"\0", 1}, 2},
        {TokenFalse, "AB", 0, "", 0},
        {TokenFalse, "", 4, "####", 0},
        {UpperZero, "abC9z|x", 8, {"ABC9Z\0\0\0", 8}, 5},
        {Upper, "`a{\xe9", 6, {"`A{\xe9\0#", 6}, 4},
        {UpperZero, "abcdef|", 3, {"AB\0", 3}, 2},
        {UpperZero, "ab", 0, "", 0},
    };
    for (const auto& row : rows) {
        std::vector<std::string> variants{std::string(row.src)};
        if (row.countBoundsTheRead && row.remaining < row.src.size())
            variants.push_back(std::string(row.src.substr(0, row.remaining)) + "9|;,7x");
        for (const std::string& variant : variants) {
            SCOPED_TRACE(testing::Message() << "row " << &row - rows << " on \"" << variant << '"');
            const std::vector<char> src(variant.c_str(), variant.c_str() + variant.size() + 1); // exact size
            std::string buffer = std::string(row.size, '#') + 'G'; // 'G': guard byte past the buffer
            unsigned remaining = row.remaining;
            const char* end = Write(row.writer, buffer.data(), row.size, src.data(), &remaining);
            EXPECT_EQ(std::tuple(buffer, end ? end - src.data() : kNoResult, remaining),
                      std::tuple(std::string(row.bytes) + 'G', row.offset, row.remainingAfter));
        }
    }
}

TEST(ReplaceCharInStdString, ReplacesEveryOccurrenceUpToFirstNul) {
    std::string s("a,b,,c\0,d", 9);
    U_ReplaceCharInStdString(s, ',', ';');
    EXPECT_EQ(s, std::string("a;b;;c\0,d", 9));
}

} // namespace
