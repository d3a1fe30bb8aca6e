// The checksum sum, the text helpers, the parser's error table and the UTC timestamp reader, on
// exactly sized heap blocks.
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using fixtest::ExactBuffer;

unsigned int Sum(std::string_view bytes) {
    const ExactBuffer data(bytes);
    return U_CalculateControlSum(data.get(), static_cast<unsigned int>(data.size));
}

TEST(FixControlSum, SignedBytesUnreducedAndEqualToAPlainLoopAtEveryLengthAndAlignment) {
    std::mt19937 random(11);
    std::string bytes(1100, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    for (std::size_t offset = 0; offset < 8; ++offset)
        for (std::size_t length = 0; length + offset <= bytes.size(); length += length < 530 ? 1 : 37) {
            unsigned int plain = 0;
            for (const char c : bytes.substr(offset, length))
                plain += static_cast<unsigned int>(int{static_cast<signed char>(c)});
            ASSERT_EQ(Sum(std::string_view(bytes).substr(offset, length)), plain) << offset << ' ' << length;
        }
}

TEST(FixText, AppendSohAndMessageContents) {
    // clang-format off
    for (const auto& [text, appended, after] : std::vector<std::tuple<std::string, bool, std::string>>{
             {"", false, ""}, {"58=x", true, "58=x\x01"}, {"58=x\x01", false, "58=x\x01"},
             {"\x01x", true, "\x01x\x01"}}) {
        // clang-format on
        std::string s = text;
        const bool result = U_AppendSohIfNecessary(s);
        EXPECT_EQ(std::tuple(result, s), std::tuple(appended, after)) << text;
    }
    // message ('|' is SOH; nullptr passes a null message), length, prefix, replacement, what is appended
    // clang-format off
    const std::vector<std::tuple<const char*, unsigned short, const char*, char, std::string>> rows = {
        {nullptr, 5, "IN ", '|', ""},
        {"8=FIX|", 0, "IN ", '|', ""},                      // zero length appends not even the prefix
        {"8=FIX|9=5|", 10, "IN ", '^', "IN 8=FIX^9=5^"},
        {"8=FIX|", 6, "", '^', "8=FIX^"},
        {"8=FIX|", 6, "\x01>", '\x01', "\x01>8=FIX\x01"},   // SOH kept; the prefix is not replaced
        {"8=FIX|9=5|", 4, nullptr, '^', "8=FI"},
        {"a|b", 3, nullptr, '\0', std::string("a\0b", 3)},
    };
    // clang-format on
    for (const auto& [text, length, prefix, replacement, expected] : rows) {
        std::string out = "out:\x01";
        const std::string message = text != nullptr ? fixtest::Soh(text) : "";
        const ExactBuffer data(std::string_view(message).substr(0, length));
        U_AppendFixMessageContents(out, text != nullptr ? data.data.get() : nullptr, length, prefix,
                                   replacement);
        EXPECT_EQ(out, "out:\x01" + expected) << message; // bytes already in `out` are kept
    }
}

TEST(FixText, ParseErrorDescriptions) {
    // clang-format off
    const std::vector<std::tuple<int, std::string, int>> rows = {
        {0, "No Error", 255}, {1, "Tag Number too big", 0}, {2, "Tag is not numeric", 0}, {3, "No Value", 4},
        {4, "Invalid Value", 6}, {5, "Duplicate Tag", 13}, {6, "No Tag", 17}, {7, "Missing Tag", 1},
        {8, "Unknown Error", 99}, {255, "Unknown Error", 99},
    };
    // clang-format on
    for (const auto& [code, text, reason] : rows) {
        unsigned char got = 77;
        const char* description = U_GetParseFixErrorDescription(static_cast<unsigned char>(code), &got);
        EXPECT_EQ(std::tuple(code, std::string(description), int{got}), std::tuple(code, text, reason));
        EXPECT_EQ(U_GetParseFixErrorDescription(static_cast<unsigned char>(code), nullptr), description);
    }
}

TEST(FixUtc, FieldsFilledUpToTheFirstViolation) {
    // text (copied with one terminating NUL and nothing after it), result, year .. millisecond
    // clang-format off
    const std::vector<std::tuple<std::string, bool, std::vector<unsigned int>>> rows = {
        {"20190101-23:59:59\x01", true, {2019, 1, 1, 23, 59, 59, 0}},
        {"20191231-00:00:00.999x", true, {2019, 12, 31, 0, 0, 0, 999}}, // nothing after 3 digits is read
        {"20190431-23:59:59.5", false, {2019, 4, 31, 23, 59, 59, 0}},    // 31 April passes
        {"20190101-23:59:59Z", false, {2019, 1, 1, 23, 59, 59, 0}},
        {"20190229-10:00:00", true, {2019, 2, 29, 10, 0, 0, 0}},         // in any year
        {"20190230-10:00:00", false, {2019, 2, 0, 0, 0, 0, 0}},
        {"20190132-10:00:00", false, {2019, 1, 0, 0, 0, 0, 0}},
        {"20190100-10:00:00", false, {2019, 1, 0, 0, 0, 0, 0}},
        {"00000101-10:00:00", false, {0, 0, 0, 0, 0, 0, 0}},
        {"00010101-10:00:00", true, {1, 1, 1, 10, 0, 0, 0}},
        {"20190001-10:00:00", false, {2019, 0, 0, 0, 0, 0, 0}},
        {"20191301-10:00:00", false, {2019, 0, 0, 0, 0, 0, 0}},
        {"20191001-19:00:00", true, {2019, 10, 1, 19, 0, 0, 0}},
        {"20190101-24:00:00", false, {2019, 1, 1, 0, 0, 0, 0}},
        {"20190101-10:60:00", false, {2019, 1, 1, 10, 0, 0, 0}},
        {"20190101-10:59:60", false, {2019, 1, 1, 10, 59, 0, 0}},
        {"20190101 10:00:00", false, {2019, 1, 1, 0, 0, 0, 0}},
        {"20190101-10:00", false, {2019, 1, 1, 10, 0, 0, 0}},
    };
    // clang-format on
    for (const auto& [row, ok, fields] : rows) {
        const ExactBuffer text(std::string_view(row.c_str(), row.size() + 1));
        std::vector<unsigned int> v(7, 9);
        EXPECT_EQ(U_ParseFixUtc(text.get(), &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]), ok) << row;
        EXPECT_EQ(v, fields) << row;
    }
    std::vector<unsigned int> v(7, 9);
    EXPECT_FALSE(U_ParseFixUtc(nullptr, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]));
    EXPECT_EQ(v, std::vector<unsigned int>(7, 0));
}

} // namespace
