// DigitWriter.h - internal building blocks of the number writers: decimal and hexadecimal digits
// written backward from a known end, two and three digits per table lookup. Callers guarantee the
// room (these helpers do no bounds checks); the exported writers decide when that is the case.
#pragma once

#include <cstdint>
#include <cstring>

namespace velora::text::detail {

// "00" "01" ... "99": one lookup writes two digits.
struct DigitPairTable {
    char chars[200];
    constexpr DigitPairTable() : chars{} {
        for (int i = 0; i < 100; ++i) {
            chars[2 * i] = static_cast<char>('0' + i / 10);
            chars[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
};
inline constexpr DigitPairTable kDigitPairs{};

// ",000" ",001" ... ",999": one lookup writes a comma group.
struct CommaGroupTable {
    char chars[4000];
    constexpr CommaGroupTable() : chars{} {
        for (int i = 0; i < 1000; ++i) {
            chars[4 * i] = ',';
            chars[4 * i + 1] = static_cast<char>('0' + i / 100);
            chars[4 * i + 2] = static_cast<char>('0' + i / 10 % 10);
            chars[4 * i + 3] = static_cast<char>('0' + i % 10);
        }
    }
};
inline constexpr CommaGroupTable kCommaGroups{};

inline constexpr char kHexDigits[] = "0123456789abcdef";

inline constexpr std::uint64_t kPowersOfTen[20] = {1ULL,
                                                   10ULL,
                                                   100ULL,
                                                   1000ULL,
                                                   10000ULL,
                                                   100000ULL,
                                                   1000000ULL,
                                                   10000000ULL,
                                                   100000000ULL,
                                                   1000000000ULL,
                                                   10000000000ULL,
                                                   100000000000ULL,
                                                   1000000000000ULL,
                                                   10000000000000ULL,
                                                   100000000000000ULL,
                                                   1000000000000000ULL,
                                                   10000000000000000ULL,
                                                   100000000000000000ULL,
                                                   1000000000000000000ULL,
                                                   10000000000000000000ULL};

inline void CopyPair(char* dest, std::uint32_t twoDigits) { std::memcpy(dest, kDigitPairs.chars + 2 * twoDigits, 2); }

// Writes the 8 digits of v (< 10^8, zero-padded) at p[0..7]. The four pairs come out of two
// independent divisions, so the work runs in parallel rather than as one long division chain.
inline void WriteEightDigits(char* p, std::uint32_t v) {
    const std::uint32_t high = v / 10000;
    const std::uint32_t low = v - high * 10000;
    const std::uint32_t h1 = high / 100, l1 = low / 100;
    CopyPair(p, h1);
    CopyPair(p + 2, high - h1 * 100);
    CopyPair(p + 4, l1);
    CopyPair(p + 6, low - l1 * 100);
}

// Writes the digits of v (< 10^8, at least one digit) ending just before `end`; returns the first.
inline char* WriteUpToEightDigits(char* end, std::uint32_t v) {
    while (v >= 100) {
        const std::uint32_t q = v / 100;
        end -= 2;
        CopyPair(end, v - q * 100);
        v = q;
    }
    if (v >= 10) {
        end -= 2;
        CopyPair(end, v);
    } else {
        *--end = static_cast<char>('0' + v);
    }
    return end;
}

// Writes the decimal digits of v (at least one) ending just before `end`; returns the first.
// Needs room for 20 characters.
inline char* WriteDecimalBackward(char* end, std::uint64_t v) {
    if (v < 100000000)
        return WriteUpToEightDigits(end, static_cast<std::uint32_t>(v));
    std::uint64_t q = v / 100000000;
    end -= 8;
    WriteEightDigits(end, static_cast<std::uint32_t>(v - q * 100000000));
    if (q >= 100000000) {
        const std::uint64_t q2 = q / 100000000;
        end -= 8;
        WriteEightDigits(end, static_cast<std::uint32_t>(q - q2 * 100000000));
        q = q2;
    }
    return WriteUpToEightDigits(end, static_cast<std::uint32_t>(q));
}

// 32-bit form: at most one 8-digit block, so the 64-bit division is never needed.
inline char* WriteDecimalBackward(char* end, std::uint32_t v) {
    if (v < 100000000)
        return WriteUpToEightDigits(end, v);
    const std::uint32_t q = v / 100000000;
    end -= 8;
    WriteEightDigits(end, v - q * 100000000);
    return WriteUpToEightDigits(end, q);
}

// Writes exactly `count` digits of v (zero-padded on the left; v < 10^count) before `end`.
inline char* WriteFixedDigitsBackward(char* end, std::uint64_t v, unsigned count) {
    while (count >= 2) {
        const std::uint64_t q = v / 100;
        end -= 2;
        CopyPair(end, static_cast<std::uint32_t>(v - q * 100));
        v = q;
        count -= 2;
    }
    if (count != 0)
        *--end = static_cast<char>('0' + v % 10);
    return end;
}

// Writes v with "," between groups of three digits, ending just before `end`.
template <class U> inline char* WriteGroupedBackward(char* end, U v) {
    while (v >= 1000) {
        const U q = static_cast<U>(v / 1000);
        end -= 4;
        std::memcpy(end, kCommaGroups.chars + 4 * (v - q * 1000), 4);
        v = q;
    }
    return WriteUpToEightDigits(end, static_cast<std::uint32_t>(v));
}

// Lowercase hexadecimal digits of v (at least one) before `end`.
template <class U> inline char* WriteHexBackward(char* end, U v) {
    do {
        *--end = kHexDigits[v & 0xF];
        v = static_cast<U>(v >> 4);
    } while (v != 0);
    return end;
}

} // namespace velora::text::detail
