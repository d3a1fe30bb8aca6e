// DateTimeWriters.cpp - dates and times written as text. One core per text shape, written against an
// output sink, serves both the buffer form (bounded, never past the caller's size) and the std::string
// form.
#include "VeloraUtils/DateTime.h"

namespace {

// Appends to a caller's string.
class StringSink {
public:
    explicit StringSink(std::string& out) : out_(out) {}
    void Put(char c) { out_.push_back(c); }

private:
    std::string& out_;
};

// Writes into [position, end); characters that do not fit are dropped.
class BufferSink {
public:
    BufferSink(char* begin, char* end) : position_(begin), end_(end) {}
    void Put(char c) {
        if (position_ != end_) *position_++ = c;
    }
    char* Position() const { return position_; }

private:
    char* position_;
    char* end_;
};

template <class Sink> void PutUnlessZero(Sink& out, char c) {
    if (c != '\0') out.Put(c);
}

// '0' + value / 10 and '0' + value % 10, unchecked: 100 and more give a non-digit first character.
template <class Sink> void PutTwoDigits(Sink& out, unsigned int value) {
    out.Put(static_cast<char>('0' + value / 10u));
    out.Put(static_cast<char>('0' + value % 10u));
}

// '0' + value / 100, then two digits of value % 100.
template <class Sink> void PutThreeDigits(Sink& out, unsigned int value) {
    out.Put(static_cast<char>('0' + value / 100u));
    PutTwoDigits(out, value % 100u);
}

// The buffer form writes no month at all for an unnamed month under monthName; the string form writes
// it as digits.
enum class UnnamedMonth { Skip, AsDigits };

template <class Sink>
void PutDate(Sink& out, unsigned int month, unsigned int day, unsigned int year, char separator,
             char terminator, bool monthName, bool fullYear, UnnamedMonth unnamedMonth) {
    if (static_cast<unsigned char>(separator) < 32u) separator = '-';
    const char* name =
        monthName && month <= 12u ? U_GetMonthName(static_cast<unsigned short>(month)) : nullptr;
    if (name != nullptr) {
        for (int i = 0; i < 3 && name[i] != '\0'; ++i) out.Put(name[i]);
        out.Put(' ');
    } else if (!monthName || unnamedMonth == UnnamedMonth::AsDigits) {
        PutTwoDigits(out, month);
        out.Put(separator);
    }
    PutTwoDigits(out, day);
    if (monthName) {
        out.Put(',');
        out.Put(' ');
    } else {
        out.Put(separator);
    }
    if (fullYear) PutTwoDigits(out, year / 100u);
    PutTwoDigits(out, year % 100u);
    PutUnlessZero(out, terminator);
}

template <class Sink> void PutHour(Sink& out, unsigned int hour, bool withoutLeadingZero) {
    if (withoutLeadingZero && hour < 10u) {
        out.Put(static_cast<char>('0' + hour));
    } else {
        PutTwoDigits(out, hour);
    }
}

// hour, separator, minute, separator, second.
template <class Sink>
void PutClock(Sink& out, unsigned int hour, unsigned int minute, unsigned int second, char separator,
              bool hourWithoutLeadingZero) {
    PutHour(out, hour, hourWithoutLeadingZero);
    PutUnlessZero(out, separator);
    PutTwoDigits(out, minute);
    PutUnlessZero(out, separator);
    PutTwoDigits(out, second);
}

// A millisecond of day as a clock, then (with withMillisecond) the millisecond separator and three
// digits, then the terminator.
template <class Sink>
void PutMillisecondOfDay(Sink& out, unsigned int ms, bool withMillisecond, char terminator,
                         bool hourWithoutLeadingZero, char separator, char millisecondSeparator) {
    PutClock(out, ms / 3600000u, ms % 3600000u / 60000u, ms % 60000u / 1000u, separator,
             hourWithoutLeadingZero);
    if (withMillisecond) {
        PutUnlessZero(out, millisecondSeparator);
        PutThreeDigits(out, ms % 1000u);
    }
    PutUnlessZero(out, terminator);
}

// The time writers keep the last byte for the NUL, so a terminator that does not fit before it is
// dropped by the sink.
char* Terminate(const BufferSink& out) {
    char* end = out.Position();
    *end = '\0';
    return end;
}

} // namespace

