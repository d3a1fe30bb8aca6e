// The library's FIX parser and builder beside QuickFIX on the same NewOrderSingle.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "VeloraUtils/FixParsing.h"
#include "VeloraUtils/FixTagCollection.h"
#include "quickfix_anchor.h"

namespace {

// One message for both parsers: QuickFIX serialises it, so neither side parses its own output.
const std::string& NewOrderSingle() {
    static const std::string message = velora::bench::QuickFixBuildNewOrderSingle(1);
    return message;
}

void BM_ParseFix(benchmark::State& state) {
    const std::string& message = NewOrderSingle();
    FixFieldMap fields;
    std::size_t stored = 0;
    for (auto _ : state) {
        fields.clear();
        unsigned short errorTag = 0, ordinal = 0;
        const unsigned char code = U_ParseFix(fields, message.data(),
                                              static_cast<unsigned int>(message.size()), &errorTag, &ordinal);
        benchmark::DoNotOptimize(code);
        stored += fields.size();
    }
    // One field per SOH.
    const auto fieldCount = static_cast<std::size_t>(std::count(message.begin(), message.end(), '\x01'));
    if (stored != static_cast<std::size_t>(state.iterations()) * fieldCount || fields.value(55) != "AAPL")
        state.SkipWithError("the message did not parse into all its fields");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message.size()));
}
BENCHMARK(BM_ParseFix);

void BM_QuickFixParse(benchmark::State& state) {
    const std::string& message = NewOrderSingle();
    std::size_t stored = 0;
    for (auto _ : state) stored += velora::bench::QuickFixParse(message);
    if (stored == 0) state.SkipWithError("QuickFIX parsed nothing");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message.size()));
}
BENCHMARK(BM_QuickFixParse);

// Build, stamp and finalise the same NewOrderSingle; the object is reused after Reset, as a
// session does. Values are referenced, not copied.
void BM_FixTagCollectionBuild(benchmark::State& state) {
    FixTagCollection message(32, 0x0404, "FIX");
    unsigned int seq = 0;
    std::size_t bytes = 0;
    for (auto _ : state) {
        message.Reset();
        message.AppendTagSenderCompId("VELORA", 6, 0);
        message.AppendTagTargetCompId("BROKER1", 7, 0);
        message.Append("34=", 3, false, 0);
        message.AppendMsgSeqNumValue(++seq);
        message.AppendTagUtc("20261121", 34200125);
        message.AppendTag("11=", "ORD000001", 3, 9, 0, true);
        message.AppendTag("21=", "1", 3, 1, 0, true);
        message.AppendTag("55=", "AAPL", 3, 4, 0, true);
        message.AppendTag("54=", "1", 3, 1, 0, true);
        message.AppendTag("60=", "20261121-09:30:00.100", 3, 21, 0, true);
        message.AppendTag("38=", "100", 3, 3, 0, true);
        message.AppendTag("40=", "2", 3, 1, 0, true);
        message.AppendTag("44=", "187.25", 3, 6, 0, true);
        message.AppendTag("59=", "0", 3, 1, 0, true);
        const bool finalized = message.Finalize("D");
        benchmark::DoNotOptimize(finalized);
        bytes += message.GetMessageLength();
    }
    std::string text;
    message.toString(text, "\x01");
    unsigned int sum = 0;
    for (std::size_t i = 0; i + 7 < text.size(); ++i) sum += static_cast<unsigned char>(text[i]);
    if (bytes == 0 || text.compare(text.size() - 7, 3, "10=") != 0 ||
        std::stoul(text.substr(text.size() - 4, 3)) != sum % 256)
        state.SkipWithError("the built message is not a valid FIX message");
}
BENCHMARK(BM_FixTagCollectionBuild);

void BM_QuickFixBuild(benchmark::State& state) {
    unsigned int seq = 0;
    std::size_t bytes = 0;
    for (auto _ : state) bytes += velora::bench::QuickFixBuildNewOrderSingle(++seq).size();
    if (bytes == 0) state.SkipWithError("QuickFIX built nothing");
}
BENCHMARK(BM_QuickFixBuild);

} // namespace

BENCHMARK_MAIN();
