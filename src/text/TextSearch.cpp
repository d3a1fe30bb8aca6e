// TextSearch.cpp - the forward searches.
#include "VeloraUtils/TextSearch.h"

namespace {

inline char FoldToUpper(char c) noexcept {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

struct Exact {
    static char Map(char c) noexcept { return c; }
};
struct FoldText {
    static char Map(char c) noexcept { return FoldToUpper(c); }
};

template <typename Fold> const char* SearchTerminated(const char* text, const char* pattern) noexcept {
    if (text == nullptr || pattern == nullptr || *text == '\0' || *pattern == '\0') return nullptr;
    for (; *text != '\0'; ++text) {
        const char* t = text;
        const char* p = pattern;
        while (*p != '\0' && *t != '\0' && Fold::Map(*t) == *p) {
            ++t;
            ++p;
        }
        if (*p == '\0') return text;
        if (*t == '\0') return nullptr; // the rest of the text is shorter than the pattern
    }
    return nullptr;
}

} // namespace

const char* U_StrStr(const char* text, const char* pattern) {
    return SearchTerminated<Exact>(text, pattern);
}

const char* U_StriStr(const char* text, const char* upperPattern) {
    return SearchTerminated<FoldText>(text, upperPattern);
}
