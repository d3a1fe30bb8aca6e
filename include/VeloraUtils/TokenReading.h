// TokenReading.h - reading one token at a time out of NUL-terminated, machine-made text, and copying
// tokens into fixed-width padded fields. Readers take the address of the caller's character pointer
// (the cursor) and leave it where the next field starts; no reader ever moves past the terminating NUL.
#pragma once

#include "VeloraUtils/Export.h"

#include <cstdint>
#include <string>

// Conventions shared by every reader below:
// - At the terminating NUL on entry a reader returns its failure value (false or the default) and
//   leaves the cursor where it is.
// - A delimiter of 0 is never found, so the token then runs to the end of the text.
// - `remaining` (UpToLength variants) is the number of characters the caller allows to be consumed;
//   it is decremented once per consumed character, a consumed delimiter included.
// - Decimal values are value * 10 + (c - '0') per token character in the result's width, wrapping;
//   digits are not validated (a non-digit adds its signed 8-bit code minus 48), no blank or '+' is
//   skipped. Signed readers accept one leading '-'; a token that is only "-" gives 0.
// - Hexadecimal values are value * 16 + digit; a character that is not a hex digit adds nothing.

// ---- Skipping -------------------------------------------------------------------------------------

// Advances past the next delimiter, or to the NUL. False only when the cursor is at the NUL on entry.
VELORA_C_API bool U_SkipToDelimiter(const char** cursor, char delimiter);
// Advances over a run of delimiter characters (possibly none). False only at the NUL on entry.
VELORA_C_API bool U_SkipDelimiters(const char** cursor, char delimiter);
// As U_SkipToDelimiter, decrementing `remaining` per consumed character. False when at the NUL or
// `remaining` is 0 on entry. The count is tested on entry only: a count shorter than the text wraps.
VELORA_C_API bool U_SkipToDelimiterUpToLength(const char** cursor, unsigned int* remaining, char delimiter);
// As U_SkipDelimiters, decrementing `remaining` per skipped delimiter; tested on entry only.
VELORA_C_API bool U_SkipDelimitersUpToLength(const char** cursor, unsigned int* remaining, char delimiter);

// ---- String tokens --------------------------------------------------------------------------------

// Copies the token into `dest` (`size` bytes, terminator included) and consumes its delimiter.
// False without writing when at the NUL or `size` is 0. A token longer than `size` - 1 is truncated
// and terminated, the cursor still goes past its delimiter, and the result is false.
VELORA_C_API bool U_ReadCharBufferToken(char* dest, unsigned int size, const char** cursor, char delimiter);
// Appends the token to `dest` (never cleared) and consumes its delimiter. False only at the NUL.
VELORA_C_API bool U_ReadStrToken(std::string& dest, const char** cursor, char delimiter);
// As U_ReadStrToken, bounded by `remaining`: false when at the NUL or `remaining` is 0 on entry. Stops
// when `remaining` reaches 0, leaving a following delimiter unconsumed; true otherwise.
VELORA_C_API bool U_ReadStrTokenUpToLength(std::string& dest, const char** cursor, unsigned int* remaining,
                                           char delimiter);
// Appends the token ended by either delimiter, which is consumed. False only at the NUL on entry.
VELORA_C_API bool U_ReadStrTokenWith2Delimiters(std::string& dest, const char** cursor, char delimiter1,
                                                char delimiter2);
// Appends the token and returns true only if it ends at `delimiter` (consumed). Meeting `stopChar`
// consumes it and returns false; so does reaching the NUL (not consumed). What was read stays appended.
VELORA_C_API bool U_ReadStrTokenToMandatoryDel(std::string& dest, const char** cursor, char delimiter,
                                               char stopChar);
