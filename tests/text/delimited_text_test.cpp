// Delimited text to lists and maps, and the whole-file functions. Each parser row runs twice: on an
// exactly sized block bounded by the length, and on a NUL-terminated copy given the row's length
// (unbounded for whole-text rows). Outputs start non-empty and counters start non-zero, to show that
// outputs are appended to and counters reset.
#include "VeloraUtils/DelimitedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <list>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace std::string_view_literals;
using List = std::list<std::string>;
using Map = std::map<std::string, std::string>;

constexpr unsigned kWhole = ~0u; // the length of a row that gives the whole text
constexpr int kAny = -1;         // the delimiter of a U_ParseStringToMapWithAnyDelimiter row

// Both forms of a row's text, each with the length to pass.
struct BothForms {
    BothForms(std::string_view text, unsigned length)
        : block(text.begin(), text.end()),
          terminated(text), forms{{block.data(),
                                   std::min<unsigned>(length, static_cast<unsigned>(block.size()))},
                                  {terminated.c_str(), length}} {}
    std::vector<char> block; // exactly sized: no terminator
    std::string terminated;
    std::pair<const char*, unsigned> forms[2];
};

TEST(ParseStringToList, LinesEmptyLineCountAndKeptEmptyLines) {
    // name, text, length, keep empty lines, lines, empty-line count
    const std::vector<std::tuple<const char*, std::string_view, unsigned, bool, List, unsigned>> rows = {
        // clang-format off
        {"crlf lines around an empty one", "a\r\n\r\nb", kWhole, false, {"a", "b"}, 1},
        {"kept empty line counted the same", "a\r\n\r\nb", kWhole, true, {"a", "", "b"}, 1},
        {"empty text counts one line", "", kWhole, true, {}, 1},
        {"final newline counts the line after it", "a\n", kWhole, true, {"a"}, 1},
        {"only newlines", "\n\n", kWhole, true, {"", ""}, 3},
        {"lone carriage returns vanish", "a\rb\r", kWhole, false, {"ab"}, 0},
        {"NUL ends the text", "ab\0cd\nx"sv, kWhole, false, {"ab"}, 0},
        {"length cuts a line", "abc\ndef", 5, false, {"abc", "d"}, 0},
        {"length cuts after a newline", "abc\ndef", 4, false, {"abc"}, 1},
        // clang-format on
    };
    for (const auto& [name, input, rowLength, keep, expected, expectedEmpty] : rows) {
        SCOPED_TRACE(name);
        const BothForms both(input, rowLength);
        for (const auto& [text, length] : both.forms) {
            SCOPED_TRACE(text == both.terminated.c_str() ? "NUL-terminated copy" : "exactly sized block");
            List lines{"before"}, uncounted, withBefore = expected;
            unsigned emptyLines = 99;
            U_ParseStringToList(text, length, lines, &emptyLines, keep);
            U_ParseStringToList(text, length, uncounted, nullptr, keep);
            withBefore.push_front("before");
            EXPECT_EQ(std::tuple(lines, emptyLines, uncounted),
                      std::tuple(withBefore, expectedEmpty, expected));
        }
    }
}

