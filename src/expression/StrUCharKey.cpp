// StrUCharKey.cpp - a byte string packed into 64-bit words plus one char, ordered for map keys.
#include "VeloraUtils/TokenExpressions.h"

#include <cstring>

namespace {

// The bytes go into the words most significant first, so that comparing words as unsigned numbers
// compares their bytes as unsigned values in order; the unused low bytes of the last word are 0.
void Pack(const char* bytes, std::size_t length, std::vector<std::uint64_t>& words) {
    words.assign((length + 7) / 8, 0);
    for (std::size_t i = 0; i < length; ++i) {
        const auto byte = static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i]));
        words[i / 8] |= byte << (56 - 8 * (i % 8));
    }
}

} // namespace

StrUCharKey::StrUCharKey(const char* bytes, std::size_t length, unsigned char ch)
    : length_(bytes == nullptr ? 0 : length), ch_(ch) {
    Pack(bytes, length_, words_);
}

StrUCharKey::StrUCharKey(const char* text, unsigned char ch)
    : StrUCharKey(text, text == nullptr ? 0 : std::strlen(text), ch) {}

StrUCharKey::StrUCharKey(const std::string& text, unsigned char ch)
    : StrUCharKey(text.data(), text.size(), ch) {}

std::string StrUCharKey::GetString() const {
    std::string text(length_, '\0');
    for (std::size_t i = 0; i < length_; ++i)
        text[i] = static_cast<char>(static_cast<unsigned char>(words_[i / 8] >> (56 - 8 * (i % 8))));
    return text;
}

int StrUCharKey::Compare(const StrUCharKey& other) const noexcept {
    // Padding bytes are 0, so a difference found in the shared words is the first differing byte,
    // or a real byte of the longer string where the shorter one has ended (which must sort it
    // later); equal shared words leave the shorter string as a prefix of the longer one.
    const std::size_t shared = words_.size() < other.words_.size() ? words_.size() : other.words_.size();
    for (std::size_t i = 0; i < shared; ++i) {
        if (words_[i] != other.words_[i]) return words_[i] < other.words_[i] ? -1 : 1;
    }
    if (length_ != other.length_) return length_ < other.length_ ? -1 : 1;
    if (ch_ != other.ch_) return ch_ < other.ch_ ? -1 : 1;
    return 0;
}
