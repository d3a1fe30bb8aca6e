// BufferFormatting.cpp - the buffer family of number writers: text right-aligned in a caller's
// buffer, written backward from the terminator so no reversal or length count is needed.
//
// Every member has two paths with identical results: a fast one used when the buffer certainly
// has room for the longest possible text, and a character-by-character one that checks the room
// before every write and so drops the most significant characters of a text that does not fit.
#include "VeloraUtils/NumberFormatting.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "text/detail/DigitWriter.h"

namespace {

using namespace velora::text::detail;

// Writes the terminator and the separator. Returns false (with `pos` set to the result) when the
// buffer has no room left for any digit; otherwise `pos` is the position to write backward from.
bool OpenField(char* buf, unsigned int size, char sep, char*& pos) {
    if (size == 0) {
        pos = buf;
        return false;
    }
    pos = buf + size - 1;
    *pos = '\0';
    if (size == 1) return false;
    if (sep != '\0') {
        *--pos = sep;
        if (size == 2) return false;
    }
    return true;
}

// Longest text the fast path can produce for type U: digits, commas, point and fraction.
template <class U> constexpr std::size_t MaxTextLength(unsigned decimals, bool commas) {
    constexpr unsigned digits = std::numeric_limits<U>::digits10 + 1;
    return digits + (commas ? digits / 3 : 0) + 1 + decimals;
}

// Fixed point with optional comma grouping, written one character at a time with a room check
// before each. A text that does not fit keeps its least significant characters.
template <class U> char* FormatCheckedDecimal(U value, char* buf, char* pos, unsigned decimals, bool commas) {
    for (unsigned i = 0; i < decimals; ++i) {
        if (pos == buf) return pos;
        *--pos = static_cast<char>('0' + value % 10);
        value = static_cast<U>(value / 10);
    }
    if (decimals != 0) {
        if (pos == buf) return pos;
        *--pos = '.';
    }
    unsigned inGroup = 0;
    do {
        if (pos == buf) return pos;
        if (commas) {
            if (inGroup == 3) {
                *--pos = ',';
                inGroup = 1;
                if (pos == buf) return pos;
            } else {
                ++inGroup;
            }
        }
        *--pos = static_cast<char>('0' + value % 10);
        value = static_cast<U>(value / 10);
    } while (value != 0);
    return pos;
}

// Fixed point, small buffers and other uncommon cases; kept out of line so that the common case
// below compiles to a short function without a stack frame.
template <class U, bool Commas>
[[gnu::noinline]] char* FormatUnsignedDecimalGeneral(U value, char* buf, unsigned int size, unsigned decimals,
                                                     char sep) {
    char* pos;
    if (!OpenField(buf, size, sep, pos)) return pos;
    const auto room = static_cast<std::size_t>(pos - buf);
    if (decimals >= 20 || room < MaxTextLength<U>(decimals, Commas))
        return FormatCheckedDecimal(value, buf, pos, decimals, Commas);

    U whole = value;
    if (decimals != 0) {
        const std::uint64_t scale = kPowersOfTen[decimals];
        const std::uint64_t wide = value;
        const std::uint64_t quotient = wide / scale;
        pos = WriteFixedDigitsBackward(pos, wide - quotient * scale, decimals);
        *--pos = '.';
        whole = static_cast<U>(quotient);
    }
    return Commas ? WriteGroupedBackward(pos, whole) : WriteDecimalBackward(pos, whole);
}

template <class U, bool Commas>
inline char* FormatUnsignedDecimal(U value, char* buf, unsigned int size, unsigned decimals, char sep) {
    // Common case first: whole numbers into a buffer that certainly holds terminator, separator
    // and the longest text of the type.
    if (decimals == 0 && size >= MaxTextLength<U>(0, Commas) + 2) [[likely]] {
        char* end = buf + size - 1;
        *end = '\0';
        if (sep != '\0') *--end = sep;
        return Commas ? WriteGroupedBackward(end, value) : WriteDecimalBackward(end, value);
    }
    return FormatUnsignedDecimalGeneral<U, Commas>(value, buf, size, decimals, sep);
}

// Negative values: the magnitude through the unsigned writer, then "-" in front. The sign goes in
// only while the text does not already start at buf[0]: nothing is ever written before the buffer.
template <class S, bool Commas>
char* FormatSignedDecimal(S value, char* buf, unsigned int size, unsigned decimals, char sep) {
    using U = std::make_unsigned_t<S>;
    using Wide = std::conditional_t<(sizeof(U) < 4), std::uint32_t, U>;
    const bool negative = value < 0;
    // Unsigned negation: the most negative value keeps its own bit pattern, as two's complement does.
    const U magnitude = negative ? static_cast<U>(U{0} - static_cast<U>(value)) : static_cast<U>(value);
    char* first = FormatUnsignedDecimal<Wide, Commas>(static_cast<Wide>(magnitude), buf, size, decimals, sep);
    if (negative && first > buf) *--first = '-';
    return first;
}

template <class U> char* FormatHex(U value, char* buf, unsigned int size, char sep) {
    char* pos;
    if (!OpenField(buf, size, sep, pos)) return pos;
    if (static_cast<std::size_t>(pos - buf) >= sizeof(U) * 2) return WriteHexBackward(pos, value);
    do {
        *--pos = kHexDigits[value & 0xF];
        value = static_cast<U>(value >> 4);
    } while (value != 0 && pos != buf);
    return pos;
}

// Digits (at least one, while room lasts), then `fill` down to buf[0].
template <class U, unsigned Base>
char* FormatPrepended(U value, char* buf, unsigned int size, char fill, char sep) {
    char* pos;
    if (!OpenField(buf, size, sep, pos)) return pos;
    while (pos != buf) {
        *--pos = kHexDigits[value % Base];
        value = static_cast<U>(value / Base);
        if (value == 0) break;
    }
    while (pos != buf) *--pos = fill;
    return pos;
}

} // namespace

