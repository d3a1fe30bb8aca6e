// U_ParseFix and its map: codes, error tags, field ordinals and stored fields row by row; the
// word-at-a-time value scan against a byte-at-a-time model on generated messages; the map's own
// contract (unique keys, stable texts, order, reuse, copies).
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using fixtest::ExactBuffer;
using fixtest::Soh;
using Fields = std::vector<std::pair<unsigned short, std::string>>;

constexpr unsigned short kUntouched = 0xBEEF;

struct Parsed {
    unsigned char code;
    unsigned short errorTag;
    unsigned short ordinal;
    Fields fields;
};

Fields FieldsOf(const FixFieldMap& map) {
    Fields out;
    for (const auto& [tag, text] : map) out.emplace_back(tag, std::string(text));
    return out;
}

// Parses the first `length` bytes of `bytes` (all of them by default) from an exactly sized block.
Parsed Parse(std::string_view bytes, std::size_t length = std::string_view::npos) {
    const ExactBuffer buffer(bytes);
    FixFieldMap map;
    unsigned short errorTag = kUntouched;
    unsigned short ordinal = kUntouched;
    const auto size = static_cast<unsigned int>(std::min(length, bytes.size()));
    const unsigned char code = U_ParseFix(map, buffer.get(), size, &errorTag, &ordinal);
    return {code, errorTag, ordinal, FieldsOf(map)};
}

struct Row {
    const char* pins;
    std::string message; // '|' is SOH
    unsigned char code;
    unsigned short errorTag;
    unsigned short ordinal;
    Fields fields;
    std::size_t length = std::string::npos; // bytes passed, when fewer than the message
};

