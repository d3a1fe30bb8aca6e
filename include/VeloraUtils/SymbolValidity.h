// SymbolValidity.h - whether a text is an acceptable market symbol of a given kind: a stock or index
// symbol, a market maker identifier (Mmid), a basket name or an option root. Each kind has the
// characters that may open a symbol, the characters that may follow and a maximum length.
#pragma once

#include "VeloraUtils/Export.h"

// The rules are fixed when the library is loaded and never change, so every function here may be
// called from any thread. Only upper-case letters are ever valid: a lower-case letter fails every
// rule. The character lists returned are static, NUL-terminated and must not be modified.
//
// | kind   | first character                       | later characters                          | max |
// | Stock  | A-Z                                   | A-Z - + * # ! @ % ^ = ~ $ .               |   7 |
// | Index  | A-Z / $ .                             | A-Z / $ .                                 |   7 |
// | Mmid   | A-Z                                   | A-Z                                       |   4 |
// | Basket | A-Z 0-9 _                             | blank A-Z 0-9 _ - + * # ! @ % ^ = ~ $ .   |  64 |
// | Option | A-Z                                   | A-Z 0-9                                   |   7 |

// True when `symbol` is not null, has 1 to the maximum number of characters, its first character
// may open a symbol of the kind and every later one may follow. A basket name may contain blanks but
// not begin with one.
VELORA_C_API bool U_IsStockSymbolValid(const char* symbol);
VELORA_C_API bool U_IsIndexSymbolValid(const char* symbol);
VELORA_C_API bool U_IsMmidSymbolValid(const char* symbol);
VELORA_C_API bool U_IsBasketSymbolValid(const char* symbol);
VELORA_C_API bool U_IsOptionSymbolValid(const char* symbol);

// True when `c` may open a symbol of the kind (`first`) or follow the first character (!`first`).
// Any of the 256 byte values may be passed; NUL is never valid.
VELORA_C_API bool U_IsStockCharValid(char c, bool first);
VELORA_C_API bool U_IsIndexCharValid(char c, bool first);
VELORA_C_API bool U_IsMmidCharValid(char c, bool first);
VELORA_C_API bool U_IsBasketCharValid(char c, bool first);
VELORA_C_API bool U_IsOptionCharValid(char c, bool first);

// The characters that may follow the first one, as a list.
VELORA_C_API const char* U_GetValidStockChars();
VELORA_C_API const char* U_GetValidIndexChars();
VELORA_C_API const char* U_GetValidMmidChars();
VELORA_C_API const char* U_GetValidBasketChars();
VELORA_C_API const char* U_GetValidOptionChars();

// The characters that may open a symbol, as a list; for Mmid the very list U_GetValidMmidChars
// returns. Options have no such getter (their first character is any of A-Z).
VELORA_C_API const char* U_GetValidStockFirstChars();
VELORA_C_API const char* U_GetValidIndexFirstChars();
VELORA_C_API const char* U_GetValidMmidFirstChars();
VELORA_C_API const char* U_GetValidBasketFirstChars();
