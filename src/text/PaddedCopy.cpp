// PaddedCopy.cpp - copying a token into a fixed-width field padded with a chosen character, and
// in-place character replacement in a string.
#include "VeloraUtils/TokenReading.h"

#include "detail/TokenCore.h"

#include <algorithm>

using namespace velora::token_core;

const char* U_CopyToDelimiterAndPad(char* dest, unsigned int size, const char* src, char padChar,
                                    char delimiter) {
    const char* stop = FillField(dest, size, src, delimiter, '\0', padChar, NoLimit{});
    return PastCopiedToken(stop, delimiter, NoLimit{});
}

void U_CopyAndPad(char* dest, unsigned int size, const char* src, char padChar, bool reserveLast) {
    if (size == 0) return;
    // With reserveLast the last byte is always the pad (a terminator when the pad is 0).
    FillField(dest, reserveLast ? size - 1u : size, src, '\0', '\0', padChar, NoLimit{});
    if (reserveLast) dest[size - 1] = padChar;
}

void U_CopyPlusOneCharAndPad(char* dest, unsigned int size, const char* src, char extraChar, char padChar) {
    FillField(dest, size, src, '\0', extraChar, padChar, NoLimit{});
}

const char* U_CopyToDelimiterPlusOneCharAndPad(char* dest, unsigned int size, const char* src, char extraChar,
                                               char padChar, char delimiter) {
    const char* stop = FillField(dest, size, src, delimiter, extraChar, padChar, NoLimit{});
    return PastCopiedToken(stop, delimiter, NoLimit{});
}

const char* U_CopyToDelimiterUpToLengthAndPad(char* dest, unsigned int size, const char* src,
                                              unsigned int* remaining, char padChar, char delimiter) {
    const LengthLimit limit{remaining};
    if (limit.IsSpent()) return src;
    const char* stop = FillField(dest, size, src, delimiter, '\0', padChar, limit);
    return PastCopiedToken(stop, delimiter, limit);
}

const char* U_CopyToDelimiterUpToLengthPlusOneCharAndPad(char* dest, unsigned int size, const char* src,
                                                         unsigned int* remaining, char extraChar,
                                                         char padChar, char delimiter) {
    const LengthLimit limit{remaining};
    if (limit.IsSpent()) return src;
    // Kept for compatibility: this copy counts characters but does not stop on the count.
    const char* stop = FillField(dest, size, src, delimiter, extraChar, padChar, CountOnly{remaining});
    return PastCopiedToken(stop, delimiter, limit);
}

void U_ReplaceCharInStdString(std::string& s, char from, char to) {
    // Up to the first NUL only: the tail after an embedded NUL is left as it is.
    const auto end = std::find(s.begin(), s.end(), '\0');
    std::replace(s.begin(), end, from, to);
}
