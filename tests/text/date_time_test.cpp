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
#include <tuple>
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
    unsigned char h = 0, m = 0, s = 0, digits[6] = {};
    unsigned short ms = 0, year = 0, month = 0, day = 0;
    U_GetDateTimeTokensTimeOnly(0xFFFFFFFFu, &h, &m, &s, &ms);
    EXPECT_EQ(Printf("%u %u %u %u", h, m, s, ms), "255 63 63 1024");
    U_GetDateTokens(0xFFFFFFFFu, &year, &month, &day);
    EXPECT_EQ(Printf("%u %u %u", year, month, day), "36280 72 95"); // 429496 kept to 16 bits
    for (unsigned short number = 0; number <= 13; ++number)
        EXPECT_STREQ(U_GetMonthName(number), number >= 1 && number <= 12 ? kNames[number - 1] : nullptr);
    // Digit tokens of hours past 99: the hour kept to 8 bits, then its last two decimal digits.
    EXPECT_EQ(U_GetTimeDigitTokensFromMillisecond(300 * 3600000u + 1, &digits[0], &digits[1], &digits[2],
                                                  &digits[3], &digits[4], &digits[5]),
              1u);
    EXPECT_EQ(digits[0] * 10 + digits[1], 44); // 300 & 0xFF = 44
}

