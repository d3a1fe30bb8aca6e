// Append-family number writers: the text appended, the separator rule, and chaining.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>
#include <string>

#include "VeloraUtils/NumberFormatting.h"

namespace {

TEST(AppendFormatting, AppendsTextAndOptionalSeparator) {
    struct Case {
        const char* name;
        std::function<void(std::string&)> append;
        const char* expected;
    };
    const Case cases[] = {
        {"bool true", [](std::string& s) { U_AppendBool(s, true, 0); }, "1"},
        {"bool false with separator", [](std::string& s) { U_AppendBool(s, false, '|'); }, "0|"},
        {"uchar", [](std::string& s) { U_AppendUChar(s, 255, ','); }, "255,"},
        {"uchar hex", [](std::string& s) { U_AppendUCharHex(s, 0x0a, 0); }, "a"},
        {"ushort", [](std::string& s) { U_AppendUShort(s, 65535, 0); }, "65535"},
        {"ushort hex", [](std::string& s) { U_AppendUShortHex(s, 0xbeef, ' '); }, "beef "},
        {"uint zero", [](std::string& s) { U_AppendUInt(s, 0, 0); }, "0"},
        {"uint max", [](std::string& s) { U_AppendUInt(s, 4294967295u, 0); }, "4294967295"},
        {"uint hex", [](std::string& s) { U_AppendUIntHex(s, 0xdeadbeef, 0); }, "deadbeef"},
        {"uint64 max",
         [](std::string& s) { U_AppendUInt64(s, std::numeric_limits<std::uint64_t>::max(), ';'); },
         "18446744073709551615;"},
        {"uint64 hex lowercase", [](std::string& s) { U_AppendUInt64Hex(s, 255, 0); }, "ff"},
        {"uint64 hex no leading zeros", [](std::string& s) { U_AppendUInt64Hex(s, 0x0100000000ULL, 0); },
         "100000000"},
        {"int negative", [](std::string& s) { U_AppendInt(s, -42, ','); }, "-42,"},
        {"int most negative", [](std::string& s) { U_AppendInt(s, std::numeric_limits<int>::min(), 0); },
         "-2147483648"},
        {"int64 negative", [](std::string& s) { U_AppendInt64(s, -1234567890123LL, 0); }, "-1234567890123"},
        {"int64 positive has no plus", [](std::string& s) { U_AppendInt64(s, 7, 0); }, "7"},
        {"printable letter", [](std::string& s) { U_AppendPrintableChar(s, 'A', '|'); }, "A|"},
        {"blank is not printable", [](std::string& s) { U_AppendPrintableChar(s, ' ', 0); }, "#32"},
        {"control code", [](std::string& s) { U_AppendPrintableChar(s, '\x01', ','); }, "#1,"},
        {"delete", [](std::string& s) { U_AppendPrintableChar(s, '\x7f', 0); }, "#127"},
        {"high code as unsigned", [](std::string& s) { U_AppendPrintableChar(s, '\xe9', 0); }, "#233"},
        {"nul code", [](std::string& s) { U_AppendPrintableChar(s, '\0', 0); }, "#0"},
        {"two digits pads", [](std::string& s) { U_AppendTwoDigits(s, 7, 0); }, "07"},
        {"two digits drops hundreds", [](std::string& s) { U_AppendTwoDigits(s, 123, 0); }, "03"},
        {"two digits 99", [](std::string& s) { U_AppendTwoDigits(s, 99, ':'); }, "99:"},
        {"three digits", [](std::string& s) { U_AppendThreeDigits(s, 5, 0); }, "005"},
        {"three digits full", [](std::string& s) { U_AppendThreeDigits(s, 999, '.'); }, "999."},
        {"three digits thousands dropped", [](std::string& s) { U_AppendThreeDigits(s, 1234, 0); }, "034"},
        {"four digits", [](std::string& s) { U_AppendFourDigits(s, 2026, '-'); }, "2026-"},
        {"four digits pads", [](std::string& s) { U_AppendFourDigits(s, 7, 0); }, "0007"},
        {"four digits ten-thousands dropped", [](std::string& s) { U_AppendFourDigits(s, 12345, 0); },
         "0345"},
    };
    for (const Case& c : cases) {
        std::string s = "x";
        c.append(s);
        EXPECT_EQ(s, std::string("x") + c.expected) << c.name;
    }
}

TEST(AppendFormatting, PrintableIfValidAppendsNothingForOtherCodes) {
    for (int code = 0; code < 256; ++code) {
        std::string s = "x";
        const bool printable = code >= 33 && code <= 126;
        EXPECT_EQ(U_AppendPrintableCharIfValid(s, static_cast<char>(code), '|'), printable) << code;
        EXPECT_EQ(s, printable ? std::string("x") + static_cast<char>(code) + "|" : std::string("x")) << code;

        std::string shown;
        U_AppendPrintableChar(shown, static_cast<char>(code), 0);
        EXPECT_EQ(shown, printable ? std::string(1, static_cast<char>(code)) : "#" + std::to_string(code))
            << code;
    }
}

TEST(AppendFormatting, DecimalAndHexMatchReferenceForRandomValues) {
    std::mt19937_64 rng(1234);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t v = rng() >> (rng() % 64);
        const auto sv = static_cast<std::int64_t>(rng()) >> (rng() % 64);
        std::string s;
        U_AppendUInt64(s, v, ' ');
        U_AppendUInt(s, static_cast<unsigned int>(v), ' ');
        U_AppendInt64(s, sv, ' ');
        U_AppendInt(s, static_cast<int>(sv), ' ');
        U_AppendUInt64Hex(s, v, 0);
        char hex[32];
        std::snprintf(hex, sizeof hex, "%" PRIx64, v);
        const std::string expected = std::to_string(v) + " " + std::to_string(static_cast<unsigned int>(v)) +
                                     " " + std::to_string(sv) + " " + std::to_string(static_cast<int>(sv)) +
                                     " " + hex;
        ASSERT_EQ(s, expected);
    }
}

TEST(AppendFormatting, CallsChainOnTheSameString) {
    std::string s;
    U_AppendUInt(U_AppendUShortHex(U_AppendInt(s, -1, ','), 0xff, ','), 3, 0);
    EXPECT_EQ(s, "-1,ff,3");
    EXPECT_EQ(&U_AppendBool(s, true, 0), &s);
}

} // namespace
