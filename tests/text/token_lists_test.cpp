// Token splitting and joining. Every split starts from a list already holding a token, which must stay
// in front of what the split appends.
#include "VeloraUtils/TokenLists.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace {

using Tokens = std::list<std::string>;

TEST(TokenLists, Split) {
    const struct {
        bool
            by2Chars; // U_BreakStringIntoTokensBy2Chars(text, c1, c2), else U_BreakStringIntoTokens(text, c1)
        const char* text;
        char c1, c2;
        Tokens appended;
    } rows[] = {
        {false, "", '%', 0, {}},
        {false, nullptr, '%', 0, {}},
        {false, "Bid %p x %s", '%', 0, {"Bid ", "%p", " x ", "%s"}},
        {false, "%p%s", '%', 0, {"", "%p", "", "%s"}},
        {false, "100%", '%', 0, {"100%"}},
        {false, "a%p%", '%', 0, {"a", "%p", "%"}},
        {false, "%%d", '%', 0, {"%%d"}},  // doubled at a token's start: both kept
        {false, "a%%b", '%', 0, {"a%b"}}, // doubled inside a token: one kept
        {false, "a%%%p", '%', 0, {"a%", "%p"}},
        {false, "a%b", '\0', 0, {"a%b"}},
        {true, "", '\r', '\n', {}},
        {true, "a\r\nb\r\n", '\r', '\n', {"a", "b", ""}}, // a trailing separator leaves an empty token
        {true, "\r\n\r\nb", '\r', '\n', {"", "", "b"}},
        {true, "a\r\r\nb", '\r', '\n', {"a\r\r\nb"}}, // a separator right after a first is not seen
        {true, "ab\r", '\r', '\n', {"ab\r"}},
        {true, "a|b|", '|', '\0', {"a|b"}}, // second 0: a first ending the text separates
        {true, "a\nb", '\0', '\n', {"a\nb"}},
    };
    for (const auto& row : rows) {
        Tokens tokens{"kept"};
        if (row.by2Chars)
            U_BreakStringIntoTokensBy2Chars(row.text, row.c1, row.c2, tokens);
        else
            U_BreakStringIntoTokens(row.text, row.c1, tokens);
        Tokens expected = row.appended;
        expected.push_front("kept");
        EXPECT_EQ(tokens, expected) << (row.text ? row.text : "null");
    }
}

TEST(TokenLists, Combine) {
    const struct {
        const char* separator;
        Tokens tokens;
        std::string expected;
    } rows[] = {
        {",", {"a", "b", "c"}, "a,b,c"},
        {nullptr, {"a", "b", "c"}, "abc"},
        {"", {"a", "b"}, "ab"},
        {",", {"a"}, "a"},
        {",", {}, ""},
        {", ", {"", "b", ""}, ", b, "},
    };
    for (const auto& row : rows) {
        std::string result = "old";
        EXPECT_EQ(&U_CombineTokensIntoString(row.separator, row.tokens, result), &result);
        EXPECT_EQ(result, row.expected);
    }
}

} // namespace
