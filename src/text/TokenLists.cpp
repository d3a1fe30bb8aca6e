// TokenLists.cpp - token splitting at markers or two-character separators, and joining.
#include "VeloraUtils/TokenLists.h"

#include <cstddef>
#include <cstring>
#include <utility>

void U_BreakStringIntoTokens(const char* text, char marker, std::list<std::string>& tokens) {
    if (text == nullptr || *text == '\0') return;
    std::string token;
    for (const char* p = text; *p != '\0'; ++p) {
        if (*p != marker) {
            token += *p;
            continue;
        }
        const char next = p[1];
        if (next == '\0') { // a marker ending the text stays in the last run
            token += marker;
            tokens.push_back(std::move(token));
            return;
        }
        ++p;
        if (next == marker) {
            token.append(token.empty() ? 2 : 1, marker);
        } else {
            tokens.push_back(std::move(token));
            tokens.emplace_back(std::string{marker, next});
            token.clear();
        }
    }
    if (!token.empty()) tokens.push_back(std::move(token));
}

void U_BreakStringIntoTokensBy2Chars(const char* text, char first, char second,
                                     std::list<std::string>& tokens) {
    if (text == nullptr || *text == '\0') return;
    std::string token;
    for (const char* p = text; *p != '\0'; ++p) {
        if (*p != first) {
            token += *p;
            continue;
        }
        const char next = p[1];
        if (next == second) { // the separator: with a `second` of 0 it also ends the text
            tokens.push_back(std::move(token));
            token.clear();
            if (next == '\0') return;
        } else if (next == '\0') {
            token += first;
            break;
        } else {
            token += first;
            token += next;
        }
        ++p;
    }
    tokens.push_back(std::move(token));
}

std::string& U_CombineTokensIntoString(const char* separator, const std::list<std::string>& tokens,
                                       std::string& result) {
    result.clear();
    if (tokens.empty()) return result;
    const std::size_t separatorLength = separator != nullptr ? std::strlen(separator) : 0;
    std::size_t total = separatorLength * (tokens.size() - 1);
    for (const std::string& token : tokens) total += token.size();
    result.reserve(total);
    for (auto it = tokens.begin(); it != tokens.end(); ++it) {
        if (it != tokens.begin() && separatorLength != 0) result.append(separator, separatorLength);
        result += *it;
    }
    return result;
}
