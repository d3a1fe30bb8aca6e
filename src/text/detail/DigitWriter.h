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

inline void CopyPair(char* dest, std::uint32_t twoDigits) {
    std::memcpy(dest, kDigitPairs.chars + 2 * twoDigits, 2);
}

// Writes the digits of v (at least one) ending just before `end`; returns the first. Two digits
// per step. Measured against block splitting and multiply-by-reciprocal extraction, this plain
// loop was the fastest for 32-bit values: 32-bit multiplications are cheap and the loop predicts well.
inline char* WriteDecimalBackward(char* end, std::uint32_t v) {
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

// Writes the 8 digits of v (< 10^8, zero-padded) at p[0..7]. The four pairs come out of two
// independent divisions, so they are computed in parallel rather than as one long chain.
inline void WriteEightDigits(char* p, std::uint32_t v) {
    const std::uint32_t high = v / 10000;
    const std::uint32_t low = v - high * 10000;
    const std::uint32_t h1 = high / 100, l1 = low / 100;
    CopyPair(p, h1);
    CopyPair(p + 2, high - h1 * 100);
    CopyPair(p + 4, l1);
    CopyPair(p + 6, low - l1 * 100);
}

// 64-bit form: values above 32 bits are cut into 8-digit blocks by 64-bit division by 10^8 (at
// most two), so the long chain of 64-bit divisions by 100 is avoided. Needs room for 20 characters.
inline char* WriteDecimalBackward(char* end, std::uint64_t v) {
    if (v <= 0xFFFFFFFFu) return WriteDecimalBackward(end, static_cast<std::uint32_t>(v));
    std::uint64_t q = v / 100000000;
    end -= 8;
    WriteEightDigits(end, static_cast<std::uint32_t>(v - q * 100000000));
    if (q >= 100000000) {
        const std::uint64_t q2 = q / 100000000;
        end -= 8;
        WriteEightDigits(end, static_cast<std::uint32_t>(q - q2 * 100000000));
        q = q2; // below 1845
    }
    return WriteDecimalBackward(end, static_cast<std::uint32_t>(q));
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
    if (count != 0) *--end = static_cast<char>('0' + v % 10);
    return end;
}

inline void CopyCommaGroup(char* dest, std::uint32_t threeDigits) {
    std::memcpy(dest, kCommaGroups.chars + 4 * threeDigits, 4);
}

// Writes v with "," between groups of three digits, ending just before `end`. Two groups per
// step come from one division by 10^6, halving the chain of dependent divisions.
template <class U> inline char* WriteGroupedBackward(char* end, U v) {
    while (v >= 1000000) {
        const U q = static_cast<U>(v / 1000000);
        const auto r = static_cast<std::uint32_t>(v - q * 1000000);
        const std::uint32_t r1 = r / 1000;
        CopyCommaGroup(end - 4, r - r1 * 1000);
        CopyCommaGroup(end - 8, r1);
        end -= 8;
        v = q;
    }
    auto rest = static_cast<std::uint32_t>(v);
    if (rest >= 1000) {
        const std::uint32_t q = rest / 1000;
        end -= 4;
        CopyCommaGroup(end, rest - q * 1000);
        rest = q;
    }
    return WriteDecimalBackward(end, rest);
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
