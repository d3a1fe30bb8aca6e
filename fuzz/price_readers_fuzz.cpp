// Fuzz target for the price and money readers. The first bytes choose the delimiter, the decimals
// limit and the length count; the rest becomes an exactly sized NUL-terminated heap text, so ASan
// reports any read past the NUL. Every reader's cursor, count and result are checked against a plain
// reference parse written here, character by character; a mismatch aborts.
#include "VeloraUtils/PriceText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

struct Reference {
    std::uint64_t whole = 0, fraction = 0; // magnitudes, wrapped to the reader's widths
    bool negative = false;
    std::size_t consumed = 0;
};

// The reading rules, told directly: "[-]<whole>[.<fraction>]<delimiter>", no digit validation, the
// fraction's characters counted in 8 bits, only the first `maxDecimals` entering its value, a nonzero
// fraction of fewer than `digits` counted digits scaled up. `limit` bounds the consumed characters.
Reference Parse(const char* t, std::size_t limit, bool acceptsMinus, unsigned digits, unsigned wholeBits,
                unsigned fractionBits, unsigned char maxDecimals, char delimiter) {
    const auto mask = [](unsigned bits) {
        return bits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
    };
    const auto step = [](std::uint64_t v, char c) {
        return v * 10 +
               static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<signed char>(c)) - '0');
    };
    Reference r;
    std::size_t& i = r.consumed;
    const auto atEnd = [&] { return i >= limit || t[i] == '\0'; };
    if (atEnd()) return r;
    if (acceptsMinus && t[i] == '-') {
        r.negative = true;
        if (++i, atEnd()) return r;
    }
    while (!atEnd() && t[i] != delimiter && t[i] != '.') r.whole = step(r.whole, t[i++]) & mask(wholeBits);
    if (atEnd()) return r;
    if (t[i++] == delimiter) return r;
    unsigned count = 0;
    while (!atEnd() && t[i] != delimiter) {
        if (++count <= maxDecimals) r.fraction = step(r.fraction, t[i]) & mask(fractionBits);
        ++i;
    }
    if (!atEnd()) ++i; // the delimiter
    const unsigned n = count % 256 < maxDecimals ? count % 256 : maxDecimals;
    for (unsigned k = n; r.fraction != 0 && k < digits; ++k)
        r.fraction = r.fraction * 10 & mask(fractionBits);
    return r;
}

struct Input {
    const char* text;
    std::size_t length; // up to the first NUL
    unsigned remaining;
    unsigned char maxDecimals;
    char delimiter;
};

template <class S> S Signed(std::uint64_t magnitude, bool negative) {
    return static_cast<S>(negative ? 0 - magnitude : magnitude);
}

// Runs one reader unbounded and bounded; `read(cursor, remainingOrNull)` returns {whole, fraction}
// already widened to 64 bits as the reference gives them.
template <class Read>
void Check(const Input& in, bool acceptsMinus, unsigned digits, unsigned wholeBits, unsigned fractionBits,
           Read read) {
    for (const bool bounded : {false, true}) {
        const char* cursor = in.text;
        unsigned remaining = in.remaining;
        const auto [whole, fraction] = read(cursor, bounded ? &remaining : nullptr);
        Require(cursor >= in.text && cursor <= in.text + in.length);
        const auto consumed = static_cast<std::size_t>(cursor - in.text);
        if (bounded) {
            Require(consumed <= in.remaining);
            Require(in.remaining - remaining == consumed);
        }
        const Reference ref = Parse(in.text, bounded ? in.remaining : SIZE_MAX, acceptsMinus, digits,
                                    wholeBits, fractionBits, in.maxDecimals, in.delimiter);
        Require(consumed == ref.consumed);
        const auto m = [](unsigned bits) {
            return bits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
        };
        Require(whole == (Signed<std::uint64_t>(ref.whole, ref.negative) & m(wholeBits)));
        Require(fraction == (Signed<std::uint64_t>(ref.fraction, ref.negative) & m(fractionBits)));
    }
}

struct Parts {
    std::uint64_t whole, fraction;
};

void CheckAll(const Input& in) {
    const unsigned char d = in.maxDecimals;
    const char del = in.delimiter;
    Check(in, false, 9, 32, 32, [&](const char*& c, unsigned* r) {
        unsigned w = 7, f = 7;
        if (r)
            U_StrToPriceDollarsAndFractionUpToLength(w, f, c, *r, d, del);
        else
            U_StrToPriceDollarsAndFraction(w, f, c, d, del);
        return Parts{w, f};
    });
    Check(in, true, 9, 32, 32, [&](const char*& c, unsigned* r) {
        int w = 7, f = 7;
        if (r)
            U_StrToSignedPriceDollarsAndFractionUpToLength(w, f, c, *r, d, del);
        else
            U_StrToSignedPriceDollarsAndFraction(w, f, c, d, del);
        return Parts{static_cast<std::uint32_t>(w), static_cast<std::uint32_t>(f)};
    });
    Check(in, true, 4, 64, 16, [&](const char*& c, unsigned* r) {
        std::int64_t w = 7;
        short f = 7;
        if (r)
            U_StrToMoneyDollarsAndFractionUpToLength(w, f, c, *r, d, del);
        else
            U_StrToMoneyDollarsAndFraction(w, f, c, d, del);
        return Parts{static_cast<std::uint64_t>(w), static_cast<std::uint16_t>(f)};
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHeader = 3;
    if (size < kHeader) return 0;
    // The delimiter mostly comes from a small alphabet (".", "-" and 0 included) so that it occurs.
    static constexpr char kDelimiters[] = {'|', ';', '.', '-', '\0', '5', ' '};
    const char delimiter =
        data[0] < 128 ? kDelimiters[data[0] % sizeof kDelimiters] : static_cast<char>(data[0]);
    const auto maxDecimals = static_cast<unsigned char>(data[1] < 224 ? data[1] % 14 : data[1]);
    const unsigned remaining = data[2] < 240 ? data[2] % 48u : 0xFFFFFFF0u + (data[2] & 15u);

    const std::size_t length = size - kHeader;
    const std::unique_ptr<char[]> text(new char[length + 1]);
    if (length != 0) std::memcpy(text.get(), data + kHeader, length);
    text[length] = '\0';
    CheckAll({text.get(), std::strlen(text.get()), remaining, maxDecimals, delimiter});
    return 0;
}
