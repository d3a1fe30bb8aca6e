// The checksum sum, the text helpers, the parser's error table and the UTC timestamp reader.
// Inputs live in exactly sized heap blocks, so a read past the data is caught by the sanitizer.
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using fixtest::ExactBuffer;

unsigned int PlainSum(std::string_view bytes) {
    unsigned int sum = 0;
    for (char c : bytes) sum += static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(c)));
    return sum;
}

TEST(FixControlSum, SignedBytesUnreduced) {
    struct Row {
        const char* pins;
        std::string bytes;
        unsigned int sum;
    };
    const std::vector<Row> rows = {
        {"EmptyIsZero", "", 0},
        {"OneByte", "A", 65},
        {"OddLengthAddsLastByte", "ABC", 65 + 66 + 67},
        {"ByteFFIsMinusOne", "\xff", 0xFFFFFFFFu},
        {"Byte80IsMinus128", "\x80\x01", static_cast<unsigned int>(-127)},
        {"NotReducedModulo256", std::string(300, '\x7f'), 300u * 127u},
        {"BlockOfMinus128", std::string(256, '\x80'), static_cast<unsigned int>(-256 * 128)},
        {"BlockPlusOddTail", std::string(257, '\xff'), static_cast<unsigned int>(-257)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pins);
        const ExactBuffer data(row.bytes);
        EXPECT_EQ(U_CalculateControlSum(data.get(), static_cast<unsigned int>(data.size)), row.sum);
    }
}

