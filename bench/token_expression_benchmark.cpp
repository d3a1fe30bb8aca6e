// A token filter (an OR collection of case-insensitive tokens) evaluated over news headlines of 80 to
// 120 characters, beside plain alternatives doing the same work: a loop of the library's U_StriStr
// over the tokens (the cost of the search without the tree), a strcasestr loop over the tokens,
// folding the headline once and then std::string_view::find per token, and a std::regex alternation
// with icase. Each benchmark counts the headlines that pass and checks the count after the timed loop
// against one computed beforehand.
#include "VeloraUtils/TextSearch.h"
#include "VeloraUtils/TokenExpressions.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <regex>
#include <string.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kHeadlines = 512;

const char* const kWords[] = {
    "Apple",    "Microsoft", "oil",     "crude",    "Fed",      "rates",   "inflation", "earnings",  "beat",
    "miss",     "guidance",  "merger",  "bond",     "yields",   "dollar",  "euro",      "yen",       "gold",
    "shares",   "rally",     "slump",   "futures",  "China",    "Europe",  "tariffs",   "bank",      "profit",
    "quarter",  "CEO",       "resigns", "deal",     "stake",    "IPO",     "chip",      "demand",    "supply",
    "OPEC",     "output",    "cut",     "jobs",     "payrolls", "GDP",     "growth",    "recession", "fears",
    "stocks",   "record",    "high",    "tech",     "energy",   "airline", "strike",    "lawsuit",   "FDA",
    "approval", "drug",      "trial",   "forecast", "raises",   "slashes", "after",     "amid",      "on",
};

struct Corpus {
    std::vector<std::string> headlines;
    std::vector<std::string> tokens; // lower case: the search must fold
};

std::string PseudoWord(std::mt19937& random) {
    std::string word;
    for (std::size_t n = 4 + random() % 5; n > 0; --n) word += static_cast<char>('a' + random() % 26);
    return word;
}

// Headlines from the word list; tokens: a tenth of them words that occur, the rest words that do not.
const Corpus& Make(std::size_t tokenCount) {
    static std::vector<Corpus> built(101);
    Corpus& c = built[tokenCount];
    if (!c.headlines.empty()) return c;
    std::mt19937 random(20240611);
    while (c.headlines.size() < kHeadlines) {
        std::string line;
        while (line.size() < 80) {
            if (!line.empty()) line += random() % 5 == 0 ? ", " : " ";
            line += kWords[random() % std::size(kWords)];
        }
        if (line.size() <= 120) c.headlines.push_back(line);
    }
    for (std::size_t i = 0; i < tokenCount; ++i) {
        std::string token = i % 10 == 0 ? kWords[random() % std::size(kWords)] : PseudoWord(random);
        for (char& ch : token) ch = static_cast<char>(ch >= 'A' && ch <= 'Z' ? ch + 32 : ch);
        c.tokens.push_back(token);
    }
    return c;
}

bool Folded(std::string_view text, std::string_view upperToken) {
    std::string folded(text);
    for (char& ch : folded) ch = static_cast<char>(ch >= 'a' && ch <= 'z' ? ch - 32 : ch);
    return folded.find(upperToken) != std::string::npos;
}

// The headlines passing the filter, counted plainly.
long Expected(const Corpus& c) {
    long count = 0;
    for (const std::string& line : c.headlines) {
        for (std::string token : c.tokens) {
            for (char& ch : token) ch = static_cast<char>(ch >= 'a' && ch <= 'z' ? ch - 32 : ch);
            if (Folded(line, token)) {
                ++count;
                break;
            }
        }
    }
    return count;
}

void Check(benchmark::State& state, const Corpus& c, long count) {
    if (count != Expected(c)) state.SkipWithError("the count of passing headlines is wrong");
    state.SetItemsProcessed(state.iterations() * kHeadlines);
    state.counters["passing"] = static_cast<double>(count);
}

void BM_TokenExpressionIsTrue(benchmark::State& state) {
    const Corpus& c = Make(static_cast<std::size_t>(state.range(0)));
    TokenExpressionCollection filter("filter", false);
    for (const std::string& token : c.tokens) filter.AddExpression(new TokenExpressionSimple(token), 0);
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (const std::string& line : c.headlines) count += filter.isTrue(line.c_str());
        benchmark::DoNotOptimize(count);
    }
    Check(state, c, count);
}

// The library's own folding search over the same tokens, in the order the filter tries them, without
// the tree: the difference to BM_TokenExpressionIsTrue is the tree's overhead.
void BM_StriStrLoop(benchmark::State& state) {
    const Corpus& c = Make(static_cast<std::size_t>(state.range(0)));
    TokenExpressionCollection filter("filter", false);
    for (const std::string& token : c.tokens) filter.AddExpression(new TokenExpressionSimple(token), 0);
    std::vector<std::string> upper;
    for (const auto& [child, op] : filter.GetExpressionCollection())
        upper.push_back(static_cast<const TokenExpressionSimple*>(child)->GetUpperToken());
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (const std::string& line : c.headlines) {
            for (const std::string& token : upper) {
                if (U_StriStr(line.c_str(), token.c_str()) != nullptr) {
                    ++count;
                    break;
                }
            }
        }
        benchmark::DoNotOptimize(count);
    }
    Check(state, c, count);
}

void BM_StrcasestrLoop(benchmark::State& state) {
    const Corpus& c = Make(static_cast<std::size_t>(state.range(0)));
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (const std::string& line : c.headlines) {
            for (const std::string& token : c.tokens) {
                if (strcasestr(line.c_str(), token.c_str()) != nullptr) {
                    ++count;
                    break;
                }
            }
        }
        benchmark::DoNotOptimize(count);
    }
    Check(state, c, count);
}

void BM_FoldThenStringViewFind(benchmark::State& state) {
    const Corpus& c = Make(static_cast<std::size_t>(state.range(0)));
    std::vector<std::string> upper(c.tokens);
    for (std::string& token : upper)
        for (char& ch : token) ch = static_cast<char>(ch >= 'a' && ch <= 'z' ? ch - 32 : ch);
    std::string folded;
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (const std::string& line : c.headlines) {
            folded.assign(line);
            for (char& ch : folded) ch = static_cast<char>(ch >= 'a' && ch <= 'z' ? ch - 32 : ch);
            const std::string_view view(folded);
            for (const std::string& token : upper) {
                if (view.find(token) != std::string_view::npos) {
                    ++count;
                    break;
                }
            }
        }
        benchmark::DoNotOptimize(count);
    }
    Check(state, c, count);
}

void BM_RegexAlternation(benchmark::State& state) {
    const Corpus& c = Make(static_cast<std::size_t>(state.range(0)));
    std::string pattern;
    for (const std::string& token : c.tokens) pattern += (pattern.empty() ? "" : "|") + token;
    const std::regex regex(pattern, std::regex::icase | std::regex::optimize);
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (const std::string& line : c.headlines) count += std::regex_search(line, regex);
        benchmark::DoNotOptimize(count);
    }
    Check(state, c, count);
}

} // namespace

BENCHMARK(BM_TokenExpressionIsTrue)->Arg(10)->Arg(100);
BENCHMARK(BM_StriStrLoop)->Arg(10)->Arg(100);
BENCHMARK(BM_StrcasestrLoop)->Arg(10)->Arg(100);
BENCHMARK(BM_FoldThenStringViewFind)->Arg(10)->Arg(100);
BENCHMARK(BM_RegexAlternation)->Arg(10)->Arg(100);

BENCHMARK_MAIN();
