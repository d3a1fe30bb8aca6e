// DateTime.cpp - packing and unpacking the compact date and time forms, month names, and the two
// lenient time readers.
#include "VeloraUtils/DateTime.h"

namespace {

constexpr const char* kMonthNames[13] = {nullptr, "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul",   "Aug", "Sep", "Oct", "Nov", "Dec"};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
unsigned int DigitValue(char c) {
    return static_cast<unsigned int>(c - '0');
}

} // namespace

unsigned int U_ConvertDateTokensToDateInShiftFormat(unsigned short year, unsigned char month,
                                                    unsigned char day) {
    return (static_cast<unsigned int>(year) << 9) | (static_cast<unsigned int>(month) << 5) | day;
}

unsigned int U_ConvertTimeTokensToTimeInShiftFormat(unsigned char hour, unsigned char minute,
                                                    unsigned char second, unsigned short millisecond) {
    return (static_cast<unsigned int>(hour) << 22) | (static_cast<unsigned int>(minute) << 16) |
           (static_cast<unsigned int>(second) << 10) | millisecond;
}

std::uint64_t U_ConvertDateTimeTokensToDate(unsigned short year, unsigned char month, unsigned char day,
                                            unsigned char hour, unsigned char minute, unsigned char second,
                                            unsigned short millisecond) {
    const std::uint64_t date = U_ConvertDateTokensToDateInShiftFormat(year, month, day);
    return (date << 32) | U_ConvertTimeTokensToTimeInShiftFormat(hour, minute, second, millisecond);
}

void U_GetDateTimeTokensDateOnly(unsigned int date, unsigned short* year, unsigned char* month,
                                 unsigned char* day) {
    *year = static_cast<unsigned short>(date >> 9);
    *month = static_cast<unsigned char>((date >> 5) & 0x0Fu);
    *day = static_cast<unsigned char>(date & 0x1Fu);
}

void U_GetDateTimeTokensTimeOnly(unsigned int time, unsigned char* hour, unsigned char* minute,
                                 unsigned char* second, unsigned short* millisecond) {
    *hour = static_cast<unsigned char>(time >> 22);
    *minute = static_cast<unsigned char>((time >> 16) & 0x3Fu);
    *second = static_cast<unsigned char>((time >> 10) & 0x3Fu);
    // Bit 10 (the second's lowest bit), not the low ten bits: stored values depend on it.
    *millisecond = static_cast<unsigned short>(time & 0x400u);
}

void U_GetDateTimeTokens(std::uint64_t dateTime, unsigned short* year, unsigned char* month,
                         unsigned char* day, unsigned char* hour, unsigned char* minute,
                         unsigned char* second, unsigned short* millisecond) {
    U_GetDateTimeTokensDateOnly(static_cast<unsigned int>(dateTime >> 32), year, month, day);
    U_GetDateTimeTokensTimeOnly(static_cast<unsigned int>(dateTime), hour, minute, second, millisecond);
}

unsigned int U_GetTimeTokensFromMillisecond(unsigned int ms, unsigned int* hour, unsigned int* minute,
                                            unsigned int* second) {
    *hour = ms / 3600000u;
    *minute = ms % 3600000u / 60000u;
    *second = ms % 60000u / 1000u;
    return ms % 1000u;
}

unsigned int U_GetTimeDigitTokensFromMillisecond(unsigned int ms, unsigned char* hourTens,
                                                 unsigned char* hourUnits, unsigned char* minuteTens,
                                                 unsigned char* minuteUnits, unsigned char* secondTens,
                                                 unsigned char* secondUnits) {
    const auto hour = static_cast<unsigned char>(ms / 3600000u);
    const unsigned int minute = ms % 3600000u / 60000u;
    const unsigned int second = ms % 60000u / 1000u;
    *hourTens = static_cast<unsigned char>(hour / 10u % 10u);
    *hourUnits = static_cast<unsigned char>(hour % 10u);
    *minuteTens = static_cast<unsigned char>(minute / 10u);
    *minuteUnits = static_cast<unsigned char>(minute % 10u);
    *secondTens = static_cast<unsigned char>(second / 10u);
    *secondUnits = static_cast<unsigned char>(second % 10u);
    return ms % 1000u;
}

int U_GetDateTokens(unsigned int date, unsigned short* year, unsigned short* month, unsigned short* day) {
    *year = static_cast<unsigned short>(date / 10000u);
    *month = static_cast<unsigned short>(date / 100u % 100u);
    *day = static_cast<unsigned short>(date % 100u);
    return 0;
}

unsigned int U_CombineTokensIntoDate(unsigned short year, unsigned short month, unsigned short day) {
    return (static_cast<unsigned int>(year) * 100u + month) * 100u + day;
}

const char* U_GetMonthName(unsigned short month) {
    return month <= 12 ? kMonthNames[month] : nullptr;
}

unsigned short U_StringToMinute(const char*& cursor, char terminator, char separator) {
    const char* p = cursor;
    unsigned int first = 0;
    unsigned int second = 0;
    bool separated = false;
    // The NUL ends the text even when it is the terminator: it is never stepped over.
    while (*p != '\0') {
        const char c = *p;
        if (c == terminator) {
            ++p;
            break;
        }
        if (c == separator && !separated) {
            separated = true;
        } else if (IsDigit(c)) {
            unsigned int& number = separated ? second : first;
            number = number * 10u + DigitValue(c);
        } else {
            break; // a second separator or any other character stays for the caller
        }
        ++p;
    }
    cursor = p;
    return static_cast<unsigned short>(separated ? first * 60u + second : first);
}

unsigned int U_StringToMillisecond(const char*& cursor, char terminator, char separator,
                                   char millisecondSeparator) {
    constexpr unsigned int kFieldWeights[3] = {3600000u, 60000u, 1000u};
    const char* p = cursor;
    unsigned int total = 0;
    unsigned int field = 0;
    unsigned int fieldIndex = 0;
    bool inFraction = false;
    while (*p != '\0') {
        const char c = *p++;
        if (c == terminator) break;
        if (inFraction) continue; // the fraction is skipped, never added
        if (c == separator) {
            total += field * (fieldIndex < 3 ? kFieldWeights[fieldIndex] : 1000u);
            field = 0;
            ++fieldIndex;
        } else if (c == millisecondSeparator) {
            total += field * 1000u; // seconds, whichever field this is
            field = 0;
            inFraction = true;
        } else if (IsDigit(c)) {
            field = field * 10u + DigitValue(c);
        }
    }
    if (!inFraction) total += field * (fieldIndex < 3 ? kFieldWeights[fieldIndex] : 1000u);
    cursor = p;
    return total;
}
