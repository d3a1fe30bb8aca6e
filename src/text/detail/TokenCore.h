// TokenCore.h - the loops shared by the token readers and padded copiers. Every exported reader is a
// thin instantiation of one of these templates, chosen by result width, signedness and length limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace velora::token_core {

// ---- Length limits ----------------------------------------------------------------------------------
// A limit is told about every consumed character (Take) and asked whether reading must stop (IsSpent).

struct NoLimit {
    static constexpr bool IsSpent() { return false; }
    static constexpr void Take() {}
};

// The caller's `remaining` counter of an UpToLength reader.
struct LengthLimit {
    unsigned int* remaining;
    bool IsSpent() const { return *remaining == 0; }
    void Take() const { --*remaining; } // unsigned: wraps where a caller's count is shorter than the text
};

// Counts consumed characters without ever stopping (the copy loop of the extra-character copier).
struct CountOnly {
    unsigned int* remaining;
    static constexpr bool IsSpent() { return false; }
    void Take() const { --*remaining; }
};

// ---- Walking a token ----------------------------------------------------------------------------------

enum class TokenEnd { Nul, Delimiter, Limit };

struct IsChar {
    char delimiter;
    bool operator()(char c) const { return c == delimiter; }
};

struct IsEither {
    char delimiter1;
    char delimiter2;
    bool operator()(char c) const { return c == delimiter1 || c == delimiter2; }
};

// Hands every token character to `onChar` and advances `p` past it, until the NUL or a delimiter (`p` is
// left on it, not consumed) or until the limit is spent after a character. Never looks at the character
// after the one that spent the limit, and never moves past the NUL even when a delimiter is 0.
template <class IsDelimiter, class Limit, class OnChar>
inline TokenEnd WalkToken(const char*& p, IsDelimiter isDelimiter, const Limit& limit, OnChar onChar) {
    for (;;) {
        const char c = *p;
        if (c == '\0') return TokenEnd::Nul;
        if (isDelimiter(c)) return TokenEnd::Delimiter;
        onChar(c);
        ++p;
        limit.Take();
        if (limit.IsSpent()) return TokenEnd::Limit;
    }
}

// The position just past the next delimiter, or of the NUL.
inline const char* PastDelimiter(const char* p, char delimiter) {
    WalkToken(p, IsChar{delimiter}, NoLimit{}, [](char) {});
    return *p == '\0' ? p : p + 1;
}

// ---- Digits -------------------------------------------------------------------------------------------

// value * 10 + (c - '0') in U's width. Digits are not validated: any byte adds its signed 8-bit code
// minus 48, sign-extended to U so that the wrap is the same for every width and every platform.
template <class U> constexpr U DecimalStep(U value, char c) {
    static_assert(std::is_unsigned_v<U>);
    const U digit = static_cast<U>(static_cast<int>(static_cast<signed char>(c)) - '0');
    return static_cast<U>(value * 10u + digit);
}

// value * 16 + the digit's value; a character that is no hex digit still shifts the value.
template <class U> constexpr U HexStep(U value, char c) {
    static_assert(std::is_unsigned_v<U>);
    unsigned int digit = 0;
    if (c >= '0' && c <= '9')
        digit = static_cast<unsigned int>(c - '0');
    else if (c >= 'A' && c <= 'F')
        digit = static_cast<unsigned int>(c - 'A' + 10);
    else if (c >= 'a' && c <= 'f')
        digit = static_cast<unsigned int>(c - 'a' + 10);
    using Wide = std::common_type_t<U, unsigned int>; // no promotion to int for the narrow widths
    return static_cast<U>((static_cast<Wide>(value) << 4u) + digit);
}

enum class Radix { Decimal, Hex };

template <Radix R, class U> constexpr U Step(U value, char c) {
    if constexpr (R == Radix::Decimal)
        return DecimalStep(value, c);
    else
        return HexStep(value, c);
}

// Accumulation runs in unsigned arithmetic (no signed overflow); the sign is applied once at the end.
template <class T> constexpr T ToResult(std::make_unsigned_t<T> magnitude, bool negative) {
    using U = std::make_unsigned_t<T>;
    return static_cast<T>(negative ? static_cast<U>(U{0} - magnitude) : magnitude);
}

// ---- Number readers -----------------------------------------------------------------------------------

// What a one-delimiter reader does when the delimiter stands at the cursor.
enum class EmptyToken {
    ConsumeDelimiter, // return the default, cursor past the delimiter
    KeepDelimiter,    // return the default, cursor on the delimiter
    ReadNextToken,    // consume the delimiter and read the following token as this one
};

template <class T, Radix R, EmptyToken Empty>
T ReadNumberToken(const char** cursor, char delimiter, T defaultValue) {
    using U = std::make_unsigned_t<T>;
    const char* p = *cursor;
    if (*p == '\0') return defaultValue;
    if (*p == delimiter) {
        if constexpr (Empty == EmptyToken::KeepDelimiter) {
            return defaultValue;
        } else {
            ++p;
            if constexpr (Empty == EmptyToken::ConsumeDelimiter) {
                *cursor = p;
                return defaultValue;
            }
        }
    }
    bool negative = false;
    if constexpr (std::is_signed_v<T>) {
        negative = *p == '-';
        if (negative) ++p;
    }
    U value = 0;
    if (WalkToken(p, IsChar{delimiter}, NoLimit{}, [&](char c) { value = Step<R>(value, c); }) ==
        TokenEnd::Delimiter)
        ++p;
    *cursor = p;
    return ToResult<T>(value, negative);
}