// Copies at most `size` - 1 characters, 'a'..'z' turned into 'A'..'Z', into `dest` and terminates it.
// Stops on the delimiter without consuming it, at the NUL, or when the buffer is full (the cursor is
// then left inside the token). With `zeroFill` every byte after the terminator is zeroed. Size 0: no-op.
VELORA_C_API void U_CopyUppercase(char* dest, unsigned short size, const char** cursor, char delimiter,
                                  bool zeroFill);

// ---- Decimal integers, one delimiter ----------------------------------------------------------------
// At the NUL: `defaultValue`, cursor unmoved. Empty token (delimiter at the cursor): the delimiter is
// consumed and `defaultValue` returned. Otherwise the token's value; its delimiter is consumed.

VELORA_C_API unsigned int U_ReadUIntToken(const char** cursor, char delimiter, unsigned int defaultValue);
VELORA_C_API std::uint64_t U_ReadUInt64Token(const char** cursor, char delimiter, std::uint64_t defaultValue);
VELORA_C_API unsigned short U_ReadUShortToken(const char** cursor, char delimiter,
                                              unsigned short defaultValue);
VELORA_C_API unsigned char U_ReadUCharToken(const char** cursor, char delimiter, unsigned char defaultValue);
// Kept for compatibility with existing callers: an empty token returns `defaultValue` and leaves the
// cursor ON the delimiter, unlike every other one-delimiter reader.
VELORA_C_API int U_ReadIntToken(const char** cursor, char delimiter, int defaultValue);
VELORA_C_API std::int64_t U_ReadInt64Token(const char** cursor, char delimiter, std::int64_t defaultValue);
// True exactly when the token's first character is '1' ("true", "y" and "2" are false).
VELORA_C_API bool U_ReadBoolToken(const char** cursor, char delimiter, bool defaultValue);

// ---- Hexadecimal integers ---------------------------------------------------------------------------

VELORA_C_API std::uint64_t U_ReadUInt64HexToken(const char** cursor, char delimiter,
                                                std::uint64_t defaultValue);
VELORA_C_API unsigned short U_ReadUShortHexToken(const char** cursor, char delimiter,
                                                 unsigned short defaultValue);
VELORA_C_API unsigned char U_ReadUCharHexToken(const char** cursor, char delimiter,
                                               unsigned char defaultValue);
// Kept for compatibility with existing callers: an empty token does not give the default; its
// delimiter is consumed and the FOLLOWING token is read instead ("|1F|" gives 31, "|" gives 0).
VELORA_C_API unsigned int U_ReadUIntHexToken(const char** cursor, char delimiter, unsigned int defaultValue);

// ---- Decimal integers with a digit count ------------------------------------------------------------
// On entry *digitCount is the most leading token characters that may contribute; the whole token is
// walked anyway and its delimiter consumed. On return *digitCount = min(characters walked, counted in
// 8 bits; entry value). At the NUL or an empty token: *digitCount = 0, `defaultValue` (an empty token's
// delimiter is consumed). "12345|" asking for 3 gives 123 and a count of 3.

VELORA_C_API unsigned int U_ReadUIntTokenWithDigitCount(const char** cursor, unsigned char* digitCount,
                                                        char delimiter, unsigned int defaultValue);
VELORA_C_API unsigned short U_ReadUShortTokenWithDigitCount(const char** cursor, unsigned char* digitCount,
                                                            char delimiter, unsigned short defaultValue);
// As above, bounded by `remaining` (0 on entry: count 0, default). The walk also stops when `remaining`
// reaches 0, leaving a following delimiter unconsumed.
VELORA_C_API unsigned int U_ReadUIntTokenUpToLengthWithDigitCount(const char** cursor,
                                                                  unsigned int* remaining,
                                                                  unsigned char* digitCount, char delimiter,
                                                                  unsigned int defaultValue);
VELORA_C_API unsigned short U_ReadUShortTokenUpToLengthWithDigitCount(const char** cursor,
                                                                      unsigned int* remaining,
                                                                      unsigned char* digitCount,
                                                                      char delimiter,
                                                                      unsigned short defaultValue);

