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

// First occurrence of `pattern` in `text`; null when either is empty or there is none.
VELORA_C_API const char* U_StrStr(const char* text, const char* pattern);
// As U_StrStr, folding the text's case against an upper-case pattern.
VELORA_C_API const char* U_StriStr(const char* text, const char* upperPattern);
