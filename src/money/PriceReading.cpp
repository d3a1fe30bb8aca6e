// PriceReading.cpp - prices and money amounts read out of text. One core reads the magnitude for
// every reader: the whole part digit by digit up to ".", the delimiter, the NUL or the length limit,
// then the fraction through the digit-counting token readers, which also report how many digits it
// had so that it can be scaled to the type's fraction digits.
#include "VeloraUtils/PriceText.h"

#include <cstdint>
#include <type_traits>

#include "VeloraUtils/TokenReading.h"
#include "text/detail/TokenCore.h"

namespace {

using velora::token_core::DecimalStep;
using velora::token_core::IsEither;
using velora::token_core::LengthLimit;
using velora::token_core::NoLimit;
using velora::token_core::TokenEnd;
using velora::token_core::WalkToken;

constexpr std::uint32_t kPowers[10] = {1,      10,      100,      1000,      10000,
                                       100000, 1000000, 10000000, 100000000, 1000000000};

// The fraction token: its value from the first `*digitCount` characters, and in `*digitCount` how
// many characters entered it (the token's length counted in 8 bits, at most the entry value).
inline std::uint32_t ReadFraction(const char** p, const NoLimit&, unsigned char* digitCount, char delimiter,
                                  std::uint32_t) {
    return U_ReadUIntTokenWithDigitCount(p, digitCount, delimiter, 0);
}
inline std::uint32_t ReadFraction(const char** p, const LengthLimit& limit, unsigned char* digitCount,
                                  char delimiter, std::uint32_t) {
    return U_ReadUIntTokenUpToLengthWithDigitCount(p, limit.remaining, digitCount, delimiter, 0);
}
inline std::uint16_t ReadFraction(const char** p, const NoLimit&, unsigned char* digitCount, char delimiter,
                                  std::uint16_t) {
    return U_ReadUShortTokenWithDigitCount(p, digitCount, delimiter, 0);
}
inline std::uint16_t ReadFraction(const char** p, const LengthLimit& limit, unsigned char* digitCount,
                                  char delimiter, std::uint16_t) {
    return U_ReadUShortTokenUpToLengthWithDigitCount(p, limit.remaining, digitCount, delimiter, 0);
}

template <class WholeU, class FractionU> struct Amount {
    WholeU whole = 0;
    FractionU fraction = 0;
    bool negative = false;
};

// Reads "[-]<whole>[.<fraction>]" and the delimiter after it. `N` is the type's fraction digits; a
// nonzero fraction of fewer counted digits is scaled up to N of them, in the fraction's own width.
template <unsigned N, bool Signed, class WholeU, class FractionU, class Limit>
Amount<WholeU, FractionU> ReadAmount(const char*& cursor, const Limit& limit, unsigned char maxDecimals,
                                     char delimiter) {
    Amount<WholeU, FractionU> amount;
    const char* p = cursor;
    if (*p == '\0' || limit.IsSpent()) return amount;
    if constexpr (Signed) {
        if (*p == '-') {
            amount.negative = true;
            ++p;
            limit.Take();
            if (*p == '\0' || limit.IsSpent()) {
                cursor = p;
                return amount;
            }
        }
    }
    // The delimiter is tested before ".", so a delimiter of "." ends the whole part and no fraction
    // is read.
    const TokenEnd end = WalkToken(p, IsEither{'.', delimiter}, limit,
                                   [&](char c) { amount.whole = DecimalStep(amount.whole, c); });
    if (end == TokenEnd::Delimiter) {
        const bool point = *p != delimiter;
        ++p;
        limit.Take();
        if (point) {
            unsigned char count = maxDecimals;
            FractionU fraction = ReadFraction(&p, limit, &count, delimiter, FractionU{});
            if (fraction != 0 && count < N) fraction = static_cast<FractionU>(fraction * kPowers[N - count]);
            amount.fraction = fraction;
        }
    }
    cursor = p;
    return amount;
}

template <class S, class U> constexpr S Signed(U magnitude, bool negative) {
    static_assert(std::is_unsigned_v<U> && sizeof(S) == sizeof(U));
    return static_cast<S>(negative ? static_cast<U>(U{0} - magnitude) : magnitude);
}

template <class Limit>
void ReadPrice(unsigned int& whole, unsigned int& fraction, const char*& cursor, const Limit& limit,
               unsigned char maxDecimals, char delimiter) {
    const auto amount =
        ReadAmount<9, false, std::uint32_t, std::uint32_t>(cursor, limit, maxDecimals, delimiter);
    whole = amount.whole;
    fraction = amount.fraction;
}

template <class Limit>
void ReadSignedPrice(int& whole, int& fraction, const char*& cursor, const Limit& limit,
                     unsigned char maxDecimals, char delimiter) {
    const auto amount =
        ReadAmount<9, true, std::uint32_t, std::uint32_t>(cursor, limit, maxDecimals, delimiter);
    whole = Signed<int>(amount.whole, amount.negative);
    fraction = Signed<int>(amount.fraction, amount.negative);
}

template <class Limit>
void ReadMoney(std::int64_t& whole, short& fraction, const char*& cursor, const Limit& limit,
               unsigned char maxDecimals, char delimiter) {
    const auto amount =
        ReadAmount<4, true, std::uint64_t, std::uint16_t>(cursor, limit, maxDecimals, delimiter);
    whole = Signed<std::int64_t>(amount.whole, amount.negative);
    fraction = Signed<short>(amount.fraction, amount.negative);
}

} // namespace

void U_StrToPriceDollarsAndFraction(unsigned int& whole, unsigned int& fraction, const char*& cursor,
                                    unsigned char maxDecimals, char delimiter) {
    ReadPrice(whole, fraction, cursor, NoLimit{}, maxDecimals, delimiter);
}

void U_StrToSignedPriceDollarsAndFraction(int& whole, int& fraction, const char*& cursor,
                                          unsigned char maxDecimals, char delimiter) {
    ReadSignedPrice(whole, fraction, cursor, NoLimit{}, maxDecimals, delimiter);
}

void U_StrToMoneyDollarsAndFraction(std::int64_t& whole, short& fraction, const char*& cursor,
                                    unsigned char maxDecimals, char delimiter) {
    ReadMoney(whole, fraction, cursor, NoLimit{}, maxDecimals, delimiter);
}

void U_StrToPriceDollarsAndFractionUpToLength(unsigned int& whole, unsigned int& fraction,
                                              const char*& cursor, unsigned int& remaining,
                                              unsigned char maxDecimals, char delimiter) {
    ReadPrice(whole, fraction, cursor, LengthLimit{&remaining}, maxDecimals, delimiter);
}

void U_StrToSignedPriceDollarsAndFractionUpToLength(int& whole, int& fraction, const char*& cursor,
                                                    unsigned int& remaining, unsigned char maxDecimals,
                                                    char delimiter) {
    ReadSignedPrice(whole, fraction, cursor, LengthLimit{&remaining}, maxDecimals, delimiter);
}

void U_StrToMoneyDollarsAndFractionUpToLength(std::int64_t& whole, short& fraction, const char*& cursor,
                                              unsigned int& remaining, unsigned char maxDecimals,
                                              char delimiter) {
    ReadMoney(whole, fraction, cursor, LengthLimit{&remaining}, maxDecimals, delimiter);
}
