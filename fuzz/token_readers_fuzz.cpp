// Fuzz target for the token readers and padded copiers. The first bytes choose delimiters, counts and
// buffer sizes; the rest becomes an exactly sized NUL-terminated text, and every destination is heap
// allocated at exactly its size, so ASan reports any read past the NUL or write past a buffer. Each call
// also checks the cursor and counter invariants and aborts when one breaks.
#include "VeloraUtils/TokenReading.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

struct Input {
    char delimiter1, delimiter2, extra, pad;
    unsigned remaining;
    unsigned char digits;
    unsigned size;
};

void Require(bool condition) {
    if (!condition) std::abort();
}

class Text {
public:
    Text(const std::uint8_t* data, std::size_t size) : bytes_(new char[size + 1]) {
        if (size != 0) std::memcpy(bytes_.get(), data, size);
        bytes_[size] = '\0';
        end_ = bytes_.get() + std::strlen(bytes_.get());
    }
    const char* begin() const { return bytes_.get(); }
    const char* end() const { return end_; } // the first NUL

    // The cursor never leaves [begin, first NUL].
    std::size_t Consumed(const char* cursor) const {
        Require(cursor >= begin() && cursor <= end_);
        return static_cast<std::size_t>(cursor - begin());
    }

private:
    std::unique_ptr<char[]> bytes_;
    const char* end_;
};

std::unique_ptr<char[]> Buffer(unsigned size) {
    return std::unique_ptr<char[]>(new char[size]);
}

// Readers whose counter drops by exactly the consumed characters (modulo 2^32 where it may wrap).
template <class Call> void ExactCount(const Text& text, const Input& in, Call call) {
    const char* cursor = text.begin();
    unsigned remaining = in.remaining;
    call(&cursor, &remaining);
    Require(in.remaining - remaining == static_cast<unsigned>(text.Consumed(cursor)));
}

// Readers that also stop on the count: they consume no more than it allowed.
template <class Call> void BoundedCount(const Text& text, const Input& in, Call call) {
    ExactCount(text, in, [&](const char** c, unsigned* r) {
        call(c, r);
        Require(text.Consumed(*c) <= in.remaining);
    });
}

template <class Call> void Cursor(const Text& text, Call call) {
    const char* cursor = text.begin();
    call(&cursor);
    text.Consumed(cursor);
}

void Skippers(const Text& t, const Input& in) {
    Cursor(t, [&](const char** c) { U_SkipToDelimiter(c, in.delimiter1); });
    Cursor(t, [&](const char** c) { U_SkipDelimiters(c, in.delimiter1); });
    ExactCount(t, in, [&](const char** c, unsigned* r) { U_SkipToDelimiterUpToLength(c, r, in.delimiter1); });
    ExactCount(t, in, [&](const char** c, unsigned* r) { U_SkipDelimitersUpToLength(c, r, in.delimiter1); });
}

void StringReaders(const Text& t, const Input& in) {
    std::string s;
    Cursor(t, [&](const char** c) { U_ReadStrToken(s, c, in.delimiter1); });
    std::string bounded;
    unsigned enough = static_cast<unsigned>(t.Consumed(t.end())) + 1;
    const char* boundedCursor = t.begin();
    U_ReadStrTokenUpToLength(bounded, &boundedCursor, &enough, in.delimiter1);
    const char* cursor = t.begin();
    s.clear();
    U_ReadStrToken(s, &cursor, in.delimiter1);
    Require(s == bounded && cursor == boundedCursor); // a count longer than the text changes nothing
    BoundedCount(t, in,
                 [&](const char** c, unsigned* r) { U_ReadStrTokenUpToLength(s, c, r, in.delimiter1); });
    Cursor(t, [&](const char** c) { U_ReadStrTokenWith2Delimiters(s, c, in.delimiter1, in.delimiter2); });
    Cursor(t, [&](const char** c) { U_ReadStrTokenToMandatoryDel(s, c, in.delimiter1, in.delimiter2); });

    auto dest = Buffer(in.size);
    Cursor(t, [&](const char** c) {
        if (U_ReadCharBufferToken(dest.get(), in.size, c, in.delimiter1))
            Require(std::strlen(dest.get()) < in.size);
    });
    const auto upperSize = static_cast<unsigned short>(in.size);
    auto upper = Buffer(upperSize);
    Cursor(t, [&](const char** c) {
        U_CopyUppercase(upper.get(), upperSize, c, in.delimiter1, in.remaining & 1u);
        Require(upperSize == 0 || std::strlen(upper.get()) == t.Consumed(*c));
    });
}

