// TokenReading.cpp - skipping, string, character and packed-code token readers.
#include "VeloraUtils/TokenReading.h"

#include "detail/TokenCore.h"

#include <algorithm>

using namespace velora::token_core;

namespace {

template <class Limit> bool SkipToDelimiter(const char** cursor, char delimiter, const Limit& limit) {
    const char* p = *cursor;
    if (*p == '\0' || limit.IsSpent()) return false;
    // Deliberate: once started, the skip is bounded by the text only (the count may wrap).
    const TokenEnd end = WalkToken(p, IsChar{delimiter}, NoLimit{}, [&](char) { limit.Take(); });
    if (end == TokenEnd::Delimiter) {
        limit.Take();
        ++p;
    }
    *cursor = p;
    return true;
}

template <class Limit> bool SkipDelimiters(const char** cursor, char delimiter, const Limit& limit) {
    const char* p = *cursor;
    if (*p == '\0' || limit.IsSpent()) return false;
    for (; *p != '\0' && *p == delimiter; ++p) limit.Take();
    *cursor = p;
    return true;
}

template <class Limit>
bool ReadStr(std::string& dest, const char** cursor, char delimiter, const Limit& limit) {
    const char* p = *cursor;
    if (*p == '\0' || limit.IsSpent()) return false;
    const char* begin = p;
    const TokenEnd end = WalkToken(p, IsChar{delimiter}, limit, [](char) {});
    dest.append(begin, p);
    if (end == TokenEnd::Delimiter) {
        limit.Take();
        ++p;
    }
    *cursor = p;
    return true;
}

template <class U, std::size_t N> U ReadStrAsToken(const char** cursor, char delimiter, U defaultValue) {
    return ReadTokenHead<U>(cursor, delimiter, defaultValue, N, U{0},
                            [](U value, std::size_t index, char c) { return PackByte(value, index, c); });
}

} // namespace

// ---- Skipping ---------------------------------------------------------------------------------------

bool U_SkipToDelimiter(const char** cursor, char delimiter) {
    return SkipToDelimiter(cursor, delimiter, NoLimit{});
}

bool U_SkipDelimiters(const char** cursor, char delimiter) {
    return SkipDelimiters(cursor, delimiter, NoLimit{});
}

bool U_SkipToDelimiterUpToLength(const char** cursor, unsigned int* remaining, char delimiter) {
    return SkipToDelimiter(cursor, delimiter, LengthLimit{remaining});
}

bool U_SkipDelimitersUpToLength(const char** cursor, unsigned int* remaining, char delimiter) {
    return SkipDelimiters(cursor, delimiter, LengthLimit{remaining});
}

// ---- String tokens ----------------------------------------------------------------------------------

bool U_ReadCharBufferToken(char* dest, unsigned int size, const char** cursor, char delimiter) {
    const char* p = *cursor;
    if (*p == '\0' || size == 0) return false;
    const char* begin = p;
    // Room for size - 1 characters and the terminator.
    WalkToken(p, IsChar{delimiter}, NoLimit{}, [&](char) {});
    const auto length = static_cast<std::size_t>(p - begin);
    const bool fits = length < size;
    const std::size_t copied = fits ? length : size - 1u;
    std::copy_n(begin, copied, dest);
    dest[copied] = '\0';
    *cursor = *p == '\0' ? p : p + 1;
    return fits;
}

bool U_ReadStrToken(std::string& dest, const char** cursor, char delimiter) {
    return ReadStr(dest, cursor, delimiter, NoLimit{});
}

bool U_ReadStrTokenUpToLength(std::string& dest, const char** cursor, unsigned int* remaining,
                              char delimiter) {
    return ReadStr(dest, cursor, delimiter, LengthLimit{remaining});
}

bool U_ReadStrTokenWith2Delimiters(std::string& dest, const char** cursor, char delimiter1, char delimiter2) {
    const char* p = *cursor;
    if (*p == '\0') return false;
    const char* begin = p;
    const TokenEnd end = WalkToken(p, IsEither{delimiter1, delimiter2}, NoLimit{}, [](char) {});
    dest.append(begin, p);
    *cursor = end == TokenEnd::Delimiter ? p + 1 : p;
    return true;
}

