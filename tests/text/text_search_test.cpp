// Searches, prefix tests, the wildcard matcher, comparison, replacement and hashing. Every searched text
// is an exactly sized heap copy (a bounded one without terminator), so ASan reports any read past the
// text; the searches are also held against a naive model of their rules on random texts.
#include "VeloraUtils/TextSearch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

using Terminated = const char* (*)(const char*, const char*);
using Bounded = const char* (*)(const char*, unsigned, const char*);
struct Fn {
    const char* name;
    Terminated terminated; // or
    Bounded bounded;
    bool fold, fromBack, end;
};
const Fn kStrStr{"StrStr", U_StrStr, nullptr, false, false, false},
    kStriStr{"StriStr", U_StriStr, nullptr, true, false, false},
    kUpTo{"UpTo", nullptr, U_StrStrUpToLength, false, false, false},
    kUpToI{"UpToI", nullptr, U_StriStrUpToLength, true, false, false},
    kBack{"Back", nullptr, U_StrStrFromBack, false, true, false},
    kBackI{"BackI", nullptr, U_StriStrFromBack, true, true, false},
    kEnd{"End", U_StrStrEnd, nullptr, false, false, true},
    kEndI{"EndI", U_StriStrEnd, nullptr, true, false, true},
    kEndUpTo{"EndUpTo", nullptr, U_StrStrEndUpToLength, false, false, true},
    kEndUpToI{"EndUpToI", nullptr, U_StriStrEndUpToLength, true, false, true};
const Fn* const kAll[] = {&kStrStr, &kStriStr, &kUpTo, &kUpToI,   &kBack,
                          &kBackI,  &kEnd,     &kEndI, &kEndUpTo, &kEndUpToI};
constexpr std::ptrdiff_t kNull = -1;

// The result's offset in the text (in the pattern for the End family), kNull for null.
std::ptrdiff_t Search(const Fn& f, std::string_view text, const char* pattern) {
    const auto copy = std::make_unique<char[]>(text.size() + (f.bounded ? 0 : 1));
    std::memcpy(copy.get(), text.data(), text.size());
    if (!f.bounded) copy[text.size()] = '\0';
    const char* r = f.bounded ? f.bounded(copy.get(), static_cast<unsigned>(text.size()), pattern)
                              : f.terminated(copy.get(), pattern);
    return r == nullptr ? kNull : r - (f.end ? pattern : copy.get());
}

// The rules as written: a match compares every pattern byte; the End family scans from the left and
// reports the pattern position reached when the text runs out first.
std::ptrdiff_t Model(const Fn& f, std::string_view text, std::string_view pattern) {
    const auto meets = [&](char t, char p) { return (f.fold && t >= 'a' && t <= 'z' ? t - 32 : t) == p; };
    std::ptrdiff_t found = kNull;
    for (std::size_t i = 0; i < text.size() && !pattern.empty(); ++i) {
        std::size_t k = 0;
        while (i + k < text.size() && k < pattern.size() && meets(text[i + k], pattern[k])) ++k;
        if (f.end && i + k == text.size() && k < pattern.size()) return static_cast<std::ptrdiff_t>(k);
        if (!f.end && k == pattern.size() && (found == kNull || f.fromBack))
            found = static_cast<std::ptrdiff_t>(i);
    }
    return found;
}

// What the random texts below do not reach (bytes outside their alphabet, a null pattern), and the
// End family's rules spelled out.
TEST(TextSearch, FoldOnlyAToZAndEndFamilyReportsOnlyATrailingPrefix) {
    const std::vector<std::tuple<const Fn*, std::string_view, const char*, std::ptrdiff_t>> rows = {
        // clang-format off
        {&kStriStr, "Long ibm calls", "ibm", kNull}, // lower case in the pattern never matches
        {&kStriStr, "`", "@", kNull}, {&kStriStr, "{", "[", kNull},         // only a..z fold, at the ends
        {&kStriStr, "x`x", "X@X", kNull}, {&kStriStr, "x{x", "X[X", kNull}, // and inside
        {&kStriStr, "a\xe9\xff", "\xE9\xFF", 1},
        {&kStrStr, "ABC", nullptr, kNull},
        {&kEnd, "8=FIX", "8=FIX", kNull}, // a whole occurrence is not reported ...
        {&kEnd, "8=FIX|8", "8=FIX", 1},   // ... a prefix after it is
        {&kEnd, "AAA", "AAAA", 3},        // the longest prefix
        {&kEnd, "xA", "A", kNull},        // a one-character pattern never
        {&kEndI, "xx8=fi", "8=FIX", 4},
        // clang-format on
    };
    for (const auto& [fn, text, pattern, expected] : rows)
        EXPECT_EQ(Search(*fn, text, pattern), expected) << fn->name << " " << text;
}