void NumberReaders(const Text& t, const Input& in) {
    const char d = in.delimiter1;
    Cursor(t, [&](const char** c) { U_ReadUIntToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUInt64Token(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUShortToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUCharToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadIntToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadInt64Token(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadBoolToken(c, d, true); });
    Cursor(t, [&](const char** c) { U_ReadUInt64HexToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUShortHexToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUCharHexToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadUIntHexToken(c, d, 7); });

    // Digit counts never grow; with room for every character they agree with the plain reader.
    const char* plainCursor = t.begin();
    const unsigned plain = U_ReadUIntToken(&plainCursor, d, 7);
    Cursor(t, [&](const char** c) {
        unsigned char digits = 255;
        const unsigned value = U_ReadUIntTokenWithDigitCount(c, &digits, d, 7);
        const auto walked = t.Consumed(*c) - (*c > t.begin() && (*c)[-1] == d && d != '\0' ? 1u : 0u);
        if (walked <= 255) Require(value == plain && *c == plainCursor && digits == walked);
    });
    Cursor(t, [&](const char** c) {
        unsigned char digits = in.digits;
        U_ReadUShortTokenWithDigitCount(c, &digits, d, 7);
        Require(digits <= in.digits);
    });
    BoundedCount(t, in, [&](const char** c, unsigned* r) {
        unsigned char digits = in.digits;
        U_ReadUIntTokenUpToLengthWithDigitCount(c, r, &digits, d, 7);
        Require(digits <= in.digits);
    });
    BoundedCount(t, in, [&](const char** c, unsigned* r) {
        unsigned char digits = in.digits;
        U_ReadUShortTokenUpToLengthWithDigitCount(c, r, &digits, d, 7);
        Require(digits <= in.digits);
    });

    const char d2 = in.delimiter2;
    auto onDelimiterOrEnd = [&](const char* c) {
        Require(*c == '\0' || *c == d || *c == d2 || c == t.begin());
    };
    Cursor(t, [&](const char** c) { U_ReadUIntTokenWith2Delimiters(c, d, d2, 7), onDelimiterOrEnd(*c); });
    Cursor(t, [&](const char** c) { U_ReadUInt64TokenWith2Delimiters(c, d, d2, 7), onDelimiterOrEnd(*c); });
    Cursor(t, [&](const char** c) { U_ReadUShortTokenWith2Delimiters(c, d, d2, 7), onDelimiterOrEnd(*c); });
    Cursor(t, [&](const char** c) { U_ReadIntTokenWith2Delimiters(c, d, d2, 7), onDelimiterOrEnd(*c); });
    Cursor(t, [&](const char** c) { U_ReadInt64TokenWith2Delimiters(c, d, d2, 7), onDelimiterOrEnd(*c); });
    BoundedCount(t, in, [&](const char** c, unsigned* r) {
        U_ReadUIntTokenWith2DelimitersUpToLength(c, r, d, d2, 7);
    });
    BoundedCount(t, in, [&](const char** c, unsigned* r) {
        U_ReadUInt64TokenWith2DelimitersUpToLength(c, r, d, d2, 7);
    });
}

void CharAndPackedReaders(const Text& t, const Input& in) {
    const char d = in.delimiter1;
    Cursor(t, [&](const char** c) { U_ReadCharToken(c, d, '?'); });
    Cursor(t, [&](const char** c) {
        unsigned remaining = in.remaining;
        U_ReadCharTokenUpToLength(c, &remaining, d, '?');
        Require(in.remaining - remaining <= t.Consumed(*c)); // the skipped middle is not counted
    });
    ExactCount(t, in, [&](const char** c, unsigned* r) { U_ReadCharTokenAndUpdateLength(c, r, '?'); });
    Cursor(t, [&](const char** c) { U_ReadStrAsUShortToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadStrAsUIntToken(c, d, 7); });
    Cursor(t, [&](const char** c) { U_ReadStrAsUInt64Token(c, d, 7); });
    Require(U_StringToUInt64(t.begin()) == U_StringOfLengthToUInt64(t.begin(), in.remaining | 8u));
    Require(U_StringToUInt64Term0(t.begin()) >> 56 == 0);
    Require(U_StringOfLengthToUInt64Term0(t.begin(), in.remaining) >> 56 == 0);
    Require(U_StringToUShort(t.begin()) == (U_StringToUInt(t.begin()) & 0xFFFFu));
}

void PaddedCopiers(const Text& t, const Input& in) {
    auto field = Buffer(in.size);
    t.Consumed(U_CopyToDelimiterAndPad(field.get(), in.size, t.begin(), in.pad, in.delimiter1));
    U_CopyAndPad(field.get(), in.size, t.begin(), in.pad, in.remaining & 1u);
    U_CopyPlusOneCharAndPad(field.get(), in.size, t.begin(), in.extra, in.pad);
    t.Consumed(
        U_CopyToDelimiterPlusOneCharAndPad(field.get(), in.size, t.begin(), in.extra, in.pad, in.delimiter1));
    // The first character skipped after a full field is deliberately not counted.
    unsigned remaining = in.remaining;
    const auto consumed = t.Consumed(U_CopyToDelimiterUpToLengthAndPad(field.get(), in.size, t.begin(),
                                                                       &remaining, in.pad, in.delimiter1));
    const unsigned counted = in.remaining - remaining;
    Require(counted == consumed || counted + 1 == consumed);
    Require(counted <= in.remaining);
    remaining = in.remaining;
    const auto consumedPlus = t.Consumed(U_CopyToDelimiterUpToLengthPlusOneCharAndPad(
        field.get(), in.size, t.begin(), &remaining, in.extra, in.pad, in.delimiter1));
    const unsigned countedPlus = in.remaining - remaining;
    Require(countedPlus == consumedPlus || countedPlus + 1 == consumedPlus);

    std::string s(t.begin(), t.Consumed(t.end()));
    U_ReplaceCharInStdString(s, in.delimiter1, in.delimiter2);
    Require(in.delimiter1 == '\0' || s.find(in.delimiter1) == std::string::npos ||
            in.delimiter1 == in.delimiter2);
}

void TimeReaders(const Text& t, const Input& in) {
    Cursor(t,
           [&](const char** c) { U_ReadMillisecondFromStr(c, in.delimiter1, 7, in.delimiter2, in.extra); });
    Cursor(t, [&](const char** c) { U_ReadSecondFromStr(c, in.delimiter1, 7, in.delimiter2); });
    Cursor(t, [&](const char** c) {
        const unsigned ms = U_ReadMillisecondFromStr(c, '\0', 0xFFFFFFFFu, ':', '.');
        Require(ms == 0xFFFFFFFFu || ms <= 99u * 3600000u + 99u * 60000u + 99u * 1000u + 999u);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHeader = 7;
    if (size < kHeader) return 0;
    // Delimiters, separators and pads come from a small alphabet so that they actually occur in the text.
    static constexpr char kAlphabet[] = {'|', ';', ',', ':', '.', ' ', '\0', '1', 'a', '-', '\x01', '\xe9'};
    auto pick = [](std::uint8_t b) {
        return b < 128 ? kAlphabet[b % sizeof kAlphabet] : static_cast<char>(b);
    };
    const Input in{pick(data[0]),
                   pick(data[1]),
                   pick(data[2]),
                   pick(data[3]),
                   data[4] < 240 ? data[4] % 40u : 0xFFFFFFF0u + (data[4] & 15u),
                   static_cast<unsigned char>(data[5]),
                   data[6] % 24u};
    const Text text(data + kHeader, size - kHeader);
    Skippers(text, in);
    StringReaders(text, in);
    NumberReaders(text, in);
    CharAndPackedReaders(text, in);
    PaddedCopiers(text, in);
    TimeReaders(text, in);
    return 0;
}
