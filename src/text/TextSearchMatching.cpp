// TextSearchMatching.cpp - prefix tests, the non-backtracking wildcard matcher, null-tolerant
// comparison, replacement of a heap-held text or of substrings, and the hash for short codes.
#include "VeloraUtils/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace {

// The position after `prefix` in `text`, or null. With a `remaining` counter the test also fails when
// the counter is 0 while prefix characters are left; it drops by one per matched character.
const char* AfterPrefix(const char* text, const char* prefix, unsigned int* remaining) {
    if (prefix == nullptr || *prefix == '\0') return text;
    if (text == nullptr) return nullptr;
    for (; *prefix != '\0'; ++prefix, ++text) {
        if (remaining != nullptr && *remaining == 0) return nullptr;
        if (*text != *prefix) return nullptr; // also at the text's NUL: a prefix character is never 0
        if (remaining != nullptr) --*remaining;
    }
    return text;
}

// Sign-extended like the signed 8-bit character it was in the code that first stored these hashes.
std::uint32_t Widened(char c) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
}

} // namespace

// ---- Prefixes and wildcards -------------------------------------------------------------------------

const char* U_StringStartsWith(const char* text, const char* prefix) {
    return AfterPrefix(text, prefix, nullptr);
}

const char* U_StringStartsWithUpToLength(const char* text, unsigned int* remaining, const char* prefix) {
    return remaining == nullptr ? nullptr : AfterPrefix(text, prefix, remaining);
}

const char* U_StringStartsWithPlusChar(const char* text, const char* prefix, char c) {
    const char* after = AfterPrefix(text, prefix, nullptr);
    return after != nullptr && c != '\0' && *after == c ? after + 1 : nullptr;
}

bool U_PatternMatch(const char* text, const char* pattern) {
    const char* t = text != nullptr ? text : "";
    const char* p = pattern != nullptr ? pattern : "";
    // The kind of the last pattern character met; a '*' is remembered with the character after it.
    enum class Kind { None, Literal, AnyOne, Star } last = Kind::None;
    char afterStar = '\0';
    while (*p != '\0') {
        last = *p == '*' ? Kind::Star : *p == '?' ? Kind::AnyOne : Kind::Literal;
        if (last == Kind::Star) afterStar = p[1];
        if (*t == '\0') break;
        if (last == Kind::Star) {
            ++t; // a star takes at least one character and ends where its follower appears
            if (*t == afterStar) ++p;
        } else if (last == Kind::AnyOne || *t == *p) {
            ++t;
            ++p;
        } else {
            return false; // a literal that differs
        }
    }
    if (last == Kind::Star) return *t == afterStar;
    return *t == '\0' && *p == '\0';
}

bool U_HasWildCards(const char* text) {
    return text != nullptr && std::strpbrk(text, "*?") != nullptr;
}

// ---- Comparison, replacement, hashing ---------------------------------------------------------------

std::int8_t U_CompareText(const char* a, const char* b) {
    if (a == b) return 0;
    const int order = std::strcmp(a != nullptr ? a : "", b != nullptr ? b : ""); // bytes as unsigned
    return static_cast<std::int8_t>((order > 0) - (order < 0));
}

bool U_IsTextDifferent(const char* a, const char* b) {
    return U_CompareText(a, b) != 0;
}

bool U_ReplaceText(char** held, const char* newText) {
    if (held == nullptr || *held == newText) return false;
    const std::size_t length = newText != nullptr ? std::strlen(newText) : 0;
    if (*held == nullptr) {
        if (length == 0) return false;
    } else if (length == 0) {
        delete[] * held;
        *held = nullptr;
        return true;
    } else if (std::strlen(*held) == length) {
        if (std::memcmp(*held, newText, length) == 0) return false;
        std::memcpy(*held, newText, length); // the same size: overwritten in place
        return true;
    }
    auto copy =
        std::make_unique_for_overwrite<char[]>(length + 1); // allocated before the old text is released
    std::memcpy(copy.get(), newText, length + 1);
    delete[] * held;
    *held = copy.release();
    return true;
}

std::uint32_t U_StringHash(const std::string& s) {
    const std::size_t length = s.size();
    std::uint32_t hash = (static_cast<std::uint32_t>(length) << 24) | Widened(s.c_str()[0]);
    if (length >= 2) hash |= Widened(s[length - 1]) << 16;
    if (length >= 3) hash |= Widened(s[(length - 1) / 2]) << 8;
    return hash;
}

std::string& U_ReplaceSubstring(const char* text, const char* search, const char* replacement,
                                std::string& out) {
    if (text == nullptr) return out;
    const std::size_t searchLength = search != nullptr ? std::strlen(search) : 0;
    const char* rest = text;
    if (searchLength != 0) {
        for (const char* hit; (hit = U_StrStr(rest, search)) != nullptr; rest = hit + searchLength) {
            out.append(rest, static_cast<std::size_t>(hit - rest));
            if (replacement != nullptr) out.append(replacement);
        }
    }
    return out.append(rest);
}