TEST(TextSearch, EverySearchAgreesWithTheNaiveModelOnRandomTexts) {
    std::mt19937 random(1403);
    const auto pick = [&](std::string_view alphabet, std::size_t n) {
        std::string s(n, ' ');
        for (char& c : s) c = alphabet[random() % alphabet.size()];
        return s;
    };
    for (std::size_t n = 0; n <= 100; ++n) {
        for (int round = 0; round < 12; ++round) {
            const bool withNul = round % 3 == 0; // only for the bounded forms
            const std::string text = pick(withNul ? std::string_view("aAbB\0", 5) : "aAbBA", n);
            const std::string pattern = pick(round % 4 == 0 ? "ABa" : "AB", random() % 6);
            for (const Fn* f : kAll) {
                if (withNul && !f->bounded) continue;
                ASSERT_EQ(Search(*f, text, pattern.c_str()), Model(*f, text, pattern))
                    << f->name << " '" << text << "' '" << pattern << "'";
            }
        }
    }
}

// A lone occurrence at every position of a long text: every boundary of the block scan, and of the
// pieces in which a terminated text's end is found, falls inside some occurrence.
TEST(TextSearch, BlockScanFindsALoneOccurrenceAtEveryPositionOfALongText) {
    for (std::size_t at = 0; at + 3 <= 2100; ++at) {
        std::string text(2100, 'x');
        text.replace(at, 3, "aBc");
        const std::string_view view = text;
        ASSERT_EQ(Search(kStrStr, text, "aBc"), static_cast<std::ptrdiff_t>(at));
        ASSERT_EQ(Search(kStriStr, text, "ABC"), static_cast<std::ptrdiff_t>(at));
        ASSERT_EQ(Search(kBack, text, "aBc"), static_cast<std::ptrdiff_t>(at));
        ASSERT_EQ(Search(kUpToI, view.substr(0, at + 3), "ABC"), static_cast<std::ptrdiff_t>(at));
        ASSERT_EQ(Search(kUpTo, view.substr(0, at + 2), "aBc"), kNull);
        ASSERT_EQ(Search(kBackI, view.substr(at + 1), "ABC"), kNull);
    }
}

TEST(TextSearch, PrefixTestsStopAtTheCountAndNeedThePlusChar) {
    const struct {
        const char *text, *prefix;
        int plus; // -1: U_StringStartsWith, else U_StringStartsWithPlusChar with this character
        std::ptrdiff_t expected;
        unsigned remaining = 0;     // U_StringStartsWithUpToLength (plus -1 only) with this count gives
        std::ptrdiff_t counted = 0; // this, leaving the count so:
        unsigned remainingAfter = 0;
    } rows[] = {
        {"35=D", "35", -1, 2, 2, 2, 0},
        {"35=D", "35", -1, 2, 1, kNull, 0}, // the count runs out
        {"35=D", "", -1, 0, 0, 0, 0},
        {"3", "35", -1, kNull, 9, kNull, 8}, // matched characters stay
        {"35=D", "36", -1, kNull, 9, kNull, 8},
        {"35=D", "35", '=', 3},
        {"35=D", "35", '|', kNull},
        {"35", "35", '\0', kNull},
    };
    const auto offset = [](const char* r, const char* text) { return r == nullptr ? kNull : r - text; };
    for (const auto& row : rows) {
        const char* r = row.plus >= 0
                            ? U_StringStartsWithPlusChar(row.text, row.prefix, static_cast<char>(row.plus))
                            : U_StringStartsWith(row.text, row.prefix);
        EXPECT_EQ(offset(r, row.text), row.expected) << row.text << " " << row.prefix;
        if (row.plus >= 0) continue;
        unsigned remaining = row.remaining;
        EXPECT_EQ(offset(U_StringStartsWithUpToLength(row.text, &remaining, row.prefix), row.text),
                  row.counted);
        EXPECT_EQ(remaining, row.remainingAfter) << row.text << " " << row.prefix;
    }
}

