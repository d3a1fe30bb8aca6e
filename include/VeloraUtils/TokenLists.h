// TokenLists.h - splitting a NUL-terminated 8-bit text into a list of token strings (literal runs and
// marker specifiers, or pieces between two-character separators) and joining a list back into one text.
#pragma once

#include "VeloraUtils/Export.h"

#include <list>
#include <string>

// The splitters append to the caller's list and never clear it; a null or empty text appends nothing.
// They report no errors: only the standard containers' own growth can throw.

VELORA_CXX_IN_C_API_BEGIN

// Splits `text` into literal runs and two-character specifiers `marker` + x, each appended as its own
// token; a literal run before a specifier is appended even when empty. A doubled marker stands for one
// marker inside a run but is kept whole at a run's start; a marker ending the text stays in the final
// run, which is then appended even if that makes it the only token. A final run is appended only when
// not empty. "Bid %p x %s" gives "Bid ", "%p", " x ", "%s"; "%p%s" gives "", "%p", "", "%s";
// "a%%b" gives "a%b" and "%%d" gives "%%d". A `marker` of 0 is never met: the text is one run.
VELORA_C_API void U_BreakStringIntoTokens(const char* text, char marker, std::list<std::string>& tokens);
// Splits `text` at every separator `first` + `second`, appending each piece, the last one always (so a
// text ending with the separator gives a final empty token). A `first` followed by another character
// is kept with that character, so a separator right after a `first` is not seen; a `first` ending the
// text is kept in the last piece. "a\r\nb\r\n" gives "a", "b", "". A `first` of 0 is never met; with a
// `second` of 0 a `first` ending the text is a separator: the piece before it is the last token.
VELORA_C_API void U_BreakStringIntoTokensBy2Chars(const char* text, char first, char second,
                                                  std::list<std::string>& tokens);
// Replaces `result` with the tokens of `list` in order, `separator` (unless null or empty) between each two;
// an empty list empties it. Returns `result`. {"a","b","c"} with "," gives "a,b,c".
VELORA_C_API std::string& U_CombineTokensIntoString(const char* separator, const std::list<std::string>& list,
                                                    std::string& result);

VELORA_CXX_IN_C_API_END