TEST(FixControlSum, AgreesWithPlainLoopAtEveryLengthAndAlignment) {
    std::mt19937 random(11);
    std::string bytes(1100, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    for (std::size_t offset = 0; offset < 8; ++offset)
        for (std::size_t length = 0; length + offset <= bytes.size(); length += length < 530 ? 1 : 37) {
            const ExactBuffer data(std::string_view(bytes).substr(offset, length));
            ASSERT_EQ(U_CalculateControlSum(data.get(), static_cast<unsigned int>(length)),
                      PlainSum(std::string_view(bytes).substr(offset, length)))
                << "offset " << offset << " length " << length;
        }
}

TEST(FixControlSum, MatchesTheChecksumOfABuiltMessage) {
    const std::string m = fixtest::Message("FIX.4.2", "35=D|58=\xe9t\xe9|");
    const std::size_t trailer = m.size() - 7;
    EXPECT_EQ(
        std::to_string(U_CalculateControlSum(m.data(), static_cast<unsigned int>(trailer)) % 256 + 1000),
        "1" + m.substr(trailer + 3, 3));
}

TEST(FixText, AppendSohIfNecessary) {
    struct Row {
        const char* pins;
        std::string text;
        bool appended;
        std::string after;
    };
    const std::vector<Row> rows = {
        {"EmptyStaysEmpty", "", false, ""},
        {"AppendsAfterValue", "58=x", true, "58=x\x01"},
        {"AlreadyEndsWithSoh", "58=x\x01", false, "58=x\x01"},
        {"OnlySoh", "\x01", false, "\x01"},
        {"SohInsideDoesNotCount", "\x01x", true, "\x01x\x01"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pins);
        std::string text = row.text;
        EXPECT_EQ(U_AppendSohIfNecessary(text), row.appended);
        EXPECT_EQ(text, row.after);
    }
}

TEST(FixText, AppendMessageContents) {
    struct Row {
        const char* pins;
        const char* message; // '|' is SOH; nullptr passes a null message
        unsigned short length;
        const char* prefix;
        char replacement;
        std::string expected; // appended to "out:"
    };
    const std::vector<Row> rows = {
        {"NullMessageAppendsNothing", nullptr, 5, "IN ", '|', ""},
        {"ZeroLengthAppendsNotEvenPrefix", "8=FIX|", 0, "IN ", '|', ""},
        {"PrefixThenSohReplaced", "8=FIX|9=5|", 10, "IN ", '^', "IN 8=FIX^9=5^"},
        {"NullPrefix", "8=FIX|", 6, nullptr, '^', "8=FIX^"},
        {"EmptyPrefix", "8=FIX|", 6, "", '^', "8=FIX^"},
        {"SohReplacementKeepsSoh", "8=FIX|", 6, "IN ", '\x01', "IN 8=FIX\x01"},
        {"SohInPrefixIsNotReplaced", "8=FIX|", 6, "\x01>", '^', "\x01>8=FIX^"},
        {"OnlyLengthBytesAreAppended", "8=FIX|9=5|", 4, nullptr, '^', "8=FI"},
        {"ReplacementMayBeNul", "a|b", 3, nullptr, '\0', std::string("a\0b", 3)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pins);
        std::string out = "out:\x01";
        const std::string message = row.message != nullptr ? fixtest::Soh(row.message) : "";
        const ExactBuffer data(
            std::string_view(message).substr(0, std::min<std::size_t>(row.length, message.size())));
        U_AppendFixMessageContents(out, row.message != nullptr ? data.data.get() : nullptr, row.length,
                                   row.prefix, row.replacement);
        EXPECT_EQ(out, "out:\x01" + row.expected); // bytes already in `out` are never touched
    }
}

TEST(FixText, ParseErrorDescriptions) {
    struct Row {
        unsigned char code;
        const char* text;
        unsigned char rejectReason;
    };
    const std::vector<Row> rows = {
        {0, "No Error", 255},       {1, "Tag Number too big", 0}, {2, "Tag is not numeric", 0},
        {3, "No Value", 4},         {4, "Invalid Value", 6},      {5, "Duplicate Tag", 13},
        {6, "No Tag", 17},          {7, "Missing Tag", 1},        {8, "Unknown Error", 99},
        {255, "Unknown Error", 99},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(int{row.code});
        unsigned char reason = 77;
        EXPECT_STREQ(U_GetParseFixErrorDescription(row.code, &reason), row.text);
        EXPECT_EQ(reason, row.rejectReason);
        EXPECT_EQ(U_GetParseFixErrorDescription(row.code, nullptr),
                  U_GetParseFixErrorDescription(row.code, &reason));
    }
}

TEST(FixUtc, FieldsFilledUpToTheFirstViolation) {
    struct Row {
        const char* pins;
        std::string text; // copied with one terminating NUL and nothing after it
        bool ok;
        unsigned int y, mo, d, h, mi, s, ms;
    };
    const std::vector<Row> rows = {
        {"SecondsThenNul", "20190101-23:59:59", true, 2019, 1, 1, 23, 59, 59, 0},
        {"SecondsThenSoh", "20190101-23:59:59\x01", true, 2019, 1, 1, 23, 59, 59, 0},
        {"Milliseconds", "20191231-00:00:00.123", true, 2019, 12, 31, 0, 0, 0, 123},
        {"ByteAfterMillisecondsNotLookedAt", "20191231-00:00:00.999x", true, 2019, 12, 31, 0, 0, 0, 999},
        {"OneMillisecondDigit", "20190431-23:59:59.5", false, 2019, 4, 31, 23, 59, 59, 0},
        {"TwoMillisecondDigits", "20190431-23:59:59.51", false, 2019, 4, 31, 23, 59, 59, 0},
        {"OtherByteAfterSeconds", "20190101-23:59:59Z", false, 2019, 1, 1, 23, 59, 59, 0},
        {"Day31InAprilIsLenient", "20190431-10:00:00", true, 2019, 4, 31, 10, 0, 0, 0},
        {"Day29InFebruaryOfAnyYear", "20190229-10:00:00", true, 2019, 2, 29, 10, 0, 0, 0},
        {"Day30InFebruary", "20190230-10:00:00", false, 2019, 2, 0, 0, 0, 0, 0},
        {"Day31InFebruary", "20190231-10:00:00", false, 2019, 2, 0, 0, 0, 0, 0},
        {"Day32", "20190132-10:00:00", false, 2019, 1, 0, 0, 0, 0, 0},
        {"Day00", "20190100-10:00:00", false, 2019, 1, 0, 0, 0, 0, 0},
        {"Day40", "20190140-10:00:00", false, 2019, 1, 0, 0, 0, 0, 0},
        {"YearZero", "00000101-10:00:00", false, 0, 0, 0, 0, 0, 0, 0},
        {"Year0001", "00010101-10:00:00", true, 1, 1, 1, 10, 0, 0, 0},
        {"Month00", "20190001-10:00:00", false, 2019, 0, 0, 0, 0, 0, 0},
        {"Month13", "20191301-10:00:00", false, 2019, 0, 0, 0, 0, 0, 0},
        {"Month10", "20191001-10:00:00", true, 2019, 10, 1, 10, 0, 0, 0},
        {"Hour24", "20190101-24:00:00", false, 2019, 1, 1, 0, 0, 0, 0},
        {"Hour19", "20190101-19:00:00", true, 2019, 1, 1, 19, 0, 0, 0},
        {"Hour30", "20190101-30:00:00", false, 2019, 1, 1, 0, 0, 0, 0},
        {"Minute60", "20190101-10:60:00", false, 2019, 1, 1, 10, 0, 0, 0},
        {"Second60", "20190101-10:59:60", false, 2019, 1, 1, 10, 59, 0, 0},
        {"MissingDash", "20190101 10:00:00", false, 2019, 1, 1, 0, 0, 0, 0},
        {"MissingColon", "20190101-10-00:00", false, 2019, 1, 1, 10, 0, 0, 0},
        {"TruncatedYear", "201", false, 0, 0, 0, 0, 0, 0, 0},
        {"EndsAfterYear", "2019", false, 2019, 0, 0, 0, 0, 0, 0},
        {"EndsAfterMinute", "20190101-10:00", false, 2019, 1, 1, 10, 0, 0, 0},
        {"Empty", "", false, 0, 0, 0, 0, 0, 0, 0},
        {"Byte80InYear",
         "2\x80"
         "19",
         false, 0, 0, 0, 0, 0, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pins);
        const ExactBuffer text(std::string_view(row.text.c_str(), row.text.size() + 1));
        unsigned int v[7] = {9, 9, 9, 9, 9, 9, 9};
        EXPECT_EQ(U_ParseFixUtc(text.get(), &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]), row.ok);
        const unsigned int expected[7] = {row.y, row.mo, row.d, row.h, row.mi, row.s, row.ms};
        for (int i = 0; i < 7; ++i) EXPECT_EQ(v[i], expected[i]) << "output " << i;
    }
    unsigned int v[7] = {9, 9, 9, 9, 9, 9, 9};
    EXPECT_FALSE(U_ParseFixUtc(nullptr, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]));
    for (unsigned int x : v) EXPECT_EQ(x, 0u);
}

} // namespace
