// FixIntegrity.cpp - U_CheckFixIntegrity, the resumable header and trailer scanner that finds where
// each FIX message ends in a stream received in pieces.
#include "VeloraUtils/FixParsing.h"

#include <cstdint>
#include <cstring>

namespace velora::fix::detail {
namespace {

constexpr char kSoh = '\x01';

// The message bytes seen so far: positions below heldLength are in `held`, the rest in `fresh`.
struct ScanInput {
    const char* held;
    const char* fresh;
    std::uint64_t heldLength;
    std::uint64_t total;

    char At(std::uint64_t position) const noexcept {
        return position < heldLength ? held[position] : fresh[position - heldLength];
    }
};

enum class Phase { kBeginString, kVersion, kBodyLength, kMsgType, kTrailer };

bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
bool IsMsgTypeChar(char c) noexcept {
    return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsProtocolChar(char c) noexcept {
    const auto u = static_cast<unsigned char>(c);
    return u >= 0x21 && u <= 0x7F;
}
unsigned int DigitOf(char c) noexcept {
    return static_cast<unsigned int>(c - '0');
}
// A saved position: the position plus one, so that 0 means "not reached".
unsigned short Saved(std::uint64_t position) noexcept {
    return static_cast<unsigned short>(position + 1);
}

} // namespace
} // namespace velora::fix::detail

unsigned char U_CheckFixIntegrity(const char* held, unsigned int* heldLength, const char** newData,
                                  unsigned int* newLength, unsigned int* position, char protocol[8],
                                  unsigned int* version, unsigned short* beginStringValuePos,
                                  unsigned short* versionPos, unsigned short* bodyLengthTagPos,
                                  unsigned short* bodyLength, unsigned short* bodyLengthValuePos,
                                  unsigned short* bodyStartPos, unsigned short* msgType,
                                  unsigned short* msgTypeValuePos, unsigned short* msgTypeEndPos,
                                  unsigned short* checkSum, unsigned short* checkSumValuePos,
                                  unsigned short* checkSumEndPos, unsigned char* complete, char* currentChar,
                                  char* previousChar) {
    using namespace velora::fix::detail;

    const char* const fresh = *newData;
    const unsigned int freshLength = *newLength;
    const std::uint64_t heldBytes = heldLength != nullptr ? *heldLength : 0u;
    const ScanInput in{held, fresh, heldBytes, heldBytes + freshLength};

    std::uint64_t pos = 0;        // the byte being examined
    std::uint64_t freshTaken = 0; // fresh bytes consumed: where *newData will point
    unsigned int state = 0;       // bytes into the current field
    char current = *currentChar;
    char previous = *previousChar;

    const auto leave = [&](unsigned char code) {
        *position = static_cast<unsigned int>(pos);
        *newData = fresh + freshTaken;
        *newLength = freshLength - static_cast<unsigned int>(freshTaken);
        *currentChar = current;
        *previousChar = previous;
        return code;
    };
    // Every fresh byte has been taken; *position counts the bytes of the message seen so far.
    const auto needMore = [&] {
        pos = in.total;
        freshTaken = freshLength;
        return leave(FixIntegrityOk);
    };
    // The byte at `pos` ended the scan (an error or the final SOH): it is taken, and stays current.
    const auto stopAtByte = [&](unsigned char code) {
        if (pos >= in.heldLength) freshTaken = pos - in.heldLength + 1;
        return leave(code);
    };
    const auto restartAt = [&](std::uint64_t restart) {
        pos = restart;
        if (pos >= in.heldLength && pos < in.total) freshTaken = pos - in.heldLength;
    };
    // Examines the byte at `pos`.
    const auto take = [&] {
        previous = current;
        current = in.At(pos);
        return current;
    };

    // Restart from the most advanced saved position: the field that was under way is read again
    // from its start, so a field cut by a piece boundary is parsed whole.
    Phase phase = Phase::kTrailer;
    if (*msgTypeEndPos == 0) {
        *msgType = 0;
        if (*msgTypeValuePos != 0) {
            phase = Phase::kMsgType, state = 3, restartAt(*msgTypeValuePos - 1u);
        } else if (*bodyStartPos != 0) {
            phase = Phase::kMsgType, restartAt(*bodyStartPos - 1u);
        } else {
            *bodyLength = 0;
            if (*bodyLengthValuePos != 0) {
                phase = Phase::kBodyLength, state = 2, restartAt(*bodyLengthValuePos - 1u);
            } else if (*bodyLengthTagPos != 0) {
                phase = Phase::kBodyLength, restartAt(*bodyLengthTagPos - 1u);
            } else {
                *version = 0;
                if (*versionPos != 0) {
                    phase = Phase::kVersion, restartAt(*versionPos - 1u);
                } else {
                    std::memset(protocol, 0, 8);
                    phase = Phase::kBeginString;
                    if (*beginStringValuePos != 0) state = 2, restartAt(*beginStringValuePos - 1u);
                }
            }
        }
        previous = 0;
        if (freshLength == 0) return needMore();
    }

    switch (phase) {
    case Phase::kBeginString:
        for (;; ++pos, ++state) {
            if (pos >= in.total) return needMore();
            const char c = take();
            bool ok;
            if (state == 0) {
                ok = c == '8';
            } else if (state == 1) {
                ok = c == '=';
                if (ok) *beginStringValuePos = Saved(pos + 1);
            } else if (c == '.') {
                ok = state >= 3; // at least one protocol character
                if (ok) break;
            } else {
                ok = IsProtocolChar(c) && state < 10; // at most 8 characters
                if (ok) protocol[state - 2] = c;
            }
            if (!ok) {
                std::memset(protocol, 0, 8);
                return stopAtByte(FixIntegrityBadBeginString);
            }
        }
        *versionPos = Saved(pos + 1);
        ++pos, state = 0;
        [[fallthrough]];

    case Phase::kVersion: {
        unsigned int value = *version;
        unsigned int number = 0;
        unsigned int digits = 0;
        unsigned int dots = 0;
        for (;; ++pos) {
            if (pos >= in.total) {
                *version = value;
                return needMore();
            }
            const char c = take();
            if (IsDigit(c) && digits < 3 && number * 10 + DigitOf(c) <= 255) {
                number = number * 10 + DigitOf(c);
                ++digits;
            } else if ((c == '.' || c == kSoh) && digits != 0 && (c == kSoh || dots < 4)) {
                value = value * 256 + number;
                number = digits = 0;
                if (c == kSoh) break;
                ++dots;
            } else {
                *version = 0;
                return stopAtByte(FixIntegrityBadBeginString);
            }
        }
        *version = value;
        *bodyLengthTagPos = Saved(pos + 1);
        ++pos, state = 0;
    }
        [[fallthrough]];

    case Phase::kBodyLength: {
        unsigned short value = *bodyLength;
        for (;; ++pos, ++state) {
            if (pos >= in.total) {
                *bodyLength = value;
                return needMore();
            }
            const char c = take();
            bool ok;
            if (state == 0) {
                ok = c == '9';
            } else if (state == 1) {
                ok = c == '=';
                if (ok) *bodyLengthValuePos = Saved(pos + 1);
            } else if (IsDigit(c) && state < 7) { // at most 5 digits, accumulated in 16 bits
                ok = true;
                value = static_cast<unsigned short>(value * 10 + DigitOf(c));
            } else if (c == kSoh && state > 2) {
                if (value == 0 || value > 65000) {
                    *bodyLength = 0;
                    return stopAtByte(FixIntegrityBadBodyLength);
                }
                break;
            } else {
                ok = false;
            }
            if (!ok) {
                *bodyLength = value;
                return stopAtByte(FixIntegrityBadBodyLength);
            }
        }
        *bodyLength = value;
        *bodyStartPos = Saved(pos + 1);
        ++pos, state = 0;
    }
        [[fallthrough]];

    case Phase::kMsgType: {
        unsigned short value = *msgType;
        for (;; ++pos, ++state) {
            if (pos >= in.total) {
                *msgType = value;
                return needMore();
            }
            const char c = take();
            bool ok = true;
            if (state == 0) {
                ok = c == '3';
            } else if (state == 1) {
                ok = c == '5';
            } else if (state == 2) {
                ok = c == '=';
                if (ok) *msgTypeValuePos = Saved(pos + 1);
            } else if (state == 3) {
                ok = IsMsgTypeChar(c);
                if (ok) value = static_cast<unsigned char>(c);
            } else if (c == kSoh) {
                break;
            } else if (state == 4) {
                ok = IsMsgTypeChar(c);
                value = ok ? static_cast<unsigned short>(value << 8 | static_cast<unsigned char>(c)) : 0;
            } else {
                ok = false; // a third character
            }
            if (!ok) {
                *msgType = value;
                return stopAtByte(FixIntegrityBadMsgType);
            }
        }
        *msgType = value;
        *msgTypeEndPos = Saved(pos + 1);
        ++pos;
    }
        [[fallthrough]];

    case Phase::kTrailer:
        break;
    }
    if (pos > in.heldLength) freshTaken = pos - in.heldLength; // the header bytes just read

    // The body's final SOH, as a saved position (so also the position of the "1" of "10=").
    const auto bodyEnd = static_cast<unsigned short>(*bodyStartPos + *bodyLength - 1);
    if (bodyEnd >= in.total) {
        current = 0;
        return needMore();
    }
    unsigned short sum = *checkSum;
    if (*checkSumEndPos != 0) {
        state = 7, restartAt(*checkSumEndPos - 1u);
    } else {
        sum = 0;
        if (*checkSumValuePos != 0) {
            state = 4, restartAt(*checkSumValuePos - 1u);
        } else {
            // The body is not examined: the byte examined before its final SOH is the SOH that
            // ended MsgType, however the stream was cut.
            state = 0, restartAt(std::uint64_t{bodyEnd} - 1u);
            current = kSoh;
        }
    }
    for (;; ++pos, ++state) {
        if (pos >= in.total) {
            *checkSum = state <= 6 ? 0xFFFF : sum;
            return needMore();
        }
        const char c = take();
        bool ok = true;
        switch (state) {
        case 0:
            ok = c == kSoh;
            break;
        case 1:
            ok = c == '1';
            break;
        case 2:
            ok = c == '0';
            break;
        case 3:
            ok = c == '=';
            if (ok) *checkSumValuePos = Saved(pos + 1);
            break;
        default:
            if (state == 7) {
                *checkSum = sum;
                if (c != kSoh) return stopAtByte(FixIntegrityBadTrailer);
                *complete = 1;
                return stopAtByte(FixIntegrityOk);
            }
            // Deliberately not validated as digits: any byte counts as its code minus '0'.
            sum = static_cast<unsigned short>(sum * 10 +
                                              static_cast<unsigned int>(static_cast<signed char>(c) - '0'));
            if (state == 6) *checkSumEndPos = Saved(pos + 1);
            break;
        }
        if (!ok) {
            *checkSum = sum;
            return stopAtByte(FixIntegrityBadTrailer);
        }
    }
}