TEST(TextSearch, PatternMatchDoesNotBacktrack) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"ABC", "A?C", true}, {"ABC", "A*", true},     {"ABC", "*", true},    {"", "*", true},
        {"B", "*B", false},   {"ABCBC", "A*C", false}, {"ABXC", "A*C", true}, {"AC", "A*C", false},
        {"A", "A*", true},    {"AB", "A*?", false},    {"ABC", "ABD", false}, {"AB", "ABC", false},
        {"ABC", "AB", false}, {"", "", true},          {"A", "", false},      {"A", "A?", false},
        {"ABC", "*B*", true}, {"abc", "ABC", false},   {"a?", "*?", true},    {"ABC", "?*", true},
    };
    for (const auto& [text, pattern, expected] : rows)
        EXPECT_EQ(U_PatternMatch(text, pattern), expected) << text << " ~ " << pattern;
    EXPECT_TRUE(U_HasWildCards("AB?") && U_HasWildCards("*"));
    EXPECT_FALSE(U_HasWildCards("AB") || U_HasWildCards(nullptr));
}

TEST(TextSearch, CompareTextTreatsNullAsEmptyAndBytesAsUnsigned) {
    const char* same = "A";
    const std::tuple<const char*, const char*, int> rows[] = {
        {nullptr, "", 0}, {"", nullptr, 0}, {same, same, 0},  {"", "A", -1},   {nullptr, "A", -1},
        {"A", "", 1},     {"AB", "AB", 0},  {"AB", "AC", -1}, {"A", "AB", -1}, {"\x80", "\x7f", 1},
    };
    for (const auto& [a, b, expected] : rows)
        EXPECT_EQ(std::tuple(int{U_CompareText(a, b)}, U_IsTextDifferent(a, b)),
                  std::tuple(expected, expected != 0))
            << (a ? a : "null") << (b ? b : "null");
}

// One held text through a sequence of replacements: result, content and whether the buffer was kept.
TEST(TextSearch, ReplaceTextReusesTheHeldBufferOnlyWhenItFits) {
    char* held = nullptr;
    // the next text ("=": the held pointer itself), whether it changed, the content, whether the buffer was
    // kept
    const std::tuple<const char*, bool, const char*, bool> steps[] = {
        {"", false, nullptr, true},      {nullptr, false, nullptr, true}, {"IBM", true, "IBM", false},
        {"=", false, "IBM", true},       {"IBM", false, "IBM", true},     {"MSF", true, "MSF", true},
        {"AAPL", true, "AAPL", false},   {"", true, nullptr, false},      {"X", true, "X", false},
        {nullptr, true, nullptr, false},
    };
    for (const auto& [next, changed, content, sameBuffer] : steps) {
        const char* before = held;
        const bool self = next != nullptr && std::string_view(next) == "=";
        EXPECT_EQ(U_ReplaceText(&held, self ? held : next), changed) << content;
        EXPECT_EQ(std::tuple(held ? std::string(held) : "(null)", held == before),
                  std::tuple(std::string(content ? content : "(null)"), sameBuffer));
    }
    EXPECT_FALSE(U_ReplaceText(nullptr, "A"));
}

TEST(TextSearch, StringHashSignExtendsHighBytesAndKeepsTheLengthsLowByte) {
    const std::pair<std::string, std::uint32_t> rows[] = {
        // clang-format off
        {"", 0}, {"A", 0x01000041}, {"AB", 0x02420041}, {"ABC", 0x03434241}, {"ABCD", 0x04444241},
        {"\x80", 0xFFFFFF80}, {"A\xFF", 0xFFFF0041}, {"A\x80\x42", 0xFFFF8041}, // high bytes sign-extended anywhere
        {std::string(300, 'x'), 0x2C787878}, // the length keeps its low 8 bits
        // clang-format on
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(U_StringHash(text), expected) << text.size();
}

TEST(TextSearch, ReplaceSubstringDoesNotRescanReplacements) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"aaa", "aa", "b", "pre:ba"},    {"a.b.c", ".", "::", "pre:a::b::c"},
        {"abc", "", "x", "pre:abc"},     {"abab", "ab", "abab", "pre:abababab"},
        {"abc", "b", nullptr, "pre:ac"}, {nullptr, "a", "b", "pre:"},
    };
    for (const auto& [text, search, replacement, expected] : rows) {
        std::string out = "pre:";
        EXPECT_EQ(&U_ReplaceSubstring(text, search, replacement, out), &out);
        EXPECT_EQ(out, expected);
    }
}

} // namespace
