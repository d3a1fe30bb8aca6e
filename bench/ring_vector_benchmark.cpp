// Ring vector beside std::deque: a queue in steady state (add at the back, remove at the front) with
// owned items and with plain numbers, positional reads over a wrapped ring, and a full walk.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <deque>

#include "VeloraUtils/RingVector.h"

namespace {

constexpr std::uint64_t kHeld = 1024; // items held while measuring; a power of two for the index mask

class Tick final : public RingVectorBaseItem {
public:
    explicit Tick(std::uint64_t value) : value_(value) {}
    RingVectorBaseItem* Clone() const override { return new Tick(value_); }
    bool IsEqual(const RingVectorBaseItem& other) const override {
        return static_cast<const Tick&>(other).value_ == value_;
    }
    std::uint64_t value_;
};

std::uint64_t ValueOf(const RingVectorBaseItem* item) {
    return item == nullptr ? 0 : static_cast<const Tick*>(item)->value_;
}

// The queue starts with values 0 .. kHeld - 1; after n steps its front holds value n.
void CheckFront(benchmark::State& state, std::uint64_t front, std::uint64_t size) {
    if (front != static_cast<std::uint64_t>(state.iterations()) || size != kHeld)
        state.SkipWithError("queue lost its order");
    state.SetItemsProcessed(state.iterations());
}

void BM_VeloraRingVectorPushPop(benchmark::State& state) {
    VeloraRingVector ring(kHeld + kHeld / 2); // not a power of two: the indices wrap mid-array
    std::uint64_t next = 0;
    for (; next < kHeld; ++next) ring.push_back(new Tick(next));
    for (auto _ : state) {
        ring.push_back(new Tick(next++));
        ring.pop_front(); // the ring deletes the item
    }
    CheckFront(state, ValueOf(ring.front()), ring.size());
}

void BM_StdDequePushPop(benchmark::State& state) {
    std::deque<RingVectorBaseItem*> queue;
    std::uint64_t next = 0;
    for (; next < kHeld; ++next) queue.push_back(new Tick(next));
    for (auto _ : state) {
        queue.push_back(new Tick(next++));
        delete queue.front();
        queue.pop_front();
    }
    CheckFront(state, ValueOf(queue.front()), queue.size());
    for (RingVectorBaseItem* item : queue) delete item;
}

void BM_RingVectorNumbersPushPop(benchmark::State& state) {
    RingVector<std::uint64_t> ring(kHeld + kHeld / 2);
    std::uint64_t next = 0;
    for (; next < kHeld; ++next) ring.push_back(next);
    for (auto _ : state) {
        ring.push_back(next++);
        ring.pop_front();
    }
    CheckFront(state, ring.front(), ring.size());
}

void BM_StdDequeNumbersPushPop(benchmark::State& state) {
    std::deque<std::uint64_t> queue;
    std::uint64_t next = 0;
    for (; next < kHeld; ++next) queue.push_back(next);
    for (auto _ : state) {
        queue.push_back(next++);
        queue.pop_front();
    }
    CheckFront(state, queue.front(), queue.size());
}

// Reads every position once per iteration; the sum of 0 .. kHeld - 1 each time.
void CheckSum(benchmark::State& state, std::uint64_t sum) {
    if (sum != static_cast<std::uint64_t>(state.iterations()) * (kHeld * (kHeld - 1) / 2))
        state.SkipWithError("wrong items read");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kHeld));
}

void BM_VeloraRingVectorAt(benchmark::State& state) {
    VeloraRingVector ring(kHeld);
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) ring.push_back(new Tick(kHeld / 2 + i));
    for (std::uint64_t i = kHeld / 2; i > 0; --i) ring.push_front(new Tick(i - 1)); // wraps
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < kHeld; ++i) sum += ValueOf(ring.at(i));
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
}

void BM_StdDequeAt(benchmark::State& state) {
    std::deque<RingVectorBaseItem*> queue;
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) queue.push_back(new Tick(kHeld / 2 + i));
    for (std::uint64_t i = kHeld / 2; i > 0; --i) queue.push_front(new Tick(i - 1));
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < kHeld; ++i) sum += ValueOf(queue.at(i));
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
    for (RingVectorBaseItem* item : queue) delete item;
}

void BM_RingVectorNumbersAt(benchmark::State& state) {
    RingVector<std::uint64_t> ring(kHeld);
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) ring.push_back(kHeld / 2 + i);
    for (std::uint64_t i = kHeld / 2; i > 0; --i) ring.push_front(i - 1);
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < kHeld; ++i) sum += ring.at(i);
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
}

void BM_StdDequeNumbersAt(benchmark::State& state) {
    std::deque<std::uint64_t> queue;
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) queue.push_back(kHeld / 2 + i);
    for (std::uint64_t i = kHeld / 2; i > 0; --i) queue.push_front(i - 1);
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < kHeld; ++i) sum += queue.at(i);
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
}

void BM_VeloraRingVectorIterator(benchmark::State& state) {
    VeloraRingVector ring(kHeld);
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) ring.push_back(new Tick(kHeld / 2 + i));
    for (std::uint64_t i = kHeld / 2; i > 0; --i) ring.push_front(new Tick(i - 1));
    std::uint64_t sum = 0;
    for (auto _ : state) {
        VeloraRingVectorItemIterator* iterator = U_CreateVeloraRingVectorIterator(&ring);
        while (RingVectorBaseItem* item = U_GetNextVeloraRingVectorItem(iterator)) sum += ValueOf(item);
        delete iterator;
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
}

void BM_StdDequeIterator(benchmark::State& state) {
    std::deque<RingVectorBaseItem*> queue;
    for (std::uint64_t i = 0; i < kHeld / 2; ++i) queue.push_back(new Tick(kHeld / 2 + i));
    for (std::uint64_t i = kHeld / 2; i > 0; --i) queue.push_front(new Tick(i - 1));
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (RingVectorBaseItem* item : queue) sum += ValueOf(item);
        benchmark::DoNotOptimize(sum);
    }
    CheckSum(state, sum);
    for (RingVectorBaseItem* item : queue) delete item;
}

BENCHMARK(BM_VeloraRingVectorPushPop);
BENCHMARK(BM_StdDequePushPop);
BENCHMARK(BM_RingVectorNumbersPushPop);
BENCHMARK(BM_StdDequeNumbersPushPop);
BENCHMARK(BM_VeloraRingVectorAt);
BENCHMARK(BM_StdDequeAt);
BENCHMARK(BM_RingVectorNumbersAt);
BENCHMARK(BM_StdDequeNumbersAt);
BENCHMARK(BM_VeloraRingVectorIterator);
BENCHMARK(BM_StdDequeIterator);

} // namespace

BENCHMARK_MAIN();
