// Token splitting and joining. Every split starts from a list already holding a token, which must stay
// in front of what the split appends.
#include "VeloraUtils/TokenLists.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Tokens = std::list<std::string>;

TEST(TokenLists, SplitKeepsMarkedTokensAndUndoublesOnlyInsideAToken) {
    // U_BreakStringIntoTokensBy2Chars(text, c1, c2) (else U_BreakStringIntoTokens(text, c1)), text, c1, c2,
    // tokens appended
    const std::vector<std::tuple<bool, const char*, char, char, Tokens>> rows = {
        // clang-format off
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
        {true, "a\r\r\nb", '\r', '\n', {"a\r\r\nb"}},     // a separator right after a first is not seen
        {true, "ab\r", '\r', '\n', {"ab\r"}},
        {true, "a|b|", '|', '\0', {"a|b"}},               // second 0: a first ending the text separates
        {true, "a\nb", '\0', '\n', {"a\nb"}},
        // clang-format on
    };
    for (const auto& [by2Chars, text, c1, c2, appended] : rows) {
        Tokens tokens{"kept"}, expected = appended;
        expected.push_front("kept");
        if (by2Chars)
            U_BreakStringIntoTokensBy2Chars(text, c1, c2, tokens);
        else
            U_BreakStringIntoTokens(text, c1, tokens);
        EXPECT_EQ(tokens, expected) << (text ? text : "null");
    }
}

TEST(TokenLists, CombineReplacesTheResultAndPutsSeparatorsOnlyBetween) {
    const std::vector<std::tuple<const char*, Tokens, std::string>> rows = {
        // separator, tokens, result
        {",", {"a", "b", "c"}, "a,b,c"},
        {nullptr, {"a", "b", "c"}, "abc"},
        {"", {"a", "b"}, "ab"},
        {",", {"a"}, "a"},
        {",", {}, ""},
        {", ", {"", "b", ""}, ", b, "},
    };
    for (const auto& [separator, tokens, expected] : rows) {
        std::string result = "old";
        EXPECT_EQ(&U_CombineTokensIntoString(separator, tokens, result), &result);
        EXPECT_EQ(result, expected);
    }
}

} // namespace
