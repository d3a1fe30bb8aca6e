// Ring buffer list throughput: one writer thread (the benchmark thread) and one reader thread move
// 32 MiB of fixed-size records per iteration through a RingBufferList, by block writes and by
// in-place writes, the reader working on the records in place. Beside them the same records go
// through boost::lockfree::spsc_queue and moodycamel::ReaderWriterQueue, and a single-thread memcpy
// of the same volume between two buffers gives the ceiling. Each record carries its sequence number; the
// reader checks that every record arrives once and in order, and the check is reported after the timed loop.
#include "VeloraUtils/RingBuffers.h"

#include <benchmark/benchmark.h>
#include <boost/lockfree/spsc_queue.hpp>
#include <readerwriterqueue/readerwriterqueue.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kVolume = std::size_t{32} << 20; // bytes moved per iteration
constexpr unsigned int kRingBytes = 1u << 20;          // ring / queue capacity in bytes

template <std::size_t N> struct Record { char bytes[N]; };

template <std::size_t N> Record<N> MakeRecord(std::uint64_t seq) {
    Record<N> r;
    std::memset(r.bytes, 0x5a, N);
    std::memcpy(r.bytes, &seq, sizeof seq);
    return r;
}

// What the reader does with each record: checks its sequence number (so the work is the same for
// every queue and cannot be optimised away).
struct Checker {
    std::uint64_t next = 0;
    std::uint64_t errors = 0;
    void Take(const char* record) noexcept {
        std::uint64_t seq;
        std::memcpy(&seq, record, sizeof seq);
        errors += seq != next;
        ++next;
    }
};

void Report(benchmark::State& state, std::uint64_t errors) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kVolume));
    if (errors != 0) state.SkipWithError("records were lost, repeated or reordered");
}

// The reader of a RingBufferList: in-place reads of whole records (contiguous mode never splits one).
// The checker lives on the reader's stack and is handed over at the end, so the reader never writes
// to a cache line near the writer's variables.
template <std::size_t N> Checker ReadRecords(RingBufferList& list, std::uint64_t count) {
    Checker checker;
    while (checker.next < count) {
        unsigned int length = 0, secondLength = 0;
        char* second = nullptr;
        const char* first = list.Read(length, second, secondLength);
        if (first == nullptr) {
            // Nothing yet: an overflowed list is drained now and can be reset.
            if (list.isOverflow()) list.ResetOverflow();
            continue;
        }
        for (unsigned int at = 0; at < length; at += N) checker.Take(first + at);
        for (unsigned int at = 0; at < secondLength; at += N) checker.Take(second + at);
        if (!list.IncrementReadCursor(length + secondLength) && list.isOverflow()) list.ResetOverflow();
    }
    return checker;
}

template <std::size_t N> void BM_RingBufferListWrite(benchmark::State& state) {
    constexpr std::uint64_t kCount = kVolume / N;
    std::uint64_t errors = 0;
    for (auto _ : state) {
        RingBufferList list(kRingBytes, kRingBytes, 4, N, true);
        Checker checker;
        std::thread reader([&] { checker = ReadRecords<N>(list, kCount); });
        Record<N> record = MakeRecord<N>(0);
        for (std::uint64_t seq = 0; seq < kCount; ++seq) {
            std::memcpy(record.bytes, &seq, sizeof seq);
            // Flow control: the list would rather start new rings than wait, so the writer waits
            // while the reader is still on an older ring (as the queues wait while they are full).
            while (list.GetWriteRing() != list.GetReadRing()) {
            }
            // Refused only in overflow, which the flow control above prevents.
            while (list.Write(record.bytes, N) != 0) {
            }
        }
        reader.join();
        errors += checker.errors + (checker.next != kCount);
    }
    Report(state, errors);
}