TEST(FixParse, CodesTagsOrdinalsAndFields) {
    const std::vector<Row> rows = {
        {"EmptyInputIsNoError", "", 0, kUntouched, 1, {}},
        {"DuplicateTagReportsTagAndOrdinal", "35=A|35=B|", 5, 35, 2, {{35, "A"}}},
        {"EqualsWithoutTag", "=A|", 6, 0, 1, {}},
        {"TagZeroIsNoTag", "0=A|", 6, 0, 1, {}},
        {"LetterInTagReportsTagZero", "3a=B|", 2, 0, 1, {}},
        {"TagAbove65535", "70000=1|", 1, 0, 1, {}},
        {"Tag65536IsTooBig", "65536=1|", 1, 0, 1, {}},
        {"Tag65535Accepted", "65535=1|", 0, kUntouched, 2, {{65535, "1"}}},
        {"ByteAbove0x7FInValue", "58=x\x80", 4, 58, 1, {}},
        {"EmptyValue", "58=|", 3, 58, 1, {}},
        {"TagWithoutEquals", "58|", 3, 58, 1, {}},
        {"EmptyFieldReportsTagZero", "|", 3, 0, 1, {}},
        {"EmptyFieldAfterAField", "35=A||", 3, 0, 2, {{35, "A"}}},
        {"LeadingZerosOfTagAccepted", "00035=A|", 0, kUntouched, 2, {{35, "A"}}},
        {"EqualsInsideValueIsDropped", "35==A|", 0, kUntouched, 2, {{35, "A"}}},
        {"EveryEqualsInsideValueIsDropped", "58=a=b==c=|", 0, kUntouched, 2, {{58, "abc"}}},
        {"ValueOfOnlyEqualsIsEmpty", "58==|", 3, 58, 1, {}},
        {"FieldWithoutSohIsIgnored", "35=A|58=xyz", 0, kUntouched, 2, {{35, "A"}}},
        {"TagWithoutSohIsIgnored", "35=A|58", 0, kUntouched, 2, {{35, "A"}}},
        {"BytesAfterLastSohAreStillChecked", "35=A|5x", 2, 0, 2, {{35, "A"}}},
        {"ControlByteInValueAfterFields", "35=A|58=ab\x1f|", 4, 58, 2, {{35, "A"}}},
        {"NulInValue", std::string("58=a\0b|", 7), 4, 58, 1, {}},
        {"TabInValue", "58=a\tb|", 4, 58, 1, {}},
        {"DelAndSpaceAreValueBytes", "58= \x7f|", 0, kUntouched, 2, {{58, " \x7f"}}},
        {"ByteFFInLongValue", "58=abcdefghij\xff|", 4, 58, 1, {}},
        {"ByteAfterLengthIsNotRead", "35=A|58=B|", 0, kUntouched, 2, {{35, "A"}}, 9},
        {"LengthEndingOnSohStoresTheField", "35=A|58=B|", 0, kUntouched, 3, {{35, "A"}, {58, "B"}}, 10},
        {"FieldsKeepMessageOrder",
         "8=FIX.4.2|9=12|35=0|49=A|10=123|",
         0,
         kUntouched,
         6,
         {{8, "FIX.4.2"}, {9, "12"}, {35, "0"}, {49, "A"}, {10, "123"}}},
        {"ErrorKeepsEarlierFields",
         "8=FIX.4.2|9=12|35=0|49=A|49=B|",
         5,
         49,
         5,
         {{8, "FIX.4.2"}, {9, "12"}, {35, "0"}, {49, "A"}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pins);
        const std::string message = Soh(row.message);
        const Parsed got = Parse(message, row.length);
        EXPECT_EQ(got.code, row.code);
        EXPECT_EQ(got.errorTag, row.errorTag);
        EXPECT_EQ(got.ordinal, row.ordinal);
        EXPECT_EQ(got.fields, row.fields);
    }
}

TEST(FixParse, MapIsAddedToNeverCleared) {
    FixFieldMap map;
    ASSERT_TRUE(map.insert(49, "EARLIER"));
    unsigned short errorTag = kUntouched, ordinal = kUntouched;
    const std::string m = Soh("35=A|49=B|");
    EXPECT_EQ(U_ParseFix(map, m.data(), static_cast<unsigned int>(m.size()), &errorTag, &ordinal), 5);
    EXPECT_EQ(errorTag, 49);
    EXPECT_EQ(ordinal, 2);
    EXPECT_EQ(FieldsOf(map), (Fields{{49, "EARLIER"}, {35, "A"}}));
    // Either out-pointer may be null.
    EXPECT_EQ(U_ParseFix(map, m.data(), static_cast<unsigned int>(m.size()), nullptr, nullptr), 5);
}

TEST(FixParse, FieldOrdinalIs16BitsAndWraps) {
    // 65535 distinct tags, then a repeat: the failing field is the 65536th, which wraps to 0.
    std::string m;
    for (unsigned int tag = 1; tag <= 65535; ++tag) m += std::to_string(tag) + "=v\x01";
    m += "7=v\x01";
    const Parsed got = Parse(m);
    EXPECT_EQ(got.code, 5);
    EXPECT_EQ(got.errorTag, 7);
    EXPECT_EQ(got.ordinal, 0);
    EXPECT_EQ(got.fields.size(), 65535u);
}

// The rules applied one byte at a time, as plainly as they read.
Parsed Model(std::string_view m) {
    Parsed out{0, kUntouched, 1, {}};
    std::map<unsigned int, bool> seen;
    unsigned int tag = 0;
    std::string value;
    bool inValue = false;
    for (const char c : m) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '\x01') {
            if (value.empty()) return out.errorTag = static_cast<unsigned short>(tag), out.code = 3, out;
            if (tag == 0) return out.errorTag = 0, out.code = 6, out;
            if (seen[tag]) return out.errorTag = static_cast<unsigned short>(tag), out.code = 5, out;
            seen[tag] = true;
            out.fields.emplace_back(static_cast<unsigned short>(tag), value);
            value.clear(), ++out.ordinal, tag = 0, inValue = false;
        } else if (c == '=') {
            if (tag == 0) return out.errorTag = 0, out.code = 6, out;
            inValue = true;
        } else if (inValue) {
            if (u < 0x20 || u > 0x7F)
                return out.errorTag = static_cast<unsigned short>(tag), out.code = 4, out;
            value += c;
        } else {
            if (u < '0' || u > '9') return out.errorTag = 0, out.code = 2, out;
            tag = tag * 10 + (u - '0');
            if (tag > 65535) return out.errorTag = 0, out.code = 1, out;
        }
    }
    return out;
}

TEST(FixParse, WordScanAgreesWithByteModelOnGeneratedMessages) {
    // Values of every length around the 8-byte word, with the special byte at every offset.
    const char specials[] = {'\x01', '=', '\x1f', '\x80', '\xff', '\x00', '\x7f', ' '};
    std::mt19937 random(2024);
    int errors = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string m;
        const int fields = 1 + static_cast<int>(random() % 6);
        for (int f = 0; f < fields; ++f) {
            m += std::to_string(random() % 40) + "=";
            const std::size_t length = random() % 20;
            for (std::size_t k = 0; k < length; ++k)
                m += random() % 24 == 0 ? specials[random() % std::size(specials)]
                                        : static_cast<char>('a' + random() % 26);
            if (random() % 16 != 0) m += '\x01';
        }
        SCOPED_TRACE(fixtest::Bars(m));
        const Parsed got = Parse(m);
        const Parsed expected = Model(m);
        errors += got.code != 0;
        ASSERT_EQ(got.code, expected.code);
        ASSERT_EQ(got.errorTag, expected.errorTag);
        ASSERT_EQ(got.ordinal, expected.ordinal);
        ASSERT_EQ(got.fields, expected.fields);
    }
    EXPECT_GT(errors, 1000); // the generator reaches the error paths
}