TEST(ParseStringToMap, FirstKeyWinsCountersAndDroppedDelimiters) {
    // name, text, length, delimiter (kAny: tab, space and '|'), keep empty keys, entries added besides
    // "pre" -> "0" (which the map holds before), duplicate count, empty-key count
    const std::vector<std::tuple<const char*, std::string_view, unsigned, int, bool, Map, unsigned, unsigned>>
        rows = {
            // clang-format off
        {"duplicate and empty key", "x=1\nx=2\n=3\ny", kWhole, '=', false, {{"x", "1"}, {"y", ""}}, 1, 1},
        {"kept empty key", "x=1\nx=2\n=3\ny", kWhole, '=', true, {{"", "3"}, {"x", "1"}, {"y", ""}}, 1, 1},
        {"kept empty key is first-wins too", "=1\r\n=2\r\n", kWhole, '=', true, {{"", "1"}}, 1, 2},
        {"key already in the map keeps its value", "pre=1\n", kWhole, '=', false, {}, 1, 0},
        {"newline delimiter: a set of keys", "A\nB\nA\n", kWhole, '\n', false, {{"A", ""}, {"B", ""}}, 1, 0},
        {"newline delimiter: empty lines", "A\n\r\n\n", kWhole, '\n', true, {{"A", ""}, {"", ""}}, 1, 2},
        {"second delimiter dropped", "a=b=c", kWhole, '=', false, {{"a", "bc"}}, 0, 0},
        {"blanks belong to key and value", "a = b\r\n", kWhole, '=', false, {{"a ", " b"}}, 0, 0},
        {"pending empty key ignored", "k\n=v", kWhole, '=', true, {{"k", ""}}, 0, 0},
        {"NUL ends the text", "k=v\0w\nq=1"sv, kWhole, '=', false, {{"k", "v"}}, 0, 0},
        {"length cuts a value", "abc=12\nd=4", 5, '=', false, {{"abc", "1"}}, 0, 0},
        {"length cuts a key", "abc=12\nd=4", 8, '=', false, {{"abc", "12"}, {"d", ""}}, 0, 0},
        {"any: blanks dropped from the value", "KEY  some value", kWhole, kAny, false, {{"KEY", "somevalue"}}, 0, 0},
        {"any: tab and bar", "a|b\tc\n\tz\nd", kWhole, kAny, false, {{"a", "bc"}, {"d", ""}}, 0, 1},
        {"any: '=' is an ordinary byte", "a=b c", kWhole, kAny, false, {{"a=b", "c"}}, 0, 0},
            // clang-format on
        };
    for (const auto& [name, input, rowLength, delimiter, keep, added, expectedDuplicates, expectedEmpty] :
         rows) {
        SCOPED_TRACE(name);
        const BothForms both(input, rowLength);
        for (const auto& [text, length] : both.forms) {
            SCOPED_TRACE(text == both.terminated.c_str() ? "NUL-terminated copy" : "exactly sized block");
            Map map{{"pre", "0"}}, expected = added;
            unsigned duplicates = 98, emptyKeys = 99;
            if (delimiter == kAny)
                U_ParseStringToMapWithAnyDelimiter(text, length, map, &duplicates, &emptyKeys, keep);
            else
                U_ParseStringToMap(text, length, map, static_cast<char>(delimiter), &duplicates, &emptyKeys,
                                   keep);
            expected.emplace("pre", "0");
            EXPECT_EQ(std::tuple(map, duplicates, emptyKeys),
                      std::tuple(expected, expectedDuplicates, expectedEmpty));
        }
    }
}

// A scratch directory under the system's temporary directory, removed afterwards.
class Scratch : public testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("velora_delimited_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_ / "sub");
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(dir_, ignored);
    }
    std::string Path(const std::string& name) const { return (dir_ / name).string(); }
    void Put(const std::string& name, std::string_view bytes) const {
        std::ofstream(dir_ / name, std::ios::binary) << bytes;
    }
    std::string Bytes(const std::string& name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(dir_ / name, std::ios::binary).rdbuf();
        return bytes.str();
    }
    std::set<std::string> Entries() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_)) names.insert(entry.path().filename().string());
        return names;
    }
    fs::path dir_;
};

using ReadFileToStringMap = Scratch;
TEST_F(ReadFileToStringMap, LaterDelimitersKeptCommentsCountedKeysUppercased) {
    const std::string_view file = "a=b=c\r\n#c=1\nx=1\nx=2\n=3\nlow=Val\n#tail"sv;
    // name, file, uppercase keys, keep empty keys, entries added besides "pre" -> "0", duplicate count,
    // empty-or-comment count
    const std::vector<std::tuple<const char*, std::string_view, bool, bool, Map, unsigned, unsigned>> rows = {
        // clang-format off
        {"uppercase keys", file, true, false, {{"A", "b=c"}, {"X", "1"}, {"LOW", "Val"}}, 1, 3},
        {"keys as written", file, false, true, {{"a", "b=c"}, {"x", "1"}, {"low", "Val"}, {"", "3"}}, 1, 3},
        {"NUL ends the file", "k=v\0w\nq=1"sv, false, false, {{"k", "v"}}, 0, 0},
        {"empty file", "", false, false, {}, 0, 0},
        {"comment char not first", "a#=1\n#\npre=3", false, false, {{"a#", "1"}}, 1, 1},
        // clang-format on
    };
    for (const auto& [name, bytes, upper, keep, added, expectedDuplicates, expectedSkipped] : rows) {
        Put("map.txt", bytes);
        Map map{{"pre", "0"}}, expected = added;
        unsigned duplicates = 98, skipped = 99;
        expected.emplace("pre", "0");
        EXPECT_TRUE(U_ReadFileToStringMap(Path("map.txt").c_str(), map, '=', '#', upper, &duplicates,
                                          &skipped, keep));
        EXPECT_EQ(std::tuple(map, duplicates, skipped),
                  std::tuple(expected, expectedDuplicates, expectedSkipped))
            << name;
    }
    for (const std::string& unreadable : {Path("missing.txt"), Path("sub")}) {
        Map map{{"pre", "0"}};
        EXPECT_FALSE(U_ReadFileToStringMap(unreadable.c_str(), map, '=', '#', false, nullptr, nullptr, true));
        EXPECT_EQ(map, (Map{{"pre", "0"}}));
    }
}

