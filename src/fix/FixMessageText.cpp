// FixMessageText.cpp - the checksum sum, the text helpers for building and logging messages, the
// parser's error table and the UTC timestamp reader.
#include "VeloraUtils/FixParsing.h"

#include <cstddef>
#include <cstdint>

namespace velora::fix::detail {
namespace {

constexpr char kSoh = '\x01';

unsigned int SignedByte(char c) noexcept {
    return static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(c)));
}

// Bytes per block of the vectorised sum: 256 bytes of at most 255 each fit a 16-bit lane.
constexpr std::size_t kSumBlock = 256;
constexpr unsigned int kSumBlockBias = 128u * kSumBlock;

struct ParseErrorText {
    const char* text;
    unsigned char rejectReason;
};

constexpr ParseErrorText kParseErrorTexts[] = {
    {"No Error", 255}, {"Tag Number too big", 0}, {"Tag is not numeric", 0},
    {"No Value", 4},   {"Invalid Value", 6},      {"Duplicate Tag", 13},
    {"No Tag", 17},    {"Missing Tag", 1},
};
constexpr ParseErrorText kUnknownParseError = {"Unknown Error", 99};

bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
unsigned int Digit(char c) noexcept {
    return static_cast<unsigned int>(c - '0');
}

} // namespace
} // namespace velora::fix::detail

using namespace velora::fix::detail;

unsigned int U_CalculateControlSum(const char* data, unsigned int length) {
    // The sum is modular, so the order of the additions is free. Whole blocks go through a 16-bit
    // reduction the compiler turns into vector code: each byte is biased to unsigned (b ^ 0x80 is
    // b + 128 for a signed byte) and the bias taken off per block. Indices are size_t so that the
    // compiler sees contiguous loads.
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    const std::size_t size = length;
    unsigned int sum = 0;
    std::size_t i = 0;
    for (; size - i >= kSumBlock; i += kSumBlock) {
        const unsigned char* const block = bytes + i;
        std::uint16_t blockSum = 0;
        for (std::size_t k = 0; k < kSumBlock; ++k)
            blockSum = static_cast<std::uint16_t>(blockSum + static_cast<std::uint8_t>(block[k] ^ 0x80u));
        sum += blockSum - kSumBlockBias;
    }
    // The rest two bytes at a time in two running sums, then a last odd byte.
    unsigned int even = 0;
    unsigned int odd = 0;
    for (; size - i >= 2; i += 2) {
        even += SignedByte(data[i]);
        odd += SignedByte(data[i + 1]);
    }
    if (i < size) even += SignedByte(data[i]);
    return sum + even + odd;
}

bool U_AppendSohIfNecessary(std::string& text) {
    if (text.empty() || text.back() == kSoh) return false;
    text.push_back(kSoh);
    return true;
}

void U_AppendFixMessageContents(std::string& out, const char* message, unsigned short length,
                                const char* prefix, char sohReplacement) {
    if (message == nullptr || length == 0) return;
    if (prefix != nullptr && *prefix != '\0') out.append(prefix);
    const std::size_t start = out.size();
    out.append(message, length);
    if (sohReplacement == kSoh) return;
    for (std::size_t i = start; i < out.size(); ++i)
        if (out[i] == kSoh) out[i] = sohReplacement;
}

const char* U_GetParseFixErrorDescription(unsigned char code, unsigned char* rejectReason) {
    const ParseErrorText& entry =
        code < std::size(kParseErrorTexts) ? kParseErrorTexts[code] : kUnknownParseError;
    if (rejectReason != nullptr) *rejectReason = entry.rejectReason;
    return entry.text;
}

bool U_ParseFixUtc(const char* text, unsigned int* year, unsigned int* month, unsigned int* day,
                   unsigned int* hour, unsigned int* minute, unsigned int* second,
                   unsigned int* millisecond) {
    *year = *month = *day = *hour = *minute = *second = *millisecond = 0;
    if (text == nullptr) return false;
    // Every test below fails on a NUL or SOH, so no byte past the terminator is read.
    const char* p = text;

    unsigned int value = 0;
    for (int i = 0; i < 4; ++i, ++p) {
        if (!IsDigit(*p)) return false;
        value = value * 10 + Digit(*p);
    }
    *year = value;
    if (value == 0) return false;

    if (p[0] == '0' ? !(p[1] >= '1' && p[1] <= '9') : !(p[0] == '1' && p[1] >= '0' && p[1] <= '2'))
        return false;
    *month = Digit(p[0]) * 10 + Digit(p[1]);
    p += 2;

    // Deliberately lenient: only February refuses a day starting with '3'; 31 April passes.
    bool dayOk = false;
    if (p[0] == '0')
        dayOk = p[1] >= '1' && p[1] <= '9';
    else if (p[0] == '1' || p[0] == '2')
        dayOk = IsDigit(p[1]);
    else if (p[0] == '3')
        dayOk = *month != 2 && (p[1] == '0' || p[1] == '1');
    if (!dayOk) return false;
    *day = Digit(p[0]) * 10 + Digit(p[1]);
    p += 2;

    if (*p++ != '-') return false;
    if (!((p[0] == '0' || p[0] == '1') ? IsDigit(p[1]) : (p[0] == '2' && p[1] >= '0' && p[1] <= '3')))
        return false;
    *hour = Digit(p[0]) * 10 + Digit(p[1]);
    p += 2;

    unsigned int* const minuteAndSecond[] = {minute, second};
    for (unsigned int* out : minuteAndSecond) {
        if (*p++ != ':') return false;
        if (!(p[0] >= '0' && p[0] <= '5' && IsDigit(p[1]))) return false;
        *out = Digit(p[0]) * 10 + Digit(p[1]);
        p += 2;
    }

    if (*p == '\0' || *p == kSoh) return true;
    if (*p++ != '.') return false;
    value = 0;
    for (int i = 0; i < 3; ++i, ++p) {
        if (!IsDigit(*p)) return false;
        value = value * 10 + Digit(*p);
    }
    *millisecond = value;
    return true;
}
