// Price text beside the double formatters and parser: the amount writer against std::to_chars(double,
// fixed) and {fmt}'s "{:.{}f}" on the same prices, and the amount reader against
// std::from_chars(double) on the same text. Prices run 0.01 to 100000 with nine-digit fractions.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/PriceText.h"

namespace {

constexpr std::size_t kValues = 4096; // a power of two, so the index wraps with a mask

struct Sample {
    unsigned whole, fraction;
    double value;
    unsigned length[10], groupedLength[10]; // text length at each decimals, half up
    std::string text;                       // nine decimals, as the reader's input
};

unsigned Digits(std::uint64_t v) {
    unsigned n = 1;
    while (v >= 10) v /= 10, ++n;
    return n;
}

const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples = [] {
        std::mt19937_64 rng(42);
        std::vector<Sample> v(kValues);
        for (auto& s : v) {
            s.whole = static_cast<unsigned>(rng() % 100000);
            s.fraction = static_cast<unsigned>(rng() % 1000000000);
            if (s.whole == 0 && s.fraction < 10000000) s.fraction += 10000000; // at least 0.01
            s.value = s.whole + s.fraction / 1e9;
            for (unsigned d = 0; d < 10; ++d) { // the expected lengths, by integer rounding
                const std::uint64_t unit = static_cast<std::uint64_t>(std::pow(10, 9 - d) + 0.5);
                const std::uint64_t whole =
                    (s.whole * 1000000000ull + s.fraction + unit / 2) / unit * unit / 1000000000;
                s.length[d] = Digits(whole) + (d ? d + 1 : 0);
                s.groupedLength[d] = s.length[d] + (Digits(whole) - 1) / 3;
            }
            U_PriceDollarsAndFractionToStr(s.text, s.whole, s.fraction, 9, 0, false, 0, false);
        }
        return v;
    }();
    return samples;
}

// Runs `write(sample, s)` into one reserved string over the samples; checks the total text length
// after the timed loop.
template <class Write> void RunWriter(benchmark::State& state, unsigned decimals, bool commas, Write write) {
    const auto& samples = Samples();
    std::string s;
    s.reserve(64);
    std::uint64_t i = 0, sum = 0, expected = 0;
    for (auto _ : state) {
        s.clear();
        write(samples[i++ & (kValues - 1)], s);
        benchmark::DoNotOptimize(s.data());
        sum += s.size();
    }
    for (std::uint64_t k = 0; k < i; ++k) {
        const Sample& x = samples[k & (kValues - 1)];
        expected += commas ? x.groupedLength[decimals] : x.length[decimals];
    }
    if (sum != expected) state.SkipWithError("wrong total text length");
}

void BM_U_PriceDollarsAndFractionToStr(benchmark::State& state) {
    const auto decimals = static_cast<unsigned char>(state.range(0));
    const bool commas = state.range(1) != 0;
    RunWriter(state, decimals, commas, [&](const Sample& x, std::string& s) {
        U_PriceDollarsAndFractionToStr(s, x.whole, x.fraction, decimals, 0, commas, 0, false);
    });
}
BENCHMARK(BM_U_PriceDollarsAndFractionToStr)
    ->ArgsProduct({{2, 4, 9}, {0, 1}})
    ->ArgNames({"decimals", "commas"});

void BM_ToCharsDouble(benchmark::State& state) {
    const auto precision = static_cast<int>(state.range(0));
    RunWriter(state, static_cast<unsigned>(precision), false, [&](const Sample& x, std::string& s) {
        char buf[64];
        const auto result =
            std::to_chars(buf, buf + sizeof buf, x.value, std::chars_format::fixed, precision);
        s.append(buf, result.ptr);
    });
}
BENCHMARK(BM_ToCharsDouble)->Arg(2)->Arg(4)->Arg(9)->ArgName("decimals");

void BM_FmtFormatTo(benchmark::State& state) {
    const auto precision = static_cast<int>(state.range(0));
    RunWriter(state, static_cast<unsigned>(precision), false, [&](const Sample& x, std::string& s) {
        fmt::format_to(std::back_inserter(s), "{:.{}f}", x.value, precision);
    });
}
BENCHMARK(BM_FmtFormatTo)->Arg(2)->Arg(4)->Arg(9)->ArgName("decimals");

void BM_U_StrToPriceDollarsAndFraction(benchmark::State& state) {
    const auto& samples = Samples();
    std::uint64_t i = 0, sum = 0, expected = 0;
    for (auto _ : state) {
        const char* cursor = samples[i++ & (kValues - 1)].text.c_str();
        unsigned whole, fraction;
        U_StrToPriceDollarsAndFraction(whole, fraction, cursor, 9, '|');
        sum += whole * 1000000000ull + fraction;
    }
    for (std::uint64_t k = 0; k < i; ++k) {
        const Sample& x = samples[k & (kValues - 1)];
        expected += x.whole * 1000000000ull + x.fraction;
    }
    if (sum != expected) state.SkipWithError("wrong total value");
}
BENCHMARK(BM_U_StrToPriceDollarsAndFraction);

void BM_FromCharsDouble(benchmark::State& state) {
    const auto& samples = Samples();
    std::uint64_t i = 0;
    double sum = 0, expected = 0;
    for (auto _ : state) {
        const std::string& text = samples[i++ & (kValues - 1)].text;
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        sum += value;
    }
    for (std::uint64_t k = 0; k < i; ++k) expected += samples[k & (kValues - 1)].value;
    if (std::abs(sum - expected) > 1e-6 * static_cast<double>(i)) state.SkipWithError("wrong total value");
}
BENCHMARK(BM_FromCharsDouble);

} // namespace

BENCHMARK_MAIN();