TEST(FixFieldMap, UniqueKeysFindAndOrder) {
    FixFieldMap map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.find(35), map.end());
    EXPECT_TRUE(map.insert(35, "D"));
    EXPECT_TRUE(map.insert(0, "zero"));
    EXPECT_TRUE(map.insert(65535, ""));
    EXPECT_FALSE(map.insert(35, "E"));
    EXPECT_EQ(map.size(), 3u);
    EXPECT_EQ(map.value(35), "D");
    EXPECT_EQ(map.value(0), "zero");
    EXPECT_TRUE(map.contains(65535));
    EXPECT_EQ(map.count(65535), 1u);
    EXPECT_EQ(map.value(11, "none"), "none");
    EXPECT_EQ(map.find(35)->second, "D");
    EXPECT_EQ(FieldsOf(map), (Fields{{35, "D"}, {0, "zero"}, {65535, ""}}));
}

TEST(FixFieldMap, EveryTagFitsAndTextsNeverMove) {
    FixFieldMap map;
    ASSERT_TRUE(map.insert(1, "first"));
    const char* const first = map.value(1).data();
    for (unsigned int tag = 0; tag <= 65535; ++tag)
        EXPECT_EQ(map.insert(static_cast<unsigned short>(tag), std::to_string(tag * 7)), tag != 1);
    EXPECT_EQ(map.size(), 65536u);
    EXPECT_EQ(map.value(1).data(), first);
    EXPECT_EQ(map.value(1), "first");
    for (unsigned int tag = 0; tag <= 65535; tag += 97) {
        if (tag != 1) {
            EXPECT_EQ(map.value(static_cast<unsigned short>(tag)), std::to_string(tag * 7));
        }
    }
}

TEST(FixFieldMap, ManyClearsNeverResurrectOldFields) {
    // clear() stamps a new generation instead of emptying the table; the stamps wrap after 65535
    // clears, when slots never used (tag 0, stamp 0) must not start to look full.
    FixFieldMap map;
    for (unsigned int round = 0; round < 70000; ++round) {
        map.clear();
        ASSERT_TRUE(map.insert(7, "v"));
        ASSERT_EQ(map.size(), 1u);
        ASSERT_FALSE(map.contains(0)) << round;
        ASSERT_TRUE(map.contains(7));
    }
}

TEST(FixFieldMap, SecondParseKeepsTheFirstOnesTexts) {
    FixFieldMap map;
    const std::string first = Soh("35=D|55=MSFT|11=ORDER-000000000001|");
    const std::string second = Soh("58=SECOND-MESSAGE-TEXT|44=1.5|");
    ASSERT_EQ(U_ParseFix(map, first.data(), static_cast<unsigned int>(first.size()), nullptr, nullptr), 0);
    ASSERT_EQ(U_ParseFix(map, second.data(), static_cast<unsigned int>(second.size()), nullptr, nullptr), 0);
    EXPECT_EQ(
        FieldsOf(map),
        (Fields{
            {35, "D"}, {55, "MSFT"}, {11, "ORDER-000000000001"}, {58, "SECOND-MESSAGE-TEXT"}, {44, "1.5"}}));
}

TEST(FixFieldMap, ClearReuseCopyAndMove) {
    FixFieldMap map;
    const std::string m = Soh("35=D|55=IBM|44=101.25|");
    for (int round = 0; round < 3; ++round) {
        map.clear();
        EXPECT_TRUE(map.empty());
        EXPECT_FALSE(map.contains(35));
        ASSERT_EQ(U_ParseFix(map, m.data(), static_cast<unsigned int>(m.size()), nullptr, nullptr), 0);
        EXPECT_EQ(map.value(44), "101.25");
    }
    FixFieldMap copy(map);
    EXPECT_EQ(FieldsOf(copy), FieldsOf(map));
    EXPECT_NE(copy.value(55).data(), map.value(55).data()); // deep
    map.clear();
    EXPECT_EQ(copy.value(55), "IBM");

    FixFieldMap moved(std::move(copy));
    EXPECT_EQ(moved.value(35), "D");
    EXPECT_TRUE(copy.empty()); // NOLINT(bugprone-use-after-move): a moved-from map is empty and usable
    EXPECT_TRUE(copy.insert(1, "x"));
    copy = moved;
    EXPECT_EQ(FieldsOf(copy), FieldsOf(moved));
    map = std::move(moved);
    EXPECT_EQ(map.value(55), "IBM");
    EXPECT_EQ(map.find(1), map.end());
}

} // namespace
