// TokenReadingNumbers.cpp - decimal, hexadecimal, digit-count and two-delimiter integer token readers.
#include "VeloraUtils/TokenReading.h"

#include "detail/TokenCore.h"

using namespace velora::token_core;

namespace {

template <class T> T ReadDecimal(const char** cursor, char delimiter, T defaultValue) {
    return ReadNumberToken<T, Radix::Decimal, EmptyToken::ConsumeDelimiter>(cursor, delimiter, defaultValue);
}

template <class T> T ReadHex(const char** cursor, char delimiter, T defaultValue) {
    return ReadNumberToken<T, Radix::Hex, EmptyToken::ConsumeDelimiter>(cursor, delimiter, defaultValue);
}

} // namespace

// ---- Decimal, one delimiter -------------------------------------------------------------------------

unsigned int U_ReadUIntToken(const char** cursor, char delimiter, unsigned int defaultValue) {
    return ReadDecimal(cursor, delimiter, defaultValue);
}

std::uint64_t U_ReadUInt64Token(const char** cursor, char delimiter, std::uint64_t defaultValue) {
    return ReadDecimal(cursor, delimiter, defaultValue);
}

unsigned short U_ReadUShortToken(const char** cursor, char delimiter, unsigned short defaultValue) {
    return ReadDecimal(cursor, delimiter, defaultValue);
}

unsigned char U_ReadUCharToken(const char** cursor, char delimiter, unsigned char defaultValue) {
    return ReadDecimal(cursor, delimiter, defaultValue);
}

int U_ReadIntToken(const char** cursor, char delimiter, int defaultValue) {
    // Kept for compatibility: the empty token leaves the cursor on its delimiter.
    return ReadNumberToken<int, Radix::Decimal, EmptyToken::KeepDelimiter>(cursor, delimiter, defaultValue);
}

std::int64_t U_ReadInt64Token(const char** cursor, char delimiter, std::int64_t defaultValue) {
    return ReadDecimal(cursor, delimiter, defaultValue);
}

// ---- Hexadecimal ------------------------------------------------------------------------------------

std::uint64_t U_ReadUInt64HexToken(const char** cursor, char delimiter, std::uint64_t defaultValue) {
    return ReadHex(cursor, delimiter, defaultValue);
}

unsigned short U_ReadUShortHexToken(const char** cursor, char delimiter, unsigned short defaultValue) {
    return ReadHex(cursor, delimiter, defaultValue);
}

unsigned char U_ReadUCharHexToken(const char** cursor, char delimiter, unsigned char defaultValue) {
    return ReadHex(cursor, delimiter, defaultValue);
}

unsigned int U_ReadUIntHexToken(const char** cursor, char delimiter, unsigned int defaultValue) {
    // Kept for compatibility: an empty token reads on into the following one.
    return ReadNumberToken<unsigned int, Radix::Hex, EmptyToken::ReadNextToken>(cursor, delimiter,
                                                                                defaultValue);
}

// ---- Digit count ------------------------------------------------------------------------------------

unsigned int U_ReadUIntTokenWithDigitCount(const char** cursor, unsigned char* digitCount, char delimiter,
                                           unsigned int defaultValue) {
    return ReadNumberWithDigitCount(cursor, NoLimit{}, digitCount, delimiter, defaultValue);
}

unsigned short U_ReadUShortTokenWithDigitCount(const char** cursor, unsigned char* digitCount, char delimiter,
                                               unsigned short defaultValue) {
    return ReadNumberWithDigitCount(cursor, NoLimit{}, digitCount, delimiter, defaultValue);
}

unsigned int U_ReadUIntTokenUpToLengthWithDigitCount(const char** cursor, unsigned int* remaining,
                                                     unsigned char* digitCount, char delimiter,
                                                     unsigned int defaultValue) {
    return ReadNumberWithDigitCount(cursor, LengthLimit{remaining}, digitCount, delimiter, defaultValue);
}

unsigned short U_ReadUShortTokenUpToLengthWithDigitCount(const char** cursor, unsigned int* remaining,
                                                         unsigned char* digitCount, char delimiter,
                                                         unsigned short defaultValue) {
    return ReadNumberWithDigitCount(cursor, LengthLimit{remaining}, digitCount, delimiter, defaultValue);
}

// ---- Two delimiters ---------------------------------------------------------------------------------

unsigned int U_ReadUIntTokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2,
                                            unsigned int defaultValue) {
    return ReadNumberWith2Delimiters(cursor, NoLimit{}, delimiter1, delimiter2, defaultValue);
}

std::uint64_t U_ReadUInt64TokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2,
                                               std::uint64_t defaultValue) {
    return ReadNumberWith2Delimiters(cursor, NoLimit{}, delimiter1, delimiter2, defaultValue);
}

unsigned short U_ReadUShortTokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2,
                                                unsigned short defaultValue) {
    return ReadNumberWith2Delimiters(cursor, NoLimit{}, delimiter1, delimiter2, defaultValue);
}

int U_ReadIntTokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2, int defaultValue) {
    return ReadNumberWith2Delimiters(cursor, NoLimit{}, delimiter1, delimiter2, defaultValue);
}

std::int64_t U_ReadInt64TokenWith2Delimiters(const char** cursor, char delimiter1, char delimiter2,
                                             std::int64_t defaultValue) {
    return ReadNumberWith2Delimiters(cursor, NoLimit{}, delimiter1, delimiter2, defaultValue);
}

unsigned int U_ReadUIntTokenWith2DelimitersUpToLength(const char** cursor, unsigned int* remaining,
                                                      char delimiter1, char delimiter2,
                                                      unsigned int defaultValue) {
    return ReadNumberWith2Delimiters(cursor, LengthLimit{remaining}, delimiter1, delimiter2, defaultValue);
}

std::uint64_t U_ReadUInt64TokenWith2DelimitersUpToLength(const char** cursor, unsigned int* remaining,
                                                         char delimiter1, char delimiter2,
                                                         std::uint64_t defaultValue) {
    return ReadNumberWith2Delimiters(cursor, LengthLimit{remaining}, delimiter1, delimiter2, defaultValue);
}
