// PriceText.cpp - prices, money amounts and compact prices written as text. One core serves every
// amount writer: it cuts the fraction to the asked decimals, then builds sign, grouped whole part,
// point and fraction in one small scratch buffer and appends it to the string in one operation.
#include "VeloraUtils/PriceText.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "text/detail/DigitWriter.h"

namespace {

using namespace velora::text::detail;

constexpr std::uint32_t kPowers[10] = {1,      10,      100,      1000,      10000,
                                       100000, 1000000, 10000000, 100000000, 1000000000};

constexpr unsigned kPriceDigits = 9;
constexpr unsigned kMoneyDigits = 4;

// Writes the nine low digits of f (f mod 10^9, zero-padded) at p[0..8].
inline void WriteNineDigits(char* p, std::uint32_t f) {
    const std::uint32_t high = f / 100000000;
    p[0] = static_cast<char>('0' + high % 10);
    WriteEightDigits(p + 1, f - high * 100000000);
}

// Writes the `digits` (1 to 9) low digits of `fraction` forward from `start` and returns the end.
// The nine-digit block is written so that it ends at the end of the field, so the 9 - `digits`
// characters before `start` are scratch and get overwritten. With `trim`, trailing zeros are dropped
// down to `keep` digits (at least).
inline char* WriteFractionField(char* start, std::uint32_t fraction, unsigned digits, bool trim,
                                unsigned keep) {
    char* end = start + digits;
    WriteNineDigits(end - 9, fraction);
    if (trim) {
        const char* const floor = start + (keep < digits ? keep : digits);
        while (end > floor && end[-1] == '0') --end;
    }
    return end;
}

// Cuts a fraction to fewer digits by a constant divisor (so the division is a multiplication).
template <std::uint32_t Divisor> inline std::uint32_t Cut(std::uint32_t fraction, char roundMode) {
    const std::uint32_t cut = fraction / Divisor;
    const std::uint32_t rest = fraction - cut * Divisor;
    // rest < Divisor <= 10^9, so rest * 2 cannot wrap.
    const bool up = roundMode == 0 ? rest * 2 >= Divisor : roundMode > 0 && rest != 0;
    return cut + (up ? 1u : 0u);
}

inline std::uint32_t CutFraction(std::uint32_t fraction, unsigned dropped, char roundMode) {
    switch (dropped) {
    case 1:
        return Cut<10>(fraction, roundMode);
    case 2:
        return Cut<100>(fraction, roundMode);
    case 3:
        return Cut<1000>(fraction, roundMode);
    case 4:
        return Cut<10000>(fraction, roundMode);
    case 5:
        return Cut<100000>(fraction, roundMode);
    case 6:
        return Cut<1000000>(fraction, roundMode);
    case 7:
        return Cut<10000000>(fraction, roundMode);
    case 8:
        return Cut<100000000>(fraction, roundMode);
    default:
        return Cut<1000000000>(fraction, roundMode);
    }
}

// Sign, up to 20 digits and 6 commas of a 64-bit whole part before the point; the point, nine
// digits and the separator after it; the nine-digit block may reach 8 characters back over the point.
constexpr std::size_t kPointAt = 32;
constexpr std::size_t kScratch = kPointAt + 16;

// The common amount writer: `N` fraction digits in the type, the magnitudes of both parts and the
// sign. `WholeU` is the unsigned type wide enough for the whole part's magnitude.
template <unsigned N, class WholeU>
void AppendAmount(std::string& s, bool negative, WholeU whole, std::uint32_t fraction, unsigned char decimals,
                  char roundMode, bool commas, char sep, bool trimZeros) {
    static_assert(std::is_unsigned_v<WholeU> && N >= 1 && N <= kPriceDigits);
    unsigned digits = N;
    if (decimals < N) {
        digits = decimals;
        fraction = CutFraction(fraction, N - decimals, roundMode);
        if (fraction >= kPowers[decimals]) { // the rounding carried out of the fraction
            fraction -= kPowers[decimals];
            ++whole;
        }
    }

    char scratch[kScratch];
    char* const point = scratch + kPointAt;
    char* end = point;
    if (digits != 0) {
        end = WriteFractionField(point + 1, fraction, digits, trimZeros, 2);
        *point = '.';
    }
    char* first = commas ? WriteGroupedBackward(point, whole) : WriteDecimalBackward(point, whole);
    if (negative) *--first = '-';
    *end = sep;
    s.append(first, static_cast<std::size_t>(end - first) + (sep != '\0' ? 1u : 0u));
}

template <class S> constexpr std::make_unsigned_t<S> Magnitude(S value) {
    using U = std::make_unsigned_t<S>;
    // Unsigned negation: the most negative value keeps its bit pattern, which read unsigned is right.
    return value < 0 ? static_cast<U>(U{0} - static_cast<U>(value)) : static_cast<U>(value);
}

// A compact price as its whole part and ten-thousandths.
struct CompactParts {
    std::uint32_t whole;
    std::uint32_t fraction;
};

constexpr CompactParts DecodeCompact(std::uint32_t compact) {
    if ((compact & 0x40000000u) != 0) return {(compact >> 7) & 0x7FFFFFu, (compact & 0x7Fu) * 100};
    return {compact >> 14, compact & 0x3FFFu};
}

void AppendCompact(std::string& s, bool negative, std::uint32_t compact, unsigned char decimals,
                   char roundMode, bool commas, char sep, bool trimZeros) {
    const CompactParts parts = DecodeCompact(compact);
    AppendAmount<kMoneyDigits>(s, negative, parts.whole, parts.fraction, decimals, roundMode, commas, sep,
                               trimZeros);
}

void AppendFraction(std::string& s, std::uint32_t fraction, unsigned digits, char sep, bool trimZeros) {
    char scratch[kScratch];
    char* const start = scratch + kPointAt;
    char* end = digits != 0 ? WriteFractionField(start, fraction, digits, trimZeros, 2) : start;
    *end = sep;
    s.append(start, static_cast<std::size_t>(end - start) + (sep != '\0' ? 1u : 0u));
}

} // namespace

