// fix_test_messages.h - a deliberately small FIX message builder for the tests, written without the
// library: BodyLength and CheckSum are counted with plain loops. '|' in the texts stands for SOH.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace fixtest {

inline constexpr char kSoh = '\x01';

// `text` with every '|' turned into SOH.
inline std::string Soh(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c == '|') c = kSoh;
    return out;
}

// `text` with every SOH shown as '|', for failure messages.
inline std::string Bars(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c == kSoh) c = '|';
    return out;
}

// "8=<beginString>|9=<length>|<body>" with BodyLength counted over `body`.
inline std::string Header(std::string_view beginString, std::string_view body) {
    const std::string soh = Soh(body);
    return "8=" + std::string(beginString) + kSoh + "9=" + std::to_string(soh.size()) + kSoh + soh;
}

// The three CheckSum digits of `bytes`: the sum of the bytes as signed 8-bit values, modulo 256.
inline std::string CheckSumDigits(std::string_view bytes) {
    int sum = 0;
    for (char c : bytes) sum += static_cast<signed char>(c);
    char digits[8];
    std::snprintf(digits, sizeof digits, "%03d", ((sum % 256) + 256) % 256);
    return digits;
}

// A whole message: header, `body` (which must end with '|'), "10=" and the checksum, SOH.
inline std::string Message(std::string_view beginString, std::string_view body) {
    const std::string head = Header(beginString, body);
    return head + "10=" + CheckSumDigits(head) + kSoh;
}

// A copy of `bytes` in a heap block of exactly its size, so that a read past the end is caught by
// the address sanitizer.
struct ExactBuffer {
    explicit ExactBuffer(std::string_view bytes) : size(bytes.size()), data(new char[bytes.size()]) {
        bytes.copy(data.get(), bytes.size());
    }
    const char* get() const noexcept { return size != 0 ? data.get() : nullptr; }
    std::size_t size;
    std::unique_ptr<char[]> data;
};

} // namespace fixtest
