// PriceConversion.h - Price, SignedPrice and Money values to and from text and doubles, and prices
// moved by a percentage. The text forms are those of PriceText.h applied to a value's two parts.
#pragma once

#include <string>

#include "VeloraUtils/Export.h"
#include "VeloraUtils/Prices.h"

VELORA_CXX_IN_C_API_BEGIN

// ---- Writers: append the value as text (see PriceText.h for decimals, roundMode, commas, sep and
// trimZeros). Prices print up to 9 decimals, money up to 4; a negative value starts with "-".
VELORA_C_API void U_PriceToStr(std::string& s, const Price& price, unsigned char decimals, char roundMode,
                               bool commas, char sep, bool trimZeros);
VELORA_C_API void U_SignedPriceToStr(std::string& s, const SignedPrice& price, unsigned char decimals,
                                     char roundMode, bool commas, char sep, bool trimZeros);
VELORA_C_API void U_MoneyToStr(std::string& s, const Money& money, unsigned char decimals, char roundMode,
                               bool commas, char sep, bool trimZeros);

// ---- Readers: "<whole>[.<fraction>]" up to `delimiter` (consumed) or the NUL, as the
// DollarsAndFraction readers of PriceText.h; the parts are stored as read. The signed and money
// readers accept one leading "-".
VELORA_C_API void U_StrToPrice(Price& price, const char*& cursor, unsigned char maxDecimals, char delimiter);
VELORA_C_API void U_StrToSignedPrice(SignedPrice& price, const char*& cursor, unsigned char maxDecimals,
                                     char delimiter);
VELORA_C_API void U_StrToMoney(Money& money, const char*& cursor, unsigned char maxDecimals, char delimiter);

// ---- Doubles.
// Converts with half-up rounding at nine digits, then rounds half away from zero to `decimals`
// digits; `decimals` of 10 or more rounds to whole units. A value that is not >= 0 (negative or NaN)
// stores zero and returns false; otherwise returns true when the rounding to `decimals` changed the
// value.
VELORA_C_API bool U_DoubleToPrice(Price& price, double value, unsigned char decimals);
// The signed conversion, then the same rounding (10 or more decimals: whole units).
VELORA_C_API bool U_DoubleToSignedPrice(SignedPrice& price, double value, unsigned char decimals);
// The signed conversion at four digits, then rounding to `decimals`; 5 or more: whole units.
VELORA_C_API bool U_DoubleToMoney(Money& money, double value, unsigned char decimals);
// whole part + fraction / 1e9 (prices) or / 10000.0 (money).
VELORA_C_API double U_PriceToDouble(const Price& price);
VELORA_C_API double U_SignedPriceToDouble(const SignedPrice& price);
VELORA_C_API double U_MoneyToDouble(const Money& money);

// ---- Percentages.
// result = base moved by the relative change that `change` is against `reference` (100 x change /
// reference, four decimals of a percent), the move rounded to whole cents. A price moved down never
// goes below one cent: a fall of base or more, or a result below one cent, gives Price::oneCent.
// A zero change leaves base unchanged.
VELORA_C_API void U_GetPriceByChangePercentage(Price& result, const Price& base, const SignedPrice& change,
                                               const Price& reference);
// As U_GetPriceByChangePercentage with change = price - reference; base unchanged when price equals
// reference.
VELORA_C_API void U_GetPriceByDifferencePercentage(Price& result, const Price& base, const Price& price,
                                                   const Price& reference);

VELORA_CXX_IN_C_API_END
