// Substring search beside the C library and std::string_view::find. The text is 1 KiB or 64 KiB of random
// words whose only occurrence of the short pattern is at its very end, so each search crosses the whole
// text; the pattern's first and last letters are common ones. The folding search runs on the same words
// in random mixed case against an upper-case pattern. Each benchmark checks its result after the loop.
#include "VeloraUtils/TextSearch.h"

#include <benchmark/benchmark.h>

#include <cctype>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr const char* kPattern = "order";
constexpr const char* kUpperPattern = "ORDER";

struct Corpus {
    std::string text;
    std::size_t at = 0; // where the pattern (in some case) starts
};

const Corpus& Text(std::size_t size, bool mixedCase) {
    static std::map<std::pair<std::size_t, bool>, Corpus> corpora;
    Corpus& c = corpora[{size, mixedCase}];
    if (!c.text.empty()) return c;
    std::mt19937 random(static_cast<unsigned>(size) + mixedCase);
    const std::string_view tail = mixedCase ? "oRdEr" : kPattern;
    while (c.text.size() + tail.size() < size) {
        const char letter = static_cast<char>('a' + random() % 26);
        c.text += random() % 6 == 0 ? ' ' : letter;
        if (c.text.size() >= 5 && c.text.compare(c.text.size() - 5, 5, kPattern) == 0) c.text.back() = 'x';
    }
    if (mixedCase)
        for (char& ch : c.text)
            if (random() % 2 != 0) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    c.at = c.text.size();
    c.text += tail;
    return c;
}

template <class Find> void Run(benchmark::State& state, bool mixedCase, Find find) {
    const Corpus& corpus = Text(static_cast<std::size_t>(state.range(0)), mixedCase);
    const char* found = nullptr;
    for (auto _ : state) {
        found = find(std::string_view(corpus.text));
        benchmark::DoNotOptimize(found);
    }
    if (found != corpus.text.c_str() + corpus.at)
        state.SkipWithError("the pattern was not found at the text's end");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(corpus.text.size()));
}

void BM_U_StrStr(benchmark::State& state) {
    Run(state, false, [](std::string_view text) { return U_StrStr(text.data(), kPattern); });
}
void BM_strstr(benchmark::State& state) {
    Run(state, false,
        [](std::string_view text) -> const char* { return std::strstr(text.data(), kPattern); });
}
void BM_string_view_find(benchmark::State& state) {
    Run(state, false, [](std::string_view text) -> const char* {
        const std::size_t at = text.find(kPattern); // the text's length is known beforehand
        return at == std::string_view::npos ? nullptr : text.data() + at;
    });
}
void BM_U_StriStr(benchmark::State& state) {
    Run(state, true, [](std::string_view text) { return U_StriStr(text.data(), kUpperPattern); });
}
void BM_strcasestr(benchmark::State& state) {
    Run(state, true,
        [](std::string_view text) -> const char* { return strcasestr(text.data(), kUpperPattern); });
}

} // namespace

BENCHMARK(BM_U_StrStr)->Arg(1024)->Arg(65536);
BENCHMARK(BM_strstr)->Arg(1024)->Arg(65536);
BENCHMARK(BM_string_view_find)->Arg(1024)->Arg(65536);
BENCHMARK(BM_U_StriStr)->Arg(1024)->Arg(65536);
BENCHMARK(BM_strcasestr)->Arg(1024)->Arg(65536);

BENCHMARK_MAIN();
