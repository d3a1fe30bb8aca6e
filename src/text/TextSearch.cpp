// TextSearch.cpp - the searches: forwards, backwards, within a length, exact or folding the text's
// case, and the search for a pattern that the text's end only begins.
//
// Every forward and backward search runs on one length-bounded core. It tests 32 candidate starts at
// a time against the pattern's first and last bytes (with SSE2 where the target has it) and compares
// the bytes between only where both agree. A NUL-terminated text is handed to that core in growing pieces
// whose end memchr has found, so the search never reads a byte past the terminator and an early match
// in a long text is found without measuring the whole text first.
#include "VeloraUtils/TextSearch.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr bool IsUpper(unsigned char c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool IsLower(unsigned char c) {
    return c >= 'a' && c <= 'z';
}

// How a text byte meets a pattern byte: as it is, or with 'a'..'z' of the text taken as 'A'..'Z'.
struct Exact {
    static constexpr bool kFolds = false;
};
struct FoldText {
    static constexpr bool kFolds = true;
};

template <class Cmp> bool SameBytes(const char* text, const char* pattern, std::size_t n) {
    if constexpr (!Cmp::kFolds) {
        return n == 0 || std::memcmp(text, pattern, n) == 0;
    } else {
        for (std::size_t i = 0; i < n; ++i) {
            const auto t = static_cast<unsigned char>(text[i]);
            if ((IsLower(t) ? t - ('a' - 'A') : t) != static_cast<unsigned char>(pattern[i])) return false;
        }
        return true;
    }
}

// A non-empty pattern prepared for the search. A text byte t meets its first byte when (t | firstCase)
// equals firstFolded: firstCase is the case bit 0x20 when folding and the byte is a letter (only the
// two cases of a letter agree once that bit is set), else 0. The same for the last byte.
struct Needle {
    const char* bytes;
    std::size_t length;
    unsigned char firstCase, firstFolded, lastCase, lastFolded;
};

unsigned char CaseBit(unsigned char c, bool folds) {
    return folds && IsUpper(c) ? 0x20 : 0;
}

// False when the pattern can never be found: empty, or holding a lower-case letter while folding.
template <class Cmp> bool Prepare(const char* pattern, Needle& needle) {
    if (pattern == nullptr || *pattern == '\0') return false;
    const std::size_t length = std::strlen(pattern);
    if constexpr (Cmp::kFolds) {
        if (std::any_of(pattern, pattern + length,
                        [](char c) { return IsLower(static_cast<unsigned char>(c)); }))
            return false;
    }
    const auto first = static_cast<unsigned char>(pattern[0]);
    const auto last = static_cast<unsigned char>(pattern[length - 1]);
    const unsigned char firstCase = CaseBit(first, Cmp::kFolds), lastCase = CaseBit(last, Cmp::kFolds);
    needle = {pattern,   length,
              firstCase, static_cast<unsigned char>(first | firstCase),
              lastCase,  static_cast<unsigned char>(last | lastCase)};
    return true;
}

// ---- The length-bounded core --------------------------------------------------------------------------

constexpr std::size_t kBlock = 32;
using BlockBits = std::uint32_t;

bool MeetsFirst(char t, const Needle& needle) {
    return (static_cast<unsigned char>(t) | needle.firstCase) == needle.firstFolded;
}
bool MeetsLast(char t, const Needle& needle) {
    return (static_cast<unsigned char>(t) | needle.lastCase) == needle.lastFolded;
}