template <std::size_t N> void BM_RingBufferListInPlace(benchmark::State& state) {
    constexpr std::uint64_t kCount = kVolume / N;
    std::uint64_t errors = 0;
    for (auto _ : state) {
        RingBufferList list(kRingBytes, kRingBytes, 4, N, true);
        Checker checker;
        std::thread reader([&] { checker = ReadRecords<N>(list, kCount); });
        Record<N> record = MakeRecord<N>(0);
        for (std::uint64_t seq = 0; seq < kCount;) {
            unsigned int available = 0;
            char* place = list.GetWriteBuffer(available);
            if (place == nullptr) continue; // no room for a record yet: the reader is behind
            unsigned int used = 0;
            for (; used + N <= available && seq < kCount; used += N, ++seq) {
                std::memcpy(record.bytes, &seq, sizeof seq);
                std::memcpy(place + used, record.bytes, N);
            }
            list.IncrementWriteCursor(used);
        }
        reader.join();
        errors += checker.errors + (checker.next != kCount);
    }
    Report(state, errors);
}

template <std::size_t N> void BM_BoostSpscQueue(benchmark::State& state) {
    constexpr std::uint64_t kCount = kVolume / N;
    using Queue = boost::lockfree::spsc_queue<Record<N>, boost::lockfree::capacity<kRingBytes / N>>;
    std::uint64_t errors = 0;
    for (auto _ : state) {
        auto queue = std::make_unique<Queue>();
        Checker checker;
        std::thread reader([&] {
            Checker local;
            Record<N> record;
            while (local.next < kCount)
                if (queue->pop(record)) local.Take(record.bytes);
            checker = local;
        });
        Record<N> record = MakeRecord<N>(0);
        for (std::uint64_t seq = 0; seq < kCount; ++seq) {
            std::memcpy(record.bytes, &seq, sizeof seq);
            while (!queue->push(record)) {
            }
        }
        reader.join();
        errors += checker.errors + (checker.next != kCount);
    }
    Report(state, errors);
}

template <std::size_t N> void BM_ReaderWriterQueue(benchmark::State& state) {
    constexpr std::uint64_t kCount = kVolume / N;
    std::uint64_t errors = 0;
    for (auto _ : state) {
        moodycamel::ReaderWriterQueue<Record<N>> queue(kRingBytes / N);
        Checker checker;
        std::thread reader([&] {
            Checker local;
            Record<N> record;
            while (local.next < kCount)
                if (queue.try_dequeue(record)) local.Take(record.bytes);
            checker = local;
        });
        Record<N> record = MakeRecord<N>(0);
        for (std::uint64_t seq = 0; seq < kCount; ++seq) {
            std::memcpy(record.bytes, &seq, sizeof seq);
            while (!queue.try_enqueue(record)) {
            } // never allocates: waits for room instead
        }
        reader.join();
        errors += checker.errors + (checker.next != kCount);
    }
    Report(state, errors);
}

// The ceiling: one thread copies the same volume, record by record, from one buffer to another,
// with no second thread and no synchronisation.
template <std::size_t N> void BM_Memcpy(benchmark::State& state) {
    std::vector<char> source(kVolume, 0x5a), target(kVolume, 0);
    for (auto _ : state) {
        for (std::size_t at = 0; at < kVolume; at += N)
            std::memcpy(target.data() + at, source.data() + at, N);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    const bool copied = std::memcmp(source.data(), target.data(), kVolume) == 0;
    Report(state, copied ? 0 : 1);
}

#define VELORA_RING_BENCHMARKS(N)                                                                            \
    BENCHMARK_TEMPLATE(BM_RingBufferListWrite, N)->UseRealTime()->Unit(benchmark::kMillisecond);             \
    BENCHMARK_TEMPLATE(BM_RingBufferListInPlace, N)->UseRealTime()->Unit(benchmark::kMillisecond);           \
    BENCHMARK_TEMPLATE(BM_BoostSpscQueue, N)->UseRealTime()->Unit(benchmark::kMillisecond);                  \
    BENCHMARK_TEMPLATE(BM_ReaderWriterQueue, N)->UseRealTime()->Unit(benchmark::kMillisecond);               \
    BENCHMARK_TEMPLATE(BM_Memcpy, N)->UseRealTime()->Unit(benchmark::kMillisecond)

VELORA_RING_BENCHMARKS(16);
VELORA_RING_BENCHMARKS(64);
VELORA_RING_BENCHMARKS(1024);

} // namespace

BENCHMARK_MAIN();
