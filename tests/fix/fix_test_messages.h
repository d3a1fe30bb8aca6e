// fix_test_messages.h - FIX helpers for the tests: messages and a receiver's checks written without
// the library, the slots of a gather list as text, and the scanner's state as one value.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

#include "VeloraUtils/FixParsing.h"
#include "VeloraUtils/WsaCollection.h"

namespace fixtest {

// `text` with every '|' turned into SOH (or, with `back`, every SOH into '|', for failure messages).
inline std::string Soh(std::string_view text, bool back = false) {
    std::string out(text);
    for (char& c : out)
        if (c == (back ? '\x01' : '|')) c = back ? '|' : '\x01';
    return out;
}

// A whole message: header, `body` (ending with '|'), "10=", the signed byte sum modulo 256, SOH.
inline std::string Message(std::string_view beginString, std::string_view body) {
    const std::string soh = Soh(body);
    const std::string head =
        Soh("8=" + std::string(beginString) + "|9=" + std::to_string(soh.size()) + "|") + soh;
    int sum = 0;
    for (char c : head) sum += static_cast<signed char>(c);
    const std::string digits = std::to_string(1000 + ((sum % 256) + 256) % 256);
    return head + "10=" + digits.substr(1) + '\x01';
}

// A copy of `bytes` in a heap block of exactly its size: a read past the end trips the sanitizer.
struct ExactBuffer {
    explicit ExactBuffer(std::string_view bytes) : size(bytes.size()), data(new char[bytes.size()]) {
        bytes.copy(data.get(), bytes.size());
    }
    const char* get() const noexcept { return size != 0 ? data.get() : nullptr; }
    std::size_t size;
    std::unique_ptr<char[]> data;
};

inline std::string TextOf(const WsaCollection& c, unsigned short i) {
    const WSABUF* const slot = c.GetWsaBufAt(i);
    return slot != nullptr && slot->buf != nullptr ? std::string(slot->buf, slot->len) : std::string();
}
inline std::string Gather(const WsaCollection& c) { // the bytes of all slots in use, in order
    std::string out;
    for (unsigned short i = 0; i < c.GetCount(); ++i) out += TextOf(c, i);
    return out;
}

// What a receiver measures: BodyLength and CheckSum as written, the bytes counted from after the
// SOH ending BodyLength up to "10=", and the byte sum mod 256 before "10=".
struct Measured {
    bool wellFormed = false;
    unsigned int declaredBodyLength = 0, countedBodyLength = 0, declaredCheckSum = 0, computedCheckSum = 0;
};

inline Measured Measure(const std::string& s) {
    Measured m;
    const std::size_t first = s.find('\x01'), trailer = s.size() - 7;
    if (s.compare(0, 2, "8=") != 0 || first == std::string::npos || s.compare(first + 1, 2, "9=") != 0)
        return m;
    const std::size_t second = s.find('\x01', first + 3);
    if (second == std::string::npos || second == first + 3 || s.size() < second + 8 ||
        s.compare(trailer, 3, "10=") != 0 || s.back() != '\x01')
        return m;
    for (std::size_t i = first + 3; i < trailer + 6; i = i + 1 == second ? trailer + 3 : i + 1) {
        if (s[i] < '0' || s[i] > '9') return m;
        unsigned int& number = i < second ? m.declaredBodyLength : m.declaredCheckSum;
        number = number * 10 + static_cast<unsigned int>(s[i] - '0');
    }
    m.countedBodyLength = static_cast<unsigned int>(trailer - (second + 1));
    for (std::size_t i = 0; i < trailer; ++i) m.computedCheckSum += static_cast<unsigned char>(s[i]);
    m.computedCheckSum %= 256;
    m.wellFormed = true;
    return m;
}

// The caller-owned state of U_CheckFixIntegrity.
struct ScanState {
    unsigned int position = 0;
    char protocol[8] = {};
    unsigned int version = 0;
    unsigned short beginStringValuePos = 0, versionPos = 0, bodyLengthTagPos = 0, bodyLength = 0,
                   bodyLengthValuePos = 0, bodyStartPos = 0, msgType = 0, msgTypeValuePos = 0,
                   msgTypeEndPos = 0, checkSum = 0, checkSumValuePos = 0, checkSumEndPos = 0;
    unsigned char complete = 0;
    char currentChar = 0, previousChar = 0;

    // Every field, as a tuple gtest compares and prints.
    auto All() const {
        return std::tuple(position, std::string(protocol, strnlen(protocol, 8)), version, beginStringValuePos,
                          versionPos, bodyLengthTagPos, bodyLength, bodyLengthValuePos, bodyStartPos, msgType,
                          msgTypeValuePos, msgTypeEndPos, checkSum, checkSumValuePos, checkSumEndPos,
                          int{complete}, int{currentChar}, int{previousChar});
    }
    // One call with `held` bytes seen before and `length` fresh ones; `*data` and `length` advance.
    unsigned char Scan(const char* held, unsigned int& heldLength, const char** data, unsigned int& length) {
        return U_CheckFixIntegrity(held, &heldLength, data, &length, &position, protocol, &version,
                                   &beginStringValuePos, &versionPos, &bodyLengthTagPos, &bodyLength,
                                   &bodyLengthValuePos, &bodyStartPos, &msgType, &msgTypeValuePos,
                                   &msgTypeEndPos, &checkSum, &checkSumValuePos, &checkSumEndPos, &complete,
                                   &currentChar, &previousChar);
    }
};

} // namespace fixtest