// Tells, for kBlock candidate starts at a time, which meet the pattern's first and last bytes.
template <class Cmp> class BlockScanner {
public:
    explicit BlockScanner(const Needle& needle) : needle_(needle) {
#if defined(__SSE2__)
        const auto splat = [](unsigned char c) { return _mm_set1_epi8(static_cast<char>(c)); };
        firstCase_ = splat(needle.firstCase), firstFolded_ = splat(needle.firstFolded);
        lastCase_ = splat(needle.lastCase), lastFolded_ = splat(needle.lastFolded);
#endif
    }

    // Bit i set when text[at + i] and text[at + i + length - 1] meet the pattern's first and last bytes.
    // Reads at[0 .. kBlock + length - 2], which the caller guarantees are inside the text.
    BlockBits Mask(const char* at) const {
        const char* tail = at + needle_.length - 1;
#if defined(__SSE2__)
        return Half(at, tail) | (Half(at + 16, tail + 16) << 16);
#else
        BlockBits mask = 0;
        for (std::size_t i = 0; i < kBlock; ++i)
            if (MeetsFirst(at[i], needle_) && MeetsLast(tail[i], needle_)) mask |= BlockBits{1} << i;
        return mask;
#endif
    }

private:
    const Needle& needle_;
#if defined(__SSE2__)
    __m128i firstCase_, firstFolded_, lastCase_, lastFolded_;

    static __m128i Meets(const char* p, __m128i caseBit, __m128i folded) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        if constexpr (Cmp::kFolds) v = _mm_or_si128(v, caseBit);
        return _mm_cmpeq_epi8(v, folded);
    }
    BlockBits Half(const char* head, const char* tail) const {
        const __m128i both =
            _mm_and_si128(Meets(head, firstCase_, firstFolded_), Meets(tail, lastCase_, lastFolded_));
        return static_cast<BlockBits>(_mm_movemask_epi8(both));
    }
#endif
};

// Whether the pattern occurs at `at`, its first and last bytes already known to meet the text.
template <class Cmp> bool MiddleMatches(const char* at, const Needle& needle) {
    return needle.length <= 2 || SameBytes<Cmp>(at + 1, needle.bytes + 1, needle.length - 2);
}

template <class Cmp> bool MatchesAt(const char* at, const Needle& needle) {
    return MeetsFirst(at[0], needle) && MeetsLast(at[needle.length - 1], needle) &&
           MiddleMatches<Cmp>(at, needle);
}

template <class Cmp> const char* LowestInBlock(const char* at, BlockBits mask, const Needle& needle) {
    for (; mask != 0; mask &= mask - 1) {
        const char* candidate = at + std::countr_zero(mask);
        if (MiddleMatches<Cmp>(candidate, needle)) return candidate;
    }
    return nullptr;
}

template <class Cmp> const char* HighestInBlock(const char* at, BlockBits mask, const Needle& needle) {
    while (mask != 0) {
        const auto bit = static_cast<unsigned>(std::bit_width(mask) - 1u);
        if (MiddleMatches<Cmp>(at + bit, needle)) return at + bit;
        mask &= ~(BlockBits{1} << bit);
    }
    return nullptr;
}

// Candidate starts below `bit` dropped.
BlockBits From(std::size_t bit) {
    return ~((BlockBits{1} << bit) - 1u);
}

// First occurrence lying entirely within text[0, n).
template <class Cmp> const char* FindFirst(const char* text, std::size_t n, const Needle& needle) {
    if (n < needle.length) return nullptr;
    const std::size_t starts = n - needle.length + 1; // candidate starts: [0, starts)
    const BlockScanner<Cmp> scanner(needle);
    std::size_t i = 0;
    for (;; i += kBlock) {
        BlockBits mask = 0; // the tight loop has no call in it, so the scanner stays in registers
        while (i + kBlock <= starts && (mask = scanner.Mask(text + i)) == 0) i += kBlock;
        if (mask == 0) break;
        if (const char* hit = LowestInBlock<Cmp>(text + i, mask, needle)) return hit;
    }
    if (i == starts) return nullptr;
    if (starts >= kBlock) { // one more block, overlapping starts already ruled out
        const std::size_t at = starts - kBlock;
        return LowestInBlock<Cmp>(text + at, scanner.Mask(text + at) & From(i - at), needle);
    }
    for (; i < starts; ++i)
        if (MatchesAt<Cmp>(text + i, needle)) return text + i;
    return nullptr;
}

// Last occurrence lying entirely within text[0, n).
template <class Cmp> const char* FindLast(const char* text, std::size_t n, const Needle& needle) {
    if (n < needle.length) return nullptr;
    const std::size_t starts = n - needle.length + 1;
    const BlockScanner<Cmp> scanner(needle);
    std::size_t end = starts; // candidate starts not yet ruled out: [0, end)
    for (; end >= kBlock; end -= kBlock)
        if (const BlockBits mask = scanner.Mask(text + end - kBlock); mask != 0)
            if (const char* hit = HighestInBlock<Cmp>(text + end - kBlock, mask, needle)) return hit;
    if (end == 0) return nullptr;
    if (starts >= kBlock) // one more block at the start, overlapping starts already ruled out
        return HighestInBlock<Cmp>(text, scanner.Mask(text) & ~From(end), needle);
    while (end-- > 0)
        if (MatchesAt<Cmp>(text + end, needle)) return text + end;
    return nullptr;
}

