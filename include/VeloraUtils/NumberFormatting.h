// NumberFormatting.h - integers and characters written as text.
// Two families: the append family (U_Append*) appends to a std::string, optionally followed by a
// separator; the buffer family (*ToStr) writes right-aligned into a caller's buffer and returns the
// first character of the text. Digits are ASCII, hexadecimal is lowercase without prefix, no locale.
#pragma once

#include <cstdint>
#include <string>

#include "VeloraUtils/Export.h"

VELORA_CXX_IN_C_API_BEGIN

// ---------------------------------------------------------------------------------------------
// Append family. Each member appends the value's text to `s`, then `sep` unless it is 0, and
// returns `s` so calls chain. Thread-safe on distinct strings; throws only std::length_error or
// std::bad_alloc from the string itself.
// ---------------------------------------------------------------------------------------------

// "1" or "0".
VELORA_C_API std::string& U_AppendBool(std::string& s, bool value, char sep);
// Decimal text of an unsigned value.
VELORA_C_API std::string& U_AppendUChar(std::string& s, unsigned char value, char sep);
VELORA_C_API std::string& U_AppendUShort(std::string& s, unsigned short value, char sep);
VELORA_C_API std::string& U_AppendUInt(std::string& s, unsigned int value, char sep);
VELORA_C_API std::string& U_AppendUInt64(std::string& s, std::uint64_t value, char sep);
// Lowercase hexadecimal, no prefix, no leading zeros (0 gives "0").
VELORA_C_API std::string& U_AppendUCharHex(std::string& s, unsigned char value, char sep);
VELORA_C_API std::string& U_AppendUShortHex(std::string& s, unsigned short value, char sep);
VELORA_C_API std::string& U_AppendUIntHex(std::string& s, unsigned int value, char sep);
VELORA_C_API std::string& U_AppendUInt64Hex(std::string& s, std::uint64_t value, char sep);
// "-" for a negative value, then the digits of its magnitude.
VELORA_C_API std::string& U_AppendInt(std::string& s, int value, char sep);
VELORA_C_API std::string& U_AppendInt64(std::string& s, std::int64_t value, char sep);
// Codes 33..126 appear as themselves; any other code (space included) as "#" and its decimal
// code 0..255, so 'A' gives "A" and ' ' gives "#32".
VELORA_C_API std::string& U_AppendPrintableChar(std::string& s, char value, char sep);
// Codes 33..126: appends the character and `sep`, returns true. Anything else: appends nothing
// (not even the separator) and returns false.
VELORA_C_API bool U_AppendPrintableCharIfValid(std::string& s, char value, char sep);
// Exactly two digits: (value / 10 if below 10, else 0) and value % 10, so 7 gives "07" and
// 123 gives "03" (hundreds are dropped on purpose).
VELORA_C_API std::string& U_AppendTwoDigits(std::string& s, unsigned int value, char sep);
// Exactly three digits: value / 100 (0 if that is 10 or more), then the two-digit form of
// value % 100.
VELORA_C_API std::string& U_AppendThreeDigits(std::string& s, unsigned int value, char sep);
// Exactly four digits: value / 1000 (0 if that is 10 or more), (value % 1000) / 100, then the
// two-digit form of value % 100.
VELORA_C_API std::string& U_AppendFourDigits(std::string& s, unsigned int value, char sep);

// ---------------------------------------------------------------------------------------------
// Buffer family. The text is written backward so that it ends at buf[size - 1], which receives the
// terminating zero; `sep` (unless 0) stands just before that zero. The result points at the first
// character of the text; its length is (buf + size - 1) - result. When the buffer is too small
// the most significant characters are dropped silently; size 0 writes nothing and returns buf.
// `decimals` > 0 prints the value as fixed point scaled by 10^decimals: 5 with 3 decimals is
// "0.005". Nothing is allocated; any thread may call on distinct buffers.
// ---------------------------------------------------------------------------------------------

// Signed members write "-" just before the digits without reserving room for it: the caller's
// buffer must hold sign, digits, point, decimals, separator and terminator. When the digits
// already start at buf[0] the sign has no place inside the buffer and is left out.
VELORA_C_API char* U_IntToStr(int value, char* buf, unsigned int size, unsigned char decimals, char sep);
VELORA_C_API char* U_Int64ToStr(std::int64_t value, char* buf, unsigned int size, unsigned char decimals,
                                char sep);
VELORA_C_API char* U_UIntToStr(unsigned int value, char* buf, unsigned int size, unsigned char decimals,
                               char sep);
