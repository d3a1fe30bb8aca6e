// DateTime.h - the platform's compact date and time forms, their parts ("tokens"), and dates and
// times written as text into a caller's buffer or appended to a std::string, plus two lenient readers.
// Nothing here keeps state or allocates, except the strings appended to; any thread may call.
#pragma once

#include "VeloraUtils/Export.h"

#include <cstdint>
#include <string>

// Forms used below:
// - date number: year * 10000 + month * 100 + day (20190105);
// - shift-format date: day in bits 0-4, month in bits 5-8, year from bit 9;
// - shift-format time: millisecond in bits 0-9, second in bits 10-15, minute in bits 16-21, hour
//   from bit 22; a shift-format date-time holds the date in its high and the time in its low 32 bits;
// - three-byte date: day in bits 0-7, month in bits 8-15, year - 2000 in bits 16-23.
// Two-digit fields are written as '0' + value / 10 and '0' + value % 10 without a range check, so a
// value of 100 or more gives a character that is not a digit (100 is ":0"). A separator or
// terminator of 0 writes nothing unless a function says otherwise.

VELORA_CXX_IN_C_API_BEGIN

// ---- Packing and unpacking ------------------------------------------------------------------------

// (year << 9) | (month << 5) | day; fields are not masked.
VELORA_C_API unsigned int U_ConvertDateTokensToDateInShiftFormat(unsigned short year, unsigned char month,
                                                                 unsigned char day);
// (hour << 22) | (minute << 16) | (second << 10) | millisecond; fields are not masked.
VELORA_C_API unsigned int U_ConvertTimeTokensToTimeInShiftFormat(unsigned char hour, unsigned char minute,
                                                                 unsigned char second,
                                                                 unsigned short millisecond);
// The shift-format date-time: the packed date in the high 32 bits, the packed time in the low ones.
VELORA_C_API std::uint64_t U_ConvertDateTimeTokensToDate(unsigned short year, unsigned char month,
                                                         unsigned char day, unsigned char hour,
                                                         unsigned char minute, unsigned char second,
                                                         unsigned short millisecond);
// Unpacks a shift-format date: year = date >> 9 (kept to 16 bits), month = bits 5-8, day = bits 0-4.
// Every pointer must be valid.
VELORA_C_API void U_GetDateTimeTokensDateOnly(unsigned int date, unsigned short* year, unsigned char* month,
                                              unsigned char* day);
// Unpacks a shift-format time: hour = time >> 22 (kept to 8 bits), minute and second their six bits.
// The millisecond is time AND 0x400, kept for compatibility with stored values: it is 0 or 1024 (the
// lowest bit of the second), never the packed millisecond. Every pointer must be valid.
VELORA_C_API void U_GetDateTimeTokensTimeOnly(unsigned int time, unsigned char* hour, unsigned char* minute,
                                              unsigned char* second, unsigned short* millisecond);
// Both halves of a shift-format date-time, as the two functions above (same millisecond rule).
VELORA_C_API void U_GetDateTimeTokens(std::uint64_t dateTime, unsigned short* year, unsigned char* month,
                                      unsigned char* day, unsigned char* hour, unsigned char* minute,
                                      unsigned char* second, unsigned short* millisecond);
// Splits a millisecond of day: hour = ms / 3600000 (not wrapped at 24), minute and second of it.
// Returns ms % 1000. Every pointer must be valid.
VELORA_C_API unsigned int U_GetTimeTokensFromMillisecond(unsigned int ms, unsigned int* hour,
                                                         unsigned int* minute, unsigned int* second);
// As U_GetTimeTokensFromMillisecond, as six decimal digits 0-9. The hour is first kept to 8 bits and
// only its last two decimal digits are given (hour 100 gives 0 and 0). Returns ms % 1000.
// clang-format off
VELORA_C_API unsigned int U_GetTimeDigitTokensFromMillisecond(unsigned int ms, unsigned char* hourTens,
                                                              unsigned char* hourUnits,
                                                              unsigned char* minuteTens,
                                                              unsigned char* minuteUnits,
                                                              unsigned char* secondTens,
                                                              unsigned char* secondUnits);