char* U_IntToStr(int value, char* buf, unsigned int size, unsigned char decimals, char sep) {
    return FormatSignedDecimal<int, false>(value, buf, size, decimals, sep);
}
char* U_Int64ToStr(std::int64_t value, char* buf, unsigned int size, unsigned char decimals, char sep) {
    return FormatSignedDecimal<std::int64_t, false>(value, buf, size, decimals, sep);
}
char* U_UIntToStr(unsigned int value, char* buf, unsigned int size, unsigned char decimals, char sep) {
    return FormatUnsignedDecimal<unsigned int, false>(value, buf, size, decimals, sep);
}
char* U_UInt64ToStr(std::uint64_t value, char* buf, unsigned int size, unsigned char decimals, char sep) {
    return FormatUnsignedDecimal<std::uint64_t, false>(value, buf, size, decimals, sep);
}
char* U_ShortToStr(short value, char* buf, unsigned int size, char sep) {
    return FormatSignedDecimal<short, false>(value, buf, size, 0, sep);
}
char* U_UShortToStr(unsigned short value, char* buf, unsigned int size, char sep) {
    return FormatUnsignedDecimal<std::uint32_t, false>(value, buf, size, 0, sep);
}
char* U_UCharToStr(unsigned char value, char* buf, unsigned int size, char sep) {
    return FormatUnsignedDecimal<std::uint32_t, false>(value, buf, size, 0, sep);
}
char* U_CharAsIntToStr(char value, char* buf, unsigned int size, char sep) {
    return FormatSignedDecimal<signed char, false>(static_cast<signed char>(value), buf, size, 0, sep);
}

char* U_UCharHexToStr(unsigned char value, char* buf, unsigned int size, char sep) {
    return FormatHex(value, buf, size, sep);
}
char* U_UShortHexToStr(unsigned short value, char* buf, unsigned int size, char sep) {
    return FormatHex(value, buf, size, sep);
}
char* U_UIntHexToStr(unsigned int value, char* buf, unsigned int size, char sep) {
    return FormatHex(value, buf, size, sep);
}
char* U_UInt64HexToStr(std::uint64_t value, char* buf, unsigned int size, char sep) {
    return FormatHex(value, buf, size, sep);
}