// ---- Decimal integers, two delimiters ---------------------------------------------------------------
// At the NUL or either delimiter: `defaultValue`, cursor unmoved. Otherwise the value of the token up to
// either delimiter or the NUL; the cursor is left ON the delimiter so the caller sees which one it was.

VELORA_C_API unsigned int U_ReadUIntTokenWith2Delimiters(const char** cursor, char delimiter1,
                                                         char delimiter2, unsigned int defaultValue);
VELORA_C_API std::uint64_t U_ReadUInt64TokenWith2Delimiters(const char** cursor, char delimiter1,
                                                            char delimiter2, std::uint64_t defaultValue);
VELORA_C_API unsigned short U_ReadUShortTokenWith2Delimiters(const char** cursor, char delimiter1,
                                                             char delimiter2, unsigned short defaultValue);
VELORA_C_API int U_ReadIntTokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2,
                                               int defaultValue);
VELORA_C_API std::int64_t U_ReadInt64TokenWith2Delimiters(const char** cursor, char delimiter1,
                                                          char delimiter2, std::int64_t defaultValue);
// As above, bounded by `remaining` (0 on entry: default); each accumulated character decrements it and
// reading stops where it reaches 0.
VELORA_C_API unsigned int U_ReadUIntTokenWith2DelimitersUpToLength(const char** cursor,
                                                                   unsigned int* remaining, char delimiter1,
                                                                   char delimiter2,
                                                                   unsigned int defaultValue);
VELORA_C_API std::uint64_t U_ReadUInt64TokenWith2DelimitersUpToLength(const char** cursor,
                                                                      unsigned int* remaining,
                                                                      char delimiter1, char delimiter2,
                                                                      std::uint64_t defaultValue);

// ---- Characters -------------------------------------------------------------------------------------

// The token's first character, or `defaultValue` when it is not printable (signed value below 32, 127,
// or any byte from 128 up); the rest of the token and its delimiter are skipped. Empty token: default,
// delimiter consumed.
VELORA_C_API char U_ReadCharToken(const char** cursor, char delimiter, char defaultValue);
// As U_ReadCharToken, bounded by `remaining` (0 on entry: default). The first character and a consumed
// delimiter decrement it; the skip of the rest starts only if it is still above 0 and is not bounded.
VELORA_C_API char U_ReadCharTokenUpToLength(const char** cursor, unsigned int* remaining, char delimiter,
                                            char defaultValue);
// The character at the cursor as it is (no filter); advances one and decrements `remaining`.
// `defaultValue` when at the NUL or `remaining` is 0.
VELORA_C_API char U_ReadCharTokenAndUpdateLength(const char** cursor, unsigned int* remaining,
                                                 char defaultValue);

// ---- Short codes packed into integers -----------------------------------------------------------------
// The first N characters become the bytes of a little-endian integer (first character in the lowest
// byte, missing bytes 0), so that codes compare and hash as numbers. "AB" packs to 0x4241.

// Pack the token's first 2, 4 or 8 characters and skip the rest of it and its delimiter. At the NUL:
// default; empty token: delimiter consumed, default.
VELORA_C_API unsigned short U_ReadStrAsUShortToken(const char** cursor, char delimiter,
                                                   unsigned short defaultValue);
VELORA_C_API unsigned int U_ReadStrAsUIntToken(const char** cursor, char delimiter,
                                               unsigned int defaultValue);
VELORA_C_API std::uint64_t U_ReadStrAsUInt64Token(const char** cursor, char delimiter,
                                                  std::uint64_t defaultValue);
