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
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace std::string_view_literals;
using List = std::list<std::string>;
using Map = std::map<std::string, std::string>;

constexpr unsigned kWhole = ~0u; // the length of a row that gives the whole text
constexpr int kAny = -1;         // the delimiter of a U_ParseStringToMapWithAnyDelimiter row

// Calls `parse(text, length)` on both forms of the row's text.
template <typename Parse> void OnBothForms(std::string_view text, unsigned length, Parse parse) {
    const std::vector<char> block(text.begin(), text.end()); // exactly sized: no terminator
    SCOPED_TRACE("exactly sized block");
    parse(block.data(), std::min<unsigned>(length, static_cast<unsigned>(block.size())));
    const std::string terminated(text);
    SCOPED_TRACE("NUL-terminated copy");
    parse(terminated.c_str(), length);
}

TEST(ParseStringToList, LinesEmptyLineCountAndKeptEmptyLines) {
    const struct {
        const char* name;
        std::string_view text;
        unsigned length;
        bool keep;
        List lines;
        unsigned emptyLines;
    } rows[] = {
        {"crlf lines around an empty one", "a\r\n\r\nb", kWhole, false, {"a", "b"}, 1},
        {"kept empty line counted the same", "a\r\n\r\nb", kWhole, true, {"a", "", "b"}, 1},
        {"empty text counts one line", "", kWhole, true, {}, 1},
        {"final newline counts the line after it", "a\n", kWhole, true, {"a"}, 1},
        {"only newlines", "\n\n", kWhole, true, {"", ""}, 3},
        {"lone carriage returns vanish", "a\rb\r", kWhole, false, {"ab"}, 0},
        {"NUL ends the text", "ab\0cd\nx"sv, kWhole, false, {"ab"}, 0},
        {"length cuts a line", "abc\ndef", 5, false, {"abc", "d"}, 0},
        {"length cuts after a newline", "abc\ndef", 4, false, {"abc"}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        OnBothForms(row.text, row.length, [&](const char* text, unsigned length) {
            List lines{"before"};
            unsigned emptyLines = 99;
            U_ParseStringToList(text, length, lines, &emptyLines, row.keep);
            List expected = row.lines;
            expected.push_front("before");
            EXPECT_EQ(lines, expected);
            EXPECT_EQ(emptyLines, row.emptyLines);
            List uncounted;
            U_ParseStringToList(text, length, uncounted, nullptr, row.keep);
            EXPECT_EQ(uncounted, row.lines);
        });
    }
}

TEST(ParseStringToMap, FirstKeyWinsCountersAndDroppedDelimiters) {
    const struct {
        const char* name;
        std::string_view text;
        unsigned length;
        int delimiter; // kAny: tab, space and '|'
        bool keep;
        Map added; // besides "pre" -> "0", which the map holds before
        unsigned duplicates, emptyKeys;
    } rows[] = {
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
        {"any: blanks dropped from the value",
         "KEY  some value",
         kWhole,
         kAny,
         false,
         {{"KEY", "somevalue"}},
         0,
         0},
        {"any: tab and bar", "a|b\tc\n\tz\nd", kWhole, kAny, false, {{"a", "bc"}, {"d", ""}}, 0, 1},
        {"any: '=' is an ordinary byte", "a=b c", kWhole, kAny, false, {{"a=b", "c"}}, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        OnBothForms(row.text, row.length, [&](const char* text, unsigned length) {
            Map map{{"pre", "0"}};
            unsigned duplicates = 98, emptyKeys = 99;
            if (row.delimiter == kAny)
                U_ParseStringToMapWithAnyDelimiter(text, length, map, &duplicates, &emptyKeys, row.keep);
            else
                U_ParseStringToMap(text, length, map, static_cast<char>(row.delimiter), &duplicates,
                                   &emptyKeys, row.keep);
            Map expected = row.added;
            expected.emplace("pre", "0");
            EXPECT_EQ(map, expected);
            EXPECT_EQ(duplicates, row.duplicates);
            EXPECT_EQ(emptyKeys, row.emptyKeys);
        });
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
        std::ofstream(dir_ / name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    std::string Bytes(const std::string& name) const {
        std::string bytes(fs::file_size(dir_ / name), '\0');
        std::ifstream(dir_ / name, std::ios::binary)
            .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
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
    const struct {
        const char* name;
        std::string_view bytes;
        bool upper, keep;
        Map added; // besides "pre" -> "0"
        unsigned duplicates, emptyOrComment;
    } rows[] = {
        {"uppercase keys", file, true, false, {{"A", "b=c"}, {"X", "1"}, {"LOW", "Val"}}, 1, 3},
        {"keys as written", file, false, true, {{"a", "b=c"}, {"x", "1"}, {"low", "Val"}, {"", "3"}}, 1, 3},
        {"NUL ends the file", "k=v\0w\nq=1"sv, false, false, {{"k", "v"}}, 0, 0},
        {"empty file", "", false, false, {}, 0, 0},
        {"comment char not first", "a#=1\n#\npre=3", false, false, {{"a#", "1"}}, 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Put("map.txt", row.bytes);
        Map map{{"pre", "0"}};
        unsigned duplicates = 98, emptyOrComment = 99;
        EXPECT_TRUE(U_ReadFileToStringMap(Path("map.txt").c_str(), map, '=', '#', row.upper, &duplicates,
                                          &emptyOrComment, row.keep));
        Map expected = row.added;
        expected.emplace("pre", "0");
        EXPECT_EQ(map, expected);
        EXPECT_EQ(duplicates, row.duplicates);
        EXPECT_EQ(emptyOrComment, row.emptyOrComment);
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
    const std::string sub = Path("sub");
    const struct {
        std::string path;
        bool exists;
    } rows[] = {
        {Path("sub/file.txt"), true},
        {sub, true},
        {(fs::path(sub) / "f*.txt").string(), true},
        {(fs::path(sub) / "?ile.*").string(), true},
        {(fs::path(sub) / "*").string(), true},
        {(fs::path(sub) / "q*").string(), false},
        {(fs::path(sub) / "f?x*").string(), false},
        {Path("sub/missing.txt"), false},
        {(fs::path(sub) / "").string(), false}, // a trailing separator names no entry
        {"", false},
    };
    for (const auto& row : rows) EXPECT_EQ(U_FileExists(row.path.c_str()), row.exists) << row.path;
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
    EXPECT_FALSE(U_WriteStringToFile(Path("nodir/out.txt").c_str(), "x"));
    EXPECT_FALSE(U_WriteStringToFile(Path("sub").c_str(), "x"));
    EXPECT_FALSE(U_WriteStringToFile("", "x"));
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
    const struct {
        std::string bytes, after; // "pre:" before the call
    } rows[] = {
        {"a\r\nb\x1a\xff", "pre:a\r\nb\x1a\xff"}, // stored bytes: no line ends or end-of-file mark read
        {"ab\0cd"s, "pre:ab"},
        {longer, "pre:" + longer},
    };
    for (const auto& row : rows) {
        Put("in.txt", row.bytes);
        std::string text = "pre:";
        EXPECT_TRUE(U_ReadFileToString(Path("in.txt").c_str(), text));
        EXPECT_EQ(text, row.after);
    }
    for (const std::string& unreadable : {Path("missing.txt"), Path("sub"), std::string()}) {
        std::string text = "pre:";
        EXPECT_FALSE(U_ReadFileToString(unreadable.c_str(), text)) << unreadable;
        EXPECT_EQ(text, "pre:");
    }
}

} // namespace
