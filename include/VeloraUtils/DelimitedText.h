// DelimitedText.h - blocks of text (a file's contents, the clipboard's text) turned into a list of
// lines or into a name-ordered map of key and value, and the small file functions that go with them.
// The parsers are literal: no trimming, quoting or escapes; '\r' is dropped wherever it stands.
#pragma once

#include <list>
#include <map>
#include <string>

#include "VeloraUtils/Export.h"

// Conventions shared by the parsers below:
// - The text is read for `length` bytes or up to its first NUL, whichever comes first; a null text
//   reads as an empty one.
// - The output list or map is not cleared: lines are appended at its end, and entries are only
//   added, never replaced, so the first occurrence of a key wins (also against what the map held).
// - Counters are optional (null = not counted); each one given is set to 0 on entry.
// - Thread-safe on distinct outputs; throws only std::bad_alloc (or std::length_error).

VELORA_CXX_IN_C_API_BEGIN

// Appends each line ending in '\n' (and a final one without it) to `out`. Empty lines are counted
// in `emptyLines` and appended as "" only with keepEmptyLines. A text that does not end in a
// non-empty line counts one more empty line without appending it: "a\n" gives ["a"] and a count of
// 1, and an empty text gives [] and a count of 1.
VELORA_C_API void U_ParseStringToList(const char* text, unsigned int length, std::list<std::string>& out,
                                      unsigned int* emptyLines, bool keepEmptyLines);

// Each line is a key, optionally followed by `delimiter` and a value; every delimiter is dropped, so
// "a=b=c" gives key "a" and value "bc", and "a = b" gives "a " and " b". A line with an empty key
// is counted in `emptyKeys` and inserted under "" only with keepEmptyKey; a key already present
// is counted in `duplicates` and keeps its first value. With delimiter '\n' every line is a key
// with an empty value. A last line without '\n' and with an empty key is ignored.
VELORA_C_API void U_ParseStringToMap(const char* text, unsigned int length,
                                     std::map<std::string, std::string>& out, char delimiter,
                                     unsigned int* duplicates, unsigned int* emptyKeys, bool keepEmptyKey);

// As U_ParseStringToMap with three delimiters: tab, space and '|'. Each ends the key and is dropped,
// also inside the value: "KEY  some value" gives key "KEY" and value "somevalue".
VELORA_C_API void U_ParseStringToMapWithAnyDelimiter(const char* text, unsigned int length,
                                                     std::map<std::string, std::string>& out,
                                                     unsigned int* duplicates, unsigned int* emptyKeys,
                                                     bool keepEmptyKey);

// Reads the file at `path` (bytes as stored, up to its end or first NUL) with the rules of
// U_ParseStringToMap, except that only the first delimiter of a line ends the key and later ones
// stay in the value ("a=b=c" gives "b=c"); uppercaseKeys stores 'a'..'z' of keys as 'A'..'Z'; a
// line whose key begins with `commentChar` (0 = none) is not inserted and is counted in
// `emptyOrCommentLines`. False, with `out` untouched, when the file cannot be opened or read; true
// otherwise, also for an empty file.
VELORA_C_API bool U_ReadFileToStringMap(const char* path, std::map<std::string, std::string>& out,
                                        char delimiter, char commentChar, bool uppercaseKeys,
                                        unsigned int* duplicates, unsigned int* emptyOrCommentLines,
                                        bool keepEmptyKey);

// True when `path` names an existing file or directory, or is a pattern with '*' or '?' in its last
// component that matches at least one entry of its directory. False for a null or empty path and
// for a path ending in a separator.
VELORA_C_API bool U_FileExists(const char* path);

// Appends the file's bytes, as stored (no line-end translation), to `out` (which is not cleared)
// up to the file's end or its first NUL byte. False, with `out` unchanged, when the file cannot be
// opened or read (a directory, for instance).
VELORA_C_API bool U_ReadFileToString(const char* path, std::string& out);

// Replaces the file's contents with every byte of `text`, as it is (no line-end translation). The
// bytes go to a new file in the same directory, which then replaces the target in one step: on
// failure (no such directory, the target a directory or read-only, a full disk) false is returned
// and the old file is left as it was.
VELORA_C_API bool U_WriteStringToFile(const char* path, const std::string& text);

VELORA_CXX_IN_C_API_END