using FileExists = Scratch;
TEST_F(FileExists, FilesDirectoriesAndWildcardPatterns) {
    Put("sub/file.txt", "x");
    const auto in = [&](const char* name) { return (dir_ / "sub" / name).string(); };
    const std::pair<std::string, bool> rows[] = {
        // clang-format off
        {in("file.txt"), true}, {Path("sub"), true}, {in("f*.txt"), true}, {in("?ile.*"), true}, {in("*"), true},
        {in("q*"), false}, {in("f?x*"), false}, {in("missing.txt"), false}, {"", false},
        {in(""), false}, // a trailing separator names no entry
        // clang-format on
    };
    for (const auto& [path, exists] : rows) EXPECT_EQ(U_FileExists(path.c_str()), exists) << path;
    EXPECT_FALSE(U_FileExists(nullptr));
}

using WholeFiles = Scratch;
TEST_F(WholeFiles, WriteReplacesBytesExactlyAndFailsWithoutHarm) {
    const std::string target = Path("out.txt");
    const std::string bytes = "one\r\nt\0wo\n"s;
    ASSERT_TRUE(U_WriteStringToFile(target.c_str(), bytes));
    EXPECT_EQ(Bytes("out.txt"), bytes); // every byte as given: no line-end translation, NUL kept
    ASSERT_TRUE(U_WriteStringToFile(target.c_str(), "new"));
    EXPECT_EQ(Bytes("out.txt"), "new"); // replaced, nothing of the longer old text left

    Put("sub/keep.txt", "kept");
    for (const std::string& bad : {Path("nodir/out.txt"), Path("sub"), std::string()})
        EXPECT_FALSE(U_WriteStringToFile(bad.c_str(), "x")) << bad;
    EXPECT_FALSE(U_WriteStringToFile(nullptr, "x"));
    EXPECT_TRUE(fs::is_directory(dir_ / "sub"));
    EXPECT_EQ(Bytes("sub/keep.txt"), "kept");
    // A read-only file is left as it was, unless the user may write it anyway (root on POSIX).
    Put("locked.txt", "old");
    const auto writeBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    fs::permissions(dir_ / "locked.txt", writeBits, fs::perm_options::remove);
    const bool replaced = U_WriteStringToFile(Path("locked.txt").c_str(), "new");
    EXPECT_EQ(Bytes("locked.txt"), replaced ? "new" : "old");
    fs::permissions(dir_ / "locked.txt", fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(Entries(), (std::set<std::string>{"locked.txt", "out.txt", "sub"})); // no temporary file left

    ASSERT_TRUE(U_WriteStringToFile(target.c_str(), ""));
    EXPECT_EQ(Bytes("out.txt"), "");
}

TEST_F(WholeFiles, ReadAppendsUpToTheFirstNul) {
    const std::string longer = std::string(40000, 'z') + "end"; // more than one read's worth
    const std::pair<std::string, std::string> rows[] = {
        // bytes, the text after "pre:" and the call
        {"a\r\nb\x1a\xff", "pre:a\r\nb\x1a\xff"}, // stored bytes: no line ends or end-of-file mark read
        {"ab\0cd"s, "pre:ab"},
        {longer, "pre:" + longer},
    };
    for (const auto& [bytes, after] : rows) {
        Put("in.txt", bytes);
        std::string text = "pre:";
        EXPECT_TRUE(U_ReadFileToString(Path("in.txt").c_str(), text));
        EXPECT_EQ(text, after);
    }
    for (const std::string& unreadable : {Path("missing.txt"), Path("sub"), std::string()}) {
        std::string text = "pre:";
        EXPECT_FALSE(U_ReadFileToString(unreadable.c_str(), text)) << unreadable;
        EXPECT_EQ(text, "pre:");
    }
}

} // namespace
