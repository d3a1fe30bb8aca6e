// Number writers beside std::to_chars and {fmt}'s format_int on the same random values.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
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
        for (auto& x : v) x = static_cast<T>(rng());
        return v;
    }();
    return values;
}

// Sum of the text lengths std::to_chars gives for the first `iterations` values, plus one ","
// per full group of three digits for grouped text.
template <class T> std::uint64_t ExpectedLengthSum(std::uint64_t iterations, bool grouped) {
    const auto& values = RandomValues<T>();
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < iterations; ++i) {
        char buf[32] = {};
        const auto length =
            static_cast<std::uint64_t>(std::to_chars(buf, buf + 32, values[i & (kValues - 1)]).ptr - buf);
        const std::uint64_t digits = length - (buf[0] == '-' ? 1 : 0);
        sum += length + (grouped ? (digits - 1) / 3 : 0);
    }
    return sum;
}

// Runs `write(value)` (which returns the length of the text it made) over the random values and
// checks the total length after the timed loop.
template <class T, class Write> void RunWriter(benchmark::State& state, Write write, bool grouped = false) {
    const auto& values = RandomValues<T>();
    std::uint64_t i = 0, sum = 0;
    for (auto _ : state) sum += write(values[i++ & (kValues - 1)]);
    if (sum != ExpectedLengthSum<T>(static_cast<std::uint64_t>(state.iterations()), grouped))
        state.SkipWithError("wrong total text length");
}

// Buffer family: the result points into the buffer, the text ends at its last byte.
template <class T, class Writer>
void RunBufferWriter(benchmark::State& state, Writer writer, bool grouped = false) {
    char buf[32];
    RunWriter<T>(
        state,
        [&](T v) {
            const char* first = writer(v, buf, sizeof buf);
            benchmark::DoNotOptimize(first);
            return static_cast<std::uint64_t>(buf + sizeof buf - 1 - first);
        },
        grouped);
}

template <class T> void RunToChars(benchmark::State& state) {
    char buf[32];
    RunWriter<T>(state, [&](T v) {
        char* end = std::to_chars(buf, buf + sizeof buf, v).ptr;
        *end = '\0';
        benchmark::DoNotOptimize(buf);
        return static_cast<std::uint64_t>(end - buf);
    });
}

template <class T> void RunFormatInt(benchmark::State& state) {
    RunWriter<T>(state, [](T v) {
        fmt::format_int text(v);
        benchmark::DoNotOptimize(text.c_str());
        return static_cast<std::uint64_t>(text.size());
    });
}

// Appending to a std::string whose capacity is already there, as a line builder does.
template <class T, class Append> void RunAppend(benchmark::State& state, Append append) {
    std::string s;
    s.reserve(64);
    RunWriter<T>(state, [&](T v) {
        s.clear();
        append(s, v);
        benchmark::DoNotOptimize(s.data());
        return static_cast<std::uint64_t>(s.size());
    });
}

void BM_UIntToStr(benchmark::State& state) {
    RunBufferWriter<unsigned>(state,
                              [](unsigned v, char* b, unsigned s) { return U_UIntToStr(v, b, s, 0, 0); });
}
void BM_UInt64ToStr(benchmark::State& state) {
    RunBufferWriter<std::uint64_t>(
        state, [](std::uint64_t v, char* b, unsigned s) { return U_UInt64ToStr(v, b, s, 0, 0); });
}
void BM_IntToStrWithCommas(benchmark::State& state) {
    RunBufferWriter<int>(
        state, [](int v, char* b, unsigned s) { return U_IntToStrWithCommas(v, b, s, 0, 0); }, true);
}
void BM_AppendUInt64(benchmark::State& state) {
    RunAppend<std::uint64_t>(state, [](std::string& s, std::uint64_t v) { U_AppendUInt64(s, v, 0); });
}
void BM_ToCharsAppend64(benchmark::State& state) {
    RunAppend<std::uint64_t>(state, [](std::string& s, std::uint64_t v) {
        char buf[24];
        s.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
    });
}
void BM_FormatIntAppend64(benchmark::State& state) {
    RunAppend<std::uint64_t>(state, [](std::string& s, std::uint64_t v) {
        fmt::format_int text(v);
        s.append(text.data(), text.size());
    });
}

BENCHMARK(BM_UIntToStr);
BENCHMARK(RunToChars<unsigned>)->Name("BM_ToChars32");
BENCHMARK(RunFormatInt<unsigned>)->Name("BM_FormatInt32");
BENCHMARK(BM_UInt64ToStr);
BENCHMARK(RunToChars<std::uint64_t>)->Name("BM_ToChars64");
BENCHMARK(RunFormatInt<std::uint64_t>)->Name("BM_FormatInt64");
BENCHMARK(BM_AppendUInt64);
BENCHMARK(BM_ToCharsAppend64);
BENCHMARK(BM_FormatIntAppend64);
// Grouped text is longer than the anchors' plain text; they bound what grouping on top would cost.
BENCHMARK(BM_IntToStrWithCommas);
BENCHMARK(RunToChars<int>)->Name("BM_ToCharsSigned32");
BENCHMARK(RunFormatInt<int>)->Name("BM_FormatIntSigned32");

} // namespace

BENCHMARK_MAIN();
