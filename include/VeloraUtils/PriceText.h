// PriceText.h - prices and money amounts as text, given as their two raw parts: the whole part and
// the decimal fraction (10^-9 units for prices, 10^-4 for money, ten-thousandths inside a compact
// price). Writers append to a std::string; readers take a cursor into NUL-terminated text.
#pragma once

#include <cstdint>
#include <string>

#include "VeloraUtils/Export.h"

// Writer arguments shared by every amount writer below:
// - `decimals`: fraction digits to print; 9 at most for prices, 4 for money and compact prices
//   (a larger value prints the fraction uncut, all digits).
// - `roundMode` cuts the fraction to `decimals` digits: 0 rounds half up, a positive value rounds up
//   whenever a cut digit is nonzero, a negative value truncates. A carry out of the fraction adds one
//   to the whole part ("0.999" at 2 decimals half up is "1.00").
// - `commas` groups the whole part's digits by three with ",". `sep` (unless 0) follows the number.
// - `trimZeros` drops trailing zero fraction digits beyond the second: 1.5 at 4 decimals is "1.50"
//   with it and "1.5000" without. With `decimals` 0 neither "." nor a fraction is written.
// The sign is a leading "-" decided before rounding, so -0.001 at 2 decimals is "-0.00". The fraction
// is expected below 10^digits; of a larger one only its low `digits` digits are shown. Writers do not
// fail other than through the string's own growth; any thread may call on distinct strings.

VELORA_CXX_IN_C_API_BEGIN

// ---- Amount writers -------------------------------------------------------------------------------

// A price: whole part and fraction in 10^-9 units.
VELORA_C_API void U_PriceDollarsAndFractionToStr(std::string& s, unsigned int whole, unsigned int fraction,
                                                 unsigned char decimals, char roundMode, bool commas,
                                                 char sep, bool trimZeros);
// A signed price: negative when either part is negative; "-" and the magnitudes of both parts are
// written, so whole -1 and fraction -250000000 print "-1.25".
VELORA_C_API void U_SignedPriceDollarsAndFractionToStr(std::string& s, int whole, int fraction,
                                                       unsigned char decimals, char roundMode, bool commas,
                                                       char sep, bool trimZeros);
// A money amount: whole part and fraction in 10^-4 units, negative when either part is negative.
VELORA_C_API void U_MoneyDollarsAndFractionToStr(std::string& s, std::int64_t whole, short fraction,
                                                 unsigned char decimals, char roundMode, bool commas,
                                                 char sep, bool trimZeros);

// A compact price (one 32-bit word; bit 30 clear: whole part in bits 14 and up, ten-thousandths in
// bits 0-13; bit 30 set: whole part in bits 7-29, hundredths in bits 0-6) written as a four-decimal
// amount: `decimals` above 4 means 4. A fine fraction field above 9999 is taken as it is (its rounding
// carries at most once; uncut, its low four digits show).
VELORA_C_API void U_CompactPriceToStr(std::string& s, unsigned int compact, unsigned char decimals,
                                      char roundMode, bool commas, char sep, bool trimZeros);
// A signed compact price: a negative code is "-" and the compact price of its negation.
VELORA_C_API void U_CompactSignedPriceToStr(std::string& s, int compact, unsigned char decimals,
                                            char roundMode, bool commas, char sep, bool trimZeros);

// ---- Fraction writers -------------------------------------------------------------------------------

// Appends the `digits` digits of a fraction already cut to that many digits (leading zeros kept),
// then `sep` unless 0. At least two digits are always written when `digits` >= 2; `trimZeros` drops
// the trailing zeros beyond them: 500 at 4 digits gives "05" trimmed, "0500" untrimmed; 0 at 3 digits
// gives "00". One digit is written as it is; 0 digits write nothing. `digits` above 9 means 9.
VELORA_C_API void U_DollarFractionToStdStr(unsigned int fraction, unsigned char digits, std::string& s,
                                           char sep, bool trimZeros);
// As U_DollarFractionToStdStr for a money fraction; `digits` above 4 means 4.
VELORA_C_API void U_MoneyFractionToStdStr(unsigned short fraction, unsigned char digits, std::string& s,
                                          char sep, bool trimZeros);

// Writes the fraction's `digits` digits forward from `buf`, then `terminator`, and returns the address
// of the terminator. `buf` must hold `digits` + 1 characters (not checked). `digits` 0 or above 9
// writes only the terminator. With `trimZeros`, writing stops after the last nonzero digit but keeps
// at least two digits when `digits` is 2 to 5 and at least one when it is 6 to 9, so unlike the
// string form a single digit can remain: 500000000 at 9 digits gives "5", 50000 at 5 gives "50".
VELORA_C_API char* U_DollarFractionToStr(unsigned int fraction, unsigned char digits, char* buf,
                                         bool trimZeros, char terminator);

// ---- Readers ---------------------------------------------------------------------------------------
// Text is "<whole>[.<fraction>]" up to `delimiter` or the NUL. The cursor ends past the delimiter, or
// at the NUL; an empty token (delimiter at the cursor) gives zero and is consumed; at the NUL the
// result is zero and the cursor stays. Characters are not validated: each adds its code minus '0'.
// Only the first `maxDecimals` fraction characters count, the rest are skipped (truncation). A nonzero
// fraction of fewer counted digits than the type has (9 for prices, 4 for money) is scaled up to them;
// one of as many or more (a `maxDecimals` above the type's digits) is stored as read, wrapping in the
// fraction's width. The fraction's character count is kept in 8 bits, as the digit-count
// token readers do, so a fraction token of 256 characters or more counts modulo 256.
// The signed and money forms accept one leading "-" (consumed even when nothing follows) and negate
// both parts; the unsigned price reader takes "-" as a digit like any other character.

VELORA_C_API void U_StrToPriceDollarsAndFraction(unsigned int& whole, unsigned int& fraction,
                                                 const char*& cursor, unsigned char maxDecimals,
                                                 char delimiter);
VELORA_C_API void U_StrToSignedPriceDollarsAndFraction(int& whole, int& fraction, const char*& cursor,
                                                       unsigned char maxDecimals, char delimiter);
VELORA_C_API void U_StrToMoneyDollarsAndFraction(std::int64_t& whole, short& fraction, const char*& cursor,
                                                 unsigned char maxDecimals, char delimiter);

// Bounded forms: also stop when `remaining` reaches 0 and decrement it once per consumed character,
// a consumed "-", "." and delimiter included. `remaining` 0 on entry reads nothing and gives zero.
VELORA_C_API void U_StrToPriceDollarsAndFractionUpToLength(unsigned int& whole, unsigned int& fraction,
                                                           const char*& cursor, unsigned int& remaining,
                                                           unsigned char maxDecimals, char delimiter);
VELORA_C_API void U_StrToSignedPriceDollarsAndFractionUpToLength(int& whole, int& fraction,
                                                                 const char*& cursor, unsigned int& remaining,
                                                                 unsigned char maxDecimals, char delimiter);
VELORA_C_API void U_StrToMoneyDollarsAndFractionUpToLength(std::int64_t& whole, short& fraction,
                                                           const char*& cursor, unsigned int& remaining,
                                                           unsigned char maxDecimals, char delimiter);

VELORA_CXX_IN_C_API_END
