// Fuzz target for the wildcard matcher. The first byte splits the rest into a text and a pattern (each an
// exactly sized heap copy, so ASan reports a read past either terminator) and chooses whether their bytes
// are drawn from a small alphabet that makes wildcards and repeats common. The result must equal a model
// of the matcher written item by item, and must agree with the plain meaning of the pattern: a pattern of
// literals and '?' matches exactly the texts of its length that agree on the literals, and whatever the
// matcher accepts, a backtracking wildcard match accepts too.
#include "VeloraUtils/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

std::unique_ptr<char[]> Terminated(std::string_view s) {
    auto copy = std::make_unique<char[]>(s.size() + 1);
    std::memcpy(copy.get(), s.data(), s.size());
    copy[s.size()] = '\0';
    return copy;
}

// The matcher item by item: a literal or '?' takes one text character; a '*' takes one and then every
// character up to the first that equals the pattern character after it. Running out of text with
// pattern left is a match only when what is left is a lone trailing '*'.
bool Model(std::string_view t, std::string_view p) {
    std::size_t i = 0;
    for (std::size_t j = 0; j < p.size(); ++j) {
        if (i == t.size()) return p[j] == '*' && j + 1 == p.size();
        if (p[j] == '?') {
            ++i;
        } else if (p[j] != '*') {
            if (t[i++] != p[j]) return false;
        } else {
            const char next = j + 1 < p.size() ? p[j + 1] : '\0';
            for (++i; i < t.size() && t[i] != next;) ++i;
            if (i == t.size()) return next == '\0';
        }
    }
    return i == t.size();
}

// Wildcard matching with backtracking: '*' takes any run, the empty one included.
bool Glob(std::string_view t, std::string_view p) {
    std::vector<std::vector<char>> can(p.size() + 1, std::vector<char>(t.size() + 1, 0));
    can[p.size()][t.size()] = 1;
    for (std::size_t j = p.size(); j-- > 0;)
        for (std::size_t i = t.size() + 1; i-- > 0;) {
            if (p[j] == '*')
                can[j][i] = can[j + 1][i] || (i < t.size() && can[j][i + 1]);
            else
                can[j][i] = i < t.size() && (p[j] == '?' || p[j] == t[i]) && can[j + 1][i + 1];
        }
    return can[0][0] != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    static constexpr char kAlphabet[] = {'A', 'B', 'C', '*', '?', 'A', 'B', '*'};
    std::string bytes;
    for (std::size_t i = 1; i < size; ++i) {
        const char c = static_cast<char>(data[i]);
        bytes += (data[0] & 1) != 0 ? kAlphabet[data[i] % sizeof kAlphabet] : c;
    }
    const std::size_t split = bytes.empty() ? 0 : (data[0] >> 1) % (bytes.size() + 1);
    // As the matcher sees them: each text ends at its first NUL.
    const std::string text(bytes.substr(0, split).c_str()), pattern(bytes.substr(split).c_str());

    const bool matched = U_PatternMatch(Terminated(text).get(), Terminated(pattern).get());
    Require(matched == Model(text, pattern));
    if (pattern.find('*') == std::string::npos) Require(matched == Glob(text, pattern));
    if (matched && text.size() <= 512 && pattern.size() <= 512) Require(Glob(text, pattern));
    Require(U_HasWildCards(Terminated(pattern).get()) == (pattern.find_first_of("*?") != std::string::npos));
    return 0;
}