// clang-format on
// Splits a date number into year (kept to 16 bits), month and day; always returns 0.
VELORA_C_API int U_GetDateTokens(unsigned int date, unsigned short* year, unsigned short* month,
                                 unsigned short* day);
// (year * 100 + month) * 100 + day.
VELORA_C_API unsigned int U_CombineTokensIntoDate(unsigned short year, unsigned short month,
                                                  unsigned short day);
// "Jan" ... "Dec" for 1 to 12 (static text); null for 0 or above 12.
VELORA_C_API const char* U_GetMonthName(unsigned short month);

// ---- Writers into a character buffer --------------------------------------------------------------
// Each writes into buffer[0, size) and never past it, and returns the position after what it wrote.
// Date text: month, day and year as "01-05-2019", "01/05/19" or "Jan 05, 2019"; a separator below 32
// (0 included) is written as '-'. monthName writes the month's name and a blank, then ", " after
// the day; a month outside 1-12 then writes no month at all. fullYear writes the century as two more
// digits. The terminator follows unless it is 0; no NUL is written.

// Date text of the tokens; size at least 13. A smaller buffer receives only the terminator (nothing
// when the terminator is 0 or the size is 0).
VELORA_C_API char* U_FormatDateTokens(unsigned short month, unsigned short day, unsigned short year,
                                      char* buffer, unsigned int size, char separator, char terminator,
                                      bool monthName, bool fullYear);
// Date text of a date number, as U_FormatDateTokens; date 0 writes only the terminator.
VELORA_C_API char* U_FormatDate(unsigned int date, char* buffer, unsigned int size, char separator,
                                char terminator, bool monthName, bool fullYear);

// Time writers: two-digit fields, then the terminator and a NUL; the result points at the NUL. Below
// the minimum size nothing is written and `buffer` is returned. When the terminator and the NUL do
// not both fit, the terminator is left out.

// hh, separator, mm, separator, ss, terminator, NUL. Size at least 9.
VELORA_C_API char* U_FormatTimeTokens(unsigned int hour, unsigned int minute, unsigned int second,
                                      char* buffer, unsigned int size, char terminator, char separator);
// "hh:mm:ss-mmm", terminator, NUL; the millisecond is '0' + ms / 100 then two digits of ms % 100.
// Size at least 13. The two last characters are accepted for compatibility and not used.
VELORA_C_API char* U_FormatTimeTokensAndMillisecond(unsigned int hour, unsigned int minute,
                                                    unsigned int second, unsigned int millisecond,
                                                    char* buffer, unsigned int size, char terminator, char,
                                                    char);
// A millisecond of day: with `withMillisecond` as U_FormatTimeTokensAndMillisecond (which ignores
// `separator`), else as U_FormatTimeTokens with `separator`. Size at least 13 in both cases; the last
// argument is not used.
VELORA_C_API char* U_FormatMillisecond(unsigned int ms, char* buffer, unsigned int size, char terminator,
                                       bool withMillisecond, char separator, char);
// A minute of day as hh, separator, mm, then the terminator only when size is above 6, then a NUL.
// Size at least 6; a smaller nonzero size receives a NUL at buffer[0] and `buffer` is returned.
VELORA_C_API char* U_FormatMinute(unsigned short minute, char* buffer, unsigned int size, char terminator,
                                  char separator);
// A second of day as hh, separator, mm, separator, ss, then the terminator only when size is above 9,
// then a NUL. Size at least 9.
VELORA_C_API char* U_FormatSecond(unsigned int second, char* buffer, unsigned int size, char terminator,
                                  char separator);

// ---- Writers appending to a std::string -------------------------------------------------------------
// Same texts as above, appended to `out`; only the string's own allocation failure can throw. Here a
// month outside 1-12 with monthName is written as two digits and the separator.

