// TextSearch.h - finding, comparing, replacing and hashing 8-bit text: forward and backward
// searches, length-bounded searches, the search for a pattern that the text's end only begins, prefix
// tests, a non-backtracking wildcard matcher, null-tolerant comparison and a cheap hash for short codes.
#pragma once

#include "VeloraUtils/Export.h"

#include <cstdint>
#include <string>

// Conventions shared by the searches below:
// - Texts are NUL-terminated unless a length is given; with a length, exactly that many bytes are
//   searched and a NUL among them is an ordinary byte that never matches a pattern character.
// - The `Stri` forms fold only the text: 'a'..'z' of the text compare as 'A'..'Z', the pattern is
//   taken as it is and must be supplied in upper case (a lower-case pattern letter never matches).
// - Results point into the text (into the pattern for the End family); null means not found.
// - A null text or pattern is taken as empty. No search allocates; any thread may call.

// ---- Searches -------------------------------------------------------------------------------------

// First occurrence of `pattern` in `text`; null when either is empty or there is none.
VELORA_C_API const char* U_StrStr(const char* text, const char* pattern);
// As U_StrStr, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStr(const char* text, const char* upperPattern);
// First occurrence lying entirely within the first `length` bytes of `text`; null when `length` is 0,
// the pattern is empty or there is none.
VELORA_C_API const char* U_StrStrUpToLength(const char* text, unsigned int length, const char* pattern);
// As U_StrStrUpToLength, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStrUpToLength(const char* text, unsigned int length, const char* upperPattern);
// Start of the last occurrence lying entirely within the first `length` bytes of `text`; null when
// `length` is 0, the pattern is empty or there is none.
VELORA_C_API const char* U_StrStrFromBack(const char* text, unsigned int length, const char* pattern);
// As U_StrStrFromBack, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStrFromBack(const char* text, unsigned int length, const char* upperPattern);

// ---- Patterns the text's end begins ---------------------------------------------------------------
// For resuming a match across pieces of input: when the text ends with a proper prefix of the pattern
// (the longest one wins), the result points at the first pattern character still to be matched, so
// the caller continues with the next piece there. Complete occurrences are not reported: a text that
// ends with (or merely holds) the whole pattern gives null, as does a one-character or empty pattern.
// Example: text "xx8=FI", pattern "8=FIX" gives the pattern's "X"; text "8=FIX" gives null.

VELORA_C_API const char* U_StrStrEnd(const char* text, const char* pattern);
// As U_StrStrEnd, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStrEnd(const char* text, const char* upperPattern);
// As U_StrStrEnd with the text being exactly its first `length` bytes.
VELORA_C_API const char* U_StrStrEndUpToLength(const char* text, unsigned int length, const char* pattern);
// As U_StrStrEndUpToLength, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStrEndUpToLength(const char* text, unsigned int length,
                                                const char* upperPattern);

// ---- Prefixes and wildcards -----------------------------------------------------------------------

// The position in `text` just after `prefix` when the text starts with it, else null. An empty (or
// null) prefix gives `text` itself.
VELORA_C_API const char* U_StringStartsWith(const char* text, const char* prefix);
// As U_StringStartsWith, also failing when `*remaining` is 0 while prefix characters are left. It is
// decremented once per matched character, and stays decremented when the test finally fails. A null
// `remaining` fails.
VELORA_C_API const char* U_StringStartsWithUpToLength(const char* text, unsigned int* remaining,
                                                      const char* prefix);
// The position after `prefix` and the character `c` that must directly follow it; null otherwise
// (a `c` of 0 never matches). Example: "35=D", "35", '=' gives the position of "D".
VELORA_C_API const char* U_StringStartsWithPlusChar(const char* text, const char* prefix, char c);
// Case-sensitive wildcard match without backtracking: '?' takes one character; '*' takes at least one
// and ends at the first text character equal to the pattern character after it ("A*C" does not match
// "ABCBC", "*B" does not match "B"). Only a '*' ending the pattern may match nothing, and only when the
// text is used up when it is reached: "*" matches "" and "A*" matches "A". Null is taken as empty.
VELORA_C_API bool U_PatternMatch(const char* text, const char* pattern);
// True when `text` holds '*' or '?'; false for a null text.
VELORA_C_API bool U_HasWildCards(const char* text);

// ---- Comparison, replacement, hashing -------------------------------------------------------------

// -1, 0 or 1 as `a` sorts before, equal to or after `b`, bytes compared as unsigned; a null text
// equals an empty one and sorts before any non-empty text.
VELORA_C_API std::int8_t U_CompareText(const char* a, const char* b);
// True when U_CompareText(a, b) is not 0.
VELORA_C_API bool U_IsTextDifferent(const char* a, const char* b);
// Makes `*held` (a text allocated with new[] by this function, or null) hold a copy of `newText`;
// an empty or null text is held as null, and the old text is released with delete[]. Reuses the
// buffer when the lengths are equal. True when the held text changed; false for a null `held`.
VELORA_C_API bool U_ReplaceText(char** held, const char* newText);

VELORA_CXX_IN_C_API_BEGIN

// A cheap hash for short codes such as symbols, stable between runs: the length in bits 24-31, the
// first byte in bits 0-7, the last in bits 16-23 (length >= 2) and the middle one, s[(L-1)/2], in
// bits 8-15 (length >= 3), OR-ed together. Bytes are sign-extended first (kept for compatibility with
// stored values), so a byte from 0x80 upward sets all the bits above its own. "AB" is 0x02420041.
VELORA_C_API std::uint32_t U_StringHash(const std::string& s);
// Appends to `out` (not cleared) `text` with every occurrence of `search` replaced by `replacement`,
// found left to right without overlap and never in replaced text; an empty `search` appends `text`
// unchanged. Null texts are taken as empty. Returns `out`. Example: "aaa", "aa", "b" appends "ba".
VELORA_C_API std::string& U_ReplaceSubstring(const char* text, const char* search, const char* replacement,
                                             std::string& out);

VELORA_CXX_IN_C_API_END