void U_PriceDollarsAndFractionToStr(std::string& s, unsigned int whole, unsigned int fraction,
                                    unsigned char decimals, char roundMode, bool commas, char sep,
                                    bool trimZeros) {
    AppendAmount<kPriceDigits>(s, false, whole, fraction, decimals, roundMode, commas, sep, trimZeros);
}

void U_SignedPriceDollarsAndFractionToStr(std::string& s, int whole, int fraction, unsigned char decimals,
                                          char roundMode, bool commas, char sep, bool trimZeros) {
    AppendAmount<kPriceDigits>(s, whole < 0 || fraction < 0, Magnitude(whole), Magnitude(fraction), decimals,
                               roundMode, commas, sep, trimZeros);
}

void U_MoneyDollarsAndFractionToStr(std::string& s, std::int64_t whole, short fraction,
                                    unsigned char decimals, char roundMode, bool commas, char sep,
                                    bool trimZeros) {
    AppendAmount<kMoneyDigits>(s, whole < 0 || fraction < 0, Magnitude(whole),
                               static_cast<std::uint32_t>(Magnitude(static_cast<int>(fraction))), decimals,
                               roundMode, commas, sep, trimZeros);
}

void U_CompactPriceToStr(std::string& s, unsigned int compact, unsigned char decimals, char roundMode,
                         bool commas, char sep, bool trimZeros) {
    AppendCompact(s, false, compact, decimals, roundMode, commas, sep, trimZeros);
}

void U_CompactSignedPriceToStr(std::string& s, int compact, unsigned char decimals, char roundMode,
                               bool commas, char sep, bool trimZeros) {
    AppendCompact(s, compact < 0, Magnitude(compact), decimals, roundMode, commas, sep, trimZeros);
}

void U_DollarFractionToStdStr(unsigned int fraction, unsigned char digits, std::string& s, char sep,
                              bool trimZeros) {
    AppendFraction(s, fraction, digits < kPriceDigits ? digits : kPriceDigits, sep, trimZeros);
}

void U_MoneyFractionToStdStr(unsigned short fraction, unsigned char digits, std::string& s, char sep,
                             bool trimZeros) {
    AppendFraction(s, fraction, digits < kMoneyDigits ? digits : kMoneyDigits, sep, trimZeros);
}

char* U_DollarFractionToStr(unsigned int fraction, unsigned char digits, char* buf, bool trimZeros,
                            char terminator) {
    std::size_t length = 0;
    if (digits != 0 && digits <= kPriceDigits) {
        // Built in scratch first, so that only the kept digits and the terminator touch the caller's
        // buffer. Places 10^8 to 10^5 may end the text after a single digit; below them two digits stay.
        char scratch[kScratch];
        char* const start = scratch + kPointAt;
        const char* end = WriteFractionField(start, fraction, digits, trimZeros, digits >= 6 ? 1 : 2);
        length = static_cast<std::size_t>(end - start);
        std::memcpy(buf, start, length);
    }
    buf[length] = terminator;
    return buf + length;
}