// Pack the first 2, 4 or 8 characters before the NUL; empty text gives 0.
VELORA_C_API unsigned short U_StringToUShort(const char* text);
VELORA_C_API unsigned int U_StringToUInt(const char* text);
VELORA_C_API std::uint64_t U_StringToUInt64(const char* text);
// At most 7 characters: the top byte stays 0, so the value read as bytes is a NUL-terminated string.
VELORA_C_API std::uint64_t U_StringToUInt64Term0(const char* text);
// Pack at most min(`length`, 8) (Term0: 7) characters, stopping earlier at the NUL.
VELORA_C_API std::uint64_t U_StringOfLengthToUInt64(const char* text, unsigned int length);
VELORA_C_API std::uint64_t U_StringOfLengthToUInt64Term0(const char* text, unsigned int length);

// ---- Copying into padded fields -----------------------------------------------------------------------
// `dest` is a fixed field of `size` bytes that gets no terminator of its own: text, then `padChar` up to
// its end. The delimiter variants return the position in `src` after the token: at the NUL, or one past
// the delimiter; a token longer than the field is truncated and skipped up to its delimiter.

VELORA_C_API const char* U_CopyToDelimiterAndPad(char* dest, unsigned int size, const char* src, char padChar,
                                                 char delimiter);
// Copies up to the NUL. With `reserveLast` at most `size` - 1 characters fit and the last byte is always
// `padChar` (a terminator when `padChar` is 0). Size 0: no-op.
VELORA_C_API void U_CopyAndPad(char* dest, unsigned int size, const char* src, char padChar,
                               bool reserveLast);
// Copies up to the NUL, then `extraChar` once when it is not 0 and room is left, then pads. A source
// that fills the field gets neither.
VELORA_C_API void U_CopyPlusOneCharAndPad(char* dest, unsigned int size, const char* src, char extraChar,
                                          char padChar);
// U_CopyToDelimiterAndPad with `extraChar` written after the token as in U_CopyPlusOneCharAndPad.
VELORA_C_API const char* U_CopyToDelimiterPlusOneCharAndPad(char* dest, unsigned int size, const char* src,
                                                            char extraChar, char padChar, char delimiter);
// U_CopyToDelimiterAndPad bounded by `remaining`: 0 on entry writes nothing and returns `src`; copying
// stops where it reaches 0 and that position is returned. When the field fills first, the first skipped
// token character is not counted (kept for compatibility), later ones and the delimiter are.
VELORA_C_API const char* U_CopyToDelimiterUpToLengthAndPad(char* dest, unsigned int size, const char* src,
                                                           unsigned int* remaining, char padChar,
                                                           char delimiter);
// The previous with `extraChar`; here the copy itself decrements `remaining` without testing it, so a
// count shorter than the token wraps (kept for compatibility with existing callers).
VELORA_C_API const char* U_CopyToDelimiterUpToLengthPlusOneCharAndPad(char* dest, unsigned int size,
                                                                      const char* src,
                                                                      unsigned int* remaining, char extraChar,
                                                                      char padChar, char delimiter);

// ---- String utilities ---------------------------------------------------------------------------------

// Replaces every `from` by `to` in `s`, in place, up to its first NUL.
VELORA_C_API void U_ReplaceCharInStdString(std::string& s, char from, char to);

// ---- Times of day -------------------------------------------------------------------------------------

// Reads H:MM:SS.mmm (hour of one or two digits; every other field exactly as shown, all mandatory) and
// returns milliseconds since midnight; ranges are not checked. With a non-zero delimiter the rest of the
// token and the delimiter are skipped. On failure returns `defaultValue`, leaving the cursor on the
// failing character when the delimiter is 0 or that character is the NUL, else past the next delimiter.
VELORA_C_API unsigned int U_ReadMillisecondFromStr(const char** cursor, char delimiter,
                                                   unsigned int defaultValue, char timeSeparator,
                                                   char fractionSeparator);
// As U_ReadMillisecondFromStr for H:MM:SS, returning seconds since midnight; a fraction is skipped
// with the rest of the token.
VELORA_C_API unsigned int U_ReadSecondFromStr(const char** cursor, char delimiter, unsigned int defaultValue,
                                              char timeSeparator);
