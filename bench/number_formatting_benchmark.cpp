// Number writers beside std::to_chars and {fmt}'s format_int on the same random values.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

constexpr std::size_t kValues = 4096; // a power of two, so the index wraps with a mask

template <class T> const std::vector<T>& RandomValues() {
    static const std::vector<T> values = [] {
        std::mt19937_64 rng(42);
        std::vector<T> v(kValues);
        for (auto& x : v)
            x = static_cast<T>(rng());
        return v;
    }();
    return values;
}

// Every benchmark sums the lengths it produced; the sum is checked against to_chars after the loop.
template <class T> std::uint64_t ExpectedLengthSum(std::uint64_t iterations) {
    const auto& values = RandomValues<T>();
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < iterations; ++i) {
        char buf[32];
        sum += static_cast<std::uint64_t>(std::to_chars(buf, buf + 32, values[i & (kValues - 1)]).ptr - buf);
    }
    return sum;
}

template <class T> void CheckLengths(benchmark::State& state, std::uint64_t sum, std::uint64_t extraPerValue = 0) {
    const auto iterations = static_cast<std::uint64_t>(state.iterations());
    if (sum != ExpectedLengthSum<T>(iterations) + extraPerValue * iterations)
        state.SkipWithError("wrong total text length");
}

void BM_UIntToStr(benchmark::State& state) {
    const auto& values = RandomValues<unsigned int>();
    char buf[32];
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        const char* first = U_UIntToStr(values[i++ & (kValues - 1)], buf, sizeof buf, 0, 0);
        benchmark::DoNotOptimize(first);
        sum += static_cast<std::uint64_t>(buf + sizeof buf - 1 - first);
    }
    CheckLengths<unsigned int>(state, sum);
}
BENCHMARK(BM_UIntToStr);

void BM_ToChars32(benchmark::State& state) {
    const auto& values = RandomValues<unsigned int>();
    char buf[32];
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        char* end = std::to_chars(buf, buf + sizeof buf, values[i++ & (kValues - 1)]).ptr;
        *end = '\0';
        benchmark::DoNotOptimize(buf);
        sum += static_cast<std::uint64_t>(end - buf);
    }
    CheckLengths<unsigned int>(state, sum);
}
BENCHMARK(BM_ToChars32);

void BM_FmtFormatInt32(benchmark::State& state) {
    const auto& values = RandomValues<unsigned int>();
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        fmt::format_int text(values[i++ & (kValues - 1)]);
        benchmark::DoNotOptimize(text.c_str());
        sum += text.size();
    }
    CheckLengths<unsigned int>(state, sum);
}
BENCHMARK(BM_FmtFormatInt32);

void BM_UInt64ToStr(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    char buf[32];
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        const char* first = U_UInt64ToStr(values[i++ & (kValues - 1)], buf, sizeof buf, 0, 0);
        benchmark::DoNotOptimize(first);
        sum += static_cast<std::uint64_t>(buf + sizeof buf - 1 - first);
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_UInt64ToStr);

void BM_ToChars64(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    char buf[32];
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        char* end = std::to_chars(buf, buf + sizeof buf, values[i++ & (kValues - 1)]).ptr;
        *end = '\0';
        benchmark::DoNotOptimize(buf);
        sum += static_cast<std::uint64_t>(end - buf);
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_ToChars64);

void BM_FmtFormatInt64(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        fmt::format_int text(values[i++ & (kValues - 1)]);
        benchmark::DoNotOptimize(text.c_str());
        sum += text.size();
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_FmtFormatInt64);

// Appending to a std::string whose capacity is already there, as a line builder does.
void BM_AppendUInt64(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    std::string s;
    s.reserve(64);
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        s.clear();
        U_AppendUInt64(s, values[i++ & (kValues - 1)], 0);
        benchmark::DoNotOptimize(s.data());
        sum += s.size();
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_AppendUInt64);

void BM_ToChars64Append(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    std::string s;
    s.reserve(64);
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        s.clear();
        char buf[24];
        char* end = std::to_chars(buf, buf + sizeof buf, values[i++ & (kValues - 1)]).ptr;
        s.append(buf, end);
        benchmark::DoNotOptimize(s.data());
        sum += s.size();
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_ToChars64Append);

void BM_FmtFormatInt64Append(benchmark::State& state) {
    const auto& values = RandomValues<std::uint64_t>();
    std::string s;
    s.reserve(64);
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        s.clear();
        fmt::format_int text(values[i++ & (kValues - 1)]);
        s.append(text.data(), text.size());
        benchmark::DoNotOptimize(s.data());
        sum += s.size();
    }
    CheckLengths<std::uint64_t>(state, sum);
}
BENCHMARK(BM_FmtFormatInt64Append);

// Grouped text is longer than the anchors' ungrouped text; the anchors still bound what a
// grouping writer built on them would cost.
void BM_IntToStrWithCommas(benchmark::State& state) {
    const auto& values = RandomValues<int>();
    char buf[32];
    std::uint64_t i = 0, digits = 0;
    for (auto _ : state) {
        const char* first = U_IntToStrWithCommas(values[i++ & (kValues - 1)], buf, sizeof buf, 0, 0);
        benchmark::DoNotOptimize(first);
        for (const char* c = first; *c != '\0'; ++c)
            digits += *c != ',';
    }
    CheckLengths<int>(state, digits);
}
BENCHMARK(BM_IntToStrWithCommas);

void BM_ToCharsInt32(benchmark::State& state) {
    const auto& values = RandomValues<int>();
    char buf[32];
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        char* end = std::to_chars(buf, buf + sizeof buf, values[i++ & (kValues - 1)]).ptr;
        *end = '\0';
        benchmark::DoNotOptimize(buf);
        sum += static_cast<std::uint64_t>(end - buf);
    }
    CheckLengths<int>(state, sum);
}
BENCHMARK(BM_ToCharsInt32);

void BM_FmtFormatIntSigned32(benchmark::State& state) {
    const auto& values = RandomValues<int>();
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) {
        fmt::format_int text(values[i++ & (kValues - 1)]);
        benchmark::DoNotOptimize(text.c_str());
        sum += text.size();
    }
    CheckLengths<int>(state, sum);
}
BENCHMARK(BM_FmtFormatIntSigned32);

} // namespace

BENCHMARK_MAIN();