TEST(DateText, StringAndBufferFormsAgreeWithPrintfAndKeepSeparatorAndMonthQuirks) {
    // name, month, day, year, separator, terminator, month name, full year, string form, buffer form
    // (null: the same)
    const std::vector<std::tuple<const char*, unsigned short, unsigned short, unsigned short, char, char,
                                 bool, bool, const char*, const char*>>
        rows = {
            // clang-format off
            {"separator 0 becomes '-'", 1, 5, 2019, 0, 0, false, true, "01-05-2019", nullptr},
            {"control separator becomes '-'", 1, 5, 2019, '\t', 0, false, true, "01-05-2019", nullptr},
            {"blank separator kept", 1, 5, 2019, ' ', 'x', false, false, "01 05 19x", nullptr},
            {"high-byte separator kept", 1, 5, 2019, '\267', 0, false, true, "01\26705\2672019", nullptr},
            {"two-digit rule at 100", 100, 5, 2019, '-', 0, false, true, ":0-05-2019", nullptr},
            {"century of a large year", 1, 5, 65535, '-', 0, false, true, "01-05-q535", nullptr},
            {"month name, short year", 1, 5, 2019, '/', 0, true, false, "Jan 05, 19", nullptr},
            {"month 13 with name", 13, 5, 2019, '-', 'x', true, true, "13-05, 2019x", "05, 2019x"},
            {"month 0 with name", 0, 5, 2019, '-', 0, true, false, "00-05, 19", "05, 19"},
            // clang-format on
        };
    for (const auto& [name, month, day, year, separator, terminator, monthName, fullYear, text, inBuffer] :
         rows) {
        std::string out = "<";
        char buffer[32];
        U_FormatDateTokensStr(month, day, year, out, separator, terminator, monthName, fullYear);
        const char* end = U_FormatDateTokens(month, day, year, buffer, sizeof buffer, separator, terminator,
                                             monthName, fullYear);
        EXPECT_EQ(std::tuple(out, std::string(static_cast<const char*>(buffer), end)),
                  std::tuple("<" + std::string(text), std::string(inBuffer != nullptr ? inBuffer : text)))
            << name;
    }
    // A spread of dates against snprintf; the buffer form gives the same text.
    std::string out;
    for (unsigned year : {1900u, 1999u, 2000u, 2019u, 2100u, 9999u}) {
        for (unsigned i = 0; i < 12 * 31; ++i) {
            const unsigned month = 1 + i / 31, day = 1 + i % 31, date = year * 10000 + month * 100 + day;
            const std::tuple<char, bool, bool, std::string> forms[] = {
                {'/', false, true, Printf("%02u/%02u/%04u;", month, day, year)},
                {'.', false, false, Printf("%02u.%02u.%02u;", month, day, year % 100)},
                {'/', true, true, Printf("%s %02u, %04u;", kNames[month - 1], day, year)},
                {'-', true, false, Printf("%s %02u, %02u;", kNames[month - 1], day, year % 100)},
            };
            for (const auto& [separator, monthName, fullYear, expected] : forms) {
                char buffer[13];
                out.clear();
                U_FormatDateStr(date, out, separator, ';', monthName, fullYear);
                const char* end =
                    U_FormatDate(date, buffer, sizeof buffer, separator, ';', monthName, fullYear);
                ASSERT_EQ(std::tuple(out, std::string(static_cast<const char*>(buffer), end)),
                          std::tuple(expected, expected));
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

std::string Appended(const std::function<void(std::string&)>& append) {
    std::string out;
    append(out);
    return out;
}

// Every minute and every second of a day: token splits and all writers agree with snprintf, and the
// readers take the text back.
TEST(TimeText, EveryMinuteAndSecondRoundTrips) {
    char buffer[32];
    std::string out;
    for (unsigned minute = 0; minute < 1440; ++minute) {
        const std::string expected = Printf("%02u:%02u;", minute / 60, minute % 60);
        const auto value = static_cast<unsigned short>(minute);
        U_FormatMinute(value, buffer, 7, ';', ':');
        const char* cursor = buffer;
        const unsigned read = U_StringToMinute(cursor, ';', ':');
        ASSERT_EQ(std::tuple(std::string(buffer),
                             Appended([&](std::string& o) { U_AppendMinute(o, value, ';', ':'); }), read,
                             cursor - buffer),
                  std::tuple(expected, expected, minute, 6));
    }
    for (unsigned second = 0; second < 86400; ++second) {
        const unsigned h = second / 3600, m = second / 60 % 60, s = second % 60, ms = (second * 7) % 1000;
        const unsigned msOfDay = second * 1000 + ms;
        const std::string clock = Printf("%02u:%02u:%02u;", h, m, s);
        unsigned t[3] = {};
        unsigned char d[6] = {};
        const auto inBuffer = [&](const std::function<void(char*)>& write) {
            return write(buffer), std::string(buffer);
        };
        const std::string appended =
            Appended([&](std::string& o) { U_AppendMillisecond(o, msOfDay, true, ';', true, ':', '.'); });
        const char* cursor = appended.c_str();
        // The fraction is skipped on reading: whole seconds come back.
        const unsigned read = U_StringToMillisecond(cursor, ';', ':', '.');
        ASSERT_EQ(
            std::tuple(U_GetTimeTokensFromMillisecond(msOfDay, &t[0], &t[1], &t[2]),
                       U_GetTimeDigitTokensFromMillisecond(msOfDay, &d[0], &d[1], &d[2], &d[3], &d[4], &d[5]),
                       read, cursor - appended.c_str()),
            std::tuple(ms, ms, second * 1000, static_cast<std::ptrdiff_t>(appended.size())));
        const auto dateTime = U_ConvertDateTimeTokensToDate(
            2019, 1, 5, static_cast<unsigned char>(h), static_cast<unsigned char>(m),
            static_cast<unsigned char>(s), static_cast<unsigned short>(ms));
        // clang-format off
        ASSERT_EQ((std::vector<std::string>{
                      Printf("%02u:%02u:%02u;", t[0], t[1], t[2]), Printf("%u%u:%u%u:%u%u;", d[0], d[1], d[2], d[3], d[4], d[5]),
                      inBuffer([&](char* b) { U_FormatSecond(second, b, 10, ';', ':'); }),
                      inBuffer([&](char* b) { U_FormatTimeTokens(h, m, s, b, 10, ';', ':'); }),
                      inBuffer([&](char* b) { U_FormatMillisecond(msOfDay, b, 13, ';', false, ':', 0); }),
                      inBuffer([&](char* b) { U_FormatMillisecond(msOfDay, b, 14, ';', true, '.', 0); }),
                      Appended([&](std::string& o) { U_AppendTimeTokens(o, h, m, s, ';', false, ':'); }), appended,
                      Appended([&](std::string& o) { U_FormatDateAndTime(o, 2019, 1, 5, msOfDay, true, true, true, ' ', '-', 0, '.', ';'); }),
                      Appended([&](std::string& o) { U_AppendDateTime(o, dateTime, false, false, '/', ';', false, false, true); })}),
                  (std::vector<std::string>{clock, clock, clock, clock, clock, Printf("%02u:%02u:%02u-%03u;", h, m, s, ms), clock,
                      Printf("%u:%02u:%02u.%03u;", h, m, s, ms), Printf("Jan 05, 2019 %02u:%02u:%02u.%03u;", h, m, s, ms),
                      "01/05/2019 " + clock}));
        // clang-format on
    }
}

TEST(TimeText, KeptMillisecondBitTwoDigitAndSeparatorQuirks) {
    char buffer[16];
    const std::tuple<const char*, std::string, const char*> rows[] = {
        // name, actual, expected
        // clang-format off
        {"date-time millisecond of an odd second is 1024", Appended([](std::string& s) {
             U_AppendDateTime(s, U_ConvertDateTimeTokensToDate(2019, 12, 31, 9, 5, 7, 999), false, true, '-', 0, false, true, false); }),
         "Dec 31, 19 09:05:07-:24"},
        {"date-time millisecond of an even second is 0", Appended([](std::string& s) {
             U_AppendDateTime(s, U_ConvertDateTimeTokensToDate(2019, 12, 31, 9, 5, 8, 999), true, true, '-', 0, true, true, false); }),
         "9:05:08-000"},
        {"two-digit rule at hour 100", Appended([](std::string& s) { U_AppendMinute(s, 6000, 0, ':'); }), ":0:00"},
        {"largest minute of day", Appended([](std::string& s) { U_AppendMinute(s, 65535, 0, ':'); }), "\2352:15"},
        {"one-digit hour only below 10", Appended([](std::string& s) { U_AppendTimeTokens(s, 10, 0, 0, 0, true, ':'); }), "10:00:00"},
        {"separator 0 writes nothing", Appended([](std::string& s) { U_AppendTimeTokens(s, 7, 0, 0, 0, true, 0); }), "70000"},
        {"millisecond 1024 written unchecked", U_FormatTimeTokensAndMillisecond(1, 2, 3, 1024, buffer, 14, 0, 0, 0) - 12, "01:02:03-:24"},
        // clang-format on
    };
    for (const auto& [name, actual, expected] : rows) EXPECT_EQ(actual, expected) << name;
}

// Each buffer writer at every size from 0 to 20, with '#' in every byte and one guard byte past the
// end: exactly the expected bytes are written and the guard is never touched.
TEST(DateTimeBufferWriters, WriteNothingPastTheSizeAtEverySize) {
    enum class Below { Nothing, NulAtStart, TerminatorOnly };
    // name, writer, the text at a large size (NUL excluded), the smallest size that writes the text, the
    // smallest that keeps its last character, whether a NUL follows, what is written below the minimum
    const std::vector<
        std::tuple<const char*, char* (*)(char*, unsigned), std::string, unsigned, unsigned, bool, Below>>
        rows = {
#define W(call) [](char* b, unsigned n) { return call; }
            // clang-format off
        {"time tokens", W(U_FormatTimeTokens(1, 2, 3, b, n, 'x', ':')), "01:02:03x", 9, 10, true, Below::Nothing},
        {"time tokens, no separator", W(U_FormatTimeTokens(1, 2, 3, b, n, 'x', 0)), "010203x", 9, 9, true, Below::Nothing},
        {"time and millisecond", W(U_FormatTimeTokensAndMillisecond(1, 2, 3, 45, b, n, 'x', '.', '?')), "01:02:03-045x", 13, 14, true, Below::Nothing},
        {"millisecond of day, no millisecond", W(U_FormatMillisecond(3723045, b, n, 'x', false, '.', 0)), "01.02.03x", 13, 13, true, Below::Nothing},
        {"millisecond of day, with millisecond", W(U_FormatMillisecond(3723045, b, n, 'x', true, '.', 0)), "01:02:03-045x", 13, 14, true, Below::Nothing},
        {"minute", W(U_FormatMinute(90, b, n, 'x', ':')), "01:30x", 6, 7, true, Below::NulAtStart},
        {"minute, no separator: terminator still only above 6", W(U_FormatMinute(90, b, n, 'x', 0)), "0130x", 6, 7, true, Below::NulAtStart},
        {"second", W(U_FormatSecond(3723, b, n, 'x', ':')), "01:02:03x", 9, 10, true, Below::Nothing},
        {"date tokens", W(U_FormatDateTokens(1, 5, 2019, b, n, '-', 'x', true, true)), "Jan 05, 2019x", 13, 13, false, Below::TerminatorOnly},
        {"date number, no terminator", W(U_FormatDate(20190105, b, n, '/', 0, false, false)), "01/05/19", 13, 13, false, Below::Nothing},
        {"date 0", W(U_FormatDate(0, b, n, '/', 'x', false, false)), "x", 1, 1, false, Below::Nothing},
    // clang-format on
#undef W
        };
    for (const auto& [name, write, full, minimum, terminatorFrom, nul, below] : rows) {
        for (unsigned size = 0; size <= 20; ++size) {
            std::string expected;
            if (size >= minimum) {
                expected = size >= terminatorFrom ? full : full.substr(0, full.size() - 1);
            } else if (below == Below::TerminatorOnly && size > 0) {
                expected = full.substr(full.size() - 1);
            }
            const std::size_t returned = expected.size();
            if (nul && (size >= minimum || (below == Below::NulAtStart && size > 0))) expected += '\0';
            std::vector<char> buffer(size + 1, '#');
            const char* end = write(buffer.data(), size);
            EXPECT_EQ(std::tuple(end - buffer.data(), std::string(buffer.begin(), buffer.end())),
                      std::tuple(static_cast<std::ptrdiff_t>(returned),
                                 expected + std::string(size + 1 - expected.size(), '#')))
                << name << " at size " << size;
        }
    }
}

TEST(TimeReaders, StopOnTheFirstForeignCharacterAndConsumeOnlyTheTerminator) {
    // U_StringToMinute (else U_StringToMillisecond), text, terminator, separator, value, cursor offset
    const std::vector<std::tuple<bool, const char*, char, char, unsigned, long>> rows = {
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
        {false, "1:30.5;", ';', ':', 3630000, 7}, // the millisecond separator ends seconds anywhere
        {false, "5", ';', ':', 18000000, 1},
        {false, "1h:2m:3s;x", ';', ':', 3723000, 9},
        {false, "1:2:3:4:5", ';', ':', 3732000, 9}, // fields past the third are seconds too
        {false, "1:2:3.4:5;", ';', ':', 3723000, 10},
        {false, "1:2:3", 0, ':', 3723000, 5},
        {false, "", ';', ':', 0, 0},
    };
    for (const auto& [minute, input, terminator, separator, expected, offset] : rows) {
        const std::vector<char> text(input, input + std::strlen(input) + 1); // exact size for ASan
        const char* cursor = text.data();
        const unsigned value = minute ? U_StringToMinute(cursor, terminator, separator)
                                      : U_StringToMillisecond(cursor, terminator, separator, '.');
        EXPECT_EQ(std::tuple(value, cursor - text.data()), std::tuple(expected, offset)) << input;
    }
}

} // namespace
