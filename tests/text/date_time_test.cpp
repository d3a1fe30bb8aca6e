// Date and time tokens, writers and readers: packing round trips, the millisecond-bit quirk, every
// minute and second of a day written and read back against snprintf, buffer writers at every size
// with a guard byte, and the lenient readers' stopping rules.
#include "VeloraUtils/DateTime.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

template <class... Args> std::string Printf(const char* format, Args... args) {
    char text[64];
    std::snprintf(text, sizeof text, format, args...);
    return text;
}

const char* const kNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Packing round trips over a spread of dates; the unpacked millisecond is bit 10 (the second's lowest
// bit), never the packed millisecond.
TEST(DateTimeTokens, PackUnpackAndMillisecondBit) {
    for (unsigned year : {0u, 1900u, 2000u, 2019u, 2100u, 65535u}) {
        for (unsigned month = 1; month <= 12; ++month) {
            for (unsigned day = 1; day <= 31; ++day) {
                SCOPED_TRACE(Printf("%u-%u-%u", year, month, day));
                const auto y = static_cast<unsigned short>(year);
                const auto mo = static_cast<unsigned char>(month), d = static_cast<unsigned char>(day);
                const unsigned hour = day % 24, minute = 59 - day, second = (day + month) % 60, ms = 999;
                const std::uint64_t dateTime = U_ConvertDateTimeTokensToDate(
                    y, mo, d, static_cast<unsigned char>(hour), static_cast<unsigned char>(minute),
                    static_cast<unsigned char>(second), ms);
                ASSERT_EQ(dateTime, std::uint64_t{year << 9 | month << 5 | day} << 32 |
                                        (hour << 22 | minute << 16 | second << 10 | ms));
                unsigned short year2 = 0, ms2 = 7;
                unsigned char month2 = 0, day2 = 0, h = 0, m = 0, s = 0;
                U_GetDateTimeTokens(dateTime, &year2, &month2, &day2, &h, &m, &s, &ms2);
                ASSERT_EQ(Printf("%u %u %u %u %u %u %u", year2, month2, day2, h, m, s, ms2),
                          Printf("%u %u %u %u %u %u %u", year, month, day, hour, minute, second,
                                 second % 2 == 1 ? 1024u : 0u));
                const unsigned number = U_CombineTokensIntoDate(y, mo, d);
                ASSERT_EQ(number, year * 10000 + month * 100 + day);
                unsigned short year3 = 0, month3 = 0, day3 = 0;
                ASSERT_EQ(U_GetDateTokens(number, &year3, &month3, &day3), 0);
                ASSERT_EQ(year3 * 10000u + month3 * 100u + day3, number);
            }
        }
    }
    // Values wider than the fields: hour and year are cut to their types.
    unsigned char h = 0, m = 0, s = 0;
    unsigned short ms = 0, year = 0, month = 0, day = 0;
    U_GetDateTimeTokensTimeOnly(0xFFFFFFFFu, &h, &m, &s, &ms);
    EXPECT_EQ(Printf("%u %u %u %u", h, m, s, ms), "255 63 63 1024");
    U_GetDateTokens(0xFFFFFFFFu, &year, &month, &day);
    EXPECT_EQ(Printf("%u %u %u", year, month, day), "36280 72 95"); // 429496 kept to 16 bits
    EXPECT_EQ(U_GetMonthName(0), nullptr);
    EXPECT_EQ(U_GetMonthName(13), nullptr);
    for (unsigned short number = 1; number <= 12; ++number)
        EXPECT_STREQ(U_GetMonthName(number), kNames[number - 1]);
    // Digit tokens of hours past 99: the hour kept to 8 bits, then its last two decimal digits.
    unsigned char digits[6] = {};
    EXPECT_EQ(U_GetTimeDigitTokensFromMillisecond(300 * 3600000u + 1, &digits[0], &digits[1], &digits[2],
                                                  &digits[3], &digits[4], &digits[5]),
              1u);
    EXPECT_EQ(digits[0] * 10 + digits[1], 44); // 300 & 0xFF = 44
}

TEST(DateText, BufferAndStringForms) {
    const struct {
        const char* name;
        unsigned short month, day, year;
        char separator, terminator;
        bool monthName, fullYear;
        const char* text;       // the string form
        const char* bufferText; // the buffer form, when it differs
    } rows[] = {
        {"numeric, full year", 1, 5, 2019, '-', 0, false, true, "01-05-2019", nullptr},
        {"numeric, short year", 1, 5, 2019, '/', 0, false, false, "01/05/19", nullptr},
        {"month name", 1, 5, 2019, '/', 0, true, true, "Jan 05, 2019", nullptr},
        {"month name, short year", 1, 5, 2019, '/', 0, true, false, "Jan 05, 19", nullptr},
        {"terminator", 12, 31, 1999, '.', ';', false, true, "12.31.1999;", nullptr},
        {"separator 0 becomes '-'", 1, 5, 2019, 0, 0, false, true, "01-05-2019", nullptr},
        {"control separator becomes '-'", 1, 5, 2019, '\t', 0, false, true, "01-05-2019", nullptr},
        {"blank separator kept", 1, 5, 2019, ' ', 0, false, true, "01 05 2019", nullptr},
        {"high-byte separator kept", 1, 5, 2019, '\267', 0, false, true, "01\26705\2672019", nullptr},
        {"two-digit rule at 100", 100, 5, 2019, '-', 0, false, true, ":0-05-2019", nullptr},
        {"century of a large year", 1, 5, 65535, '-', 0, false, true, "01-05-q535", nullptr},
        {"month 13 with name", 13, 5, 2019, '-', 'x', true, true, "13-05, 2019x", "05, 2019x"},
        {"month 0 with name", 0, 5, 2019, '-', 0, true, false, "00-05, 19", "05, 19"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string out = "<";
        U_FormatDateTokensStr(row.month, row.day, row.year, out, row.separator, row.terminator, row.monthName,
                              row.fullYear);
        EXPECT_EQ(out, std::string("<") + row.text);
        char buffer[32];
        const std::string bufferText = row.bufferText != nullptr ? row.bufferText : row.text;
        const char* end = U_FormatDateTokens(row.month, row.day, row.year, buffer, sizeof buffer,
                                             row.separator, row.terminator, row.monthName, row.fullYear);
        EXPECT_EQ(std::string(static_cast<const char*>(buffer), end), bufferText);
    }
    // A spread of dates against snprintf; the buffer form gives the same text.
    std::string out;
    for (unsigned year : {1900u, 1999u, 2000u, 2019u, 2100u, 9999u}) {
        for (unsigned month = 1; month <= 12; ++month) {
            for (unsigned day = 1; day <= 31; ++day) {
                const unsigned date = year * 10000 + month * 100 + day;
                const struct {
                    char separator;
                    bool monthName, fullYear;
                    std::string expected;
                } forms[] = {
                    {'/', false, true, Printf("%02u/%02u/%04u;", month, day, year)},
                    {'.', false, false, Printf("%02u.%02u.%02u;", month, day, year % 100)},
                    {'/', true, true, Printf("%s %02u, %04u;", kNames[month - 1], day, year)},
                };
                for (const auto& form : forms) {
                    out.clear();
                    U_FormatDateStr(date, out, form.separator, ';', form.monthName, form.fullYear);
                    ASSERT_EQ(out, form.expected);
                    char buffer[13];
                    const char* end = U_FormatDate(date, buffer, sizeof buffer, form.separator, ';',
                                                   form.monthName, form.fullYear);
                    ASSERT_EQ(std::string(static_cast<const char*>(buffer), end), form.expected);
                }
            }
        }
    }
    out.clear();
    U_FormatDateStr(0, out, '/', 0, false, true);
    EXPECT_EQ(out, "");
    U_FormatDateStr(0, out, '/', ';', false, true);
    EXPECT_EQ(out, ";");
    // A three-byte date is always followed by a blank; its fourth argument is not used.
    const unsigned threeByte = 19u << 16 | 1u << 8 | 5u;
    out.clear();
    U_AppendThreeCharDateToStr(out, threeByte, '/', 'x', false, true);
    EXPECT_EQ(out, "01/05/2019 ");
}

// Every minute and every second of a day: token splits and all writers agree with snprintf, and the
// readers take the text back.
TEST(TimeText, EveryMinuteAndSecondRoundTrips) {
    char buffer[32];
    std::string out;
    for (unsigned minute = 0; minute < 1440; ++minute) {
        const std::string expected = Printf("%02u:%02u;", minute / 60, minute % 60);
        U_FormatMinute(static_cast<unsigned short>(minute), buffer, 7, ';', ':');
        ASSERT_EQ(buffer, expected);
        out.clear();
        U_AppendMinute(out, static_cast<unsigned short>(minute), ';', ':');
        ASSERT_EQ(out, expected);
        const char* cursor = buffer;
        ASSERT_EQ(U_StringToMinute(cursor, ';', ':'), minute);
        ASSERT_EQ(cursor, buffer + 6);
    }
    for (unsigned second = 0; second < 86400; ++second) {
        const unsigned h = second / 3600, m = second / 60 % 60, s = second % 60, ms = (second * 7) % 1000;
        const unsigned msOfDay = second * 1000 + ms;
        const std::string clock = Printf("%02u:%02u:%02u;", h, m, s);
        unsigned tokens[3] = {};
        ASSERT_EQ(U_GetTimeTokensFromMillisecond(msOfDay, &tokens[0], &tokens[1], &tokens[2]), ms);
        ASSERT_EQ(Printf("%02u:%02u:%02u;", tokens[0], tokens[1], tokens[2]), clock);
        unsigned char d[6] = {};
        ASSERT_EQ(U_GetTimeDigitTokensFromMillisecond(msOfDay, &d[0], &d[1], &d[2], &d[3], &d[4], &d[5]), ms);
        ASSERT_EQ(Printf("%u%u:%u%u:%u%u;", d[0], d[1], d[2], d[3], d[4], d[5]), clock);
        U_FormatSecond(second, buffer, 10, ';', ':');
        ASSERT_EQ(buffer, clock);
        U_FormatTimeTokens(h, m, s, buffer, 10, ';', ':');
        ASSERT_EQ(buffer, clock);
        U_FormatMillisecond(msOfDay, buffer, 13, ';', false, ':', 0);
        ASSERT_EQ(buffer, clock);
        U_FormatMillisecond(msOfDay, buffer, 14, ';', true, '.', 0);
        ASSERT_EQ(buffer, Printf("%02u:%02u:%02u-%03u;", h, m, s, ms));
        out.clear();
        U_AppendTimeTokens(out, h, m, s, ';', false, ':');
        ASSERT_EQ(out, clock);
        out.clear();
        U_AppendMillisecond(out, msOfDay, true, ';', true, ':', '.');
        ASSERT_EQ(out, Printf("%u:%02u:%02u.%03u;", h, m, s, ms));
        // The fraction is skipped on reading: whole seconds come back.
        const char* cursor = out.c_str();
        ASSERT_EQ(U_StringToMillisecond(cursor, ';', ':', '.'), second * 1000);
        ASSERT_EQ(cursor, out.c_str() + out.size());
        out.clear();
        U_FormatDateAndTime(out, 2019, 1, 5, msOfDay, true, true, true, ' ', '-', 0, '.', ';');
        ASSERT_EQ(out, Printf("Jan 05, 2019 %02u:%02u:%02u.%03u;", h, m, s, ms));
        out.clear();
        const std::uint64_t dateTime = U_ConvertDateTimeTokensToDate(
            2019, 1, 5, static_cast<unsigned char>(h), static_cast<unsigned char>(m),
            static_cast<unsigned char>(s), static_cast<unsigned short>(ms));
        U_AppendDateTime(out, dateTime, false, false, '/', ';', false, false, true);
        ASSERT_EQ(out, "01/05/2019 " + clock);
    }
}

TEST(TimeText, KeptQuirks) {
    std::string out;
    const auto appendDateTime = [&](unsigned char second, unsigned short ms, bool timeOnly,
                                    bool hourOneDigit) {
        out.clear();
        U_AppendDateTime(out, U_ConvertDateTimeTokensToDate(2019, 12, 31, 9, 5, second, ms), timeOnly, true,
                         '-', 0, hourOneDigit, true, false);
        return out;
    };
    const auto appendMinute = [&](unsigned short minute) {
        out.clear();
        U_AppendMinute(out, minute, 0, ':');
        return out;
    };
    const auto appendTime = [&](unsigned hour, char separator) {
        out.clear();
        U_AppendTimeTokens(out, hour, 0, 0, 0, true, separator);
        return out;
    };
    char buffer[16];
    const struct {
        const char* name;
        std::string actual;
        const char* expected;
    } rows[] = {
        {"date-time millisecond of an odd second is 1024", appendDateTime(7, 999, false, false),
         "Dec 31, 19 09:05:07-:24"},
        {"date-time millisecond of an even second is 0", appendDateTime(8, 999, true, true), "9:05:08-000"},
        {"two-digit rule at hour 100", appendMinute(6000), ":0:00"},
        {"largest minute of day", appendMinute(65535), "\2352:15"},
        {"one-digit hour only below 10", appendTime(10, ':'), "10:00:00"},
        {"separator 0 writes nothing", appendTime(7, 0), "70000"},
        {"millisecond 1024 written unchecked",
         U_FormatTimeTokensAndMillisecond(1, 2, 3, 1024, buffer, 14, 0, 0, 0) - 12, "01:02:03-:24"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.actual, row.expected) << row.name;
}

// Each buffer writer at every size from 0 to 20, with '#' in every byte and one guard byte past the
// end: exactly the expected bytes are written and the guard is never touched.
TEST(BufferWriters, EveryBufferSize) {
    enum class Below { Nothing, NulAtStart, TerminatorOnly };
    const struct {
        const char* name;
        std::function<char*(char*, unsigned)> write;
        std::string full;        // at a large size, NUL excluded
        unsigned minimum;        // smallest size that writes the text
        unsigned terminatorFrom; // smallest size that keeps the last character of `full`
        bool nul;
        Below below;
    } rows[] = {
        {"time tokens", [](char* b, unsigned n) { return U_FormatTimeTokens(1, 2, 3, b, n, 'x', ':'); },
         "01:02:03x", 9, 10, true, Below::Nothing},
        {"time tokens, no separator",
         [](char* b, unsigned n) { return U_FormatTimeTokens(1, 2, 3, b, n, 'x', 0); }, "010203x", 9, 9, true,
         Below::Nothing},
        {"time and millisecond",
         [](char* b, unsigned n) {
             return U_FormatTimeTokensAndMillisecond(1, 2, 3, 45, b, n, 'x', '.', '?');
         },
         "01:02:03-045x", 13, 14, true, Below::Nothing},
        {"millisecond of day, no millisecond",
         [](char* b, unsigned n) { return U_FormatMillisecond(3723045, b, n, 'x', false, '.', 0); },
         "01.02.03x", 13, 13, true, Below::Nothing},
        {"millisecond of day, with millisecond",
         [](char* b, unsigned n) { return U_FormatMillisecond(3723045, b, n, 'x', true, '.', 0); },
         "01:02:03-045x", 13, 14, true, Below::Nothing},
        {"minute", [](char* b, unsigned n) { return U_FormatMinute(90, b, n, 'x', ':'); }, "01:30x", 6, 7,
         true, Below::NulAtStart},
        {"minute, no separator: terminator still only above 6",
         [](char* b, unsigned n) { return U_FormatMinute(90, b, n, 'x', 0); }, "0130x", 6, 7, true,
         Below::NulAtStart},
        {"second", [](char* b, unsigned n) { return U_FormatSecond(3723, b, n, 'x', ':'); }, "01:02:03x", 9,
         10, true, Below::Nothing},
        {"date tokens",
         [](char* b, unsigned n) { return U_FormatDateTokens(1, 5, 2019, b, n, '-', 'x', true, true); },
         "Jan 05, 2019x", 13, 13, false, Below::TerminatorOnly},
        {"date number, no terminator",
         [](char* b, unsigned n) { return U_FormatDate(20190105, b, n, '/', 0, false, false); }, "01/05/19",
         13, 13, false, Below::Nothing},
        {"date 0", [](char* b, unsigned n) { return U_FormatDate(0, b, n, '/', 'x', false, false); }, "x", 1,
         1, false, Below::Nothing},
    };
    for (const auto& row : rows) {
        for (unsigned size = 0; size <= 20; ++size) {
            SCOPED_TRACE(testing::Message() << row.name << " at size " << size);
            std::string expected;
            if (size >= row.minimum) {
                expected = size >= row.terminatorFrom ? row.full : row.full.substr(0, row.full.size() - 1);
            } else if (row.below == Below::TerminatorOnly && size > 0) {
                expected = row.full.substr(row.full.size() - 1);
            }
            const std::size_t returned = expected.size();
            if (row.nul && (size >= row.minimum || (row.below == Below::NulAtStart && size > 0)))
                expected += '\0';
            std::vector<char> buffer(size + 1, '#');
            const char* end = row.write(buffer.data(), size);
            EXPECT_EQ(end - buffer.data(), static_cast<long>(returned));
            EXPECT_EQ(std::string(buffer.data(), expected.size()), expected);
            EXPECT_EQ(
                std::string(buffer.begin() + static_cast<std::ptrdiff_t>(expected.size()), buffer.end()),
                std::string(size + 1 - expected.size(), '#'));
        }
    }
}

TEST(TimeReaders, StopAndConsumeRules) {
    const struct {
        bool minute; // U_StringToMinute instead of U_StringToMillisecond
        const char* text;
        char terminator, separator;
        unsigned expected;
        long offset;
    } rows[] = {
        {true, "12:34;", ';', ':', 754, 6},
        {true, "90", ';', ':', 90, 2},
        {true, "1:30", ';', ':', 90, 4},
        {true, "1:30:45;", ';', ':', 90, 4}, // a second separator stays
        {true, "1:3x;", ';', ':', 63, 3},    // so does any other character
        {true, ";5", ';', ':', 0, 1},
        {true, "", ';', ':', 0, 0},
        {true, "1:30", 0, ':', 90, 4}, // terminator 0: the NUL is not stepped over
        {true, "12:34", ';', 0, 12, 2},
        {true, "1092:15", ';', ':', 65535, 7},
        {true, "1092:16", ';', ':', 0, 7}, // kept to 16 bits
        {false, "01:02:03.456", ';', ':', 3723000, 12},
        {false, "01:02:03.456;x", ';', ':', 3723000, 13},
        {false, "1:30.5;", ';', ':', 3630000, 7}, // the millisecond separator ends seconds anywhere
        {false, "5", ';', ':', 18000000, 1},
        {false, "1h:2m:3s;x", ';', ':', 3723000, 9},
        {false, "1:2:3:4:5", ';', ':', 3732000, 9}, // fields past the third are seconds too
        {false, "1:2:3.4:5;", ';', ':', 3723000, 10},
        {false, "1:2:3", 0, ':', 3723000, 5},
        {false, "", ';', ':', 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows << " on \"" << row.text << '"');
        const std::vector<char> text(row.text, row.text + std::strlen(row.text) + 1); // exact size for ASan
        const char* cursor = text.data();
        const unsigned value = row.minute ? U_StringToMinute(cursor, row.terminator, row.separator)
                                          : U_StringToMillisecond(cursor, row.terminator, row.separator, '.');
        EXPECT_EQ(value, row.expected);
        EXPECT_EQ(cursor - text.data(), row.offset);
    }
}

} // namespace
