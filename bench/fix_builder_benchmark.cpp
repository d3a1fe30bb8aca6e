// FIX message building: a NewOrderSingle built and finalized per iteration on one FixTagCollection
// that is Reset between messages, its fields appended by reference and its sequence number, time
// and CompIDs written into the builder's own bytes. After the timed loop the last message is
// checked against a plain byte count and byte sum.
#include "VeloraUtils/FixTagCollection.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

void BuildNewOrderSingle(FixTagCollection& b, unsigned int seq, unsigned int millisecondOfDay) {
    b.Append("34=", 3, false, 0);
    b.AppendMsgSeqNumValue(seq);
    b.AppendTagSenderCompId("VELORA", 6, 0);
    b.AppendTagTargetCompId("BROKER", 6, 0);
    b.AppendTagUtc(6, 14, 2024, millisecondOfDay);
    b.AppendTag("1=", "ACC-0042", 2, 8, 0, true);
    b.AppendTag("11=", "ORD-20240614-000123", 3, 19, 0, true);
    b.AppendTag("21=", "1", 3, 1, 0, true);
    b.AppendTag("55=", "MSFT", 3, 4, 0, true);
    b.AppendTag("54=", "1", 3, 1, 0, true);
    b.AppendTag("60=", "20240614-09:36:07.890", 3, 21, 0, true);
    b.AppendTag("38=", "1500", 3, 4, 0, true);
    b.AppendTag("40=", "2", 3, 1, 0, true);
    b.AppendTag("44=", "412.35", 3, 6, 0, true);
    b.AppendTag("59=", "0", 3, 1, 0, true);
}

// True when BodyLength and CheckSum agree with the bytes of the slots.
bool MessageHolds(const FixTagCollection& b) {
    std::string bytes;
    for (unsigned short i = 0; i < b.GetCount(); ++i) {
        const WSABUF* slot = b.GetWsaBufAt(i);
        if (slot != nullptr) bytes.append(slot->buf, slot->len);
    }
    if (bytes.size() < 7 || bytes.compare(bytes.size() - 7, 3, "10=") != 0) return false;
    unsigned int sum = 0;
    for (std::size_t i = 0; i + 7 < bytes.size(); ++i) sum += static_cast<unsigned char>(bytes[i]);
    const std::size_t bodyStart = bytes.find('\x01', bytes.find('\x01') + 1) + 1;
    const std::size_t bodyLength = bytes.size() - 7 - bodyStart;
    return std::stoul(bytes.substr(bytes.size() - 4, 3)) == sum % 256 &&
           bytes.find("\x01"
                      "9=" +
                      std::to_string(bodyLength) + "\x01") != std::string::npos;
}

void BM_FixTagCollectionNewOrderSingle(benchmark::State& state) {
    FixTagCollection b(64, 0x0404, "FIX");
    unsigned int seq = 1;
    for (auto _ : state) {
        b.Reset();
        BuildNewOrderSingle(b, seq, 34567000 + seq % 1000);
        const bool ok = b.Finalize("D");
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(b.GetWsaBufAt(0));
        ++seq;
    }
    if (!MessageHolds(b)) state.SkipWithError("the last message's BodyLength or CheckSum is wrong");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FixTagCollectionNewOrderSingle);

} // namespace

BENCHMARK_MAIN();
