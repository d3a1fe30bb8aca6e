// Fuzz target for U_ParseStringToMap, U_ParseStringToMapWithAnyDelimiter and U_ParseStringToList.
// The text is an exactly sized heap block, so ASan reports any read past `length`. Each result is
// checked against a model that splits the text into lines first (a different shape from the
// byte-at-a-time parser), against invariants (no '\r' kept, keys present in the text, counters
// adding up), and against the same text given NUL-terminated with length = strlen and unbounded,
// and cut short by a length.
#include "VeloraUtils/DelimitedText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using List = std::list<std::string>;
using Map = std::map<std::string, std::string>;

void Require(bool condition) {
    if (!condition) std::abort();
}

constexpr int kAny = -1;

struct MapResult {
    Map map;
    unsigned duplicates = 0, emptyKeys = 0;
    bool operator==(const MapResult&) const = default;
};

struct ListResult {
    List lines;
    unsigned emptyLines = 0;
    bool operator==(const ListResult&) const = default;
};

// The text as the parsers see it: up to the first NUL, split at '\n'; the last piece is the line
// the text ends in (empty when it ends in '\n').
std::vector<std::string> Lines(std::string_view text) {
    text = text.substr(0, std::min(text.size(), text.find('\0')));
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

std::string Without(std::string_view s, bool (*drop)(char)) {
    std::string out;
    for (const char c : s)
        if (!drop(c)) out += c;
    return out;
}

MapResult ModelMap(std::string_view text, int delimiter, bool keepEmptyKey) {
    MapResult r;
    const auto isDelimiter = [delimiter](char c) {
        return delimiter == kAny ? c == '\t' || c == ' ' || c == '|' : c == static_cast<char>(delimiter);
    };
    const auto insert = [&r](const std::string& key, const std::string& value) {
        if (!r.map.emplace(key, value).second) ++r.duplicates;
    };
    const std::vector<std::string> lines = Lines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        std::string key, value;
        if (delimiter == '\n') {
            key = Without(line, [](char c) { return c == '\r'; });
        } else {
            std::size_t cut = 0;
            while (cut < line.size() && !isDelimiter(line[cut])) ++cut;
            key = Without(std::string_view(line).substr(0, cut), [](char c) { return c == '\r'; });
            for (std::size_t j = cut; j < line.size(); ++j)
                if (!isDelimiter(line[j]) && line[j] != '\r') value += line[j];
        }
        const bool last = i + 1 == lines.size();
        if (!key.empty()) {
            insert(key, value);
        } else if (!last) {
            ++r.emptyKeys;
            if (keepEmptyKey) insert(key, value);
        }
    }
    return r;
}

ListResult ModelList(std::string_view text, bool keepEmptyLines) {
    ListResult r;
    const std::vector<std::string> lines = Lines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string line = Without(lines[i], [](char c) { return c == '\r'; });
        if (!line.empty()) {
            r.lines.push_back(line);
        } else {
            ++r.emptyLines;
            if (keepEmptyLines && i + 1 < lines.size()) r.lines.emplace_back();
        }
    }
    return r;
}

MapResult ParseMap(const char* text, unsigned length, int delimiter, bool keepEmptyKey) {
    MapResult r;
    r.duplicates = r.emptyKeys = 0xDEAD;
    if (delimiter == kAny)
        U_ParseStringToMapWithAnyDelimiter(text, length, r.map, &r.duplicates, &r.emptyKeys, keepEmptyKey);
    else
        U_ParseStringToMap(text, length, r.map, static_cast<char>(delimiter), &r.duplicates, &r.emptyKeys,
                           keepEmptyKey);
    return r;
}

ListResult ParseList(const char* text, unsigned length, bool keepEmptyLines) {
    ListResult r;
    r.emptyLines = 0xDEAD;
    U_ParseStringToList(text, length, r.lines, &r.emptyLines, keepEmptyLines);
    return r;
}

// Invariants that hold whatever the model says: no '\r' is kept, every key occurs in the text, and
// each line with a non-empty key either made an entry or counted as a duplicate.
void CheckMapInvariants(std::string_view text, int delimiter, const MapResult& r) {
    const std::string plain =
        Without(text.substr(0, std::min(text.size(), text.find('\0'))), [](char c) { return c == '\r'; });
    std::size_t keyedLines = 0;
    for (const auto& [key, value] : r.map) {
        Require(key.find('\r') == std::string::npos && value.find('\r') == std::string::npos);
        Require(key.find('\n') == std::string::npos && value.find('\n') == std::string::npos);
        Require(key.empty() || plain.find(key) != std::string::npos);
        if (delimiter == '\n') Require(value.empty());
        if (!key.empty()) ++keyedLines;
    }
    // A line has a key when some byte other than '\r' comes before its first delimiter.
    std::size_t linesWithKey = 0;
    for (const std::string& line : Lines(text)) {
        for (const char c : line) {
            const bool isDelimiter = delimiter == kAny
                                         ? c == '\t' || c == ' ' || c == '|'
                                         : delimiter != '\n' && c == static_cast<char>(delimiter);
            if (isDelimiter) break;
            if (c != '\r') {
                ++linesWithKey;
                break;
            }
        }
    }
    // Empty-key lines can add one entry ("") and further duplicates; subtract those.
    const auto emptyEntries = static_cast<std::size_t>(r.map.count(""));
    const std::size_t emptyDuplicates = r.emptyKeys > 0 && emptyEntries > 0 ? r.emptyKeys - 1 : 0;
    Require(keyedLines + r.duplicates - emptyDuplicates == linesWithKey);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    // First byte: the delimiter ('\n', any of tab/space/'|', or one of a few others); second byte:
    // the keep flags and where a shorter length cuts the text.
    static constexpr int kDelimiters[] = {'=', '\n', kAny, '\r', ' ', ':', '\0', '|'};
    const int delimiter = kDelimiters[data[0] % 8];
    const bool keep = (data[1] & 1) != 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 2), size - 2);
    const auto length = static_cast<unsigned>(text.size());
    const std::unique_ptr<char[]> block(new char[text.size()]);
    text.copy(block.get(), text.size());
    const std::string terminated(text);
    const auto strlength = static_cast<unsigned>(std::strlen(terminated.c_str()));
    const unsigned cut = length == 0 ? 0 : (data[1] >> 1) % length;

    const MapResult map = ParseMap(block.get(), length, delimiter, keep);
    Require(map == ModelMap(text, delimiter, keep));
    CheckMapInvariants(text, delimiter, map);
    Require(map == ParseMap(terminated.c_str(), strlength, delimiter, keep));
    Require(map == ParseMap(terminated.c_str(), ~0u, delimiter, keep));
    Require(ParseMap(block.get(), cut, delimiter, keep) == ModelMap(text.substr(0, cut), delimiter, keep));

    const ListResult list = ParseList(block.get(), length, keep);
    Require(list == ModelList(text, keep));
    for (const std::string& line : list.lines) Require(line.find_first_of("\r\n") == std::string::npos);
    Require(list == ParseList(terminated.c_str(), strlength, keep));
    Require(list == ParseList(terminated.c_str(), ~0u, keep));
    Require(ParseList(block.get(), cut, keep) == ModelList(text.substr(0, cut), keep));
    return 0;
}
