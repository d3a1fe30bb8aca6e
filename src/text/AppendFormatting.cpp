// AppendFormatting.cpp - the append family of number writers: a value's text, then an optional
// separator, appended to a std::string in one operation.
#include "VeloraUtils/NumberFormatting.h"

#include <type_traits>

#include "text/detail/DigitWriter.h"

namespace {

using namespace velora::text::detail;

// Room for the longest text (a 64-bit value: 20 digits, or 16 hex digits), a sign and a separator.
constexpr int kScratch = 24;

// Appends [first, end) and, when `sep` is nonzero, the separator stored at *end.
std::string& AppendWithSeparator(std::string& s, const char* first, char* end, char sep) {
    *end = sep;
    s.append(first, static_cast<std::size_t>(end - first) + (sep != '\0' ? 1 : 0));
    return s;
}

template <class U> std::string& AppendDecimal(std::string& s, U value, char sep) {
    char scratch[kScratch];
    char* end = scratch + kScratch - 1;
    return AppendWithSeparator(s, WriteDecimalBackward(end, value), end, sep);
}

template <class S> std::string& AppendSignedDecimal(std::string& s, S value, char sep) {
    using U = std::make_unsigned_t<S>;
    char scratch[kScratch];
    char* end = scratch + kScratch - 1;
    // Unsigned negation: the most negative value keeps its own bit pattern, as two's complement does.
    char* first = WriteDecimalBackward(end, value < 0 ? U{0} - static_cast<U>(value) : static_cast<U>(value));
    if (value < 0) *--first = '-';
    return AppendWithSeparator(s, first, end, sep);
}

template <class U> std::string& AppendHex(std::string& s, U value, char sep) {
    char scratch[kScratch];
    char* end = scratch + kScratch - 1;
    return AppendWithSeparator(s, WriteHexBackward(end, value), end, sep);
}

void PushSeparator(std::string& s, char sep) {
    if (sep != '\0') s.push_back(sep);
}

bool IsPrintable(unsigned char code) {
    return code >= 33 && code <= 126;
}

// The two-digit form of the fixed-digit writers: tens are 0 when value / 10 has more than one digit.
void PushTwoDigits(std::string& s, unsigned int value) {
    const unsigned int tens = value / 10;
    s.push_back(static_cast<char>('0' + (tens < 10 ? tens : 0)));
    s.push_back(static_cast<char>('0' + value % 10));
}

// A leading digit that falls back to 0 when `part` is not a single digit.
void PushLeadingDigit(std::string& s, unsigned int part) {
    s.push_back(static_cast<char>('0' + (part < 10 ? part : 0)));
}

} // namespace

std::string& U_AppendBool(std::string& s, bool value, char sep) {
    s.push_back(value ? '1' : '0');
    PushSeparator(s, sep);
    return s;
}

std::string& U_AppendUChar(std::string& s, unsigned char value, char sep) {
    return AppendDecimal<std::uint32_t>(s, value, sep);
}
std::string& U_AppendUShort(std::string& s, unsigned short value, char sep) {
    return AppendDecimal<std::uint32_t>(s, value, sep);
}
std::string& U_AppendUInt(std::string& s, unsigned int value, char sep) {
    return AppendDecimal<std::uint32_t>(s, value, sep);
}
std::string& U_AppendUInt64(std::string& s, std::uint64_t value, char sep) {
    return AppendDecimal(s, value, sep);
}

std::string& U_AppendUCharHex(std::string& s, unsigned char value, char sep) {
    return AppendHex(s, value, sep);
}
std::string& U_AppendUShortHex(std::string& s, unsigned short value, char sep) {
    return AppendHex(s, value, sep);
}
std::string& U_AppendUIntHex(std::string& s, unsigned int value, char sep) {
    return AppendHex(s, value, sep);
}
std::string& U_AppendUInt64Hex(std::string& s, std::uint64_t value, char sep) {
    return AppendHex(s, value, sep);
}

std::string& U_AppendInt(std::string& s, int value, char sep) {
    return AppendSignedDecimal(s, value, sep);
}
std::string& U_AppendInt64(std::string& s, std::int64_t value, char sep) {
    return AppendSignedDecimal(s, value, sep);
}

std::string& U_AppendPrintableChar(std::string& s, char value, char sep) {
    const auto code = static_cast<unsigned char>(value);
    if (IsPrintable(code)) {
        s.push_back(value);
        PushSeparator(s, sep);
        return s;
    }
    s.push_back('#');
    return AppendDecimal<std::uint32_t>(s, code, sep);
}

bool U_AppendPrintableCharIfValid(std::string& s, char value, char sep) {
    if (!IsPrintable(static_cast<unsigned char>(value))) return false;
    s.push_back(value);
    PushSeparator(s, sep);
    return true;
}

std::string& U_AppendTwoDigits(std::string& s, unsigned int value, char sep) {
    PushTwoDigits(s, value);
    PushSeparator(s, sep);
    return s;
}

std::string& U_AppendThreeDigits(std::string& s, unsigned int value, char sep) {
    PushLeadingDigit(s, value / 100);
    return U_AppendTwoDigits(s, value % 100, sep);
}

std::string& U_AppendFourDigits(std::string& s, unsigned int value, char sep) {
    PushLeadingDigit(s, value / 1000);
    s.push_back(static_cast<char>('0' + value % 1000 / 100));
    return U_AppendTwoDigits(s, value % 100, sep);
}
