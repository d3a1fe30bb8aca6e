// U_ParseFix row by row and at every value offset and alignment, and the FixFieldMap contract.
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using fixtest::Soh;
using Fields = std::vector<std::pair<unsigned short, std::string>>;
using Parsed = std::tuple<int, int, int, Fields>; // code, errorTag, fieldOrdinal, fields stored

constexpr int kUntouched = 0xBEEF;

Fields FieldsOf(const FixFieldMap& map) {
    Fields out;
    for (const auto& [tag, text] : map) out.emplace_back(tag, std::string(text));
    return out;
}

// Parses the first `length` bytes of `bytes` (all of them by default) from an exactly sized block.
Parsed Parse(std::string_view bytes, std::size_t length = std::string_view::npos) {
    const fixtest::ExactBuffer buffer(bytes);
    FixFieldMap map;
    unsigned short errorTag = kUntouched, ordinal = kUntouched;
    const auto size = static_cast<unsigned int>(std::min(length, bytes.size()));
    const int code = U_ParseFix(map, buffer.get(), size, &errorTag, &ordinal);
    return {code, errorTag, ordinal, FieldsOf(map)};
}

TEST(FixParse, CodesTagsOrdinalsAndFields) {
    struct Row {
        std::string message; // '|' is SOH
        Parsed expected;
        std::size_t length = std::string::npos; // bytes passed, when fewer than the message
    };
    const Fields a = {{35, "A"}}; // odd value bytes at every position: the word-scan test below
    // clang-format off
    const std::vector<Row> rows = {
        {"", {0, kUntouched, 1, {}}},
        {"35=A|35=B|", {5, 35, 2, a}},
        {"=A|", {6, 0, 1, {}}},
        {"0=A|", {6, 0, 1, {}}},                                   // tag 0 is no tag
        {"3a=B|", {2, 0, 1, {}}},
        {"70000=1|", {1, 0, 1, {}}},
        {"65536=1|", {1, 0, 1, {}}},
        {"65535=1|", {0, kUntouched, 2, {{65535, "1"}}}},
        {"58=x\x80", {4, 58, 1, {}}},                              // checked without a closing SOH
        {"58=|", {3, 58, 1, {}}},
        {"58|", {3, 58, 1, {}}},
        {"35=A||", {3, 0, 2, a}},                                  // empty field
        {"00035=A|", {0, kUntouched, 2, a}},                       // leading zeros of a tag accepted
        {"35=A|58=xyz", {0, kUntouched, 2, a}},                    // bytes after the last SOH not stored
        {"35=A|5x", {2, 0, 2, a}},                                 // but still checked
        {"35=A|58=B|", {0, kUntouched, 2, a}, 9},                      // the byte after `length` is not read
        {"35=A|58=B|", {0, kUntouched, 3, {{35, "A"}, {58, "B"}}}, 10},
        {"8=FIX.4.2|9=12|35=0|49=A|49=B|", {5, 49, 5, {{8, "FIX.4.2"}, {9, "12"}, {35, "0"}, {49, "A"}}}},
    };
    // clang-format on
    for (const Row& row : rows) EXPECT_EQ(Parse(Soh(row.message), row.length), row.expected) << row.message;
}

TEST(FixParse, MapIsAddedToNeverClearedAndOrdinalWraps) {
    FixFieldMap map;
    ASSERT_TRUE(map.insert(49, "EARLIER"));
    unsigned short errorTag = kUntouched, ordinal = kUntouched;
    const std::string m = Soh("35=A|49=B|");
    EXPECT_EQ(U_ParseFix(map, m.data(), static_cast<unsigned int>(m.size()), &errorTag, &ordinal), 5);
    EXPECT_EQ(std::tuple(errorTag, ordinal, FieldsOf(map)),
              std::tuple(49, 2, Fields{{49, "EARLIER"}, {35, "A"}}));
    EXPECT_EQ(U_ParseFix(map, m.data(), static_cast<unsigned int>(m.size()), nullptr, nullptr), 5);
    // 65535 distinct tags, then a repeat: the failing field is the 65536th, which wraps to 0.
    std::string many;
    for (unsigned int tag = 1; tag <= 65535; ++tag) many += std::to_string(tag) + "=v\x01";
    const Parsed got = Parse(many + "7=v\x01");
    EXPECT_EQ(std::tuple(std::get<0>(got), std::get<1>(got), std::get<2>(got), std::get<3>(got).size()),
              std::tuple(5, 7, 0, std::size_t{65535}));
}