char* U_IntToStrWithCommas(int value, char* buf, unsigned int size, unsigned char decimals, char sep) {
    return FormatSignedDecimal<int, true>(value, buf, size, decimals, sep);
}
char* U_UIntToStrWithCommas(unsigned int value, char* buf, unsigned int size, unsigned char decimals,
                            char sep) {
    return FormatUnsignedDecimal<unsigned int, true>(value, buf, size, decimals, sep);
}
char* U_UShortToStrWithCommas(unsigned short value, char* buf, unsigned int size, unsigned char decimals,
                              char sep) {
    return FormatUnsignedDecimal<std::uint32_t, true>(value, buf, size, decimals, sep);
}
char* U_Int64ToStrWithCommas(std::int64_t value, char* buf, unsigned int size, unsigned char decimals,
                             char sep) {
    return FormatSignedDecimal<std::int64_t, true>(value, buf, size, decimals, sep);
}
char* U_UInt64ToStrWithCommas(std::uint64_t value, char* buf, unsigned int size, unsigned char decimals,
                              char sep) {
    return FormatUnsignedDecimal<std::uint64_t, true>(value, buf, size, decimals, sep);
}

char* U_UIntToStrPad(unsigned int value, char* buf, unsigned int size, unsigned int width,
                     bool dropTrailingZeros, char sep) {
    char* pos;
    if (!OpenField(buf, size, sep, pos)) return pos;
    // Every digit position counts towards the width, skipped zeros included, so the zeros put in
    // front afterwards always fit in the room the skipped and written digits left.
    auto pad = static_cast<unsigned int>(std::min<std::size_t>(static_cast<std::size_t>(pos - buf), width));
    do {
        if (pad > 0) --pad;
        const auto digit = static_cast<char>(value % 10);
        value /= 10;
        if (dropTrailingZeros && digit == 0) continue;
        dropTrailingZeros = false;
        *--pos = static_cast<char>('0' + digit);
    } while (value != 0 && pos != buf);
    for (; pad > 0; --pad) *--pos = '0';
    return pos;
}

char* U_UIntToStrPrepended(unsigned int value, char* buf, unsigned int size, char fill, char sep) {
    return FormatPrepended<unsigned int, 10>(value, buf, size, fill, sep);
}
char* U_UInt64ToStrPrepended(std::uint64_t value, char* buf, unsigned int size, char fill, char sep) {
    return FormatPrepended<std::uint64_t, 10>(value, buf, size, fill, sep);
}
char* U_UIntHexToStrPrepended(unsigned int value, char* buf, unsigned int size, char fill, char sep) {
    return FormatPrepended<unsigned int, 16>(value, buf, size, fill, sep);
}
char* U_UInt64HexToStrPrepended(std::uint64_t value, char* buf, unsigned int size, char fill, char sep) {
    return FormatPrepended<std::uint64_t, 16>(value, buf, size, fill, sep);
}

char* U_AppendTwoDigitsToBuf(char* buf, unsigned int size, unsigned int value, char sep) {
    char* end = U_AppendTwoDigitsToBufWithNoTerm0(buf, size, value);
    if (end == nullptr || end == buf) return end;
    if (sep != '\0' && size > 3) *end++ = sep;
    *end = '\0';
    return end;
}

char* U_AppendTwoDigitsToBufWithNoTerm0(char* buf, unsigned int size, unsigned int value) {
    if (size == 0) return nullptr;
    if (size < 3) {
        buf[0] = '\0';
        return buf;
    }
    // No range check: a value of 100 or more gives a non-digit first character, as callers expect.
    buf[0] = static_cast<char>('0' + value / 10);
    buf[1] = static_cast<char>('0' + value % 10);
    return buf + 2;
}

char* U_MarkSectionEnd(char* text, char delimiter, bool* found) {
    char* pos = text;
    while (*pos != '\0' && *pos != delimiter) ++pos;
    const bool hit = *pos != '\0';
    if (hit) *pos = '\0';
    if (found != nullptr) *found = hit;
    return pos;
}
