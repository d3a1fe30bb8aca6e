// Symbol rules: every byte value against the published lists, and a model check of whole symbols
// built from a mixed alphabet around each maximum length.
#include "VeloraUtils/SymbolValidity.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Kind {
    const char* name;
    bool (*isSymbolValid)(const char*);
    bool (*isCharValid)(char, bool);
    const char* (*chars)();
    const char* (*firstChars)(); // null for options
    const char* expectedChars;
    const char* expectedFirstChars;
    std::size_t maxLength;
};

constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

const Kind kKinds[] = {
    {"stock", U_IsStockSymbolValid, U_IsStockCharValid, U_GetValidStockChars, U_GetValidStockFirstChars,
     "ABCDEFGHIJKLMNOPQRSTUVWXYZ-+*#!@%^=~$.", kLetters, 7},
    {"index", U_IsIndexSymbolValid, U_IsIndexCharValid, U_GetValidIndexChars, U_GetValidIndexFirstChars,
     "ABCDEFGHIJKLMNOPQRSTUVWXYZ/$.", "ABCDEFGHIJKLMNOPQRSTUVWXYZ/$.", 7},
    {"mmid", U_IsMmidSymbolValid, U_IsMmidCharValid, U_GetValidMmidChars, U_GetValidMmidFirstChars, kLetters,
     kLetters, 4},
    {"basket", U_IsBasketSymbolValid, U_IsBasketCharValid, U_GetValidBasketChars, U_GetValidBasketFirstChars,
     " ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+*#!@%^=~$.", "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_", 64},
    {"option", U_IsOptionSymbolValid, U_IsOptionCharValid, U_GetValidOptionChars, nullptr,
     "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", kLetters, 7},
};

bool InList(const char* list, char c) {
    return c != '\0' && std::strchr(list, c) != nullptr;
}

// What the model below cannot show: a null symbol, and the first-character list of market makers.
TEST(SymbolValidity, NullSymbolIsInvalidAndMmidFirstCharsAreTheFullList) {
    for (const Kind& kind : kKinds) EXPECT_FALSE(kind.isSymbolValid(nullptr)) << kind.name;
    EXPECT_EQ(U_GetValidMmidFirstChars(), U_GetValidMmidChars()); // the very same list
}

// Every byte value, negative chars included, is valid exactly when the published list holds it.
TEST(SymbolValidity, CharFunctionsAcceptExactlyThePublishedListsForEveryByte) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        EXPECT_STREQ(kind.chars(), kind.expectedChars);
        const char* firstChars = kind.firstChars != nullptr ? kind.firstChars() : kind.expectedFirstChars;
        EXPECT_STREQ(firstChars, kind.expectedFirstChars);
        for (int code = 0; code < 256; ++code) {
            const auto c = static_cast<char>(code);
            EXPECT_EQ(kind.isCharValid(c, true), InList(firstChars, c)) << code;
            EXPECT_EQ(kind.isCharValid(c, false), InList(kind.chars(), c)) << code;
        }
    }
}

// Whole symbols against a model: 1 to maxLength characters, the first from the first list, the rest from
// the full list. Every string of up to three characters over a mixed alphabet, and runs around the limit.
TEST(SymbolValidity, SymbolsFollowFirstCharRestCharsAndMaximumLength) {
    const std::string alphabet = "Aa 1_$./-\xC1";
    std::vector<std::string> symbols = {""};
    for (std::size_t begin = 0, length = 0; length < 3; ++length) {
        const std::size_t end = symbols.size();
        for (std::size_t i = begin; i < end; ++i) {
            for (char c : alphabet) symbols.push_back(symbols[i] + c);
        }
        begin = end;
    }
    for (std::size_t length : {3u, 4u, 5u, 6u, 7u, 8u, 63u, 64u, 65u}) {
        symbols.push_back(std::string(length, 'B'));
        symbols.push_back("B" + std::string(length - 1, ' '));
        symbols.push_back(std::string(length - 1, 'B') + "a");
    }
    for (const Kind& kind : kKinds) {
        for (const std::string& symbol : symbols) {
            bool valid = !symbol.empty() && symbol.size() <= kind.maxLength &&
                         InList(kind.expectedFirstChars, symbol[0]);
            for (std::size_t i = 1; valid && i < symbol.size(); ++i)
                valid = InList(kind.expectedChars, symbol[i]);
            EXPECT_EQ(kind.isSymbolValid(symbol.c_str()), valid) << kind.name << " \"" << symbol << '"';
        }
    }
}

} // namespace