// Date text of the tokens.
VELORA_C_API void U_FormatDateTokensStr(unsigned short month, unsigned short day, unsigned short year,
                                        std::string& out, char separator, char terminator, bool monthName,
                                        bool fullYear);
// Date text of a date number; date 0 appends only the terminator.
VELORA_C_API void U_FormatDateStr(unsigned int date, std::string& out, char separator, char terminator,
                                  bool monthName, bool fullYear);
// Date text of a three-byte date (year 2000 + bits 16-23) followed by a blank, always. The fourth
// argument is accepted for compatibility and not used.
VELORA_C_API void U_AppendThreeCharDateToStr(std::string& out, const unsigned int& date, char separator, char,
                                             bool monthName, bool fullYear);
// hour, separator, minute, separator, second, terminator. With hourWithoutLeadingZero an hour
// below 10 is one digit.
VELORA_C_API void U_AppendTimeTokens(std::string& out, unsigned int hour, unsigned int minute,
                                     unsigned int second, char terminator, bool hourWithoutLeadingZero,
                                     char separator);
// A millisecond of day as U_AppendTimeTokens; with withMillisecond the millisecond separator and
// three millisecond digits come before the terminator.
VELORA_C_API void U_AppendMillisecond(std::string& out, unsigned int ms, bool withMillisecond,
                                      char terminator, bool hourWithoutLeadingZero, char separator,
                                      char millisecondSeparator);
// A minute of day as hh, separator, mm, terminator.
VELORA_C_API void U_AppendMinute(std::string& out, unsigned short minuteOfDay, char terminator,
                                 char separator);
// A shift-format date-time: unless timeOnly, the date text with a blank after it; then h:mm:ss (hour
// as in U_AppendTimeTokens), and with withMillisecond "-" and the millisecond as one digit and two.
// The millisecond is the one U_GetDateTimeTokens gives (0 or 1024, so "-:24"); kept for compatibility.
VELORA_C_API void U_AppendDateTime(std::string& out, const std::uint64_t& dateTime, bool timeOnly,
                                   bool withMillisecond, char separator, char terminator,
                                   bool hourWithoutLeadingZero, bool monthName, bool fullYear);
// Date text of the tokens (dateSeparator, dateTerminator), then hh:mm:ss of `ms`, and with
// withMillisecond the millisecond separator and three digits; then the terminator. The eleventh
// argument is accepted for compatibility and not used.
VELORA_C_API void U_FormatDateAndTime(std::string& out, unsigned short year, unsigned char month,
                                      unsigned char day, unsigned int ms, bool withMillisecond,
                                      bool monthName, bool fullYear, char dateTerminator, char dateSeparator,
                                      char, char millisecondSeparator, char terminator);

// ---- Readers --------------------------------------------------------------------------------------
// Both read from `cursor` and advance it; they accept anything and never move past the text's NUL.

// Minutes from "mm" or "h:mm" style text: digits build a number, the first separator starts a second
// one. Stops before a second separator, any other non-digit or the NUL; the terminator ends the text
// and is consumed. Returns the first number when no separator was met, else first * 60 + second,
// kept to 16 bits: "90" and "1:30" both give 90.
VELORA_C_API unsigned short U_StringToMinute(const char*& cursor, char terminator, char separator);
// Milliseconds of day from "h:m:s" style text: separator-delimited fields are worth 3600000, 60000
// and 1000 each, every further field 1000; other characters are skipped. The millisecond separator
// ends its field as seconds wherever it stands, and the fraction after it is skipped, not added
// ("01:02:03.456" gives 3723000). The terminator is consumed and ends reading; the NUL ends it unmoved.
VELORA_C_API unsigned int U_StringToMillisecond(const char*& cursor, char terminator, char separator,
                                                char millisecondSeparator);

VELORA_CXX_IN_C_API_END
