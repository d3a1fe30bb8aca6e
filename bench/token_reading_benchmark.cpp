// Decimal token reading beside std::from_chars on the same '|'-delimited text of random values. Each
// benchmark reads the whole text per iteration and checks, after the timed loop, that the values it
// read add up to the sum of the values that were written.
#include "VeloraUtils/TokenReading.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <system_error>

namespace {

constexpr int kValues = 4096;

template <class T> struct Corpus {
    std::string text;
    std::uint64_t sum = 0; // wraps like the readers' sum does
};

template <class T> const Corpus<T>& Values() {
    static const Corpus<T> corpus = [] {
        Corpus<T> c;
        std::mt19937_64 random(20240611);
        for (int i = 0; i < kValues; ++i) {
            // Spread over the digit lengths: a random value shifted right by a random amount.
            const auto value = static_cast<T>(random() >> (random() % (8 * sizeof(T))));
            c.text += std::to_string(value);
            c.text += '|';
            c.sum += value;
        }
        return c;
    }();
    return corpus;
}

template <class T> void Check(benchmark::State& state, std::uint64_t sum) {
    if (sum != Values<T>().sum) state.SkipWithError("values read do not add up to the values written");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Values<T>().text.size()));
    state.SetItemsProcessed(state.iterations() * kValues);
}

template <class T, T (*Read)(const char**, char, T)> void ReadTokens(benchmark::State& state) {
    const Corpus<T>& corpus = Values<T>();
    std::uint64_t sum = 0;
    for (auto _ : state) {
        sum = 0;
        const char* cursor = corpus.text.c_str();
        while (*cursor != '\0') sum += Read(&cursor, '|', 0);
        benchmark::DoNotOptimize(sum);
    }
    Check<T>(state, sum);
}

template <class T> void FromChars(benchmark::State& state) {
    const Corpus<T>& corpus = Values<T>();
    const char* const end = corpus.text.data() + corpus.text.size();
    std::uint64_t sum = 0;
    for (auto _ : state) {
        sum = 0;
        const char* cursor = corpus.text.data();
        while (cursor != end) {
            T value = 0;
            const auto [next, error] = std::from_chars(cursor, end, value);
            if (error != std::errc()) break;
            sum += value;
            cursor = next + 1; // skip the delimiter
        }
        benchmark::DoNotOptimize(sum);
    }
    Check<T>(state, sum);
}

void BM_ReadUIntToken(benchmark::State& state) {
    ReadTokens<unsigned int, U_ReadUIntToken>(state);
}
void BM_FromChars32(benchmark::State& state) {
    FromChars<unsigned int>(state);
}
void BM_ReadUInt64Token(benchmark::State& state) {
    ReadTokens<std::uint64_t, U_ReadUInt64Token>(state);
}
void BM_FromChars64(benchmark::State& state) {
    FromChars<std::uint64_t>(state);
}

BENCHMARK(BM_ReadUIntToken);
BENCHMARK(BM_FromChars32);
BENCHMARK(BM_ReadUInt64Token);
BENCHMARK(BM_FromChars64);

} // namespace

BENCHMARK_MAIN();