// ---- Buffer forms ----------------------------------------------------------------------------------

char* U_FormatDateTokens(unsigned short month, unsigned short day, unsigned short year, char* buffer,
                         unsigned int size, char separator, char terminator, bool monthName, bool fullYear) {
    BufferSink out(buffer, buffer + size);
    if (size < 13u) {
        PutUnlessZero(out, terminator);
    } else {
        PutDate(out, month, day, year, separator, terminator, monthName, fullYear, UnnamedMonth::Skip);
    }
    return out.Position();
}

char* U_FormatDate(unsigned int date, char* buffer, unsigned int size, char separator, char terminator,
                   bool monthName, bool fullYear) {
    if (date == 0) {
        BufferSink out(buffer, buffer + size);
        PutUnlessZero(out, terminator);
        return out.Position();
    }
    unsigned short year = 0;
    unsigned short month = 0;
    unsigned short day = 0;
    U_GetDateTokens(date, &year, &month, &day);
    return U_FormatDateTokens(month, day, year, buffer, size, separator, terminator, monthName, fullYear);
}

char* U_FormatTimeTokens(unsigned int hour, unsigned int minute, unsigned int second, char* buffer,
                         unsigned int size, char terminator, char separator) {
    if (size < 9u) return buffer;
    BufferSink out(buffer, buffer + size - 1);
    PutClock(out, hour, minute, second, separator, false);
    PutUnlessZero(out, terminator);
    return Terminate(out);
}

char* U_FormatTimeTokensAndMillisecond(unsigned int hour, unsigned int minute, unsigned int second,
                                       unsigned int millisecond, char* buffer, unsigned int size,
                                       char terminator, char, char) {
    if (size < 13u) return buffer;
    BufferSink out(buffer, buffer + size - 1);
    PutClock(out, hour, minute, second, ':', false);
    out.Put('-');
    PutThreeDigits(out, millisecond);
    PutUnlessZero(out, terminator);
    return Terminate(out);
}

char* U_FormatMillisecond(unsigned int ms, char* buffer, unsigned int size, char terminator,
                          bool withMillisecond, char separator, char unused) {
    if (size < 13u) return buffer;
    const unsigned int hour = ms / 3600000u;
    const unsigned int minute = ms % 3600000u / 60000u;
    const unsigned int second = ms % 60000u / 1000u;
    if (withMillisecond) {
        return U_FormatTimeTokensAndMillisecond(hour, minute, second, ms % 1000u, buffer, size, terminator,
                                                separator, unused);
    }
    return U_FormatTimeTokens(hour, minute, second, buffer, size, terminator, separator);
}

char* U_FormatMinute(unsigned short minute, char* buffer, unsigned int size, char terminator,
                     char separator) {
    if (size < 6u) {
        if (size != 0u) *buffer = '\0';
        return buffer;
    }
    BufferSink out(buffer, buffer + size - 1);
    PutTwoDigits(out, minute / 60u);
    PutUnlessZero(out, separator);
    PutTwoDigits(out, minute % 60u);
    if (size > 6u) PutUnlessZero(out, terminator);
    return Terminate(out);
}

char* U_FormatSecond(unsigned int second, char* buffer, unsigned int size, char terminator, char separator) {
    if (size < 9u) return buffer;
    BufferSink out(buffer, buffer + size - 1);
    PutClock(out, second / 3600u, second % 3600u / 60u, second % 60u, separator, false);
    if (size > 9u) PutUnlessZero(out, terminator);
    return Terminate(out);
}

// ---- String forms ----------------------------------------------------------------------------------

