// fix_test_messages.h - FIX message helpers for the tests, written without the library.
#pragma once

#include <memory>
#include <string>
#include <string_view>

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

} // namespace fixtest
