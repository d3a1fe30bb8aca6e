// DelimitedText.cpp - lines to a list and key/value lines to a map. The three map readers (one
// delimiter, any of tab/space/'|', a key/value file) share one line parser that differs only in its
// rules.
#include "VeloraUtils/DelimitedText.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

using StringMap = std::map<std::string, std::string>;

void Count(unsigned int* counter) {
    if (counter != nullptr) ++*counter;
}

void ResetCounter(unsigned int* counter) {
    if (counter != nullptr) *counter = 0;
}

// How one form of the map readers treats a line.
struct MapRules {
    char delimiter = '=';
    bool anyBlankOrBar = false;      // tab, space and '|' all act as the delimiter
    bool onlyFirstDelimiter = false; // later delimiters of a line stay in the value
    bool uppercaseKeys = false;
    char comment = '\0'; // a key beginning with it is skipped; 0 = none
    bool keepEmptyKey = false;

    bool IsDelimiter(char c) const {
        return anyBlankOrBar ? (c == '\t' || c == ' ' || c == '|') : c == delimiter;
    }
};

// Feeds text through the line rules into `out`. The state machine is kept across calls so that the
// text may arrive in pieces; Finish handles the line the text ends in.
class MapParser {
public:
    MapParser(StringMap& out, const MapRules& rules, unsigned int* duplicates, unsigned int* emptyKeys)
        : out_(out), rules_(rules), duplicates_(duplicates), emptyKeys_(emptyKeys) {
        ResetCounter(duplicates_);
        ResetCounter(emptyKeys_);
    }

    void Feed(const char* text, unsigned int length) {
        for (unsigned int i = 0; i < length && text[i] != '\0'; ++i) Take(text[i]);
    }

    // A pending key is inserted with its value; a pending empty key is neither counted nor inserted.
    void Finish() {
        if (key_.empty()) return;
        if (comment_)
            Count(emptyKeys_);
        else
            Insert(std::move(key_));
        key_.clear();
    }

private:
    void Take(char c) {
        if (rules_.IsDelimiter(c)) {
            if (c == '\n') return EndEntry(); // a list of keys: every line ends as a key
            if (inKey_ || !rules_.onlyFirstDelimiter) {
                inKey_ = false;
                return;
            }
        }
        if (c == '\n') {
            EndEntry();
            value_.clear();
            inKey_ = true;
        } else if (c == '\r') {
            // dropped wherever it stands
        } else if (inKey_) {
            if (key_.empty()) comment_ = c == rules_.comment;
            key_ += rules_.uppercaseKeys && c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
        } else {
            value_ += c;
        }
    }

    void EndEntry() {
        if (key_.empty()) {
            Count(emptyKeys_);
            if (rules_.keepEmptyKey) Insert(std::string());
        } else if (comment_) {
            Count(emptyKeys_);
        } else {
            Insert(std::move(key_));
        }
        key_.clear();
        comment_ = false;
    }

    // First one wins: a key already present keeps its value and counts as a duplicate.
    void Insert(std::string&& key) {
        if (!out_.try_emplace(std::move(key), value_).second) Count(duplicates_);
    }

    StringMap& out_;
    const MapRules rules_;
    unsigned int* const duplicates_;
    unsigned int* const emptyKeys_;
    std::string key_;
    std::string value_;
    bool inKey_ = true;
    bool comment_ = false;
};

void ParseMap(const char* text, unsigned int length, StringMap& out, const MapRules& rules,
              unsigned int* duplicates, unsigned int* emptyKeys) {
    MapParser parser(out, rules, duplicates, emptyKeys);
    if (text == nullptr) return;
    parser.Feed(text, length);
    parser.Finish();
}

} // namespace

void U_ParseStringToList(const char* text, unsigned int length, std::list<std::string>& out,
                         unsigned int* emptyLines, bool keepEmptyLines) {
    ResetCounter(emptyLines);
    std::string line;
    for (unsigned int i = 0; text != nullptr && i < length && text[i] != '\0'; ++i) {
        const char c = text[i];
        if (c == '\r') continue;
        if (c != '\n') {
            line += c;
        } else if (!line.empty()) {
            out.push_back(std::move(line));
            line.clear();
        } else {
            Count(emptyLines);
            if (keepEmptyLines) out.emplace_back();
        }
    }
    // The text's last line: appended when it holds something, else counted (and never appended),
    // so a text ending in '\n' counts the empty line after it.
    if (!line.empty())
        out.push_back(std::move(line));
    else
        Count(emptyLines);
}

void U_ParseStringToMap(const char* text, unsigned int length, StringMap& out, char delimiter,
                        unsigned int* duplicates, unsigned int* emptyKeys, bool keepEmptyKey) {
    MapRules rules;
    rules.delimiter = delimiter;
    rules.keepEmptyKey = keepEmptyKey;
    ParseMap(text, length, out, rules, duplicates, emptyKeys);
}

void U_ParseStringToMapWithAnyDelimiter(const char* text, unsigned int length, StringMap& out,
                                        unsigned int* duplicates, unsigned int* emptyKeys,
                                        bool keepEmptyKey) {
    MapRules rules;
    rules.anyBlankOrBar = true;
    rules.keepEmptyKey = keepEmptyKey;
    ParseMap(text, length, out, rules, duplicates, emptyKeys);
}

bool U_ReadFileToStringMap(const char* path, StringMap& out, char delimiter, char commentChar,
                           bool uppercaseKeys, unsigned int* duplicates, unsigned int* emptyOrCommentLines,
                           bool keepEmptyKey) {
    ResetCounter(duplicates);
    ResetCounter(emptyOrCommentLines);
    // The whole file is read before anything is parsed, so a file that fails half-way adds nothing.
    std::string contents;
    if (!U_ReadFileToString(path, contents)) return false;
    MapRules rules;
    rules.delimiter = delimiter;
    rules.onlyFirstDelimiter = true;
    rules.uppercaseKeys = uppercaseKeys;
    rules.comment = commentChar;
    rules.keepEmptyKey = keepEmptyKey;
    MapParser parser(out, rules, duplicates, emptyOrCommentLines);
    // Pieces of at most 4 GiB: the parser's length is 32-bit.
    for (std::size_t at = 0; at < contents.size();) {
        const std::size_t piece = std::min<std::size_t>(contents.size() - at, 0xFFFFFFFFu);
        parser.Feed(contents.data() + at, static_cast<unsigned int>(piece));
        at += piece;
    }
    parser.Finish();
    return true;
}