// First occurrence in a NUL-terminated text. Each round learns where the text ends within the next
// piece (memchr stops at the NUL it finds) and searches the candidate starts that became complete.
template <class Cmp> const char* FindFirstTerminated(const char* text, const Needle& needle) {
    constexpr std::size_t kFirstPiece = 4096, kLargestPiece = std::size_t{1} << 16;
    std::size_t known = 0; // text[0, known) holds no NUL
    std::size_t from = 0;  // candidate starts before `from` are ruled out
    for (std::size_t piece = kFirstPiece;; piece = std::min(piece * 2, kLargestPiece)) {
        const auto* nul = static_cast<const char*>(std::memchr(text + known, '\0', piece));
        known = nul != nullptr ? static_cast<std::size_t>(nul - text) : known + piece;
        if (known - from >= needle.length) {
            if (const char* hit = FindFirst<Cmp>(text + from, known - from, needle)) return hit;
            from = known - needle.length + 1;
        }
        if (nul != nullptr) return nullptr;
    }
}

template <class Cmp> const char* Search(const char* text, const char* pattern) {
    Needle needle;
    if (text == nullptr || !Prepare<Cmp>(pattern, needle)) return nullptr;
    return FindFirstTerminated<Cmp>(text, needle);
}

template <class Cmp, bool kFromBack>
const char* SearchUpToLength(const char* text, unsigned int length, const char* pattern) {
    Needle needle;
    if (text == nullptr || length == 0 || !Prepare<Cmp>(pattern, needle)) return nullptr;
    return kFromBack ? FindLast<Cmp>(text, length, needle) : FindFirst<Cmp>(text, length, needle);
}

// ---- Patterns the text's end begins -------------------------------------------------------------------
// Only a start within the last length - 1 bytes can leave pattern characters over when the text ends;
// the leftmost such start whose bytes all meet the pattern gives the longest prefix.

template <class Cmp> const char* SearchEnd(const char* text, std::size_t n, const char* pattern) {
    if (text == nullptr || pattern == nullptr || n == 0) return nullptr;
    const std::size_t length = std::strlen(pattern);
    if (length < 2) return nullptr;
    for (std::size_t i = n - std::min(n, length - 1); i < n; ++i)
        if (SameBytes<Cmp>(text + i, pattern, n - i)) return pattern + (n - i);
    return nullptr;
}

template <class Cmp> const char* SearchEndTerminated(const char* text, const char* pattern) {
    return text == nullptr ? nullptr : SearchEnd<Cmp>(text, std::strlen(text), pattern);
}

} // namespace

const char* U_StrStr(const char* text, const char* pattern) {
    return Search<Exact>(text, pattern);
}
const char* U_StriStr(const char* text, const char* upperPattern) {
    return Search<FoldText>(text, upperPattern);
}
const char* U_StrStrUpToLength(const char* text, unsigned int length, const char* pattern) {
    return SearchUpToLength<Exact, false>(text, length, pattern);
}
const char* U_StriStrUpToLength(const char* text, unsigned int length, const char* upperPattern) {
    return SearchUpToLength<FoldText, false>(text, length, upperPattern);
}
const char* U_StrStrFromBack(const char* text, unsigned int length, const char* pattern) {
    return SearchUpToLength<Exact, true>(text, length, pattern);
}
const char* U_StriStrFromBack(const char* text, unsigned int length, const char* upperPattern) {
    return SearchUpToLength<FoldText, true>(text, length, upperPattern);
}

const char* U_StrStrEnd(const char* text, const char* pattern) {
    return SearchEndTerminated<Exact>(text, pattern);
}
const char* U_StriStrEnd(const char* text, const char* upperPattern) {
    return SearchEndTerminated<FoldText>(text, upperPattern);
}
const char* U_StrStrEndUpToLength(const char* text, unsigned int length, const char* pattern) {
    return SearchEnd<Exact>(text, length, pattern);
}
const char* U_StriStrEndUpToLength(const char* text, unsigned int length, const char* upperPattern) {
    return SearchEnd<FoldText>(text, length, upperPattern);
}