void U_FormatDateTokensStr(unsigned short month, unsigned short day, unsigned short year, std::string& out,
                           char separator, char terminator, bool monthName, bool fullYear) {
    StringSink sink(out);
    PutDate(sink, month, day, year, separator, terminator, monthName, fullYear, UnnamedMonth::AsDigits);
}

void U_FormatDateStr(unsigned int date, std::string& out, char separator, char terminator, bool monthName,
                     bool fullYear) {
    if (date == 0) {
        if (terminator != '\0') out.push_back(terminator);
        return;
    }
    unsigned short year = 0;
    unsigned short month = 0;
    unsigned short day = 0;
    U_GetDateTokens(date, &year, &month, &day);
    U_FormatDateTokensStr(month, day, year, out, separator, terminator, monthName, fullYear);
}

void U_AppendThreeCharDateToStr(std::string& out, const unsigned int& date, char separator, char,
                                bool monthName, bool fullYear) {
    const auto day = static_cast<unsigned short>(date & 0xFFu);
    const auto month = static_cast<unsigned short>((date >> 8) & 0xFFu);
    const auto year = static_cast<unsigned short>(2000u + ((date >> 16) & 0xFFu));
    U_FormatDateTokensStr(month, day, year, out, separator, ' ', monthName, fullYear);
}

void U_AppendTimeTokens(std::string& out, unsigned int hour, unsigned int minute, unsigned int second,
                        char terminator, bool hourWithoutLeadingZero, char separator) {
    StringSink sink(out);
    PutClock(sink, hour, minute, second, separator, hourWithoutLeadingZero);
    PutUnlessZero(sink, terminator);
}

void U_AppendMillisecond(std::string& out, unsigned int ms, bool withMillisecond, char terminator,
                         bool hourWithoutLeadingZero, char separator, char millisecondSeparator) {
    StringSink sink(out);
    PutMillisecondOfDay(sink, ms, withMillisecond, terminator, hourWithoutLeadingZero, separator,
                        millisecondSeparator);
}

void U_AppendMinute(std::string& out, unsigned short minuteOfDay, char terminator, char separator) {
    StringSink sink(out);
    PutTwoDigits(sink, minuteOfDay / 60u);
    PutUnlessZero(sink, separator);
    PutTwoDigits(sink, minuteOfDay % 60u);
    PutUnlessZero(sink, terminator);
}

void U_AppendDateTime(std::string& out, const std::uint64_t& dateTime, bool timeOnly, bool withMillisecond,
                      char separator, char terminator, bool hourWithoutLeadingZero, bool monthName,
                      bool fullYear) {
    unsigned short year = 0;
    unsigned char month = 0;
    unsigned char day = 0;
    unsigned char hour = 0;
    unsigned char minute = 0;
    unsigned char second = 0;
    unsigned short millisecond = 0; // 0 or 1024: see U_GetDateTimeTokensTimeOnly
    U_GetDateTimeTokens(dateTime, &year, &month, &day, &hour, &minute, &second, &millisecond);
    if (!timeOnly) U_FormatDateTokensStr(month, day, year, out, separator, ' ', monthName, fullYear);
    StringSink sink(out);
    PutClock(sink, hour, minute, second, ':', hourWithoutLeadingZero);
    if (withMillisecond) {
        sink.Put('-');
        PutThreeDigits(sink, millisecond);
    }
    PutUnlessZero(sink, terminator);
}

void U_FormatDateAndTime(std::string& out, unsigned short year, unsigned char month, unsigned char day,
                         unsigned int ms, bool withMillisecond, bool monthName, bool fullYear,
                         char dateTerminator, char dateSeparator, char, char millisecondSeparator,
                         char terminator) {
    U_FormatDateTokensStr(month, day, year, out, dateSeparator, dateTerminator, monthName, fullYear);
    StringSink sink(out);
    PutMillisecondOfDay(sink, ms, withMillisecond, terminator, false, ':', millisecondSeparator);
}