TEST(FixParse, WordScanSeesAnOddValueByteAtEveryOffsetLengthAndAlignment) {
    // Leading zeros of the tag shift the value through every alignment of the 8-byte word.
    for (std::size_t zeros = 0; zeros < 8; ++zeros)
        for (std::size_t length = 1; length <= 20; ++length)
            for (std::size_t at = 0; at < length; ++at)
                for (const char odd : {'\x80', '\xff', '\x1f', '\x00', '\x7f', ' ', '='}) {
                    std::string value(length, 'v');
                    value[at] = odd;
                    std::string kept = value;
                    std::erase(kept, '=');
                    const auto u = static_cast<unsigned char>(odd);
                    const bool bad = u < 0x20 || u > 0x7F || kept.empty();
                    const auto [code, errorTag, ordinal, fields] =
                        Parse(std::string(zeros, '0') + "58=" + value + '\x01');
                    ASSERT_EQ(std::tuple(code, errorTag, ordinal, fields.size(),
                                         fields.empty() ? "" : fields[0].second),
                              bad ? std::tuple(kept.empty() ? 3 : 4, 58, 1, std::size_t{0}, std::string())
                                  : std::tuple(0, kUntouched, 2, std::size_t{1}, kept))
                        << zeros << ' ' << length << ' ' << at << ' ' << int{u};
                }
}

TEST(FixFieldMap, KeysTextsClearsCopiesAndMoves) {
    FixFieldMap map;
    ASSERT_TRUE(map.find(35) == map.end() && map.insert(35, "D"));
    const char* const first = map.value(35).data();
    for (unsigned int tag = 0; tag <= 65535; ++tag) // every tag fits; a present one is refused
        EXPECT_EQ(map.insert(static_cast<unsigned short>(tag), std::to_string(tag)), tag != 35);
    EXPECT_EQ(std::tuple(map.size(), map.count(65535), map.value(35).data(), map.value(35), map.value(999)),
              std::tuple(std::size_t{65536}, std::size_t{1}, first, "D", "999"));  // texts never move
    EXPECT_EQ(FieldsOf(map)[1], (std::pair<unsigned short, std::string>(0, "0"))); // insertion order
    // clear() stamps a new generation; the stamps wrap after 65535 clears, when slots never used
    // (tag 0, stamp 0) must not start to look full.
    for (unsigned int round = 0; round < 70000; ++round) {
        map.clear();
        ASSERT_TRUE(map.insert(7, "v"));
        ASSERT_TRUE(map.size() == 1 && !map.contains(0) && !map.contains(35)) << round;
    }
    map.clear();
    const std::string one = Soh("35=D|55=IBM|"), two = Soh("58=SECOND-MESSAGE-TEXT|44=1.5|");
    ASSERT_EQ(U_ParseFix(map, one.data(), static_cast<unsigned int>(one.size()), nullptr, nullptr), 0);
    ASSERT_EQ(U_ParseFix(map, two.data(), static_cast<unsigned int>(two.size()), nullptr, nullptr), 0);
    const Fields all = {{35, "D"}, {55, "IBM"}, {58, "SECOND-MESSAGE-TEXT"}, {44, "1.5"}};
    FixFieldMap copy(map), moved(std::move(map)); // NOLINT(bugprone-use-after-move): moved-from is empty
    EXPECT_NE(copy.value(55).data(), moved.value(55).data()); // deep
    EXPECT_TRUE(map.empty() && map.insert(1, "x"));
    map = copy;
    copy = std::move(moved);
    for (const FixFieldMap* m : {&map, &copy}) EXPECT_EQ(FieldsOf(*m), all);
}

} // namespace