VELORA_C_API char* U_UInt64ToStr(std::uint64_t value, char* buf, unsigned int size, unsigned char decimals,
                                 char sep);
VELORA_C_API char* U_ShortToStr(short value, char* buf, unsigned int size, char sep);
VELORA_C_API char* U_UShortToStr(unsigned short value, char* buf, unsigned int size, char sep);
VELORA_C_API char* U_UCharToStr(unsigned char value, char* buf, unsigned int size, char sep);
// The character's code as a signed number: codes above 127 print negative.
VELORA_C_API char* U_CharAsIntToStr(char value, char* buf, unsigned int size, char sep);

// Lowercase hexadecimal.
VELORA_C_API char* U_UCharHexToStr(unsigned char value, char* buf, unsigned int size, char sep);
VELORA_C_API char* U_UShortHexToStr(unsigned short value, char* buf, unsigned int size, char sep);
VELORA_C_API char* U_UIntHexToStr(unsigned int value, char* buf, unsigned int size, char sep);
VELORA_C_API char* U_UInt64HexToStr(std::uint64_t value, char* buf, unsigned int size, char sep);

// Whole part grouped by "," in threes counted from the point; the fraction is never grouped:
// 123456789 with 2 decimals is "1,234,567.89". The signed members write "-" only when the text
// does not already start at buf[0]; otherwise the sign is silently left out.
VELORA_C_API char* U_IntToStrWithCommas(int value, char* buf, unsigned int size, unsigned char decimals,
                                        char sep);
VELORA_C_API char* U_UIntToStrWithCommas(unsigned int value, char* buf, unsigned int size,
                                         unsigned char decimals, char sep);
VELORA_C_API char* U_UShortToStrWithCommas(unsigned short value, char* buf, unsigned int size,
                                           unsigned char decimals, char sep);
VELORA_C_API char* U_Int64ToStrWithCommas(std::int64_t value, char* buf, unsigned int size,
                                          unsigned char decimals, char sep);
VELORA_C_API char* U_UInt64ToStrWithCommas(std::uint64_t value, char* buf, unsigned int size,
                                           unsigned char decimals, char sep);

// Digits zero-padded on the left to at least `width` characters (bounded by the room left). With
// `dropTrailingZeros`, low-order zero digits are skipped until the first nonzero one, but still
// count towards `width`: 500 with width 4 prints "05" with the flag and "0500" without; 0 with the
// flag and width 4 prints "000". Used for fractions.
VELORA_C_API char* U_UIntToStrPad(unsigned int value, char* buf, unsigned int size, unsigned int width,
                                  bool dropTrailingZeros, char sep);

// Digits (at least one), then `fill` in every position down to buf[0]; returns buf whenever
// size > 0. 42 in a buffer of 6 with fill '0' is "00042".
VELORA_C_API char* U_UIntToStrPrepended(unsigned int value, char* buf, unsigned int size, char fill,
                                        char sep);
VELORA_C_API char* U_UInt64ToStrPrepended(std::uint64_t value, char* buf, unsigned int size, char fill,
                                          char sep);
VELORA_C_API char* U_UIntHexToStrPrepended(unsigned int value, char* buf, unsigned int size, char fill,
                                           char sep);
VELORA_C_API char* U_UInt64HexToStrPrepended(std::uint64_t value, char* buf, unsigned int size, char fill,
                                             char sep);

// ---------------------------------------------------------------------------------------------
// Forward writers into the start of a buffer.
// ---------------------------------------------------------------------------------------------

// size >= 3: writes '0' + value / 10 and '0' + value % 10 (no bound: 100 or more gives a non-digit
// first character), then `sep` if nonzero and size > 3, then a zero; returns the zero's address.
// size 1 or 2: writes only buf[0] = 0 and returns buf. size 0: writes nothing, returns nullptr.
VELORA_C_API char* U_AppendTwoDigitsToBuf(char* buf, unsigned int size, unsigned int value, char sep);
// As U_AppendTwoDigitsToBuf without separator and terminator; returns buf + 2 for size >= 3.
VELORA_C_API char* U_AppendTwoDigitsToBufWithNoTerm0(char* buf, unsigned int size, unsigned int value);

// Finds the first `delimiter` in the zero-terminated `text`, replaces it by 0, sets *found and
// returns its address; without one (a delimiter of 0 is never found) clears *found and returns the
// address of the text's terminator. The next section starts one past the result.
VELORA_C_API char* U_MarkSectionEnd(char* text, char delimiter, bool* found);

VELORA_CXX_IN_C_API_END