bool U_ReadStrTokenToMandatoryDel(std::string& dest, const char** cursor, char delimiter, char stopChar) {
    const char* p = *cursor;
    if (*p == '\0') return false;
    const char* begin = p;
    const TokenEnd end = WalkToken(p, IsEither{delimiter, stopChar}, NoLimit{}, [](char) {});
    dest.append(begin, p);
    if (end == TokenEnd::Nul) {
        *cursor = p;
        return false;
    }
    *cursor = p + 1;
    return *p == delimiter; // the delimiter wins where both are the same character
}

void U_CopyUppercase(char* dest, unsigned short size, const char** cursor, char delimiter, bool zeroFill) {
    if (size == 0) return;
    const char* p = *cursor;
    std::size_t used = 0;
    for (; used + 1 < size && *p != '\0' && *p != delimiter; ++p) dest[used++] = ToUpperAscii(*p);
    dest[used] = '\0';
    if (zeroFill) std::fill(dest + used + 1, dest + size, '\0');
    *cursor = p;
}

// ---- Characters -------------------------------------------------------------------------------------

char U_ReadCharToken(const char** cursor, char delimiter, char defaultValue) {
    return ReadTokenHead<char>(
        cursor, delimiter, defaultValue, 1, defaultValue,
        [](char fallback, std::size_t, char c) { return IsPrintable(c) ? c : fallback; });
}

char U_ReadCharTokenUpToLength(const char** cursor, unsigned int* remaining, char delimiter,
                               char defaultValue) {
    const char* p = *cursor;
    if (*p == '\0' || *remaining == 0) return defaultValue;
    --*remaining;
    if (*p == delimiter) {
        *cursor = p + 1;
        return defaultValue;
    }
    const char first = IsPrintable(*p) ? *p : defaultValue;
    ++p;
    if (*remaining != 0) {
        // Kept for compatibility: the rest of the token is skipped without counting, only its
        // delimiter is counted.
        if (WalkToken(p, IsChar{delimiter}, NoLimit{}, [](char) {}) == TokenEnd::Delimiter) {
            ++p;
            --*remaining;
        }
    }
    *cursor = p;
    return first;
}

char U_ReadCharTokenAndUpdateLength(const char** cursor, unsigned int* remaining, char defaultValue) {
    const char* p = *cursor;
    if (*p == '\0' || *remaining == 0) return defaultValue;
    --*remaining;
    *cursor = p + 1;
    return *p;
}

bool U_ReadBoolToken(const char** cursor, char delimiter, bool defaultValue) {
    return ReadTokenHead<bool>(cursor, delimiter, defaultValue, 1, false,
                               [](bool, std::size_t, char c) { return c == '1'; });
}

// ---- Packed codes -----------------------------------------------------------------------------------

unsigned short U_ReadStrAsUShortToken(const char** cursor, char delimiter, unsigned short defaultValue) {
    return ReadStrAsToken<unsigned short, 2>(cursor, delimiter, defaultValue);
}

unsigned int U_ReadStrAsUIntToken(const char** cursor, char delimiter, unsigned int defaultValue) {
    return ReadStrAsToken<unsigned int, 4>(cursor, delimiter, defaultValue);
}

std::uint64_t U_ReadStrAsUInt64Token(const char** cursor, char delimiter, std::uint64_t defaultValue) {
    return ReadStrAsToken<std::uint64_t, 8>(cursor, delimiter, defaultValue);
}

unsigned short U_StringToUShort(const char* text) {
    return PackChars<unsigned short>(text, 2);
}

unsigned int U_StringToUInt(const char* text) {
    return PackChars<unsigned int>(text, 4);
}

std::uint64_t U_StringToUInt64(const char* text) {
    return PackChars<std::uint64_t>(text, 8);
}

std::uint64_t U_StringToUInt64Term0(const char* text) {
    return PackChars<std::uint64_t>(text, 7);
}

std::uint64_t U_StringOfLengthToUInt64(const char* text, unsigned int length) {
    return PackChars<std::uint64_t>(text, std::min(length, 8u));
}

std::uint64_t U_StringOfLengthToUInt64Term0(const char* text, unsigned int length) {
    return PackChars<std::uint64_t>(text, std::min(length, 7u));
}
