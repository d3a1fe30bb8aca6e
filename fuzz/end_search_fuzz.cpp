// Fuzz target for the searches, above all the End family (the pattern that the text's end only begins).
// The first byte splits the rest into a text and a pattern and chooses whether they are drawn from a
// small alphabet (so that matches are common). Texts are exactly sized heap copies: terminated ones end
// at their NUL, length-bounded ones at their last byte (which may hold NULs), so ASan reports any read
// past them. Checked: an End result r is the longest proper prefix of the pattern that ends the text
// (and null exactly when there is none); the terminated and UpToLength forms agree; the forward and
// backward searches agree with std::string_view; every folding form equals its exact form run on the
// text turned to upper case.
#include "VeloraUtils/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

constexpr std::ptrdiff_t kNull = -1;

class Copy {
public:
    Copy(std::string_view s, bool terminated)
        : bytes_(new char[s.size() + (terminated ? 1 : 0)]), size_(s.size()) {
        if (!s.empty()) std::memcpy(bytes_.get(), s.data(), s.size());
        if (terminated) bytes_[s.size()] = '\0';
    }
    const char* get() const { return bytes_.get(); }
    unsigned size() const { return static_cast<unsigned>(size_); }
    std::ptrdiff_t Offset(const char* r) const {
        if (r == nullptr) return kNull;
        Require(r >= get() && r < get() + size_);
        return r - get();
    }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

std::string Upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return s;
}

std::ptrdiff_t Found(std::size_t at) {
    return at == std::string_view::npos ? kNull : static_cast<std::ptrdiff_t>(at);
}

// The End family's result as an offset into the pattern, checked to be the longest proper prefix of
// the pattern that ends the text, or kNull exactly when none does.
std::ptrdiff_t CheckedEnd(std::string_view text, const std::string& pattern, const char* r) {
    std::size_t longest = 0;
    for (std::size_t k = 1; k < pattern.size() && k <= text.size(); ++k)
        if (text.substr(text.size() - k) == std::string_view(pattern).substr(0, k)) longest = k;
    if (r == nullptr) {
        Require(longest == 0);
        return kNull;
    }
    Require(r > pattern.c_str() && r < pattern.c_str() + pattern.size());
    Require(static_cast<std::size_t>(r - pattern.c_str()) == longest);
    return static_cast<std::ptrdiff_t>(longest);
}

// Every search of a text against an upper-case-only or mixed pattern; `text` may hold NULs, so the
// terminated forms see it up to its first NUL.
void Searches(std::string_view bounded, const std::string& pattern) {
    const std::string_view text = bounded.substr(0, bounded.find('\0'));
    const Copy t(text, true), b(bounded, false);
    const char* p = pattern.c_str();
    const bool none = pattern.empty();

    const std::ptrdiff_t end = CheckedEnd(text, pattern, U_StrStrEnd(t.get(), p));
    Require(CheckedEnd(text, pattern, U_StrStrEndUpToLength(t.get(), t.size(), p)) == end);
    CheckedEnd(bounded, pattern, U_StrStrEndUpToLength(b.get(), b.size(), p));

    Require(t.Offset(U_StrStr(t.get(), p)) == (none ? kNull : Found(text.find(pattern))));
    Require(b.Offset(U_StrStrUpToLength(b.get(), b.size(), p)) ==
            (none ? kNull : Found(bounded.find(pattern))));
    Require(b.Offset(U_StrStrFromBack(b.get(), b.size(), p)) ==
            (none ? kNull : Found(bounded.rfind(pattern))));

    // Folding: the same as the exact search of the upper-cased text.
    const std::string upperText = Upper(std::string(text)), upperBounded = Upper(std::string(bounded));
    const Copy ut(upperText, true), ub(upperBounded, false);
    const auto endOffset = [&](const char* r) { return r == nullptr ? kNull : r - p; };
    Require(endOffset(U_StriStrEnd(t.get(), p)) == endOffset(U_StrStrEnd(ut.get(), p)));
    Require(endOffset(U_StriStrEndUpToLength(b.get(), b.size(), p)) ==
            endOffset(U_StrStrEndUpToLength(ub.get(), ub.size(), p)));
    Require(t.Offset(U_StriStr(t.get(), p)) == ut.Offset(U_StrStr(ut.get(), p)));
    Require(b.Offset(U_StriStrUpToLength(b.get(), b.size(), p)) ==
            ub.Offset(U_StrStrUpToLength(ub.get(), ub.size(), p)));
    Require(b.Offset(U_StriStrFromBack(b.get(), b.size(), p)) ==
            ub.Offset(U_StrStrFromBack(ub.get(), ub.size(), p)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    static constexpr char kText[] = {'a', 'A', 'b', 'B', '\0', 'a', 'A', 'b'};
    static constexpr char kPattern[] = {'A', 'B', 'A', 'B', 'a'};
    const bool small = (data[0] & 1) != 0;
    const std::size_t split = (data[0] >> 1) % size;
    std::string text, pattern;
    for (std::size_t i = 1; i < size; ++i) {
        const auto c = static_cast<char>(data[i]);
        if (i <= split)
            text += small ? kText[data[i] % sizeof kText] : c;
        else if (c != '\0')
            pattern += small ? kPattern[data[i] % sizeof kPattern] : c;
    }
    Searches(text, pattern);
    return 0;
}
