// Price and Money arithmetic per operation, beside the same operation on doubles (which is what
// the fixed-point types replace, without their exactness).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "VeloraUtils/Prices.h"

namespace {

constexpr std::size_t kValues = 1024; // a power of two, so the index wraps with a mask

struct Operands {
    std::vector<Price> prices;
    std::vector<Money> money;
    std::vector<double> doubles;
    std::vector<std::int64_t> factors;
};

const Operands& Values() {
    static const Operands operands = [] {
        Operands o;
        std::mt19937_64 rng(7);
        for (std::size_t i = 0; i < kValues; ++i) {
            const auto whole = static_cast<unsigned int>(rng() % 100000 + 1);
            const auto fraction = static_cast<unsigned int>(rng() % 1000000000);
            o.prices.emplace_back(whole, fraction);
            o.money.emplace_back(static_cast<std::int64_t>(rng() % 10000000) - 5000000,
                                 static_cast<short>(rng() % 10000));
            o.doubles.push_back(static_cast<double>(whole) + static_cast<double>(fraction) / 1e9);
            o.factors.push_back(static_cast<std::int64_t>(rng() % 999 + 1));
        }
        return o;
    }();
    return operands;
}

// Runs `op(i)` on the operand pairs and checks after the loop that every result was produced.
template <class Op> void RunOperation(benchmark::State& state, Op op) {
    std::size_t i = 0;
    std::uint64_t produced = 0;
    for (auto _ : state) {
        auto result = op(i & (kValues - 1));
        benchmark::DoNotOptimize(result);
        ++i;
        ++produced;
    }
    if (produced != static_cast<std::uint64_t>(state.iterations()))
        state.SkipWithError("operation count mismatch");
    state.SetItemsProcessed(state.iterations());
}

void BM_PriceAdd(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.prices[i] + v.prices[(i + 1) & (kValues - 1)]; });
}
void BM_PriceSubtractSigned(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.prices[i] - v.prices[(i + 1) & (kValues - 1)]; });
}
void BM_PriceTimesIntToMoney(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.prices[i] * v.factors[i]; });
}
void BM_PriceDivideIntToMoney(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.prices[i] / v.factors[i]; });
}
void BM_PriceTimesPrice(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.prices[i] * v.prices[(i + 1) & (kValues - 1)]; });
}
void BM_PriceGetPercentChange(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) {
        return v.prices[i].GetPercentChange(v.prices[(i + 1) & (kValues - 1)]);
    });
}
void BM_MoneyAdd(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.money[i] + v.money[(i + 1) & (kValues - 1)]; });
}
void BM_MoneyTimesInt(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.money[i] * v.factors[i]; });
}
void BM_MoneyDivideInt(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.money[i] / v.factors[i]; });
}
void BM_MoneyGetPercentChange(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(
        state, [&](std::size_t i) { return v.money[i].GetPercentChange(v.money[(i + 1) & (kValues - 1)]); });
}
void BM_DoubleAdd(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.doubles[i] + v.doubles[(i + 1) & (kValues - 1)]; });
}
void BM_DoubleDivide(benchmark::State& state) {
    const auto& v = Values();
    RunOperation(state, [&](std::size_t i) { return v.doubles[i] / static_cast<double>(v.factors[i]); });
}

BENCHMARK(BM_PriceAdd);
BENCHMARK(BM_PriceSubtractSigned);
BENCHMARK(BM_PriceTimesIntToMoney);
BENCHMARK(BM_PriceDivideIntToMoney);
BENCHMARK(BM_PriceTimesPrice);
BENCHMARK(BM_PriceGetPercentChange);
BENCHMARK(BM_MoneyAdd);
BENCHMARK(BM_MoneyTimesInt);
BENCHMARK(BM_MoneyDivideInt);
BENCHMARK(BM_MoneyGetPercentChange);
BENCHMARK(BM_DoubleAdd);
BENCHMARK(BM_DoubleDivide);

} // namespace

BENCHMARK_MAIN();