// The numeric two-delimiter readers: the cursor is left ON the delimiter that ended the token.
template <class T, class Limit>
T ReadNumberWith2Delimiters(const char** cursor, const Limit& limit, char delimiter1, char delimiter2,
                            T defaultValue) {
    using U = std::make_unsigned_t<T>;
    const IsEither isDelimiter{delimiter1, delimiter2};
    const char* p = *cursor;
    if (*p == '\0' || isDelimiter(*p) || limit.IsSpent()) return defaultValue;
    bool negative = false;
    if constexpr (std::is_signed_v<T>) {
        static_assert(std::is_same_v<Limit, NoLimit>, "a bounded signed reader would have to count the sign");
        negative = *p == '-';
        if (negative) ++p;
    }
    U value = 0;
    WalkToken(p, isDelimiter, limit, [&](char c) { value = DecimalStep(value, c); });
    *cursor = p;
    return ToResult<T>(value, negative);
}

// The digit-count readers: only the first *digitCount characters of the token contribute, the whole token
// and its delimiter are consumed, and *digitCount becomes min(characters walked, entry value) where the
// characters are counted in an 8-bit counter.
template <class U, class Limit>
U ReadNumberWithDigitCount(const char** cursor, const Limit& limit, unsigned char* digitCount, char delimiter,
                           U defaultValue) {
    const unsigned char wanted = *digitCount;
    const char* p = *cursor;
    if (*p == '\0' || limit.IsSpent()) {
        *digitCount = 0;
        return defaultValue;
    }
    if (*p == delimiter) {
        limit.Take();
        *cursor = p + 1;
        *digitCount = 0;
        return defaultValue;
    }
    U value = 0;
    unsigned char walked = 0; // wraps at 256 like the count it reports
    std::size_t position = 0; // the true position decides which characters contribute
    const TokenEnd end = WalkToken(p, IsChar{delimiter}, limit, [&](char c) {
        ++walked;
        if (++position <= wanted) value = DecimalStep(value, c);
    });
    if (end == TokenEnd::Delimiter) {
        limit.Take();
        ++p;
    }
    *cursor = p;
    *digitCount = std::min(walked, wanted);
    return value;
}

// Reads the token's first characters through `onHead(index, c)` for index < headLength, skips the rest
// and the delimiter. At the NUL: default; empty token: delimiter consumed, default.
template <class T, class OnHead>
T ReadTokenHead(const char** cursor, char delimiter, T defaultValue, std::size_t headLength, T initial,
                OnHead onHead) {
    const char* p = *cursor;
    if (*p == '\0') return defaultValue;
    if (*p == delimiter) {
        *cursor = p + 1;
        return defaultValue;
    }
    T value = initial;
    std::size_t index = 0;
    if (WalkToken(p, IsChar{delimiter}, NoLimit{}, [&](char c) {
            if (index < headLength) value = onHead(value, index, c);
            ++index;
        }) == TokenEnd::Delimiter)
        ++p;
    *cursor = p;
    return value;
}

// ---- Characters ---------------------------------------------------------------------------------------

// Printable: signed 8-bit value of at least 32 and not DEL; bytes from 128 upward are negative.
constexpr bool IsPrintable(char c) {
    return static_cast<signed char>(c) >= 32 && c != 127;
}

constexpr char ToUpperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Places byte `index` of a little-endian code.
template <class U> constexpr U PackByte(U value, std::size_t index, char c) {
    return static_cast<U>(value | (static_cast<U>(static_cast<unsigned char>(c)) << (8u * index)));
}

template <class U> U PackChars(const char* text, std::size_t maxChars) {
    U value = 0;
    for (std::size_t i = 0; i < maxChars && text[i] != '\0'; ++i) value = PackByte(value, i, text[i]);
    return value;
}

// ---- Padded fields ------------------------------------------------------------------------------------

// Copies the token into the `size`-byte field up to the NUL or the delimiter, reporting each copied
// character to `copyLimit`; then writes `extraChar` once when it is not 0 and room is left, and pads
// the rest. Returns where copying stopped in `src`.
template <class Limit>
const char* FillField(char* dest, std::size_t size, const char* src, char delimiter, char extraChar,
                      char padChar, const Limit& copyLimit) {
    std::size_t used = 0;
    while (used < size && !copyLimit.IsSpent() && *src != '\0' && *src != delimiter) {
        dest[used++] = *src++;
        copyLimit.Take();
    }
    if (used < size && extraChar != '\0') dest[used++] = extraChar;
    std::fill_n(dest + used, size - used, padChar);
    return src;
}

// Where a field copier leaves `src` once its field is filled: at the NUL or where the limit is spent;
// past the delimiter; or, when the field filled inside the token, past the rest of the token and its
// delimiter. Kept for compatibility: the first character of that skip is not counted.
template <class Limit> const char* PastCopiedToken(const char* p, char delimiter, const Limit& limit) {
    if (*p == '\0' || limit.IsSpent()) return p;
    if (*p != delimiter) {
        ++p; // the uncounted one
        if (WalkToken(p, IsChar{delimiter}, limit, [](char) {}) != TokenEnd::Delimiter) return p;
    }
    limit.Take();
    return p + 1;
}

} // namespace velora::token_core
